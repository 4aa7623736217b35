#pragma once

#include <KelvOsgTools/Export.h>
#include <KelvOsgTools/FeatureTypes.h>

#include <osg/Vec4f>

#include <QString>

namespace KelvOsgTools {

/// Colours of dots, RGBA with components from 0 to 1.
struct featureDotConfig
{
    osg::Vec4f tableHighlightedColor{0.0f, 1.0f, 0.0f, 1.0f}; ///< carried, not consulted: labels read the plane record
    osg::Vec4f tableSelectedColor{1.0f, 0.0f, 0.0f, 1.0f};    ///< carried, not consulted: labels read the plane record
    osg::Vec4f highlightedColor{0.0f, 1.0f, 0.0f, 1.0f};      ///< the sphere in featureStateHighlighted
    osg::Vec4f selectedColor{1.0f, 0.0f, 0.0f, 1.0f};         ///< the sphere in featureStateSelected
};

/// Colours of flag dots, RGBA with components from 0 to 1.
struct featureFlagDotConfig
{
    osg::Vec4f tableHighlightedColor{0.0f, 1.0f, 0.0f, 1.0f}; ///< carried, not consulted: labels read the plane record
    osg::Vec4f tableSelectedColor{1.0f, 0.0f, 0.0f, 1.0f};    ///< carried, not consulted: labels read the plane record
    osg::Vec4f highlightedColor{0.0f, 1.0f, 0.0f, 1.0f};      ///< the sphere in featureStateHighlighted
    osg::Vec4f selectedColor{1.0f, 0.0f, 0.0f, 1.0f};         ///< the sphere in featureStateSelected
};

/// Colours of lines, RGBA with components from 0 to 1.
struct featureArrowConfig
{
    osg::Vec4f tableHighlightedColor{0.0f, 1.0f, 0.0f, 1.0f}; ///< carried, not consulted: labels read the plane record
    osg::Vec4f tableSelectedColor{1.0f, 0.0f, 0.0f, 1.0f};    ///< carried, not consulted: labels read the plane record
    osg::Vec4f highlightedColor{0.0f, 1.0f, 0.0f, 1.0f};      ///< the arrow in featureStateHighlighted
    osg::Vec4f selectedColor{1.0f, 0.0f, 0.0f, 1.0f};         ///< the arrow in featureStateSelected
};

/// Colours of planes, and of the labels of every kind, RGBA with components from 0 to 1.
struct featurePlaneConfig
{
    osg::Vec4f tableHighlightedColor{0.0f, 1.0f, 0.0f, 1.0f}; ///< every label in featureStateHighlighted
    osg::Vec4f tableSelectedColor{1.0f, 0.0f, 0.0f, 1.0f};    ///< every label in featureStateSelected
    osg::Vec4f highlightedColor{0.0f, 1.0f, 0.0f, 1.0f};      ///< the border in featureStateHighlighted (RGB only)
    osg::Vec4f selectedColor{1.0f, 0.0f, 0.0f, 1.0f};         ///< the border in featureStateSelected (RGB only)
};

/// Appearance settings of the process, which primitives read when they are built or recoloured.
///
/// Set them from the thread that owns the scene. A change reaches what is built or recoloured
/// afterwards; what exists is not notified. Values are taken as they are, and none is checked.
///
/// @snippet feature_recipes/main.cpp appearance
class KELVOSGTOOLS_EXPORT CFeatureConfig
{
public:
    CFeatureConfig(const CFeatureConfig& other);            ///< a copy for the host, which no primitive reads
    CFeatureConfig& operator=(const CFeatureConfig& other); ///< takes every setting over, to put a copy back, say
    ~CFeatureConfig();

    /// The one instance. It stands from the moment the library is loaded until the process ends
    /// and belongs to the library: never delete it.
    static CFeatureConfig* sigleFeatureConfig();

    const featureDotConfig& getDotConfig() const;      ///< colours of dots
    void setDotConfig(const featureDotConfig& config); ///< replaces all four colours of dots

    const featureFlagDotConfig& getFlagDotConfig() const;      ///< colours of flag dots
    void setFlagDotConfig(const featureFlagDotConfig& config); ///< replaces all four colours of flag dots

    const featureArrowConfig& getArrowConfig() const;      ///< colours of lines
    void setArrowConfig(const featureArrowConfig& config); ///< replaces all four colours of lines

    const featurePlaneConfig& getPlaneConfig() const;      ///< colours of planes, and of every label
    void setPlaneConfig(const featurePlaneConfig& config); ///< replaces all four colours of planes, and of every label

    /// Font of label texts; empty (the default) means the default font.
    const QString& getFontPath() const;

    /// Takes the path of a font file, or a font family. A file is also made known to Qt, so that
    /// labels are measured in the font they are drawn in. A missing or broken file is no error:
    /// labels then use the default font.
    /// @snippet feature_recipes/main.cpp font
    void setFontPath(const QString& path);

    /// Smallest plane size the host wants to accept, in scene units. The library does not read it.
    float getPlaneMinThresholdValue() const;
    void setPlaneMinThresholdValue(float value); ///< scene units

    /// Language of label texts. The library does not read it; texts are translated by the
    /// QTranslator that the host installs.
    languageType getLanguage() const;
    void setLanguage(languageType language); ///< changes no label: see CTableMeta::updateLanguage()

    /// Font size of the labels of dots, lines and planes: points when measuring, character size
    /// (pixels, in a label of constant screen size) when drawing.
    int getNormalTableFontSize() const;
    void setNormalTableFontSize(int size); ///< of labels made afterwards

    /// Font size of the labels of flag dots, in the units of the normal size.
    int getFlagTableFontSize() const;
    void setFlagTableFontSize(int size); ///< of flag dots made afterwards

private:
    CFeatureConfig();

    // Carried and copied with the object; nothing reads them.
    struct Quadruple
    {
        float values[4];
    };

    static CFeatureConfig* createAtLoad();

    static CFeatureConfig* m_featureConfig;

    featureDotConfig m_dotConfig;
    featureFlagDotConfig m_flagDotConfig;
    featureArrowConfig m_arrowConfig;
    featurePlaneConfig m_planeConfig;
    QString m_fontPath;
    float m_planeMinThresholdValue = 0.01f;
    languageType m_language = languageEnglishUnitedStates;
    int m_normalTableFontSize = 14;
    int m_flagTableFontSize = 19;
    [[maybe_unused]] Quadruple m_normalTable{{30.0f, 25.0f, 10.0f, -10.0f}};
    [[maybe_unused]] Quadruple m_flagTable{{35.0f, 25.0f, 10.0f, -10.0f}};
};

} // namespace KelvOsgTools
