#include "primitives/SphereDrawable.h"

#include "primitives/ShapeBuilder.h"
#include "primitives/SpherePixels.h"
#include "primitives/TriangleSet.h"

#include <osg/Array>
#include <osg/GL>
#include <osg/Math>
#include <osg/PolygonMode>
#include <osg/State>
#include <osg/TriangleIndexFunctor>
#include <osg/observer_ptr>

#include <array>
#include <cmath>
#include <iterator>
#include <map>
#include <utility>
#include <vector>

namespace KelvOsgTools::detail {
namespace {

struct CollectTriangles
{
    void operator()(unsigned int a, unsigned int b, unsigned int c)
    {
        if (a == b || b == c || c == a) return;
        indices.insert(indices.end(), {a, b, c});
    }

    std::vector<unsigned int> indices;
};

constexpr float kMinCapRadius = 2.5f;  // pixels; below, a pixel shows how single facets are rasterized
constexpr float kMaxCapRadius = 12.0f; // pixels; beyond, the facets of the full outline show
constexpr float kMinRoundRatio = 2.5f; // below, the full tessellation is light, and its facets show

/// A circle of vertices around the pole.
struct Ring
{
    double fromOutline; ///< angle to the outline, seen from the centre
    unsigned int segments;
};

// Towards the outline the shade falls ever steeper, so that rings lie the closer and need the more
// segments. Inside, no pixel then differs from the full tessellation by more than 2/255.
constexpr std::array<Ring, 13> kRings = {{{1.392, 7},
                                          {1.217, 13},
                                          {1.047, 19},
                                          {0.884, 26},
                                          {0.732, 32},
                                          {0.592, 39},
                                          {0.466, 47},
                                          {0.353, 57},
                                          {0.256, 68},
                                          {0.174, 84},
                                          {0.108, 107},
                                          {0.058, 120},
                                          {0.0, 120}}};

/// Collects rings of vertices on a unit sphere, from the pole outwards, and the triangles between them.
class CapBuilder
{
public:
    CapBuilder() { m_normals->push_back(osg::Z_AXIS); }

    void addRing(double polar, unsigned int segments)
    {
        const auto first = static_cast<unsigned int>(m_normals->size());
        for (unsigned int i = 0; i < segments; ++i) {
            const double around = 2.0 * osg::PI * i / segments;
            m_normals->push_back(
                osg::Vec3d(std::sin(polar) * std::cos(around), std::sin(polar) * std::sin(around), std::cos(polar)));
        }
        stitch(m_innerFirst, m_innerSegments, first, segments);
        m_innerFirst = first;
        m_innerSegments = segments;
    }

    osg::ref_ptr<osg::Geometry> build(float radius) const
    {
        const osg::ref_ptr<osg::Vec3Array> vertices = new osg::Vec3Array(osg::Array::BIND_PER_VERTEX);
        for (const osg::Vec3f& normal : *m_normals) vertices->push_back(normal * radius);
        osg::ref_ptr<osg::Geometry> geometry = new osg::Geometry;
        geometry->setVertexArray(vertices);
        geometry->setNormalArray(m_normals);
        geometry->addPrimitiveSet(triangleSet(m_indices, vertices->size()));
        geometry->setUseDisplayList(false);
        geometry->setUseVertexBufferObjects(true);
        return geometry;
    }

private:
    /// Goes around both rings at once; the ring whose next vertex comes first takes the next step.
    void stitch(unsigned int inner, unsigned int innerSegments, unsigned int outer, unsigned int outerSegments)
    {
        unsigned int i = 0;
        unsigned int o = 0;
        while (i < innerSegments || o < outerSegments) {
            const unsigned int innerIndex = inner + i % innerSegments;
            const unsigned int outerIndex = outer + o % outerSegments;
            const bool stepOutside = (o + 1) * innerSegments <= (i + 1) * outerSegments;
            if (stepOutside)
                m_indices.insert(m_indices.end(), {innerIndex, outerIndex, outer + ++o % outerSegments});
            else if (innerSegments > 1)
                m_indices.insert(m_indices.end(), {innerIndex, outerIndex, inner + ++i % innerSegments});
            else
                ++i; // around the pole there is nothing to go
        }
    }

