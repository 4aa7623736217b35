// What the reference shows: each class and function that draws, used as a host would use it.

#include "Subjects.h"

#include <KelvOsgTools/KelvOsgTools.h>

#include <osg/MatrixTransform>

using namespace KelvOsgTools;

namespace gallery {
namespace {

const osg::Vec4f kBlue(0.10f, 0.32f, 0.70f, 1.0f);
const osg::Vec3f kRight(1, 0, 0);
const osg::Vec3f kUp(0, 0, 1);

/// Five places side by side.
osg::Vec3f place(int i)
{
    return kRight * (float(i - 2) * 102.0f);
}

const QString kLooks[] = {"new", "none", "normal", "selected", "highlighted"};

/// Corners of an upright square.
std::vector<osg::Vec3f> square(const osg::Vec3f& centre, float half)
{
    const osg::Vec3f right = kRight * half, up = kUp * half;
    return {centre - right - up, centre + right - up, centre + right + up, centre - right + up};
}

//! [CFeatureMetaObject]
void showAs(CFeatureMetaObject& feature, featureState state)
{
    feature.setState(state); // whatever its kind; its label follows
}
//! [CFeatureMetaObject]

/// A new feature, or one in a state that it came to from another one.
void showLook(CFeatureMetaObject& feature, int look)
{
    const featureState states[] = {featureStateNone, featureStateNormal, featureStateSelected, featureStateHighlighted};
    if (look == 0) return;
    showAs(feature, featureStateSelected);
    showAs(feature, states[look - 1]);
}

//! [CTableMeta]
osg::ref_ptr<CTableMeta> label(const QString& text, const osg::Vec3f& at)
{
    CTableMeta::structTableMeta record;
    record.tableNamePrefix = text;
    record.tableNameIndexSuffix = -1; // no number
    record.pos = at;
    record.backgroundColor.set(1.0f, 1.0f, 0.8f);
    record.renderIndex = 11; // over planes
    return new CTableMeta(record);
}
//! [CTableMeta]

//! [CAutoScaleSphereMeta]
osg::ref_ptr<CAutoScaleSphereMeta> dot(const QString& text, const osg::Vec3f& at)
{
    CAutoScaleSphereMeta::structSphereMeta record;
    record.cneterPos = at;
    record.radius = 8.0f; // pixels, from near and far
    record.color = kBlue; // until the first change of state
    osg::ref_ptr<CAutoScaleSphereMeta> dot = new CAutoScaleSphereMeta(record);
    dot->addTable(label(text, at));
    return dot;
}
//! [CAutoScaleSphereMeta]

//! [CFlagAutoScaleSphereMeta]
osg::ref_ptr<CFlagAutoScaleSphereMeta> flag(const QString& text, const osg::Vec3f& at)
{
    CAutoScaleSphereMeta::structSphereMeta record;
    record.cneterPos = at;
    record.radius = 5.0f; // 10 while it is selected
    osg::ref_ptr<CFlagAutoScaleSphereMeta> flag = new CFlagAutoScaleSphereMeta(record);
    flag->setName(CFlagAutoScaleSphereMeta::flag_feature_line_name_start.toStdString());
    flag->addTable(label(text, at));
    return flag;
}
//! [CFlagAutoScaleSphereMeta]

//! [CSphereMeta]
osg::ref_ptr<osg::Geode> ball(const osg::Vec3f& at)
{
    CSphereMeta::structSphereMeta record;
    record.cneterPos = at;
    record.radius = 40.0f; // units of the scene
    record.color = kBlue;
    const osg::ref_ptr<CSphereMeta> maker = new CSphereMeta;
    return maker->CreateSphereMeta(record); // for the caller to hang somewhere
}
//! [CSphereMeta]

//! [CArrowMeta]
osg::ref_ptr<CArrowMeta> arrow(const osg::Vec3f& start, const osg::Vec3f& end, bool isLine, bool hasHead)
{
    CArrowMeta::structArrowMeta record;
    record.startPos = start;
    record.endPos = end;
    record.color = kBlue;
    record.radius = 4.0f; // of a solid shaft, in units of the scene
    record.isLineArrow = isLine;
    record.lineWidth = 2.0f; // of a line arrow, in pixels
    record.isArrowHead = hasHead;
    return new CArrowMeta(record);
}
//! [CArrowMeta]

//! [CPlaneMeta]
osg::ref_ptr<CPlaneMeta> plane(const QString& text, const osg::Vec3f& centre, float half)
{
    CPlaneMeta::structPlaneMeta record;
    record.pointVec = square(centre, half);
    record.lineColor.set(0.10f, 0.32f, 0.70f);
    record.alpha = 0.6f;
    osg::ref_ptr<CPlaneMeta> plane = new CPlaneMeta(record);
    plane->addTable(label(text, centre));
    return plane;
}
//! [CPlaneMeta]

void showLabels(const osg::ref_ptr<osg::Group>& scene)
{
    for (int i = 0; i < 5; ++i) {
        const osg::ref_ptr<CTableMeta> table = label(kLooks[i], place(i));
        if (i > 0) {
            table->setState(featureStateSelected);
            table->setState(static_cast<featureState>(i - 1));
        }
        scene->addChild(table);
    }
}

void showDots(const osg::ref_ptr<osg::Group>& scene)
{
    for (int i = 0; i < 5; ++i) {
        const osg::ref_ptr<CAutoScaleSphereMeta> feature = dot(kLooks[i], place(i));
        showLook(*feature, i);
        scene->addChild(feature);
    }
}

void showFlags(const osg::ref_ptr<osg::Group>& scene)
{
    for (int i = 0; i < 5; ++i) {
        const osg::ref_ptr<CFlagAutoScaleSphereMeta> feature = flag(kLooks[i], place(i));
        showLook(*feature, i);
        scene->addChild(feature);
    }
}

void showBall(const osg::ref_ptr<osg::Group>& scene)
{
    scene->addChild(ball({0, 0, 0}));
}

void showArrows(const osg::ref_ptr<osg::Group>& scene)
{
    const osg::Vec3f across(90, 0, 100);
    const osg::Vec3f starts[] = {{-220, 0, -50}, {-105, 0, -50}, {10, 0, -50}, {125, 0, -50}};
    scene->addChild(arrow(starts[0], starts[0] + across, false, true)); // solid
    scene->addChild(arrow(starts[1], starts[1] + across, true, true));  // line with a head
    scene->addChild(arrow(starts[2], starts[2] + across, true, false)); // line without
    CArrowMeta::structArrowMeta unlit = arrow(starts[3], starts[3] + across, true, true)->getMetaStruct();
    unlit.isDepthTest = false; // neither lit nor hidden
    scene->addChild(new CArrowMeta(unlit));
}

void showPlanes(const osg::ref_ptr<osg::Group>& scene)
{
    for (int i = 0; i < 5; ++i) {
        const osg::ref_ptr<CPlaneMeta> feature = plane(kLooks[i], place(i), 40.0f);
        showLook(*feature, i);
        scene->addChild(feature);
    }
}

void showStates(const osg::ref_ptr<osg::Group>& scene)
{
    for (int i = 0; i < 5; ++i) {
        const osg::Vec3f at = place(i);
        const osg::ref_ptr<CAutoScaleSphereMeta> point = dot(kLooks[i], at + kUp * 50);
        const osg::Vec3f start = at + osg::Vec3f(-35, 0, 15), end = at + osg::Vec3f(35, 0, 35);
        const osg::ref_ptr<CArrowMeta> line = arrow(start, end, false, true);
        const osg::ref_ptr<CPlaneMeta> patch = plane(kLooks[i], at - kUp * 45, 35.0f);
        for (CFeatureMetaObject* const feature : std::initializer_list<CFeatureMetaObject*>{point, line, patch}) {
            showLook(*feature, i);
            scene->addChild(feature);
        }
    }
}

void showTriad(const osg::ref_ptr<osg::Group>& scene)
{
    //! [CConeAndCylinderMeta]
    CConeAndCylinderMeta::structConeAndCylinderMeta record;
    record.length = 70.0f; // pixels, from near and far
    record.radius = 2.0f;
    scene->addChild(CConeAndCylinderMeta::createAxis(record)); // after what may hide it
    //! [CConeAndCylinderMeta]
}

void showAxisArrow(const osg::ref_ptr<osg::Group>& scene)
{
    //! [createAxisArraw]
    CConeAndCylinderMeta::structConeAndCylinderMeta record;
    record.length = 80.0f;
    record.radius = 3.0f;
    record.axisIndex = 2; // 0: X, 1: Y, 2: Z
    record.color.set(0.9f, 0.5f, 0.0f, 1.0f);
    const osg::ref_ptr<CConeAndCylinderMeta> maker = new CConeAndCylinderMeta;
    scene->addChild(maker->createAxisArraw(record));
    //! [createAxisArraw]
}

void makeTable(const osg::ref_ptr<osg::Group>& scene)
{
    //! [createTable]
    CTableMeta::structTableMeta record;
    record.tableNamePrefix = "Free ";
    record.tableNameIndexSuffix = 7;
    const osg::ref_ptr<osg::Group> label = createTable(record);
    if (label) scene->addChild(label);
    //! [createTable]
}

void makeDot(const osg::ref_ptr<osg::Group>& scene)
{
    const osg::Vec3f point(0, 0, 0);
    //! [createAutoScaleShpereAndTable]
    createAutoScaleShpereAndTable("dot-1", scene, point, 11, "Point", 1, featureStateHighlighted, false);
    //! [createAutoScaleShpereAndTable]
}

void makeFlag(const osg::ref_ptr<osg::Group>& scene)
{
    const osg::Vec3f point(0, 0, 0);
    //! [createFlagAutoScaleShpereAndTable]
    const osg::ref_ptr<osg::Group> flag =
        createFlagAutoScaleShpereAndTable(CFlagAutoScaleSphereMeta::flag_feature_line_name_start, scene, point, 11,
                                          "start", -1, featureLine, true, false);
    if (flag) flag->setUserValue("tmpData", true); // clearFeatureRootTempNode() will remove it
    //! [createFlagAutoScaleShpereAndTable]
}

void makeLine(const osg::ref_ptr<osg::Group>& scene)
{
    //! [createArrowAndTable]
    CArrowMeta::structArrowMeta record;
    record.name = "line-1"; // the feature's name
    record.startPos.set(-120, 0, -40);
    record.endPos.set(120, 0, 40);
    record.color.set(0.10f, 0.32f, 0.70f, 1.0f);
    record.radius = 4.0f;
    createArrowAndTable(featureStateNormal, record, scene, 11, "line", 1);
    //! [createArrowAndTable]
}

void makePlane(const osg::ref_ptr<osg::Group>& scene)
{
    //! [createPlaneAndTable]
    const std::vector<osg::Vec3f> corners{{-120, 0, -60}, {90, 0, -60}, {120, 60, 60}, {-90, 60, 60}};
    osg::Vec3f normal = (corners[1] - corners[0]) ^ (corners[3] - corners[0]);
    normal.normalize();
    createPlaneAndTable(featureStateSelected, "plane-1", scene, corners, normal, 11, "Plane", 1);
    //! [createPlaneAndTable]
}

void makeBall(const osg::ref_ptr<osg::Group>& scene)
{
    //! [findOrCreateShpere]
    findOrCreateShpere("ball", scene, {0, 0, 0}); // of radius 1; replaces a former "ball"
    //! [findOrCreateShpere]
    const osg::ref_ptr<osg::Group> dots = findOrCreateFeatureRootNode(scene, featureDot, false);
    dots->getChild(0)->asTransform()->asMatrixTransform()->setMatrix(osg::Matrixd::scale(40, 40, 40));
    scene->getOrCreateStateSet()->setMode(GL_NORMALIZE, osg::StateAttribute::ON); // else the scaled ball is dark
}

/// Two planes with equal labels, but for the render index: 1 is dimmed by the plane, 11 is not.
void showIndices(const osg::ref_ptr<osg::Group>& scene)
{
    for (const int index : {1, 11}) {
        const osg::Vec3f centre = kRight * (index == 1 ? -100.0f : 100.0f);
        const osg::Vec3f normal(0, -1, 0);
        createPlaneAndTable(featureStateHighlighted, QString::number(index), scene, square(centre, 60), normal, index,
                            "Index ", index);
    }
}

/// A font without Chinese characters draws a box for each of them; it has Greek and Cyrillic ones.
void showMissingCharacters(const osg::ref_ptr<osg::Group>& scene)
{
    scene->addChild(label(QString::fromUtf8("测点 1"), -kRight * 120));
    scene->addChild(label(QString::fromUtf8("Точка 2"), {0, 0, 0}));
    scene->addChild(label(QString::fromUtf8("Σημείο 3"), kRight * 120));
}

} // namespace

const std::vector<Subject>& subjects()
{
    static const std::vector<Subject> all{
        {"states", showStates, true},
        {"CTableMeta", showLabels, true},
        {"CAutoScaleSphereMeta", showDots, true},
        {"CFlagAutoScaleSphereMeta", showFlags, true},
        {"CSphereMeta", showBall},
        {"CArrowMeta", showArrows},
        {"CPlaneMeta", showPlanes, true},
        {"createTable", makeTable, true},
        {"createAutoScaleShpereAndTable", makeDot},
        {"createFlagAutoScaleShpereAndTable", makeFlag},
        {"createArrowAndTable", makeLine},
        {"createPlaneAndTable", makePlane},
        {"findOrCreateShpere", makeBall},
        {"render-index", showIndices, true},
        {"missing-characters", showMissingCharacters, true},
        {"createAxisArraw", showAxisArrow},
        {"CConeAndCylinderMeta", showTriad}, // the last: it switches uniforms on for all that follows
    };
    return all;
}

} // namespace gallery
