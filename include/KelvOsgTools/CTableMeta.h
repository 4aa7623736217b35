#pragma once

#include <KelvOsgTools/Export.h>
#include <KelvOsgTools/FeatureTypes.h>

#include <osg/Array>
#include <osg/AutoTransform>
#include <osg/Geometry>
#include <osg/Matrixd>
#include <osg/Vec3f>
#include <osg/Vec4f>
#include <osg/ref_ptr>
#include <osgText/Text>

#include <QString>

#include <string>

namespace KelvOsgTools {

/// Label of a feature: a text on a filled rectangle with an outline, always facing the viewer.
///
/// The rectangle is centred above its anchor point: 10 units up, as wide as the text, as high as
/// the font. In the normal layout a unit is a screen pixel whatever the distance, in the scaled
/// layout it is a unit of the scene. Labels draw without depth test, over what was drawn before.
///
/// Nodes: the table, named "showTableNode"; under it a geode with the drawables "squareLineNode"
/// (outline), "squareNode" (fill) and "textNode" (text), in this order. The table carries
/// "feature_type" 4.
///
/// @image html CTableMeta.png "A new label, and the four states"
/// @snippet gallery/Subjects.cpp CTableMeta
class KELVOSGTOOLS_EXPORT CTableMeta : public osg::AutoTransform
{
public:
    /// What a label is made from; copied when it is built.
    struct structTableMeta
    {
        osg::Vec4f textColor{0.0f, 0.0f, 0.0f, 1.0f}; ///< RGBA of the text and, in the normal layout, of the outline
        osg::Vec3f pos;                               ///< anchor point in the coordinates of the table's parent
        osg::Vec3f backgroundColor{1.0f, 1.0f, 1.0f}; ///< RGB of the fill
        QString tableNamePrefix = QStringLiteral("Table"); ///< text before translation; may be empty
        int tableNameIndexSuffix = -1;                     ///< number behind the prefix; -1: none
        int fontSize = 14;                                 ///< points when measuring, character size when drawing
        int renderIndex = 1;     ///< render bin number; picking prefers the higher one, and needs 1 or more
        bool isAutoScale = true; ///< true: normal layout (pixels), false: scaled layout (scene units)
        bool isBottom = false;   ///< carried and saved; the layout does not read it
    };

    /// Builds the label. Reads the font of the configuration and translates the prefix now; the
    /// record is copied and never changes. A position that is not finite gives a label that is
    /// neither drawn nor hit. Qt measures the text in a program with a QGuiApplication; without one
    /// the rectangle is that of the text as it is laid out.
    explicit CTableMeta(const structTableMeta& meta);

    /// Shallow: shares the drawables of other.
    CTableMeta(const CTableMeta& other);
    ~CTableMeta() override;

    /// The record; lives as long as the label.
    const structTableMeta& getMetaStruct() const;

    /// Tells whether a window position lies on the label's rectangle; its edges are outside.
    /// Meaningful in the normal layout, whose units are pixels.
    /// @param toWindow from the coordinates of the table's parent to the window
    /// @param x,y      in the coordinates that toWindow leads to, y upwards
    bool checkClickPointIsInsideTable(const osg::Matrixd& toWindow, float x, float y);

    /// Translates, measures and builds the label anew, in its present state; call it after the
    /// translators changed. Does nothing in the scaled layout, or once the geode was removed.
    /// @snippet feature_recipes/main.cpp language
    void updateLanguage();

    /// Colours text and outline: the plane configuration's table colours when selected or
    /// highlighted, black in every other state. Does nothing if the state is the present one, and
    /// recolours nothing in the scaled layout.
    virtual void setState(featureState state);

    /// As in the base class; what an osgUtil::CullVisitor does with it takes a shorter way.
    void accept(osg::NodeVisitor& visitor) override;

    /// As in the base class, but in the normal layout a unit is exactly a pixel in every projection,
    /// between the minimum and the maximum scale.
    bool computeLocalToWorldMatrix(osg::Matrix& matrix, osg::NodeVisitor* visitor) const override;

    /// The way back.
    bool computeWorldToLocalMatrix(osg::Matrix& matrix, osg::NodeVisitor* visitor) const override;

private:
    void init();
    void normalTable(const osg::Vec3f& pos, const std::wstring& text, float fontSize, const osg::Vec4f& textColor,
                     const osg::Vec3f& backgroundColor, int renderIndex, bool isBottom);
    void scaleTable(const osg::Vec3f& pos, const std::wstring& text, float fontSize, const osg::Vec4f& textColor,
                    const osg::Vec3f& backgroundColor, int renderIndex, bool isBottom);
    osg::ref_ptr<osg::Geometry> square(osg::Vec2Array* corners, const osg::Vec3f& color);
    osg::ref_ptr<osg::Geometry> line(osg::Vec2Array* corners, osg::Vec4f color);
    osg::ref_ptr<osgText::Text> textNode(const std::wstring& text, float fontSize, const osg::Vec4f& color);
    void updateState(featureState state);

    // The rectangle in the table's plane, relative to the anchor point.
    float m_rectTop = 0.0f;
    float m_rectBottom = 0.0f;
    float m_rectLeft = 0.0f;
    float m_rectRight = 0.0f;
    structTableMeta m_metaStruct;
    // Null in the scaled layout: such a label keeps its colours and its language.
    osg::ref_ptr<osg::Geometry> m_squareGeometry;
    osg::ref_ptr<osg::Geometry> m_lineGeometry;
    osg::ref_ptr<osgText::Text> m_textDrawable;
    featureState m_state = featureStateNormal;
};

} // namespace KelvOsgTools
