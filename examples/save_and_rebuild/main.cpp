// Saves a scene of many features, loads the file and rebuilds every one of them.
#include <KelvOsgTools/FeatureFunctions.h>
#include <KelvOsgTools/exportFeature.h>
#include <KelvOsgTools/importFeature.h>

#include <QGuiApplication>

using namespace KelvOsgTools;

void addFeatures(const osg::ref_ptr<osg::Group>& scene, int i)
{
    const osg::Vec3f at(10.0f * float(i), 0, 0), right(8, 0, 0), up(0, 0, 8);
    createAutoScaleShpereAndTable(QString::number(i), scene, at, 1, "Point", i, featureStateNormal, false);
    CArrowMeta::structArrowMeta line{at, at + right, std::to_string(i)};
    createArrowAndTable(featureStateNormal, line, scene, 1, "line", i);
    createPlaneAndTable(featureStateNormal, QString::number(i), scene, {at, at + right, at + right + up, at + up},
                        {0, -1, 0}, 1, "Plane", i);
}
//! [rebuild]
void rebuildAll(const importFeature& saved, const osg::ref_ptr<osg::Group>& scene)
{
    // A file has no names. Each feature needs one of its own, or the next would take its place.
    for (int i = 0; i < saved.getAutoScaleShpereMetaInfo().size(); ++i) {
        const CTableMeta::structTableMeta label = saved.getAutoScaleShpereTableInfo().value(i);
        createAutoScaleShpereAndTable(QString::number(i), scene, saved.getAutoScaleShpereMetaInfo()[i].cneterPos,
                                      label.renderIndex, label.tableNamePrefix, label.tableNameIndexSuffix,
                                      featureStateNormal, label.isBottom);
    }
    for (int i = 0; i < saved.getArrowMetaInfo().size(); ++i) {
        const CTableMeta::structTableMeta label = saved.getArrowTableInfo().value(i);
        CArrowMeta::structArrowMeta line = saved.getArrowMetaInfo()[i];
        line.name = std::to_string(i);
        createArrowAndTable(featureStateNormal, line, scene, label.renderIndex, label.tableNamePrefix,
                            label.tableNameIndexSuffix);
    }
    for (int i = 0; i < saved.getPlaneMetaInfo().size(); ++i) {
        const CTableMeta::structTableMeta label = saved.getPlaneTableInfo().value(i);
        const std::vector<osg::Vec3f>& corners = saved.getPlaneMetaInfo()[i].pointVec; // always four
        osg::Vec3f normal = (corners[1] - corners[0]) ^ (corners[3] - corners[0]);     // the saved normal is zero
        normal.normalize();
        createPlaneAndTable(featureStateNormal, QString::number(i), scene, corners, normal, label.renderIndex,
                            label.tableNamePrefix, label.tableNameIndexSuffix);
    }
}
//! [rebuild]
int main(int argc, char** argv)
{
    QGuiApplication application(argc, argv); // measures the labels
    const QString folder = argc > 1 ? argv[1] : ".";
    const osg::ref_ptr<osg::Group> scene = new osg::Group, rebuilt = new osg::Group;
    exportFeature exporter;
    importFeature importer;
    for (int i = 0; i < 20; ++i) addFeatures(scene, i);
    exporter.getMetaStructInfo(scene);
    exporter.createXML(scene, folder, "saved.xml");
    importer.getFeatureInfoIntoXML(folder, "saved.xml");
    rebuildAll(importer, rebuilt);
    exporter.getMetaStructInfo(rebuilt);
    exporter.createXML(rebuilt, folder, "saved-again.xml"); // the same, byte for byte
}
