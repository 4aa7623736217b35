#include "picking/TablePick.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include "foundation/SceneMarks.h"
#include "foundation/UserValues.h"
#include "picking/LabelOwnerNames.h"
#include "picking/LabelSearch.h"
#include "picking/WindowProjection.h"

#include <osg/MatrixTransform>

namespace KelvOsgTools::detail {
namespace {

/// The transform of the mesh that the features hang under too; null if the scene lacks any of it.
const osg::MatrixTransform* meshTransform(const osg::ref_ptr<osg::Group>& scene)
{
    const osg::ref_ptr<osg::Node> mesh = findChildByName(kMeshName, scene);
    const osg::Group* const group = mesh ? mesh->asGroup() : nullptr;
    return group && group->getNumChildren() > 0 ? dynamic_cast<const osg::MatrixTransform*>(group->getChild(0))
                                                : nullptr;
}

/// The listed owner of the highest label, the first in the list of equal ones; null for none.
const LabelOwner* highestListed(const LabelOwnerNames& owners, const QList<QVariant>& features)
{
    const QString key = QLatin1String(kFeatureUidKey);
    const LabelOwner* highest = nullptr;
    for (const QVariant& feature : features) {
        const QVariantMap map = feature.toMap();
        const auto uid = map.constFind(key);
        const LabelOwner* const owner = uid != map.constEnd() ? owners.find(uid->toString()) : nullptr;
        if (owner && (!highest || owner->renderIndex > highest->renderIndex)) highest = owner;
    }
    return highest;
}

} // namespace

std::optional<LabelledFeature> pickFeatureTable(osgViewer::Viewer* viewer, const QList<QVariant>& features, float x,
                                                float y)
{
    const osg::ref_ptr<osg::Group> scene = sceneGroupOf(viewer);
    if (!scene || features.isEmpty() || !hasWindow(*viewer->getCamera())) return std::nullopt;
    const osg::MatrixTransform* const placement = meshTransform(scene);
    if (!placement) return std::nullopt;

    const osg::Matrixd toWindow = placement->getMatrix() * worldToWindow(*viewer->getCamera());
    LabelSearch search([&](CTableMeta& label) {
        return label.getMetaStruct().renderIndex > 0 && label.checkClickPointIsInsideTable(toWindow, x, y);
    });
    scene->accept(search);
    if (search.owners().empty()) return std::nullopt;

    LabelOwnerNames owners(search.owners());
    owners.keepFirstOfName(search.traversed());
    const LabelOwner* const winner = highestListed(owners, features);
    if (!winner) return std::nullopt;
    return LabelledFeature{winner->node, featureTypeOf(*winner->node).value_or(featureAll)};
}

} // namespace KelvOsgTools::detail
