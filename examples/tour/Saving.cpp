// Step: saving all features, and rebuilding every one of them from the file.

#include "Features.h"

#include <KelvOsgTools/KelvOsgTools.h>

using namespace KelvOsgTools;

namespace tour {
namespace {

const QString kFile = QStringLiteral("features.xml");

void save(const Tour& tour)
{
    exportFeature features;
    features.getMetaStructInfo(tour.scene());
    features.setFeatureTagCount(5, 4, 3);
    features.createXML(tour.scene(), QString::fromStdString(tour.folder()), kFile);
}

// A file carries no names: each feature gets a new one here.

void rebuildDots(Tour& tour, const importFeature& saved)
{
    for (int i = 0; i < saved.getAutoScaleShpereMetaInfo().size(); ++i) {
        const CTableMeta::structTableMeta& label = saved.getAutoScaleShpereTableInfo().at(i);
        createAutoScaleShpereAndTable(QStringLiteral("dot-%1").arg(i + 1), tour.scene(),
                                      saved.getAutoScaleShpereMetaInfo().at(i).cneterPos, label.renderIndex,
                                      label.tableNamePrefix, label.tableNameIndexSuffix, featureStateHighlighted,
                                      label.isBottom);
    }
}

void rebuildLines(Tour& tour, const importFeature& saved)
{
    for (int i = 0; i < saved.getArrowMetaInfo().size(); ++i) {
        CArrowMeta::structArrowMeta record = saved.getArrowMetaInfo().at(i);
        record.name = "line-" + std::to_string(i + 1);
        if (isThin(record, tour)) makeThin(record, tour); // a file does not tell either
        const CTableMeta::structTableMeta& label = saved.getArrowTableInfo().at(i);
        createArrowAndTable(featureStateHighlighted, record, tour.scene(), label.renderIndex, label.tableNamePrefix,
                            label.tableNameIndexSuffix);
    }
}

void rebuildPlanes(Tour& tour, const importFeature& saved)
{
    for (int i = 0; i < saved.getPlaneMetaInfo().size(); ++i) {
        // The saved normal is zero: it comes from the corners again.
        const std::vector<osg::Vec3f>& corners = saved.getPlaneMetaInfo().at(i).pointVec;
        osg::Vec3f normal = (corners[1] - corners[0]) ^ (corners[2] - corners[1]);
        normal.normalize();
        const CTableMeta::structTableMeta& label = saved.getPlaneTableInfo().at(i);
        createPlaneAndTable(featureStateHighlighted, QStringLiteral("plane-%1").arg(i + 1), tour.scene(), corners,
                            normalForLength(corners, normal, tour.share(kNormalLength)), label.renderIndex,
                            label.tableNamePrefix, label.tableNameIndexSuffix);
    }
}

} // namespace

void saveAndReload(Tour& tour)
{
    save(tour);
    tour.showOtherScene(sceneAround(tour.mesh()));
    importFeature saved;
    saved.getFeatureInfoIntoXML(QString::fromStdString(tour.folder()), kFile);
    rebuildDots(tour, saved);
    rebuildLines(tour, saved);
    rebuildPlanes(tour, saved);
    tour.picture("reloaded", "All features saved to features.xml and rebuilt from it, highlighted");
}

} // namespace tour
