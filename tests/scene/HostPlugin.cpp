#include "scene/HostPlugin.h"

#include <KelvOsgTools/KelvOsgTools.h>

#include <QTemporaryDir>

#include <string>

// A plug-in as hosts write them: linked to the library, opened at run time, and without a thought of
// how it will be closed. It is built without -fno-gnu-unique: nothing in the library's headers may keep
// it in memory.
namespace {
using namespace KelvOsgTools;

osg::ref_ptr<osg::Group> keptScene;
int keptCount = 0;

int problems = 0;

void expect(bool holds)
{
    problems += holds ? 0 : 1;
}

void makeAllKinds(const osg::ref_ptr<osg::Group>& scene)
{
    expect(createAutoScaleShpereAndTable("dot", scene, osg::Vec3f(), 1, "Point", 1, featureStateSelected, false));
    expect(createFlagAutoScaleShpereAndTable(CFlagAutoScaleSphereMeta::flag_feature_line_name_start, scene,
                                             osg::Vec3f(1, 2, 3), 1, "Start", -1, featureLine, true, false));
    CArrowMeta::structArrowMeta arrow;
    arrow.endPos.set(10, 0, 0);
    for (const bool isLineArrow : {true, false}) {
        arrow.isLineArrow = isLineArrow;
        arrow.name = isLineArrow ? "thin" : "solid";
        expect(createArrowAndTable(featureStateHighlighted, arrow, scene, 1, "line", 1));
    }
    const std::vector<osg::Vec3f> corners = {{0, 0, 0}, {9, 0, 0}, {9, 9, 0}, {0, 9, 0}};
    expect(createPlaneAndTable(featureStateNone, "plane", scene, corners, osg::Z_AXIS, 1, "Plane", 1));
    expect(findOrCreateShpere("sphere", scene, osg::Vec3f(4, 5, 6)));
}

void saveAndLoad(const osg::ref_ptr<osg::Group>& scene)
{
    const QTemporaryDir folder;
    const QString name = QStringLiteral("features.xml");
    exportFeature saver;
    saver.getMetaStructInfo(scene);
    saver.setFeatureTagCount(1, 2, 3);
    saver.createXML(scene, folder.path(), name);
    importFeature loader;
    loader.getFeatureInfoIntoXML(folder.path(), name);
    expect(loader.getArrowMetaInfo().size() == 2);
}

void pick(const osg::ref_ptr<osg::Group>& scene)
{
    const osg::ref_ptr<osgViewer::Viewer> viewer = new osgViewer::Viewer;
    viewer->setUpViewerAsEmbeddedInWindow(0, 0, 100, 100);
    viewer->setSceneData(scene);
    osg::Vec3f point;
    CFeatureMetaObject* feature = nullptr;
    featureType kind = featureAll;
    std::vector<osg::Vec3f> points;
    getIntersectionToFeatureBranch(viewer, {}, 50, 50, featureAll, point, feature, kind, points);
}

} // namespace

#define KELV_PLUGIN extern "C" __attribute__((visibility("default")))

KELV_PLUGIN int kelvPluginUse()
{
    problems = 0;
    const osg::ref_ptr<osg::Group> scene = new osg::Group;
    makeAllKinds(scene);
    const osg::ref_ptr<osg::Node> triad = CConeAndCylinderMeta::createAxis({});
    expect(triad);
    FindFeatureNodeVisitor search({featureDot, featureLine, featurePlane, featureTable});
    scene->accept(search);
    expect(search.m_foundNodes.size() == 10);
    for (const osg::ref_ptr<osg::Node>& node : search.m_foundNodes) {
        if (auto* const label = dynamic_cast<CTableMeta*>(node.get())) label->updateLanguage();
        if (auto* const feature = dynamic_cast<CFeatureMetaObject*>(node.get())) feature->setState(featureStateNormal);
    }
    pick(scene);
    saveAndLoad(scene);
    expect(removeFeatureRoot(scene, featureAll));
    return problems;
}

KELV_PLUGIN void kelvPluginShow(osg::Group* scene)
{
    makeAllKinds(scene);
}

KELV_PLUGIN void kelvPluginHide(osg::Group* scene)
{
    scene->removeChild(findOrCreateFeatureRootNode(scene, featureAll, false));
}

KELV_PLUGIN void kelvPluginKeep(int count)
{
    keptScene = new osg::Group;
    keptCount = count;
    for (int i = 0; i < count; ++i)
        createAutoScaleShpereAndTable(QString::number(i), keptScene, osg::Vec3f(), 1, "Point", i, featureStateNormal,
                                      false);
}

KELV_PLUGIN int kelvPluginCountKept()
{
    int found = 0;
    for (int i = 0; i < keptCount; ++i) {
        const std::string name = QString::number(i).toStdString(); // std::to_string would keep the plug-in loaded
        found += findFeatureByName(name, keptScene, featureDot) ? 1 : 0;
    }
    return found;
}

KELV_PLUGIN void kelvPluginSetFontSize(int size)
{
    CFeatureConfig::sigleFeatureConfig()->setNormalTableFontSize(size);
}

KELV_PLUGIN int kelvPluginFontSize()
{
    const osg::ref_ptr<osg::Group> dot =
        createAutoScaleShpereAndTable("dot", new osg::Group, osg::Vec3f(), 1, "Point", 1, featureStateNormal, false);
    return dynamic_cast<CAutoScaleSphereMeta&>(*dot).getTableInfo().fontSize;
}
