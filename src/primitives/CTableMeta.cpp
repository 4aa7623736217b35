#include <KelvOsgTools/CTableMeta.h>

#include <KelvOsgTools/CFeatureConfig.h>
#include <KelvOsgTools/FeatureFunctions.h>

#include "foundation/AppendChild.h"
#include "foundation/Finite.h"
#include "foundation/LabelFont.h"
#include "foundation/SceneMarks.h"
#include "primitives/Colours.h"
#include "primitives/FlatGeometry.h"
#include "primitives/HeldAttribute.h"
#include "primitives/LabelGlyphs.h"
#include "primitives/PixelScale.h"
#include "primitives/ScreenCull.h"
#include "primitives/ScreenSphere.h"

#include <osg/GL>
#include <osg/Geode>
#include <osg/LineWidth>
#include <osg/ValueObject>

#include <cmath>
#include <tuple>
#include <typeinfo>

namespace KelvOsgTools {
namespace {

constexpr int kNoIndex = -1;
constexpr int kRectangleLift = 10; // from the anchor point to the rectangle's bottom
constexpr float kTextLift = 13.0f; // from the anchor point to the text's bottom
constexpr float kOutlineWidthPixels = 2.0f;
constexpr unsigned int kGlyphResolution = 64;

QString labelText(const CTableMeta::structTableMeta& meta)
{
    const bool hasPrefix = !meta.tableNamePrefix.isEmpty();
    const bool hasIndex = meta.tableNameIndexSuffix != kNoIndex;
    if (!hasPrefix && !hasIndex) return QStringLiteral("Table");

    const QString prefix = hasPrefix ? languageTranslate(meta.tableNamePrefix) : QString();
    return hasIndex ? prefix + QString::number(meta.tableNameIndexSuffix) : prefix;
}

osg::ref_ptr<osgText::Text> layOutText(const std::wstring& text, float fontSize)
{
    osg::ref_ptr<osgText::Text> drawable = new osgText::Text;
    drawable->setFont(detail::labelGlyphs());
    drawable->setFontResolution(kGlyphResolution, kGlyphResolution);
    drawable->setCharacterSize(fontSize);
    drawable->setAxisAlignment(osgText::TextBase::XY_PLANE);
    drawable->setAlignment(osgText::TextBase::CENTER_BOTTOM);
    drawable->setText(text.c_str());
    return drawable;
}

/// What stands in for Qt's measure while no QGuiApplication exists.
detail::TextExtent laidOutExtent(const std::wstring& text, float fontSize)
{
    const osg::BoundingBox box = layOutText(text, fontSize)->getBoundingBox();
    if (!box.valid()) return {0, static_cast<int>(std::ceil(fontSize))};
    return {static_cast<int>(std::ceil(box.xMax() - box.xMin())), static_cast<int>(std::ceil(box.yMax() - box.yMin()))};
}

detail::TextExtent extentOf(const QString& text, int fontSize)
{
    if (!detail::canMeasureText()) return laidOutExtent(text.toStdWString(), static_cast<float>(fontSize));
    detail::registerLabelFont(CFeatureConfig::sigleFeatureConfig()->getFontPath());
    return detail::measureText(text, fontSize);
}

osg::ref_ptr<osg::Vec2Array> rectangleCorners(float top, float bottom, float left, float right)
{
    osg::ref_ptr<osg::Vec2Array> corners = new osg::Vec2Array;
    corners->push_back(osg::Vec2f(left, top));
    corners->push_back(osg::Vec2f(left, bottom));
    corners->push_back(osg::Vec2f(right, bottom));
    corners->push_back(osg::Vec2f(right, top));
    return corners;
}

osg::ref_ptr<osg::Geode> labelGeode(osg::Drawable* outline, osg::Drawable* fill, osg::Drawable* text, int renderIndex)
{
    osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    geode->addDrawable(outline);
    geode->addDrawable(fill);
    geode->addDrawable(text);

    osg::StateSet* const state = geode->getOrCreateStateSet();
    state->setMode(GL_LIGHTING, osg::StateAttribute::OFF);
    state->setMode(GL_DEPTH_TEST, osg::StateAttribute::OFF);
    state->setRenderBinDetails(renderIndex, "RenderBin", osg::StateSet::USE_RENDERBIN_DETAILS);
    return geode;
}

/// Stands a label at pos, turned to the screen. A position that is not finite hides it.
void placeLabel(CTableMeta& table, osg::Geode& geode, const osg::Vec3f& pos)
{
    if (detail::isFinite(pos))
        table.setPosition(pos);
    else
        geode.setNodeMask(0);
    table.dirtyBound();
    table.setAutoRotateMode(osg::AutoTransform::ROTATE_TO_SCREEN);
    detail::appendChild(table, &geode);
    table.setName(detail::kTableName);
}

} // namespace

CTableMeta::CTableMeta(const structTableMeta& meta) : m_metaStruct(meta)
{
    init();
}

CTableMeta::CTableMeta(const CTableMeta& other)
    : osg::AutoTransform(other, osg::CopyOp::SHALLOW_COPY),
      m_rectTop(other.m_rectTop),
      m_rectBottom(other.m_rectBottom),
      m_rectLeft(other.m_rectLeft),
      m_rectRight(other.m_rectRight),
      m_metaStruct(other.m_metaStruct),
      m_squareGeometry(other.m_squareGeometry),
      m_lineGeometry(other.m_lineGeometry),
      m_textDrawable(other.m_textDrawable),
      m_state(other.m_state)
{}

CTableMeta::~CTableMeta() = default;

const CTableMeta::structTableMeta& CTableMeta::getMetaStruct() const
{
    return m_metaStruct;
}

bool CTableMeta::checkClickPointIsInsideTable(const osg::Matrixd& toWindow, float x, float y)
{
    if (!detail::isFinite(m_metaStruct.pos)) return false; // hidden, and at no position of its own
    const osg::Vec3d anchor = toWindow.preMult(getPosition());
    const double dx = x - anchor.x();
    const double dy = y - anchor.y();
    return m_rectLeft < dx && dx < m_rectRight && m_rectBottom < dy && dy < m_rectTop;
}

void CTableMeta::updateLanguage()
{
    if (!m_squareGeometry || !m_lineGeometry || !m_textDrawable || getNumChildren() == 0) return;
    const auto former = std::make_tuple(m_rectTop, m_rectBottom, m_rectLeft, m_rectRight, m_squareGeometry,
                                        m_lineGeometry, m_textDrawable);
    const unsigned int end = getNumChildren();
    try {
        init();
        updateState(m_state);
    } catch (...) { // memory is exhausted: the label stays as it was
        removeChildren(end, 1);
        std::tie(m_rectTop, m_rectBottom, m_rectLeft, m_rectRight, m_squareGeometry, m_lineGeometry, m_textDrawable) =
            former;
        throw;
    }
    removeChildren(0, 1);
}

void CTableMeta::setState(featureState state)
{
    if (state == m_state) return;
    updateState(state);
    m_state = state; // last, so that what memory did not suffice for can be tried again
}

void CTableMeta::accept(osg::NodeVisitor& visitor)
{
    // A class derived from this one may have ways of its own.
    if (typeid(*this) != typeid(CTableMeta) || !detail::cullLabel(visitor, *this)) osg::AutoTransform::accept(visitor);
}

bool CTableMeta::computeLocalToWorldMatrix(osg::Matrix& matrix, osg::NodeVisitor* visitor) const
{
    // The hit test counts in pixels. Without a visitor the base class takes scale and rotation as they are.
    const bool isScaled = detail::scaleToPixels(*this, visitor, _scale, _rotation);
    return osg::AutoTransform::computeLocalToWorldMatrix(matrix, isScaled ? nullptr : visitor);
}

bool CTableMeta::computeWorldToLocalMatrix(osg::Matrix& matrix, osg::NodeVisitor* visitor) const
{
    const bool isScaled = detail::scaleToPixels(*this, visitor, _scale, _rotation);
    return osg::AutoTransform::computeWorldToLocalMatrix(matrix, isScaled ? nullptr : visitor);
}

void CTableMeta::init()
{
    const QString text = labelText(m_metaStruct);
    const detail::TextExtent extent = extentOf(text, m_metaStruct.fontSize);
    m_rectTop = static_cast<float>(extent.height + kRectangleLift);
    m_rectBottom = static_cast<float>(kRectangleLift);
    m_rectRight = static_cast<float>(extent.width * 0.5);
    m_rectLeft = -m_rectRight;

    const auto build = m_metaStruct.isAutoScale ? &CTableMeta::normalTable : &CTableMeta::scaleTable;
    (this->*build)(m_metaStruct.pos, text.toStdWString(), static_cast<float>(m_metaStruct.fontSize),
                   m_metaStruct.textColor, m_metaStruct.backgroundColor, m_metaStruct.renderIndex,
                   m_metaStruct.isBottom);
    setUserValue(detail::kFeatureTypeKey, static_cast<int>(featureTable));
}

void CTableMeta::normalTable(const osg::Vec3f& pos, const std::wstring& text, float fontSize,
                             const osg::Vec4f& textColor, const osg::Vec3f& backgroundColor, int renderIndex, bool)
{
    const osg::ref_ptr<osg::Vec2Array> corners = rectangleCorners(m_rectTop, m_rectBottom, m_rectLeft, m_rectRight);
    m_squareGeometry = square(corners, backgroundColor);
    m_lineGeometry = line(corners, textColor);
    m_textDrawable = textNode(text, fontSize, textColor);

    detail::keepScreenSize(*this);
    placeLabel(*this, *labelGeode(m_lineGeometry, m_squareGeometry, m_textDrawable, renderIndex), pos);
}

void CTableMeta::scaleTable(const osg::Vec3f& pos, const std::wstring& text, float fontSize,
                            const osg::Vec4f& textColor, const osg::Vec3f& backgroundColor, int renderIndex, bool)
{
    const osg::ref_ptr<osg::Vec2Array> corners = rectangleCorners(m_rectTop, m_rectBottom, m_rectLeft, m_rectRight);
    const osg::ref_ptr<osg::Geometry> outline = line(corners, osg::Vec4f(0.0f, 0.0f, 0.0f, 1.0f));
    const osg::ref_ptr<osg::Geometry> fill = square(corners, backgroundColor);
    const osg::ref_ptr<osgText::Text> drawnText = textNode(text, fontSize, textColor);

    setMinimumScale(1.0);
    placeLabel(*this, *labelGeode(outline, fill, drawnText, renderIndex), pos);
}

osg::ref_ptr<osg::Geometry> CTableMeta::square(osg::Vec2Array* corners, const osg::Vec3f& color)
{
    osg::ref_ptr<osg::Geometry> fill = new detail::FlatGeometry;
    fill->setName(detail::kTableFillName);
    fill->setVertexArray(corners);
    detail::setOverallColour<osg::Vec3Array>(*fill, color);
    fill->addPrimitiveSet(new osg::DrawArrays(GL_QUADS, 0, static_cast<GLsizei>(corners->size())));
    return fill;
}

osg::ref_ptr<osg::Geometry> CTableMeta::line(osg::Vec2Array* corners, osg::Vec4f color)
{
    osg::ref_ptr<osg::Geometry> outline = new detail::FlatGeometry;
    outline->setName(detail::kTableOutlineName);
    outline->setDataVariance(osg::Object::DYNAMIC); // states recolour it while frames are drawn
    outline->setVertexArray(corners);
    detail::setOverallColour<osg::Vec4Array>(*outline, color);
    outline->addPrimitiveSet(new osg::DrawArrays(GL_LINE_LOOP, 0, static_cast<GLsizei>(corners->size())));
    detail::setAttribute(*outline->getOrCreateStateSet(), new osg::LineWidth(kOutlineWidthPixels));
    return outline;
}

osg::ref_ptr<osgText::Text> CTableMeta::textNode(const std::wstring& text, float fontSize, const osg::Vec4f& color)
{
    osg::ref_ptr<osgText::Text> drawable = layOutText(text, fontSize);
    drawable->setName(detail::kTableTextName);
    drawable->setDataVariance(osg::Object::DYNAMIC); // states recolour it while frames are drawn
    drawable->setColor(color);
    drawable->setDrawMode(osgText::TextBase::TEXT);
    drawable->setEnableDepthWrites(false); // a second pass, for nothing where depth is not tested
    drawable->setPosition(osg::Vec3f(0.0f, kTextLift, 0.0f));
    return drawable;
}

void CTableMeta::updateState(featureState state)
{
    // Labels take their colours from the plane configuration, whatever the kind of their feature.
    const featurePlaneConfig& config = CFeatureConfig::sigleFeatureConfig()->getPlaneConfig();
    const osg::Vec4f color = detail::colourOf(state, config.tableSelectedColor, config.tableHighlightedColor);
    if (m_lineGeometry) detail::setOverallColour<osg::Vec4Array>(*m_lineGeometry, color);
    if (m_textDrawable) m_textDrawable->setColor(color);
}

} // namespace KelvOsgTools
