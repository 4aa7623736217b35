#pragma once

#include <osg/AutoTransform>
#include <osg/BoundingSphere>
#include <osg/Node>
#include <osg/Vec3d>
#include <osgUtil/IntersectionVisitor>
#include <osgUtil/LineSegmentIntersector>
#include <osgUtil/PolytopeIntersector>

namespace KelvOsgTools::detail {

/// Finds what OpenSceneGraph's own intersection visitor finds, at a fraction of the cost in a scene
/// full of dots and labels.
///
/// A transform that keeps its content at a constant size on screen switches culling off for itself
/// and all its ancestors. The plain visitor therefore enters every one of them, which costs several
/// matrix products and an inversion each. This one first tests, in the coordinates of the
/// transform's parent and with a margin far above all rounding, whether the pick can come near the
/// content. Only what it surely misses is left out, so the hits and their order stay the same.
/// Nodes of kinds that it does not know it treats as the plain visitor does.
class PickVisitor : public osgUtil::IntersectionVisitor
{
public:
    explicit PickVisitor(osgUtil::Intersector* intersector);

    /// Leaves out the subtree that is reached by exactly this path.
    void leaveOut(const osg::NodePath& path);

    /// Whether no node was met that has a projection or a frame of its own. Up to such a node a
    /// ray takes the same way whichever frame it was given in; below it, it does not.
    bool stayedInWorld() const { return m_stayedInWorld; }

    using osgUtil::IntersectionVisitor::apply;
    void apply(osg::Group& group) override;
    void apply(osg::Transform& transform) override;
    void apply(osg::Projection& projection) override;
    void apply(osg::Camera& camera) override;

private:
    /// Whether the pick may touch the sphere, which is in the coordinates of the present subtree.
    virtual bool mayTouch(const osg::Vec3d& centre, double radius) = 0;
    /// Whether mayTouch() can be relied on in the present subtree.
    virtual bool isReliable() = 0;

    void applyWide(osg::Transform& transform);
    bool isLeftOut() const;
    bool surelyMisses(const osg::Transform& transform);
    bool surelyMisses(const osg::AutoTransform& transform, const osg::BoundingSphere& content);

    osg::NodePath m_leftOut;
    bool m_stayedInWorld = true;
};

/// Picks along a ray.
class RayVisitor : public PickVisitor
{
public:
    explicit RayVisitor(osgUtil::LineSegmentIntersector* ray);

private:
    bool mayTouch(const osg::Vec3d& centre, double radius) override;
    bool isReliable() override;

    /// Whether start and end of the segment, brought back to where they came from, arrive there.
    bool leadsBack(const osgUtil::LineSegmentIntersector& segment) const;

    // The last answer of isReliable() and the segment that it was for.
    osg::Vec3d m_checkedStart;
    osg::Vec3d m_checkedEnd;
    bool m_isReliable = false;
};

/// Picks with a box around a window position.
class BoxVisitor : public PickVisitor
{
public:
    explicit BoxVisitor(osgUtil::PolytopeIntersector* box);

private:
    bool mayTouch(const osg::Vec3d& centre, double radius) override;
    bool isReliable() override;
};

} // namespace KelvOsgTools::detail
