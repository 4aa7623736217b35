#pragma once

#include <osg/Node>
#include <osg/ref_ptr>

#include <QFutureWatcher>
#include <QObject>
#include <QThreadPool>

#include <atomic>
#include <functional>
#include <memory>

namespace viewer {

/// A mesh ready to be shown and picked, or the reason why there is none.
struct LoadedMesh
{
    osg::ref_ptr<osg::Node> node;
    QString error;
    unsigned int triangles = 0;
};

/// Reads a mesh: transforms flattened, so that the coordinates of its drawables are those of the
/// whole; normals made where there are none; KdTrees built.
/// @param progress called with what is done, 0 to 1; false stops, the result is then empty
LoadedMesh loadMesh(const QString& path, const std::function<bool(double)>& progress);

/// Loads meshes in the background, one at a time.
class MeshLoader : public QObject
{
    Q_OBJECT

public:
    explicit MeshLoader(QObject* parent = nullptr);
    ~MeshLoader() override;

    /// Starts loading; a mesh that is still being loaded is given up.
    void load(const QString& path);
    bool isLoading() const { return m_watcher.isRunning(); }

signals:
    /// While the file is read nothing is known about the rest: percent is 0 then.
    void progressed(int percent);
    void loaded(const QString& path, const LoadedMesh& mesh);

private:
    void stop();

    QString m_path;
    QFutureWatcher<LoadedMesh> m_watcher;
    std::shared_ptr<std::atomic<bool>> m_isWanted; // of the load in progress
    QThreadPool m_pool;                            // last: its end waits for given-up loads, which use the rest
};

} // namespace viewer
