#pragma once

#include <KelvOsgTools/CArrowMeta.h>
#include <KelvOsgTools/CPlaneMeta.h>
#include <KelvOsgTools/CSphereMeta.h>
#include <KelvOsgTools/CTableMeta.h>

#include <QString>
#include <QStringView>

/// @file
/// What the writer and the reader of feature files agree on: names of elements, leaves, the file.

namespace KelvOsgTools::detail {

inline constexpr QStringView kRootElement = u"featureInfoXML";
inline constexpr QStringView kVersionAttribute = u"version";
inline constexpr QStringView kVersion = u"1.0";
inline constexpr QStringView kContactsElement = u"contacts";
inline constexpr QStringView kEmailAttribute = u"email";
inline constexpr QStringView kEmail = u"features@kelvosgtools.example";
inline constexpr QStringView kFeatureInfoElement = u"featureInfo";

inline constexpr QStringView kDotSection = u"dotFeatureInfo";
inline constexpr QStringView kLineSection = u"lineFeatureInfo";
inline constexpr QStringView kPlaneSection = u"planeFeatureInfo";
inline constexpr QStringView kCountersSection = u"featureTagCountInfo";

inline constexpr QStringView kDotRecord = u"structSphereMeta";
inline constexpr QStringView kLineRecord = u"structArrowMeta";
inline constexpr QStringView kPlaneRecord = u"structPlaneMeta";
inline constexpr QStringView kTableRecord = u"structTableMeta";

inline constexpr QStringView kDotCounter = u"dotTagCount";
inline constexpr QStringView kLineCounter = u"arrowTagCount";
inline constexpr QStringView kPlaneCounter = u"planeTagCount";

// A coordinate of a plane's corner is named after the corner's index and the axis: pointVec_0X.
inline constexpr QStringView kCornerPrefix = u"pointVec_";
inline constexpr QStringView kCornerAxes = u"XYZ";

/// A constant as the QString that Qt's XML writer asks for, without copying its characters.
inline QString asQString(QStringView constant)
{
    return QString::fromRawData(constant.data(), static_cast<int>(constant.size()));
}

/// The file of that name in a folder; the name is used as it is.
inline QString featureFileName(const QString& folder, const QString& name)
{
    return folder + QLatin1Char('/') + name;
}

/// @name Leaves of the records
/// Each calls visit(name, field) for every leaf, in the order of writing. With a const record the
/// fields are values to write, otherwise they are references to read into.
/// @{

template <typename Record, typename Visit>
void visitDotLeaves(Record& dot, Visit&& visit)
{
    visit(u"cneterPosX", dot.cneterPos.x());
    visit(u"cneterPosY", dot.cneterPos.y());
    visit(u"cneterPosZ", dot.cneterPos.z());
    visit(u"radius", dot.radius);
    visit(u"ratio", dot.ratio);
    visit(u"colorX", dot.color.r());
    visit(u"colorY", dot.color.g());
    visit(u"colorZ", dot.color.b());
    visit(u"colorW", dot.color.a());
}

template <typename Record, typename Visit>
void visitLineLeaves(Record& line, Visit&& visit)
{
    visit(u"startPosX", line.startPos.x());
    visit(u"startPosY", line.startPos.y());
    visit(u"startPosZ", line.startPos.z());
    visit(u"endPosX", line.endPos.x());
    visit(u"endPosY", line.endPos.y());
    visit(u"endPosZ", line.endPos.z());
    visit(u"colorX", line.color.r());
    visit(u"colorY", line.color.g());
    visit(u"colorZ", line.color.b());
    visit(u"colorW", line.color.a());
    visit(u"radius", line.radius);
    visit(u"ratio", line.ratio);
}

/// All but the corners, which follow.
template <typename Record, typename Visit>
void visitPlaneLeaves(Record& plane, Visit&& visit)
{
    visit(u"planeColorX", plane.planeColor.x());
    visit(u"planeColorY", plane.planeColor.y());
    visit(u"planeColorZ", plane.planeColor.z());
    visit(u"lineColorX", plane.lineColor.x());
    visit(u"lineColorY", plane.lineColor.y());
    visit(u"lineColorZ", plane.lineColor.z());
    visit(u"lineWidth", plane.lineWidth);
    visit(u"planeNormalX", plane.planeNormal.x());
    visit(u"planeNormalY", plane.planeNormal.y());
    visit(u"planeNormalZ", plane.planeNormal.z());
    visit(u"alpha", plane.alpha);
}

/// The font size is no leaf: a rebuilt label takes it from the configuration.
template <typename Record, typename Visit>
void visitTableLeaves(Record& table, Visit&& visit)
{
    visit(u"textColorX", table.textColor.r());
    visit(u"textColorY", table.textColor.g());
    visit(u"textColorZ", table.textColor.b());
    visit(u"textColorW", table.textColor.a());
    visit(u"posX", table.pos.x());
    visit(u"posY", table.pos.y());
    visit(u"posZ", table.pos.z());
    visit(u"backgroundColorX", table.backgroundColor.x());
    visit(u"backgroundColorY", table.backgroundColor.y());
    visit(u"backgroundColorZ", table.backgroundColor.z());
    visit(u"tableNamePrefix", table.tableNamePrefix);
    visit(u"tableNameIndexSuffix", table.tableNameIndexSuffix);
    visit(u"renderIndex", table.renderIndex);
    visit(u"isAutoScale", table.isAutoScale);
    visit(u"isBottom", table.isBottom);
}

/// @}

} // namespace KelvOsgTools::detail
