#include "Feature.h"

#include <KelvOsgTools/FeatureFunctions.h>

#include <QStringList>

#include <algorithm>

namespace viewer {

using namespace KelvOsgTools;

namespace {

constexpr int kSignificantDigits = 6;

constexpr int kDecimalsOfDirection = 4;

QString directionText(const osg::Vec3f& direction)
{
    QStringList texts;
    for (int i = 0; i < 3; ++i) {
        const QString text = QString::number(direction[i], 'f', kDecimalsOfDirection);
        texts << (text == QLatin1String("-0.0000") ? text.mid(1) : text);
    }
    return texts.join(QStringLiteral(", "));
}

QString number(float value)
{
    return QString::number(value, 'g', kSignificantDigits);
}

} // namespace

bool isSameMeasurement(const Feature& a, const Feature& b)
{
    return a.kind == b.kind && a.word == b.word && a.number == b.number && a.points == b.points &&
           a.isLineArrow == b.isLineArrow && (a.isLineArrow || a.radius == b.radius);
}

QString kindName(featureType kind)
{
    switch (kind) {
    case featureDot:
        return QStringLiteral("Dot");
    case featureLine:
        return QStringLiteral("Line");
    default:
        return QStringLiteral("Plane");
    }
}

QString defaultWord(featureType kind)
{
    // Exactly the words that languageTranslate() knows.
    switch (kind) {
    case featureDot:
        return QStringLiteral("Point");
    case featureLine:
        return QStringLiteral("line");
    default:
        return QStringLiteral("Plane");
    }
}

QString labelText(const Feature& feature)
{
    const QString word = languageTranslate(feature.word);
    return feature.number == Feature::kNoNumber ? word : word + QString::number(feature.number);
}

QString coordinatesText(const osg::Vec3f& point)
{
    return QStringLiteral("%1, %2, %3").arg(number(point.x()), number(point.y()), number(point.z()));
}

QString coordinatesText(const Feature& feature)
{
    QStringList texts;
    for (const osg::Vec3f& point : feature.points) texts << coordinatesText(point);
    return texts.join(QStringLiteral("; "));
}

QString measureText(const Feature& feature)
{
    switch (feature.kind) {
    case featureLine:
        return number((feature.points.at(1) - feature.points.at(0)).length());
    case featurePlane:
        return directionText(normalOf(feature.points));
    default:
        return {};
    }
}

std::size_t clicksFor(featureType kind)
{
    switch (kind) {
    case featureDot:
        return 1;
    case featureLine:
        return 2;
    default:
        return 3;
    }
}

std::vector<osg::Vec3f> pointsFromClicks(featureType kind, const std::vector<osg::Vec3f>& clicks)
{
    std::vector<osg::Vec3f> points = clicks;
    if (kind == featurePlane) points.push_back(clicks.at(0) + clicks.at(2) - clicks.at(1));
    return points;
}

osg::Vec3f middleOf(const Feature& feature)
{
    osg::Vec3f sum;
    for (const osg::Vec3f& point : feature.points) sum += point;
    return sum / float(feature.points.size());
}

osg::Vec3f normalOf(const std::vector<osg::Vec3f>& points)
{
    osg::Vec3f normal = (points.at(1) - points.at(0)) ^ (points.at(2) - points.at(0));
    normal.normalize();
    return normal;
}

float heightOf(const std::vector<osg::Vec3f>& points)
{
    const osg::Vec3f a = points.at(1) - points.at(0);
    const osg::Vec3f b = points.at(2) - points.at(0);
    const float longest = std::max({a.length(), b.length(), (points.at(2) - points.at(1)).length()});
    return longest > 0.0f ? (a ^ b).length() / longest : 0.0f;
}

} // namespace viewer
