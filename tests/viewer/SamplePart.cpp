#include "viewer/SamplePart.h"

#include <osg/Geometry>
#include <osg/TriangleFunctor>
#include <osgDB/WriteFile>
#include <osgUtil/SmoothingVisitor>
#include <osgUtil/Tessellator>

#include <QDir>

#include <cmath>
#include <vector>

namespace viewertest {
namespace {

constexpr float kHalfLength = 80.0f;
constexpr float kHalfWidth = 50.0f;
constexpr float kCornerRadius = 14.0f;
constexpr float kPlateHeight = 10.0f;
constexpr float kHoleX = 62.0f;
constexpr float kHoleY = 32.0f;
constexpr float kHoleRadius = 7.0f;
constexpr float kBoreRadius = 20.0f;
constexpr float kTubeRadius = 30.0f;
constexpr float kTubeHeight = 46.0f;
constexpr float kRibHalfThickness = 5.0f;
constexpr float kRibEnd = 72.0f;
constexpr unsigned int kPointsOfCircle = 64;
const double kTwoPi = 2.0 * osg::PI;

using Contour = std::vector<osg::Vec2f>;

Contour circle(const osg::Vec2f& centre, float radius)
{
    Contour points;
    for (unsigned int i = 0; i < kPointsOfCircle; ++i) {
        const double angle = kTwoPi * i / kPointsOfCircle;
        points.emplace_back(centre + osg::Vec2f(float(std::cos(angle)), float(std::sin(angle))) * radius);
    }
    return points;
}

/// A quarter of a circle at each corner; the edges between them come by themselves.
Contour roundedRectangle()
{
    Contour points;
    for (const osg::Vec2f& point : circle(osg::Vec2f(), kCornerRadius))
        points.emplace_back(point.x() + std::copysign(kHalfLength - kCornerRadius, point.x()),
                            point.y() + std::copysign(kHalfWidth - kCornerRadius, point.y()));
    return points;
}

/// Triangles without shared vertices, so that every face is flat.
class Faces
{
public:
    void triangle(const osg::Vec3f& a, const osg::Vec3f& b, const osg::Vec3f& c)
    {
        osg::Vec3f normal = (b - a) ^ (c - a);
        normal.normalize();
        for (const osg::Vec3f& corner : {a, b, c}) {
            m_vertices->push_back(corner);
            m_normals->push_back(normal);
        }
    }

    void quad(const osg::Vec3f& a, const osg::Vec3f& b, const osg::Vec3f& c, const osg::Vec3f& d)
    {
        triangle(a, b, c);
        triangle(a, c, d);
    }

    /// Upright walls along a contour that runs counterclockwise; outwards or, of a hole, inwards.
    void walls(const Contour& contour, float bottom, float top, bool isHole)
    {
        for (std::size_t i = 0; i < contour.size(); ++i) {
            osg::Vec2f a = contour[i];
            osg::Vec2f b = contour[(i + 1) % contour.size()];
            if (isHole) std::swap(a, b);
            quad({a, bottom}, {b, bottom}, {b, top}, {a, top});
        }
    }

    /// A flat face with holes.
    void face(const std::vector<Contour>& contours, float z, bool up)
    {
        const osg::ref_ptr<osg::Geometry> geometry = new osg::Geometry;
        const osg::ref_ptr<osg::Vec3Array> vertices = new osg::Vec3Array;
        geometry->setVertexArray(vertices);
        for (const Contour& contour : contours) {
            geometry->addPrimitiveSet(new osg::DrawArrays(GL_POLYGON, int(vertices->size()), int(contour.size())));
            for (const osg::Vec2f& point : contour) vertices->push_back({point, z});
        }
        const osg::ref_ptr<osgUtil::Tessellator> tessellator = new osgUtil::Tessellator;
        tessellator->setTessellationType(osgUtil::Tessellator::TESS_TYPE_GEOMETRY);
        tessellator->setWindingType(osgUtil::Tessellator::TESS_WINDING_ODD);
        tessellator->retessellatePolygons(*geometry);
        osg::TriangleFunctor<Collector> collector;
        geometry->accept(collector);
        for (std::size_t i = 0; i + 2 < collector.corners.size(); i += 3) {
            const osg::Vec3f& a = collector.corners[i];
            osg::Vec3f b = collector.corners[i + 1];
            osg::Vec3f c = collector.corners[i + 2];
            if ((((b - a) ^ (c - a)).z() > 0.0f) != up) std::swap(b, c);
            triangle(a, b, c);
        }
    }

