#include "ViewerSettings.h"

#include "LabelLanguage.h"

#include <KelvOsgTools/CFeatureConfig.h>

#include <QCoreApplication>
#include <QSettings>

namespace viewer {

using namespace KelvOsgTools;

namespace {

constexpr std::array<const char*, ViewerSettings::SubjectCount> kSubjectKeys{"dots", "flagDots", "lines", "planes",
                                                                             "labels"};

QString colourKey(std::size_t subject, const char* state)
{
    return QStringLiteral("colours/%1/%2").arg(kSubjectKeys[subject], state);
}

osg::Vec4f toVector(const QColor& colour)
{
    return {float(colour.redF()), float(colour.greenF()), float(colour.blueF()), 1.0f};
}

template <typename Config>
Config configOf(const ViewerSettings::StateColours& colours, const ViewerSettings::StateColours& labels)
{
    Config config;
    config.highlightedColor = toVector(colours.highlighted);
    config.selectedColor = toVector(colours.selected);
    config.tableHighlightedColor = toVector(labels.highlighted);
    config.tableSelectedColor = toVector(labels.selected);
    return config;
}

} // namespace

ViewerSettings ViewerSettings::load()
{
    const QSettings store;
    ViewerSettings settings;
    for (std::size_t i = 0; i < settings.colours.size(); ++i) {
        StateColours& colours = settings.colours[i];
        colours.highlighted = store.value(colourKey(i, "highlighted"), colours.highlighted).value<QColor>();
        colours.selected = store.value(colourKey(i, "selected"), colours.selected).value<QColor>();
    }
    settings.fontPath = store.value(QStringLiteral("fontPath")).toString();
    settings.normalFontSize = store.value(QStringLiteral("normalFontSize"), settings.normalFontSize).toInt();
    settings.flagFontSize = store.value(QStringLiteral("flagFontSize"), settings.flagFontSize).toInt();
    settings.smallestPlane = store.value(QStringLiteral("smallestPlane"), settings.smallestPlane).toDouble();
    const auto language = QLocale::Language(store.value(QStringLiteral("language"), settings.language).toInt());
    if (labelLanguages().contains(language)) settings.language = language;
    return settings;
}

void ViewerSettings::save() const
{
    QSettings store;
    for (std::size_t i = 0; i < colours.size(); ++i) {
        store.setValue(colourKey(i, "highlighted"), colours[i].highlighted);
        store.setValue(colourKey(i, "selected"), colours[i].selected);
    }
    store.setValue(QStringLiteral("fontPath"), fontPath);
    store.setValue(QStringLiteral("normalFontSize"), normalFontSize);
    store.setValue(QStringLiteral("flagFontSize"), flagFontSize);
    store.setValue(QStringLiteral("smallestPlane"), smallestPlane);
    store.setValue(QStringLiteral("language"), int(language));
}

void ViewerSettings::apply(double pixelRatio) const
{
    CFeatureConfig& config = *CFeatureConfig::sigleFeatureConfig();
    const StateColours& labels = colours[Labels];
    config.setDotConfig(configOf<featureDotConfig>(colours[Dots], labels));
    config.setFlagDotConfig(configOf<featureFlagDotConfig>(colours[FlagDots], labels));
    config.setArrowConfig(configOf<featureArrowConfig>(colours[Lines], labels));
    config.setPlaneConfig(configOf<featurePlaneConfig>(colours[Planes], labels));
    config.setFontPath(fontPath.isEmpty() ? labelFontFor(language) : fontPath);
    config.setNormalTableFontSize(qRound(normalFontSize * pixelRatio));
    config.setFlagTableFontSize(qRound(flagFontSize * pixelRatio));
    config.setPlaneMinThresholdValue(float(smallestPlane));
    installLabelLanguage(language);
}

QString subjectName(ViewerSettings::Subject subject)
{
    const auto text = [](const char* source) { return QCoreApplication::translate("ViewerSettings", source); };
    switch (subject) {
    case ViewerSettings::Dots:
        return text("Dots");
    case ViewerSettings::FlagDots:
        return text("Clicked points");
    case ViewerSettings::Lines:
        return text("Lines");
    case ViewerSettings::Planes:
        return text("Planes");
    default:
        return text("Labels");
    }
}

} // namespace viewer
