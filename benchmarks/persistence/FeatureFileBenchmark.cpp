#include <KelvOsgTools/FeatureFunctions.h>
#include <KelvOsgTools/exportFeature.h>
#include <KelvOsgTools/importFeature.h>

#include <benchmark/benchmark.h>

#include <QFile>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <random>
#include <vector>

// Saving and loading N features of a kind, each beside what Qt's stream classes take for the same file
// when nothing is made of it: write/Dots/N beside bareWriter/Dots/N, read/Dots/N beside bareReader/Dots/N.
// All of them start and end with a file in one folder; set TMPDIR to choose the disk.

namespace {
using namespace KelvOsgTools;

void ignoreMessages(QtMsgType, const QMessageLogContext&, const QString&) {}

/// Coordinates with all their digits, as measurements have them.
osg::Vec3f randomPoint(std::mt19937& random)
{
    std::uniform_real_distribution<float> coordinate(-1000.0f, 1000.0f);
    return {coordinate(random), coordinate(random), coordinate(random)};
}

void addFeature(const osg::ref_ptr<osg::Group>& scene, featureType kind, int number, std::mt19937& random)
{
    const osg::Vec3f point = randomPoint(random);
    const QString name = QString::number(number);
    if (kind == featureDot) {
        createAutoScaleShpereAndTable("dot" + name, scene, point, 1, "Point", number, featureStateNormal, false);
    } else if (kind == featureLine) {
        CArrowMeta::structArrowMeta line;
        line.startPos = point;
        line.endPos = randomPoint(random);
        line.name = "line" + name.toStdString();
        line.isLineArrow = true;
        createArrowAndTable(featureStateNormal, line, scene, 1, "line", number);
    } else {
        createPlaneAndTable(featureStateNormal, "plane" + name, scene,
                            {point, randomPoint(random), randomPoint(random), randomPoint(random)}, osg::Z_AXIS, 1,
                            "Plane", number);
    }
}

/// A saved scene of some size: its exporter, the file, and the file's tokens.
struct SavedScene
{
    SavedScene(featureType kind, int features)
    {
        std::mt19937 random(1);
        for (int i = 0; i < features; ++i) addFeature(scene, kind, i, random);
        exporter.getMetaStructInfo(scene);
        exporter.setFeatureTagCount(features, features, features);
        exporter.createXML(scene, folder.path(), "saved");
    }

    QString path(const QString& name) const { return folder.path() + '/' + name; }

    QByteArray bytes(const QString& name) const
    {
        QFile file(path(name));
        file.open(QIODevice::ReadOnly);
        return file.readAll();
    }

    osg::ref_ptr<osg::Group> scene = new osg::Group;
    exportFeature exporter;
    QTemporaryDir folder;
};

void write(benchmark::State& state, featureType kind)
{
    const SavedScene saved(kind, static_cast<int>(state.range(0)));
    exportFeature exporter = saved.exporter;
    for (auto _ : state) exporter.createXML(saved.scene, saved.folder.path(), "written");
    if (saved.bytes("written") != saved.bytes("saved")) state.SkipWithError("wrote another file");
    state.SetBytesProcessed(state.iterations() * saved.bytes("saved").size());
}

/// One element of the file, ready to be written: with a text, or with children.
struct Element
{
    enum Kind
    {
        Leaf,
        Start,
        End
    } kind;
    QString name;
    QString text;
    QXmlStreamAttributes attributes;
};

std::vector<Element> elementsOf(const QByteArray& document)
{
    std::vector<Element> elements;
    QXmlStreamReader reader(document);
    bool isLeaf = false;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement())
            elements.push_back({Element::Start, reader.name().toString(), QString(), reader.attributes()});
        if (reader.isStartElement()) isLeaf = true;
        if (reader.isCharacters() && !reader.isWhitespace()) elements.back().text = reader.text().toString();
        if (!reader.isEndElement()) continue;
        if (isLeaf)
            elements.back().kind = Element::Leaf;
        else
            elements.push_back({Element::End, QString(), QString(), {}});
        isLeaf = false;
    }
    return elements;
}

void writeElements(QIODevice* file, const std::vector<Element>& elements)
{
    QXmlStreamWriter writer(file);
    writer.setAutoFormatting(true);
    writer.writeStartDocument();
    for (const Element& element : elements) {
        if (element.kind == Element::Leaf)
            writer.writeTextElement(element.name, element.text);
        else if (element.kind == Element::End)
            writer.writeEndElement();
        else {
            writer.writeStartElement(element.name);
            if (!element.attributes.isEmpty()) writer.writeAttributes(element.attributes);
        }
    }
    writer.writeEndDocument();
    writer.writeEndDocument();
}

void bareWriter(benchmark::State& state, featureType kind)
{
    const SavedScene saved(kind, static_cast<int>(state.range(0)));
    const std::vector<Element> elements = elementsOf(saved.bytes("saved"));
    for (auto _ : state) {
        QFile file(saved.path("bare"));
        file.open(QIODevice::WriteOnly | QIODevice::Text);
        writeElements(&file, elements);
    }
    if (saved.bytes("bare") != saved.bytes("saved")) state.SkipWithError("wrote another file");
    state.SetBytesProcessed(state.iterations() * saved.bytes("saved").size());
}

void read(benchmark::State& state, featureType kind)
{
    const int features = static_cast<int>(state.range(0));
    const SavedScene saved(kind, features);
    int count = 0;
    for (auto _ : state) {
        importFeature importer;
        importer.getFeatureInfoIntoXML(saved.folder.path(), "saved");
        count = importer.getAutoScaleShpereTableInfo().size() + importer.getArrowTableInfo().size() +
                importer.getPlaneTableInfo().size();
    }
    if (count != features) state.SkipWithError("did not read all features");
    state.SetBytesProcessed(state.iterations() * saved.bytes("saved").size());
}

void bareReader(benchmark::State& state, featureType kind)
{
    const SavedScene saved(kind, static_cast<int>(state.range(0)));
    for (auto _ : state) {
        QFile file(saved.path("saved"));
        file.open(QIODevice::ReadOnly | QIODevice::Text);
        QXmlStreamReader reader(&file);
        while (!reader.atEnd()) benchmark::DoNotOptimize(reader.readNext());
        if (reader.hasError()) state.SkipWithError("could not read the file");
    }
    state.SetBytesProcessed(state.iterations() * saved.bytes("saved").size());
}

#define KELV_FILE(operation, name, kind)                                                                               \
    BENCHMARK_CAPTURE(operation, name, kind)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMillisecond)
#define KELV_FILES(name, kind)                                                                                         \
    KELV_FILE(bareWriter, name, kind);                                                                                 \
    KELV_FILE(write, name, kind);                                                                                      \
    KELV_FILE(bareReader, name, kind);                                                                                 \
    KELV_FILE(read, name, kind)

KELV_FILES(Dots, featureDot);
KELV_FILES(Lines, featureLine);
KELV_FILES(Planes, featurePlane);

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    qInstallMessageHandler(ignoreMessages);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
