#include "Tool.h"

#include "Feature.h"

#include <QCoreApplication>

namespace viewer {

using namespace KelvOsgTools;

featureType Tool::featureKind() const
{
    switch (m_kind) {
    case ToolKind::Dot:
        return featureDot;
    case ToolKind::Line:
    case ToolKind::SolidLine:
        return featureLine;
    case ToolKind::Plane:
        return featurePlane;
    default:
        return featureAll;
    }
}

std::vector<osg::Vec3f> Tool::clicksWith(const osg::Vec3f& point) const
{
    std::vector<osg::Vec3f> clicks = m_clicks;
    clicks.push_back(point);
    return clicks;
}

void Tool::choose(ToolKind kind)
{
    m_kind = kind;
    m_clicks.clear();
}

std::optional<std::vector<osg::Vec3f>> Tool::click(const osg::Vec3f& point)
{
    if (!makesFeatures()) return std::nullopt;
    m_clicks.push_back(point);
    if (m_clicks.size() < clicksFor(featureKind())) return std::nullopt;
    return std::exchange(m_clicks, {});
}

void Tool::cancel()
{
    if (m_clicks.empty()) m_kind = ToolKind::Select;
    m_clicks.clear();
}

QString Tool::hint() const
{
    const auto text = [](const char* source) { return QCoreApplication::translate("Tool", source); };
    switch (m_kind) {
    case ToolKind::Select:
        return text("Click a feature to select it; drag to turn the view");
    case ToolKind::Dot:
        return text("Click the mesh to place a dot");
    case ToolKind::Plane:
        return text("Plane: click point %1 of 3").arg(m_clicks.size() + 1);
    default:
        return m_clicks.empty() ? text("Line: click its start") : text("Line: click its end");
    }
}

} // namespace viewer
