// The axis triad on a mesh, in a viewer left as it comes.
// Shows a window, or with --picture FILE.png draws one frame without one into the file.

#include <KelvOsgTools/CConeAndCylinderMeta.h>

#include <osg/ArgumentParser>
#include <osg/Shape>
#include <osg/ShapeDrawable>
#include <osgDB/WriteFile>
#include <osgGA/TrackballManipulator>
#include <osgViewer/Viewer>

struct WritePicture : osg::Camera::DrawCallback
{
    void operator()(osg::RenderInfo& renderInfo) const override
    {
        const osg::Viewport& window = *renderInfo.getCurrentCamera()->getViewport();
        const osg::ref_ptr<osg::Image> picture = new osg::Image;
        picture->readPixels(0, 0, int(window.width()), int(window.height()), GL_RGB, GL_UNSIGNED_BYTE);
        written = osgDB::writeImageFile(*picture, file);
    }
    std::string file;
    mutable bool written = false;
};

int main(int argc, char** argv)
{
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    scene->addChild(new osg::ShapeDrawable(new osg::Box(osg::Vec3(0.0f, 0.0f, -0.5f), 4.0f, 4.0f, 1.0f)));

    KelvOsgTools::CConeAndCylinderMeta::structConeAndCylinderMeta axis;
    axis.length = 80.0f; // pixels
    axis.radius = 2.0f;
    scene->addChild(KelvOsgTools::CConeAndCylinderMeta::createAxis(axis)); // after what may hide it

    osgViewer::Viewer viewer;
    viewer.setCameraManipulator(new osgGA::TrackballManipulator);
    viewer.getCameraManipulator()->setHomePosition(osg::Vec3d(9.0, -12.0, 7.0), osg::Vec3d(), osg::Z_AXIS);
    viewer.setSceneData(scene);

    const osg::ref_ptr<WritePicture> writer = new WritePicture;
    if (!osg::ArgumentParser(&argc, argv).read("--picture", writer->file)) return viewer.run();

    const osg::ref_ptr<osg::GraphicsContext::Traits> traits = new osg::GraphicsContext::Traits;
    traits->width = traits->height = 400;
    traits->pbuffer = true;
    traits->readDISPLAY();
    osg::Camera& camera = *viewer.getCamera();
    camera.setGraphicsContext(osg::GraphicsContext::createGraphicsContext(traits));
    if (!camera.getGraphicsContext()) return 1;
    camera.setViewport(0, 0, traits->width, traits->height);
    camera.setProjectionMatrixAsPerspective(30.0, 1.0, 1.0, 100.0);
    camera.setFinalDrawCallback(writer);
    viewer.setThreadingModel(osgViewer::Viewer::SingleThreaded);
    viewer.frame();
    return writer->written ? 0 : 1;
}