    osg::ref_ptr<osg::Geode> geode() const
    {
        const osg::ref_ptr<osg::Geometry> geometry = new osg::Geometry;
        geometry->setVertexArray(m_vertices);
        geometry->setNormalArray(m_normals, osg::Array::BIND_PER_VERTEX);
        geometry->addPrimitiveSet(new osg::DrawArrays(GL_TRIANGLES, 0, int(m_vertices->size())));
        const osg::ref_ptr<osg::Geode> geode = new osg::Geode;
        geode->addDrawable(geometry);
        return geode;
    }

private:
    struct Collector
    {
        std::vector<osg::Vec3f> corners;
        void operator()(const osg::Vec3& a, const osg::Vec3& b, const osg::Vec3& c, bool = false)
        {
            corners.insert(corners.end(), {a, b, c});
        }
    };

    osg::ref_ptr<osg::Vec3Array> m_vertices = new osg::Vec3Array;
    osg::ref_ptr<osg::Vec3Array> m_normals = new osg::Vec3Array;
};

void addPlate(Faces& faces)
{
    std::vector<Contour> contours{roundedRectangle()};
    for (const osg::Vec2f& centre : {osg::Vec2f(kHoleX, kHoleY), osg::Vec2f(-kHoleX, kHoleY),
                                     osg::Vec2f(-kHoleX, -kHoleY), osg::Vec2f(kHoleX, -kHoleY)})
        contours.push_back(circle(centre, kHoleRadius));
    contours.push_back(circle(osg::Vec2f(), kBoreRadius));
    faces.face(contours, kPlateHeight, true);
    faces.face(contours, 0.0f, false);
    for (std::size_t i = 0; i < contours.size(); ++i) faces.walls(contours[i], 0.0f, kPlateHeight, i > 0);
}

void addTube(Faces& faces)
{
    const Contour outside = circle(osg::Vec2f(), kTubeRadius);
    const Contour inside = circle(osg::Vec2f(), kBoreRadius);
    faces.walls(outside, kPlateHeight, kTubeHeight, false);
    faces.walls(inside, kPlateHeight, kTubeHeight, true);
    faces.face({outside, inside}, kTubeHeight, true);
}

/// A wedge from the tube down to the plate.
void addRib(Faces& faces, float side)
{
    const float inner = side * (kTubeRadius - 1.0f); // starts inside the tube, leaves no gap
    const float outer = side * kRibEnd;
    const float width = side * kRibHalfThickness; // mirrors the faces together with x
    const float top = kTubeHeight - 8.0f;
    const osg::Vec3f foot[2] = {{inner, -width, kPlateHeight}, {inner, width, kPlateHeight}};
    const osg::Vec3f crest[2] = {{inner, -width, top}, {inner, width, top}};
    const osg::Vec3f end[2] = {{outer, -width, kPlateHeight}, {outer, width, kPlateHeight}};
    faces.triangle(foot[0], end[0], crest[0]);
    faces.triangle(foot[1], crest[1], end[1]);
    faces.quad(end[0], end[1], crest[1], crest[0]);
}

} // namespace

osg::ref_ptr<osg::Geode> samplePart()
{
    Faces faces;
    addPlate(faces);
    addTube(faces);
    addRib(faces, 1.0f);
    addRib(faces, -1.0f);
    const osg::ref_ptr<osg::Geode> part = faces.geode();
    // Round walls look round, edges stay sharp.
    osgUtil::SmoothingVisitor smoothing;
    smoothing.setCreaseAngle(osg::DegreesToRadians(25.0));
    part->accept(smoothing);
    return part;
}

osg::ref_ptr<osg::Geode> bumpySquare(unsigned int cells)
{
    const auto vertex = [cells](unsigned int column, unsigned int row) {
        const float x = 100.0f * float(column) / float(cells) - 50.0f;
        const float y = 100.0f * float(row) / float(cells) - 50.0f;
        return osg::Vec3f(x, y, 4.0f * std::sin(x * 0.2f) * std::cos(y * 0.15f));
    };
    Faces faces;
    for (unsigned int row = 0; row < cells; ++row)
        for (unsigned int column = 0; column < cells; ++column)
            faces.quad(vertex(column, row), vertex(column + 1, row), vertex(column + 1, row + 1),
                       vertex(column, row + 1));
    return faces.geode();
}

QString writeMesh(const osg::Node& mesh, const QString& folder, const QString& name)
{
    const QString path = QDir(folder).filePath(name);
    return osgDB::writeNodeFile(mesh, path.toStdString()) ? path : QString();
}

} // namespace viewertest