    osg::ref_ptr<osg::Vec3Array> m_normals = new osg::Vec3Array(osg::Array::BIND_PER_VERTEX);
    std::vector<unsigned int> m_indices;
    unsigned int m_innerFirst = 0;
    unsigned int m_innerSegments = 1;
};

osg::ref_ptr<osg::Geometry> makeCap(float radius)
{
    CapBuilder builder;
    for (const Ring& ring : kRings) builder.addRing(osg::PI_2 - ring.fromOutline, ring.segments);
    return builder.build(radius);
}

/// The rotation that turns +Z of a drawable towards the eye.
osg::Matrixd facingTheEye(const osg::Matrixd& modelView, const osg::Matrixd& projection)
{
    const osg::Matrixd toObject = osg::Matrixd::inverse(modelView);
    const bool isParallel = projection(3, 3) != 0.0;
    const osg::Vec3d direction =
        isParallel ? osg::Matrixd::transform3x3(osg::Vec3d(0.0, 0.0, 1.0), toObject) : toObject.getTrans();
    return osg::Matrixd::rotate(osg::Vec3d(0.0, 0.0, 1.0), direction);
}

/// Whether triangles are filled, rather than drawn by their edges or corners.
bool fillsTriangles(const osg::State& state)
{
    const auto* const mode =
        static_cast<const osg::PolygonMode*>(state.getLastAppliedAttribute(osg::StateAttribute::POLYGONMODE));
    return !mode || mode->getMode(osg::PolygonMode::FRONT) == osg::PolygonMode::FILL;
}

} // namespace

SphereMesh::SphereMesh(float meshRadius, float meshRatio) : radius(meshRadius), detailRatio(meshRatio)
{
    const osg::ref_ptr<osg::Sphere> sphere = new osg::Sphere(osg::Vec3f(), radius);
    const osg::ref_ptr<osg::ShapeDrawable> full = ShapeBuilder(detailRatio).build(sphere, osg::Vec4f());
    osg::TriangleIndexFunctor<CollectTriangles> collect;
    full->accept(collect);

    vertices = full->getVertexArray();
    normals = full->getNormalArray();
    triangles = triangleSet(collect.indices, vertices->getNumElements());
    box = full->getBoundingBox();
    if (radius >= kMinCapRadius && radius <= kMaxCapRadius && detailRatio >= kMinRoundRatio) cap = makeCap(radius);
}

SphereMesh::~SphereMesh() = default;

osg::ref_ptr<SphereMesh> SphereMesh::shared(float radius, float detailRatio)
{
    static std::map<std::pair<float, float>, osg::observer_ptr<SphereMesh>> meshes;
    // What is not equal to itself has no equals to share with, and no place in a map.
    if (std::isnan(radius) || std::isnan(detailRatio)) return new SphereMesh(radius, detailRatio);

    const auto known = meshes.find({radius, detailRatio});
    osg::ref_ptr<SphereMesh> mesh;
    if (known != meshes.end() && known->second.lock(mesh)) return mesh;

    for (auto entry = meshes.begin(); entry != meshes.end();)
        entry = entry->second.valid() ? std::next(entry) : meshes.erase(entry);
    mesh = new SphereMesh(radius, detailRatio);
    meshes[{radius, detailRatio}] = mesh;
    return mesh;
}

SphereDrawable::SphereDrawable(float radius, float detailRatio) : m_detailRatio(detailRatio)
{
    _shape = new osg::Sphere(osg::Vec3f(), radius);
    _tessellationHints = new osg::TessellationHints;
    _tessellationHints->setDetailRatio(detailRatio);
    setDataVariance(osg::Object::DYNAMIC); // states recolour it while frames are drawn
    setSupportsDisplayList(false);         // each frame may turn the cap another way
    setUseVertexBufferObjects(true);       // which equals share
    use(SphereMesh::shared(radius, detailRatio));
}

SphereDrawable::~SphereDrawable() = default;

void SphereDrawable::prepare(float radius)
{
    m_spare = SphereMesh::shared(radius, m_detailRatio);
}

void SphereDrawable::resize(osg::Sphere& sphere, float radius)
{
    sphere.setRadius(radius);
    if (!showsMesh()) {
        build();
        return;
    }
    if (m_mesh->radius == radius) return;
    if (!m_spare || m_spare->radius != radius) prepare(radius);
    std::swap(m_mesh, m_spare);
    use(m_mesh);
}

void SphereDrawable::use(const osg::ref_ptr<SphereMesh>& mesh)
{
    m_mesh = mesh;
    setVertexArray(mesh->vertices);
    setNormalArray(mesh->normals);
    getPrimitiveSetList().assign(1, mesh->triangles);
    dirtyBound();
    dirtyGLObjects();
}

bool SphereDrawable::showsMesh() const
{
    return getVertexArray() == m_mesh->vertices && getNormalArray() == m_mesh->normals && getNumPrimitiveSets() == 1 &&
           getPrimitiveSet(0) == m_mesh->triangles;
}

osg::BoundingBox SphereDrawable::computeBoundingBox() const
{
    return showsMesh() ? m_mesh->box : osg::ShapeDrawable::computeBoundingBox();
}

bool SphereDrawable::looksRound() const
{
    // A translucent sphere shows its far side too.
    return m_detailRatio >= kMinRoundRatio && showsMesh() && getColorArray() && _color.a() >= 1.0f;
}

void SphereDrawable::drawImplementation(osg::RenderInfo& renderInfo) const
{
    osg::State& state = *renderInfo.getState();
    if (!looksRound() || !fillsTriangles(state)) return osg::ShapeDrawable::drawImplementation(renderInfo);

    state.Color(_color.r(), _color.g(), _color.b(), _color.a());
    if (drawSpherePixels(renderInfo, m_mesh->radius)) return;
    if (m_mesh->cap)
        drawCap(renderInfo);
    else
        osg::ShapeDrawable::drawImplementation(renderInfo);
}

void SphereDrawable::drawCap(osg::RenderInfo& renderInfo) const
{
    osg::State& state = *renderInfo.getState();
    const osg::Matrixd modelView = state.getModelViewMatrix();
    state.applyModelViewMatrix(facingTheEye(modelView, state.getProjectionMatrix()) * modelView);
    if (state.getUseModelViewAndProjectionUniforms()) state.applyModelViewAndProjectionUniformsIfRequired();
    m_mesh->cap->drawImplementation(renderInfo);
    state.applyModelViewMatrix(modelView);
}

void SphereDrawable::compileGLObjects(osg::RenderInfo& renderInfo) const
{
    if (m_mesh->cap && looksRound())
        m_mesh->cap->compileGLObjects(renderInfo);
    else
        osg::ShapeDrawable::compileGLObjects(renderInfo);
}

void SphereDrawable::resizeGLObjectBuffers(unsigned int maxSize)
{
    osg::ShapeDrawable::resizeGLObjectBuffers(maxSize);
    if (m_mesh->cap) m_mesh->cap->resizeGLObjectBuffers(maxSize);
}

void SphereDrawable::releaseGLObjects(osg::State* state) const
{
    osg::ShapeDrawable::releaseGLObjects(state);
    if (m_mesh->cap) m_mesh->cap->releaseGLObjects(state);
}

} // namespace KelvOsgTools::detail
