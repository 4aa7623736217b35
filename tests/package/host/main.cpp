// A small host: it makes a feature, finds it, saves it and loads it again. Its status is 0 if all of that works.

#include <KelvOsgTools/KelvOsgTools.h>

#include <QGuiApplication>
#include <QTemporaryDir>

#include <cstdio>

using namespace KelvOsgTools;

int failed(const char* step)
{
    std::fprintf(stderr, "host: %s failed\n", step);
    return 1;
}

int main(int argc, char** argv)
{
    const QGuiApplication application(argc, argv);
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    createAutoScaleShpereAndTable("dot-1", scene, osg::Vec3f(1, 2, 3), 1, "Point", 1, featureStateNormal, false);

    const osg::ref_ptr<osg::Node> found = findFeatureByName("dot-1", scene, featureDot);
    auto* const dot = dynamic_cast<CAutoScaleSphereMeta*>(found.get());
    if (!dot || dot->getCenterPos() != osg::Vec3f(1, 2, 3)) return failed("finding the dot");

    const QTemporaryDir folder;
    exportFeature exporter;
    exporter.getMetaStructInfo(scene);
    exporter.createXML(scene, folder.path(), "features.xml");
    importFeature importer;
    importer.getFeatureInfoIntoXML(folder.path(), "features.xml");
    if (importer.getAutoScaleShpereMetaInfo().size() != 1) return failed("saving and loading");

    std::puts("host: all well");
    return 0;
}
