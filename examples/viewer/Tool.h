#pragma once

#include <KelvOsgTools/FeatureTypes.h>

#include <osg/Vec3f>

#include <QString>

#include <optional>
#include <vector>

namespace viewer {

/// What a click of the left button does.
enum class ToolKind
{
    Select,
    Dot,
    Line,
    SolidLine,
    Plane
};

/// State machine that gathers the clicks of a tool until they make a feature.
class Tool
{
public:
    ToolKind kind() const { return m_kind; }
    bool makesFeatures() const { return m_kind != ToolKind::Select; }
    bool isLineArrow() const { return m_kind != ToolKind::SolidLine; }

    /// Kind of the features made; featureAll for the select tool.
    KelvOsgTools::featureType featureKind() const;

    const std::vector<osg::Vec3f>& clicks() const { return m_clicks; }

    /// The clicks with point as the next one.
    std::vector<osg::Vec3f> clicksWith(const osg::Vec3f& point) const;

    /// Changes the tool and forgets its clicks.
    void choose(ToolKind kind);

    /// Takes a click.
    /// @return all clicks once they are enough, upon which the tool starts over
    std::optional<std::vector<osg::Vec3f>> click(const osg::Vec3f& point);

    /// Steps back: forgets the clicks or, if there are none, returns to the select tool.
    void cancel();

    /// What to do next.
    QString hint() const;

private:
    ToolKind m_kind = ToolKind::Select;
    std::vector<osg::Vec3f> m_clicks;
};

} // namespace viewer
