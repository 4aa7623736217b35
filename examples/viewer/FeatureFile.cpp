#include "FeatureFile.h"

#include <KelvOsgTools/exportFeature.h>
#include <KelvOsgTools/importFeature.h>

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTextStream>
#include <QXmlStreamReader>

#include <algorithm>

namespace viewer {

using namespace KelvOsgTools;

namespace {

QString translated(const char* text)
{
    return QCoreApplication::translate("FeatureFile", text);
}

/// Tells whether the file can be read to its end and is a feature file: the library does not tell.
bool checkFile(const QString& path, QString& error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = file.errorString();
        return false;
    }
    QXmlStreamReader reader(&file);
    const bool isFeatureFile = reader.readNextStartElement() && reader.name() == QLatin1String("featureInfoXML");
    while (!reader.atEnd()) reader.readNext();
    if (reader.hasError())
        error = translated("Line %1: %2").arg(reader.lineNumber()).arg(reader.errorString());
    else if (!isFeatureFile)
        error = translated("This is not a feature file.");
    return error.isEmpty();
}

Feature fromRecord(const CAutoScaleSphereMeta::structSphereMeta& meta)
{
    Feature feature;
    feature.kind = featureDot;
    feature.points = {meta.cneterPos};
    return feature;
}

Feature fromRecord(const CArrowMeta::structArrowMeta& meta)
{
    Feature feature;
    feature.kind = featureLine;
    feature.points = {meta.startPos, meta.endPos};
    // The file does not say which sort of arrow it was. A thin arrow needs no radius, so it is saved
    // with none, and a solid one without radius could not be seen.
    feature.isLineArrow = meta.radius == 0.0f;
    feature.radius = meta.radius;
    return feature;
}

Feature fromRecord(const CPlaneMeta::structPlaneMeta& meta)
{
    Feature feature;
    feature.kind = featurePlane;
    feature.points = meta.pointVec;
    return feature;
}

template <typename Record>
void append(std::vector<Feature>& features, const QVector<Record>& records,
            const QVector<CTableMeta::structTableMeta>& labels)
{
    for (int i = 0; i < records.size(); ++i) {
        Feature feature = fromRecord(records[i]);
        const CTableMeta::structTableMeta label = labels.value(i);
        feature.word = i < labels.size() ? label.tableNamePrefix : defaultWord(feature.kind);
        feature.number = label.tableNameIndexSuffix;
        features.push_back(feature);
    }
}

FeatureFileContent import(const QString& directory, const QString& name)
{
    importFeature reader;
    reader.getFeatureInfoIntoXML(directory, name);
    FeatureFileContent content;
    append(content.features, reader.getAutoScaleShpereMetaInfo(), reader.getAutoScaleShpereTableInfo());
    append(content.features, reader.getArrowMetaInfo(), reader.getArrowTableInfo());
    append(content.features, reader.getPlaneMetaInfo(), reader.getPlaneTableInfo());
    reader.getFeatureTagCount(content.dotCount, content.lineCount, content.planeCount);
    return content;
}

bool isSame(const FeatureFileContent& a, const FeatureFileContent& b)
{
    return a.dotCount == b.dotCount && a.lineCount == b.lineCount && a.planeCount == b.planeCount &&
           std::equal(a.features.begin(), a.features.end(), b.features.begin(), b.features.end(), isSameMeasurement);
}

QString csvField(QString text)
{
    // Spreadsheets take a leading sign of equality for a formula.
    if (text.startsWith('=') || text.startsWith('@')) text.prepend('\'');
    return '"' + text.replace('"', QLatin1String("\"\"")) + '"';
}

QString csvRow(const Feature& feature)
{
    constexpr int kFloatDigits = 9; // tell every float from its neighbours
    constexpr std::size_t kMostPoints = 4;
    QStringList fields{csvField(feature.name), csvField(kindName(feature.kind)), csvField(labelText(feature))};
    const auto appendVector = [&fields](const osg::Vec3f* vector) {
        for (int i = 0; i < 3; ++i) fields << (vector ? QString::number((*vector)[i], 'g', kFloatDigits) : QString());
    };
    for (std::size_t i = 0; i < kMostPoints; ++i)
        appendVector(i < feature.points.size() ? &feature.points[i] : nullptr);
    const bool isLine = feature.kind == featureLine;
    fields << (isLine ? QString::number((feature.points[1] - feature.points[0]).length(), 'g', kFloatDigits)
                      : QString());
    const osg::Vec3f normal = feature.kind == featurePlane ? normalOf(feature.points) : osg::Vec3f();
    appendVector(feature.kind == featurePlane ? &normal : nullptr);
    return fields.join(',');
}

} // namespace

bool readFeatureFile(const QString& path, FeatureFileContent& content, QString& error)
{
    error.clear();
    if (!checkFile(path, error)) return false;
    const QFileInfo file(path);
    content = import(file.absolutePath(), file.fileName());
    return true;
}

bool writeFeatureFile(const QString& path, const osg::ref_ptr<osg::Group>& scene, const FeatureFileContent& content,
                      QString& error)
{
    const QFileInfo file(path);
    exportFeature writer;
    writer.getMetaStructInfo(scene);
    writer.setFeatureTagCount(content.dotCount, content.lineCount, content.planeCount);
    writer.createXML(scene, file.absolutePath(), file.fileName());

    // The exporter does not tell whether it could write.
    FeatureFileContent written;
    if (readFeatureFile(path, written, error) && isSame(written, content)) return true;
    error = translated("The file could not be written; what it held before is unchanged.");
    return false;
}

bool writeCsv(const QString& path, const std::vector<Feature>& features, QString& error)
{
    QSaveFile file(path);
    file.open(QIODevice::WriteOnly);
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    stream.setGenerateByteOrderMark(true); // without it spreadsheets read umlauts in the local encoding
    stream << "name,kind,label,x1,y1,z1,x2,y2,z2,x3,y3,z3,x4,y4,z4,length,normal x,normal y,normal z\r\n";
    for (const Feature& feature : features) stream << csvRow(feature) << "\r\n";
    stream.flush();
    if (file.commit()) return true;
    error = file.errorString();
    return false;
}

} // namespace viewer
