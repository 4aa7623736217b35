#include "primitives/RoundSolids.h"

#include "primitives/TriangleSet.h"

#include <osg/Array>
#include <osg/Math>
#include <osg/Referenced>
#include <osg/observer_ptr>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>
#include <vector>

namespace KelvOsgTools::detail {
namespace {

constexpr float kConeBase = -0.25f; // of its height: osg::Cone centres itself a quarter above its base
constexpr float kConeTip = 0.75f;
constexpr float kSlopeSteps = 4096.0f; // in which normals are shared; the shade moves by a tenth of one level
constexpr std::size_t kFewSlopes = 64;

/// What all round solids of as many segments have in common.
class RoundTemplate : public osg::Referenced
{
public:
    static osg::ref_ptr<RoundTemplate> shared(unsigned int segments)
    {
        static std::map<unsigned int, osg::observer_ptr<RoundTemplate>> templates;
        osg::observer_ptr<RoundTemplate>& entry = templates[segments];
        osg::ref_ptr<RoundTemplate> found;
        if (entry.lock(found)) return found;
        found = new RoundTemplate(segments);
        entry = found;
        return found;
    }

    /// The normals of cones that rise as much towards the tip.
    osg::ref_ptr<osg::Vec3Array> coneNormals(float rise)
    {
        const long step = std::lround(rise * kSlopeSteps);
        osg::ref_ptr<osg::Vec3Array> normals;
        if (const auto known = m_coneNormals.find(step); known != m_coneNormals.end() && known->second.lock(normals))
            return normals;
        forgetUnusedNormals();
        normals = makeConeNormals(static_cast<float>(step) / kSlopeSteps);
        m_coneNormals[step] = normals;
        return normals;
    }

    std::vector<osg::Vec2f> circle;  ///< unit circle, the first point once more at the end
    std::vector<osg::Vec2f> middles; ///< unit directions between neighbours on the circle
    osg::ref_ptr<osg::Vec3Array> cylinderNormals;
    osg::ref_ptr<osg::PrimitiveSet> cylinderTriangles;
    osg::ref_ptr<osg::PrimitiveSet> coneTriangles;

private:
    explicit RoundTemplate(unsigned int segments)
    {
        for (unsigned int i = 0; i <= segments; ++i) circle.push_back(direction(i % segments, segments));
        for (unsigned int i = 0; i < segments; ++i) middles.push_back(direction(i + 0.5, segments));
        makeCylinder(segments);
        makeCone(segments);
    }

    static osg::Vec2f direction(double step, unsigned int segments)
    {
        const double angle = 2.0 * osg::PI * step / segments;
        return {static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle))};
    }

    /// Vertices: upper and lower ring of the side, ring and centre of the top, then of the bottom.
    void makeCylinder(unsigned int segments)
    {
        const unsigned int ring = segments + 1;
        const unsigned int top = 2 * ring;
        const unsigned int bottom = top + ring + 1;
        cylinderNormals = new osg::Vec3Array(osg::Array::BIND_PER_VERTEX);
        for (int row = 0; row < 2; ++row)
            for (const osg::Vec2f& point : circle) cylinderNormals->push_back(osg::Vec3f(point, 0.0f));
        cylinderNormals->resize(bottom, osg::Vec3f(0.0f, 0.0f, 1.0f));
        cylinderNormals->resize(bottom + ring + 1, osg::Vec3f(0.0f, 0.0f, -1.0f));

        std::vector<unsigned int> indices;
        for (unsigned int i = 0; i < segments; ++i) {
            appendQuad(indices, i, ring + i);
            indices.insert(indices.end(), {top + ring, top + i, top + i + 1});
            indices.insert(indices.end(), {bottom + ring, bottom + i + 1, bottom + i});
        }
        cylinderTriangles = triangleSet(indices, cylinderNormals->size());
    }

    /// Vertices: a tip for each facet, ring of the side, ring and centre of the bottom.
    void makeCone(unsigned int segments)
    {
        const unsigned int ring = segments + 1;
        const unsigned int side = segments;
        const unsigned int bottom = side + ring;
        std::vector<unsigned int> indices;
        for (unsigned int i = 0; i < segments; ++i) {
            indices.insert(indices.end(), {i, side + i, side + i + 1});
            indices.insert(indices.end(), {bottom + ring, bottom + i + 1, bottom + i});
        }
        coneTriangles = triangleSet(indices, bottom + ring + 1);
    }

