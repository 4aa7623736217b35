#include "MeasureScene.h"

#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CFlagAutoScaleSphereMeta.h>
#include <KelvOsgTools/CPlaneMeta.h>
#include <KelvOsgTools/CSphereMeta.h>
#include <KelvOsgTools/FeatureFunctions.h>
#include <KelvOsgTools/NodeVisitors.h>

#include <osg/ComputeBoundsVisitor>
#include <osg/Geometry>
#include <osg/LightModel>
#include <osg/Material>
#include <osg/PolygonOffset>
#include <osg/ShapeDrawable>
#include <osg/ValueObject>

#include <algorithm>

namespace viewer {

using namespace KelvOsgTools;

namespace {

constexpr char kPreviewName[] = "preview";
constexpr int kFlagRenderIndex = 1000000; // over the labels of all features
constexpr float kArrowLineWidthPixels = 3.0f;
constexpr float kArrowRadiusShare = 0.006f; // of the radius around the mesh

constexpr int kMeshBin = -1; // before the features, as lines are drawn over it without depth test

const osg::Vec4f kDotColour(1.0f, 0.58f, 0.1f, 1.0f);
const osg::Vec4f kNormalArrowColour(1.0f, 1.0f, 1.0f, 1.0f);
const osg::Vec4f kLineColour(0.1f, 0.45f, 0.95f, 1.0f);

std::vector<QString> flagNames(featureType kind)
{
    using Flag = CFlagAutoScaleSphereMeta;
    switch (kind) {
    case featureDot:
        return {Flag::flag_feature_dot_name_one};
    case featureLine:
        return {Flag::flag_feature_line_name_start, Flag::flag_feature_line_name_end};
    default:
        return {Flag::flag_feature_plane_name_first, Flag::flag_feature_plane_name_second,
                Flag::flag_feature_plane_name_third};
    }
}

/// The look of meshes that bring none of their own.
void setMeshLook(osg::StateSet& state)
{
    const osg::ref_ptr<osg::Material> material = new osg::Material;
    material->setColorMode(osg::Material::AMBIENT_AND_DIFFUSE);
    material->setSpecular(osg::Material::FRONT_AND_BACK, osg::Vec4(0.22f, 0.22f, 0.22f, 1.0f));
    material->setShininess(osg::Material::FRONT_AND_BACK, 36.0f);
    state.setAttributeAndModes(material);

    // Scans are often open or turned inside out.
    const osg::ref_ptr<osg::LightModel> light = new osg::LightModel;
    light->setTwoSided(true);
    state.setAttributeAndModes(light);
    state.setMode(GL_NORMALIZE, osg::StateAttribute::ON);
    state.setRenderBinDetails(kMeshBin, "RenderBin");
    // Planes are often laid on flat faces of the mesh: there they are to be seen.
    state.setAttributeAndModes(new osg::PolygonOffset(1.0f, 1.0f));
}

/// The length of `normal` that makes the arrows a fifth of the longer edge, as the library does for
/// large planes; for small ones it would make them 4 scene units long, longer than a small part.
float normalScale(const std::vector<osg::Vec3f>& points)
{
    const float wanted =
        0.2f * std::max((points.at(0) - points.at(1)).length(), (points.at(1) - points.at(2)).length());
    return wanted / std::max(wanted, 4.0f);
}

void setColour(osg::Node& drawable, const osg::Vec4f& colour)
{
    if (auto* const shape = dynamic_cast<osg::ShapeDrawable*>(&drawable))
        shape->setColor(colour);
    else if (auto* const geometry = dynamic_cast<osg::Geometry*>(&drawable)) {
        const osg::ref_ptr<osg::Vec4Array> colours = new osg::Vec4Array;
        colours->push_back(colour);
        geometry->setColorArray(colours, osg::Array::BIND_OVERALL);
    }
}

void setColour(osg::Node& feature, const std::vector<std::string>& parts, const osg::Vec4f& colour)
{
    FindNamedNodeVisitor search(parts);
    feature.accept(search);
    for (const osg::ref_ptr<osg::Node>& part : search.m_foundNodes) setColour(*part, colour);
}

/// Gives a feature the colours of its record back, which no state does: the normal one is black.
void restoreColours(CFeatureMetaObject& feature)
{
    if (auto* const dot = dynamic_cast<CAutoScaleSphereMeta*>(&feature))
        setColour(*dot->getShpereDrawableNode(), kDotColour);
    else if (auto* const arrow = dynamic_cast<CArrowMeta*>(&feature))
        setColour(*arrow, {"cylinderDrawable", "coneDrawable", "arrowLineNode"}, arrow->getMetaStruct().color);
    else if (auto* const plane = dynamic_cast<CPlaneMeta*>(&feature)) {
        setColour(*plane, {"line"}, osg::Vec4f(plane->getMetaStruct().lineColor, 1.0f));
        setColour(*plane, {"arrowLineNode"}, kNormalArrowColour);
    }
}

void markTemporary(osg::Node* node)
{
    if (node) node->setUserValue("tmpData", true);
}

} // namespace

MeasureScene::MeasureScene(QObject* parent) : QObject(parent)
{
    m_meshData->setName("meshData");
    m_meshData->addChild(m_transform);
    m_root->addChild(m_meshData);
    setMeshLook(*m_meshData->getOrCreateStateSet());
    // In the order of drawing: dots mark the ends of lines and lie over them.
    for (const featureType kind : {featurePlane, featureLine, featureDot})
        findOrCreateFeatureRootNode(m_root, kind, true);
    // The arrows of a plane's normal have no surface that could be lit.
    findOrCreateFeatureRootNode(m_root, featurePlane, false)
        ->getOrCreateStateSet()
        ->setMode(GL_LIGHTING, osg::StateAttribute::OFF);
}

void MeasureScene::setMesh(osg::Node* mesh)
{
    m_transform->removeChildren(0, m_transform->getNumChildren());
    if (mesh) m_transform->addChild(mesh);
    emit changed();
}

void MeasureScene::setMatrix(const osg::Matrixd& matrix)
{
    m_transform->setMatrix(matrix);
    const osg::ref_ptr<osg::Group> common = findOrCreateFeatureRootNode(m_root, featureAll, true);
    common->getChild(0)->asTransform()->asMatrixTransform()->setMatrix(matrix);
    emit changed();
}

void MeasureScene::show(const Feature& feature, featureState state)
{
    if (auto* const node = dynamic_cast<CFeatureMetaObject*>(nodeOf(feature))) {
        node->setState(state);
        if (state == featureStateNormal) restoreColours(*node);
        emit changed();
    } else
        rebuild(feature, state);
}

void MeasureScene::rebuild(const Feature& feature, featureState state)
{
    build(feature, state);
    m_shown[feature.name] = feature;
    emit changed();
}

void MeasureScene::build(const Feature& feature, featureState state)
{
    switch (feature.kind) {
    case featureDot: {
        const osg::ref_ptr<osg::Group> node =
            createAutoScaleShpereAndTable(feature.name, m_root, feature.points.at(0), feature.renderIndex, feature.word,
                                          feature.number, state, false);
        if (state == featureStateNormal) restoreColours(static_cast<CAutoScaleSphereMeta&>(*node));
        break;
    }
    case featureLine:
        buildLine(feature, state);
        break;
    default:
        buildPlane(feature, state);
    }
}

void MeasureScene::buildLine(const Feature& feature, featureState state)
{
    CArrowMeta::structArrowMeta meta;
    meta.startPos = feature.points.at(0);
    meta.endPos = feature.points.at(1);
    meta.name = feature.name.toStdString();
    meta.color = kLineColour;
    meta.radius = feature.radius;
    meta.isLineArrow = feature.isLineArrow;
    meta.lineWidth = kArrowLineWidthPixels;
    meta.isDepthTest = false; // the chord of a convex part would be hidden inside it
    createArrowAndTable(state, meta, m_root, feature.renderIndex, feature.word, feature.number);
}

void MeasureScene::buildPlane(const Feature& feature, featureState state)
{
    createPlaneAndTable(state, feature.name, m_root, feature.points,
                        normalOf(feature.points) * normalScale(feature.points), feature.renderIndex, feature.word,
                        feature.number);
}

void MeasureScene::remove(const Feature& feature)
{
    m_shown.remove(feature.name);
    if (const osg::ref_ptr<osg::Node> node = nodeOf(feature)) node->getParent(0)->removeChild(node);
    emit changed();
}

osg::Node* MeasureScene::nodeOf(const Feature& feature) const
{
    return findFeatureByName(feature.name.toStdString(), m_root, feature.kind);
}

void MeasureScene::setKindVisible(featureType kind, bool visible)
{
    m_hiddenKinds[kind] = !visible;
    switchFeatureRoot(m_root, visible, kind);
    emit changed();
}

void MeasureScene::showTemporary(featureType kind, const std::vector<osg::Vec3f>& points, bool isLineArrow)
{
    clearFeatureRootTempNode(m_root, featureAll);
    const std::vector<QString> names = flagNames(kind);
    for (std::size_t i = 0; i < points.size() && i < names.size(); ++i)
        markTemporary(createFlagAutoScaleShpereAndTable(names[i], m_root, points[i], kFlagRenderIndex,
                                                        defaultWord(featureDot), int(i) + 1, kind, true, false));
    buildPreview(points, isLineArrow);
    emit changed();
}

void MeasureScene::buildPreview(const std::vector<osg::Vec3f>& points, bool isLineArrow)
{
    if (points.size() < clicksFor(featureLine)) return;
    Feature preview;
    preview.kind = points.size() == clicksFor(featureLine) ? featureLine : featurePlane;
    preview.name = kPreviewName;
    preview.points = pointsFromClicks(preview.kind, points);
    preview.isLineArrow = isLineArrow;
    preview.radius = solidArrowRadius();
    preview.renderIndex = kFlagRenderIndex;
    preview.word = preview.kind == featureLine ? measureText(preview) : defaultWord(featurePlane);
    build(preview, featureStateNormal);
    markTemporary(nodeOf(preview));
}

void MeasureScene::updateLanguage()
{
    FindFeatureNodeVisitor labels(std::vector<featureType>{featureTable});
    m_root->accept(labels);
    for (const osg::ref_ptr<osg::Node>& label : labels.m_foundNodes)
        if (auto* const table = dynamic_cast<CTableMeta*>(label.get())) table->updateLanguage();
    emit changed();
}

osg::BoundingSphere MeasureScene::bound() const
{
    osg::BoundingSphere bound = m_transform->getBound();
    for (const Feature& feature : m_shown)
        for (const osg::Vec3f& point : feature.points) bound.expandBy(osg::Vec3d(point) * matrix());
    return bound;
}

osg::BoundingBox MeasureScene::box() const
{
    osg::ComputeBoundsVisitor visitor;
    m_transform->accept(visitor);
    osg::BoundingBox box = visitor.getBoundingBox();
    for (const Feature& feature : m_shown)
        for (const osg::Vec3f& point : feature.points) box.expandBy(osg::Vec3d(point) * matrix());
    return box;
}

float MeasureScene::solidArrowRadius() const
{
    return kArrowRadiusShare * std::max(1e-3f, float(bound().radius()));
}

} // namespace viewer
