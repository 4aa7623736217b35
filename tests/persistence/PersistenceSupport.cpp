#include "PersistenceSupport.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <stdexcept>

namespace kelvtest {
using namespace KelvOsgTools;

namespace {

QStringList messages;
QtMessageHandler formerHandler = nullptr;

void keepMessage(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    messages.append(type == QtDebugMsg ? text : "not for debugging: " + text);
}

/// Gives a new value at every call, none of them a default of a record.
class ValueSource
{
public:
    float next() { return m_value += 0.001f; }
    osg::Vec3f nextVec3()
    {
        const float x = next();
        const float y = next();
        return {x, y, next()};
    }
    osg::Vec4f nextVec4() { return {nextVec3(), next()}; }

private:
    float m_value = 1.5f; // small, as spheres and arrows are tessellated the finer, the greater their ratio
};

TableRecord nextTable(ValueSource& values, int number)
{
    TableRecord table;
    table.textColor = values.nextVec4();
    table.pos = values.nextVec3();
    table.backgroundColor = values.nextVec3();
    table.tableNamePrefix = QStringLiteral("Label of ") + QString::number(number);
    table.tableNameIndexSuffix = 100 + number;
    table.renderIndex = 200 + number;
    table.isAutoScale = number % 2 == 0;
    table.isBottom = number % 2 == 1;
    return table;
}

DotRecord nextDot(ValueSource& values)
{
    DotRecord dot;
    dot.cneterPos = values.nextVec3();
    dot.radius = values.next();
    dot.ratio = values.next();
    dot.color = values.nextVec4();
    return dot;
}

LineRecord nextLine(ValueSource& values)
{
    LineRecord line;
    line.startPos = values.nextVec3();
    line.endPos = values.nextVec3();
    line.color = values.nextVec4();
    line.radius = values.next();
    line.ratio = values.next();
    return line;
}

PlaneRecord nextPlane(ValueSource& values)
{
    PlaneRecord plane;
    plane.planeColor = values.nextVec3();
    plane.lineColor = values.nextVec3();
    plane.lineWidth = values.next();
    plane.planeNormal = values.nextVec3();
    plane.alpha = values.next();
    for (int i = 0; i < 4; ++i) plane.pointVec.push_back(values.nextVec3());
    return plane;
}

} // namespace

LoggedMessages::LoggedMessages()
{
    messages.clear();
    formerHandler = qInstallMessageHandler(keepMessage);
}

LoggedMessages::~LoggedMessages()
{
    qInstallMessageHandler(formerHandler);
}

const QStringList& LoggedMessages::all() const
{
    return messages;
}

TestFolder::TestFolder()
    : m_folder((QFileInfo("/dev/shm").isWritable() ? QString("/dev/shm") : QDir::tempPath()) + "/kelvosgtools-test")
{}

void TestFolder::write(const QString& name, const QByteArray& bytes) const
{
    QFile file(pathOf(name));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        throw std::runtime_error("cannot write a file of the test");
}

QByteArray TestFolder::read(const QString& name) const
{
    QFile file(pathOf(name));
    if (!file.open(QIODevice::ReadOnly)) throw std::runtime_error("cannot read a file of the test");
    return file.readAll();
}

QStringList TestFolder::fileNames() const
{
    return QDir(path()).entryList(QDir::Files);
}

void hang(osg::Group* scene, featureType kind, osg::Node* node)
{
    findOrCreateFeatureRootNode(scene, kind, true)->getChild(0)->asGroup()->addChild(node);
}

osg::ref_ptr<osg::Group> addDot(osg::Group* scene, const DotRecord& dot, const TableRecord& table)
{
    const osg::ref_ptr<CAutoScaleSphereMeta> node = new CAutoScaleSphereMeta(dot);
    node->addTable(new CTableMeta(table));
    hang(scene, featureDot, node);
    return node;
}

osg::ref_ptr<osg::Group> addLine(osg::Group* scene, const LineRecord& line, const TableRecord& table)
{
    const osg::ref_ptr<CArrowMeta> node = new CArrowMeta(line);
    node->addTable(new CTableMeta(table));
    hang(scene, featureLine, node);
    return node;
}

osg::ref_ptr<osg::Group> addPlane(osg::Group* scene, PlaneRecord plane, const TableRecord& table)
{
    const osg::ref_ptr<CPlaneMeta> node = new CPlaneMeta(plane);
    node->addTable(new CTableMeta(table));
    hang(scene, featurePlane, node);
    return node;
}

PlaneRecord planeOf(const std::vector<osg::Vec3f>& corners)
{
    PlaneRecord plane;
    plane.pointVec = corners;
    return plane;
}

TableRecord tableOf(const QString& prefix, int indexSuffix)
{
    TableRecord table;
    table.tableNamePrefix = prefix;
    table.tableNameIndexSuffix = indexSuffix;
    return table;
}

osg::ref_ptr<osg::Group> sceneOf(int dots, int lines, int planes)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    ValueSource values;
    for (int i = 0; i < dots; ++i) {
        const DotRecord dot = nextDot(values);
        addDot(scene, dot, nextTable(values, i));
    }
    for (int i = 0; i < lines; ++i) {
        const LineRecord line = nextLine(values);
        addLine(scene, line, nextTable(values, i));
    }
    for (int i = 0; i < planes; ++i) {
        const PlaneRecord plane = nextPlane(values);
        addPlane(scene, plane, nextTable(values, i));
    }
    return scene;
}

QByteArray savedBytes(const osg::ref_ptr<osg::Group>& scene)
{
    const TestFolder folder;
    exportFeature exporter;
    exporter.getMetaStructInfo(scene);
    exporter.setFeatureTagCount(4, 5, 6);
    exporter.createXML(scene, folder.path(), "saved.xml");
    return folder.read("saved.xml");
}

importFeature imported(const QByteArray& bytes)
{
    const TestFolder folder;
    folder.write("file.xml", bytes);
    importFeature importer;
    importer.getFeatureInfoIntoXML(folder.path(), "file.xml");
    return importer;
}

osg::ref_ptr<osg::Group> sceneOfAll(const importFeature& importer)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    const auto& dots = importer.getAutoScaleShpereMetaInfo();
    const auto& dotTables = importer.getAutoScaleShpereTableInfo();
    for (int i = 0; i < std::min(dots.size(), dotTables.size()); ++i) addDot(scene, dots[i], dotTables[i]);
    const auto& lines = importer.getArrowMetaInfo();
    const auto& lineTables = importer.getArrowTableInfo();
    for (int i = 0; i < std::min(lines.size(), lineTables.size()); ++i) addLine(scene, lines[i], lineTables[i]);
    const auto& planes = importer.getPlaneMetaInfo();
    const auto& planeTables = importer.getPlaneTableInfo();
    for (int i = 0; i < std::min(planes.size(), planeTables.size()); ++i) addPlane(scene, planes[i], planeTables[i]);
    return scene;
}

} // namespace kelvtest