    osg::ref_ptr<osg::Vec3Array> makeConeNormals(float rise) const
    {
        // The slope that OpenSceneGraph gives the normals of its cones, so that both are shaded alike.
        const float shrink = 1.0f / std::sqrt(1.0f + rise * rise);
        const auto sideNormal = [&](const osg::Vec2f& point) { return osg::Vec3f(point * shrink, rise * shrink); };
        const std::size_t count = middles.size() + 2 * circle.size() + 1;
        osg::ref_ptr<osg::Vec3Array> normals = new osg::Vec3Array(osg::Array::BIND_PER_VERTEX);
        normals->reserve(count);
        for (const osg::Vec2f& middle : middles) normals->push_back(sideNormal(middle));
        for (const osg::Vec2f& point : circle) normals->push_back(sideNormal(point));
        normals->resize(count, osg::Vec3f(0.0f, 0.0f, -1.0f));
        return normals;
    }

    /// Now and then, so that the time for it does not grow with the number of slopes.
    void forgetUnusedNormals()
    {
        if (m_coneNormals.size() < m_slopesToClean) return;
        for (auto entry = m_coneNormals.begin(); entry != m_coneNormals.end();)
            entry = entry->second.valid() ? std::next(entry) : m_coneNormals.erase(entry);
        m_slopesToClean = std::max(kFewSlopes, 2 * m_coneNormals.size());
    }

    std::map<long, osg::observer_ptr<osg::Vec3Array>> m_coneNormals; // by the step of their slope
    std::size_t m_slopesToClean = kFewSlopes;

    static void appendQuad(std::vector<unsigned int>& indices, unsigned int upper, unsigned int lower)
    {
        indices.insert(indices.end(), {upper, lower, upper + 1, upper + 1, lower, lower + 1});
    }
};

void appendRing(osg::Vec3Array& vertices, const RoundTemplate& shape, float radius, float z)
{
    for (const osg::Vec2f& point : shape.circle) vertices.push_back(osg::Vec3f(point * radius, z));
}

void appendDisc(osg::Vec3Array& vertices, const RoundTemplate& shape, float radius, float z)
{
    appendRing(vertices, shape, radius, z);
    vertices.push_back(osg::Vec3f(0.0f, 0.0f, z));
}

} // namespace

osg::ref_ptr<osg::Referenced> setCylinderArrays(osg::Geometry& geometry, unsigned int segments, float radius,
                                                float height, osg::VertexBufferObject* buffer)
{
    osg::ref_ptr<RoundTemplate> shape = RoundTemplate::shared(segments);
    const osg::ref_ptr<osg::Vec3Array> vertices = new osg::Vec3Array(osg::Array::BIND_PER_VERTEX);
    vertices->setVertexBufferObject(buffer);
    vertices->reserve(shape->cylinderNormals->size());
    appendRing(*vertices, *shape, radius, height * 0.5f);
    appendRing(*vertices, *shape, radius, height * -0.5f);
    appendDisc(*vertices, *shape, radius, height * 0.5f);
    appendDisc(*vertices, *shape, radius, height * -0.5f);

    geometry.setVertexArray(vertices);
    geometry.setNormalArray(shape->cylinderNormals);
    geometry.addPrimitiveSet(shape->cylinderTriangles);
    return shape;
}

osg::ref_ptr<osg::Referenced> setConeArrays(osg::Geometry& geometry, unsigned int segments, float radius, float height,
                                            osg::VertexBufferObject* buffer)
{
    osg::ref_ptr<RoundTemplate> shape = RoundTemplate::shared(segments);
    const float baseZ = height * kConeBase;
    const float side = std::hypot(radius, height);
    const float rise = side > 0.0f ? radius / side : 0.0f;
    const osg::ref_ptr<osg::Vec3Array> normals = shape->coneNormals(rise);
    const osg::ref_ptr<osg::Vec3Array> vertices = new osg::Vec3Array(osg::Array::BIND_PER_VERTEX);
    vertices->setVertexBufferObject(buffer);
    vertices->reserve(normals->size());
    vertices->resize(shape->middles.size(), osg::Vec3f(0.0f, 0.0f, height * kConeTip));
    appendRing(*vertices, *shape, radius, baseZ);
    appendDisc(*vertices, *shape, radius, baseZ);

    geometry.setVertexArray(vertices);
    geometry.setNormalArray(normals);
    geometry.addPrimitiveSet(shape->coneTriangles);
    return shape;
}

} // namespace KelvOsgTools::detail
