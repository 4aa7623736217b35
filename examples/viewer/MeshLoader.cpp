#include "MeshLoader.h"

#include <osg/KdTree>
#include <osg/Transform>
#include <osg/TriangleFunctor>
#include <osgDB/ReadFile>
#include <osgUtil/Optimizer>
#include <osgUtil/SmoothingVisitor>

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QtConcurrent>

#include <vector>

namespace viewer {

namespace {

const osg::Vec4f kPlainColour(0.60f, 0.65f, 0.71f, 1.0f); // of meshes that bring none

QString reasonText(const char* text)
{
    return QCoreApplication::translate("MeshLoader", text);
}

struct CountTriangle
{
    unsigned int count = 0;
    void operator()(const osg::Vec3&, const osg::Vec3&, const osg::Vec3&, bool = false) { ++count; }
};

/// Lists the geometries and marks everything as never changing, so that transforms can be flattened.
class GeometryCollector : public osg::NodeVisitor
{
public:
    GeometryCollector() : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN) {}

    void apply(osg::Transform& transform) override
    {
        transform.setDataVariance(osg::Object::STATIC);
        traverse(transform);
    }

    void apply(osg::Geometry& geometry) override
    {
        geometry.setDataVariance(osg::Object::STATIC);
        geometries.emplace_back(&geometry);
    }

    std::vector<osg::ref_ptr<osg::Geometry>> geometries;
};

std::vector<osg::ref_ptr<osg::Geometry>> geometriesOf(osg::Node& node)
{
    GeometryCollector collector;
    node.accept(collector);
    return collector.geometries;
}

unsigned int prepare(osg::Geometry& geometry, osg::KdTreeBuilder& builder)
{
    if (!geometry.getNormalArray()) osgUtil::SmoothingVisitor::smooth(geometry);
    if (!geometry.getColorArray()) {
        const osg::ref_ptr<osg::Vec4Array> colour = new osg::Vec4Array;
        colour->push_back(kPlainColour);
        geometry.setColorArray(colour, osg::Array::BIND_OVERALL);
    }
    geometry.setUseDisplayList(false);
    geometry.setUseVertexBufferObjects(true);
    geometry.accept(builder);
    osg::TriangleFunctor<CountTriangle> counter;
    geometry.accept(counter);
    return counter.count;
}

/// The reason why a file gave no mesh.
QString reasonFor(const QString& path, const std::string& message)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return file.errorString();
    if (!message.empty()) return QString::fromStdString(message);
    return reasonText("The format is not known or the file is damaged.");
}

} // namespace

LoadedMesh loadMesh(const QString& path, const std::function<bool(double)>& progress)
{
    LoadedMesh mesh;
    osgDB::ReaderWriter::ReadResult result =
        osgDB::Registry::instance()->readNode(QFile::encodeName(path).toStdString(), nullptr);
    mesh.node = result.getNode();
    if (!mesh.node) {
        mesh.error = reasonFor(path, result.message());
        return mesh;
    }
    geometriesOf(*mesh.node);
    osgUtil::Optimizer().optimize(mesh.node,
                                  osgUtil::Optimizer::FLATTEN_STATIC_TRANSFORMS_DUPLICATING_SHARED_SUBGRAPHS);

    const osg::ref_ptr<osg::KdTreeBuilder> builder = new osg::KdTreeBuilder;
    const std::vector<osg::ref_ptr<osg::Geometry>> geometries = geometriesOf(*mesh.node);
    for (std::size_t i = 0; i < geometries.size(); ++i) {
        if (!progress(double(i) / double(geometries.size()))) return {};
        mesh.triangles += prepare(*geometries[i], *builder);
    }
    if (mesh.triangles == 0) return {nullptr, reasonText("The file holds no surface."), 0};
    return mesh;
}

MeshLoader::MeshLoader(QObject* parent) : QObject(parent)
{
    connect(&m_watcher, &QFutureWatcher<LoadedMesh>::finished, this, [this] {
        if (*m_isWanted) emit loaded(m_path, m_watcher.result());
    });
}

MeshLoader::~MeshLoader()
{
    stop();
}

void MeshLoader::load(const QString& path)
{
    stop();
    m_path = path;
    m_isWanted = std::make_shared<std::atomic<bool>>(true);
    const auto work = [this, path, isWanted = m_isWanted] {
        return loadMesh(path, [this, isWanted](double done) {
            if (*isWanted) emit progressed(int(100.0 * done));
            return isWanted->load();
        });
    };
    emit progressed(0);
    m_watcher.setFuture(QtConcurrent::run(&m_pool, work));
}

void MeshLoader::stop()
{
    if (m_isWanted) *m_isWanted = false;
}

} // namespace viewer
