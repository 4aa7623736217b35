// Draws the pictures of the reference, one for each class and function that draws: gallery FOLDER

#include "Subjects.h"

#include <KelvOsgTools/CFeatureConfig.h>

#include <osgDB/WriteFile>
#include <osgViewer/Viewer>

#include <QFileInfo>
#include <QGuiApplication>

#include <cstdio>

namespace {

using gallery::kHeight;
using gallery::kWidth;

constexpr double kHalfDepth = 1000.0;

/// Reads the frame back where it was drawn.
struct ReadPicture : osg::Camera::DrawCallback
{
    void operator()(osg::RenderInfo&) const override
    {
        picture->readPixels(0, 0, kWidth, kHeight, GL_RGB, GL_UNSIGNED_BYTE);
    }

    osg::ref_ptr<osg::Image> picture = new osg::Image;
};

osg::ref_ptr<osg::GraphicsContext> offscreenContext()
{
    const osg::ref_ptr<osg::GraphicsContext::Traits> traits = new osg::GraphicsContext::Traits;
    traits->width = kWidth;
    traits->height = kHeight;
    traits->samples = 4; // smooth edges
    traits->pbuffer = true;
    traits->readDISPLAY();
    return osg::GraphicsContext::createGraphicsContext(traits);
}

class Studio
{
public:
    Studio()
    {
        m_viewer.setThreadingModel(osgViewer::Viewer::SingleThreaded);
        osg::Camera& camera = *m_viewer.getCamera();
        camera.setGraphicsContext(offscreenContext());
        camera.setClearColor(osg::Vec4(0.87f, 0.90f, 0.94f, 1.0f));
        camera.setViewport(0, 0, kWidth, kHeight);
        camera.setComputeNearFarMode(osg::Camera::DO_NOT_COMPUTE_NEAR_FAR);
        camera.setProjectionMatrixAsOrtho(-kWidth / 2.0, kWidth / 2.0, -kHeight / 2.0, kHeight / 2.0, 1.0, kHalfDepth);
        camera.setFinalDrawCallback(m_reader);
    }

    bool hasContext() const { return m_viewer.getCamera()->getGraphicsContext() != nullptr; }

    bool draw(const gallery::Subject& subject, const std::string& path)
    {
        const osg::Vec3d eye = subject.isSeenFromTheFront ? osg::Vec3d(0, -400, 0) : osg::Vec3d(-100, -400, 180);
        m_viewer.getCamera()->setViewMatrixAsLookAt(eye, osg::Vec3d(), osg::Z_AXIS);
        const osg::ref_ptr<osg::Group> scene = new osg::Group;
        subject.addTo(scene);
        m_viewer.setSceneData(scene);
        m_viewer.frame(); // what keeps its size on screen learns its scale from the first frame
        m_viewer.frame();
        return osgDB::writeImageFile(*m_reader->picture, path);
    }

private:
    osgViewer::Viewer m_viewer;
    osg::ref_ptr<ReadPicture> m_reader = new ReadPicture;
};

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\ndraws the pictures of the reference into the folder\n", argv[0]);
        return 2;
    }
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen"); // Qt only measures text
    const QGuiApplication application(argc, argv);
    const QString font = QStringLiteral("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf");
    if (QFileInfo::exists(font)) KelvOsgTools::CFeatureConfig::sigleFeatureConfig()->setFontPath(font);

    Studio studio;
    if (!studio.hasContext()) {
        std::fprintf(stderr, "gallery: no OpenGL context: a display is needed, a virtual one will do (xvfb-run)\n");
        return 1;
    }
    for (const gallery::Subject& subject : gallery::subjects()) {
        const std::string path = std::string(argv[1]) + "/" + subject.name + ".png";
        if (!studio.draw(subject, path)) return 1;
        std::printf("%s\n", path.c_str());
    }
    return 0;
}
