#include "support/NodeBuilders.h"

#include <osg/Geode>
#include <osg/Geometry>

namespace kelvtest {

osg::ref_ptr<osg::Group> namedGroup(const std::string& name)
{
    osg::ref_ptr<osg::Group> group = new osg::Group;
    group->setName(name);
    return group;
}

osg::ref_ptr<osg::Group> groupWithChildren(const std::vector<std::string>& names)
{
    osg::ref_ptr<osg::Group> group = new osg::Group;
    for (const std::string& name : names) group->addChild(namedGroup(name));
    return group;
}

std::vector<std::string> childNames(const osg::Group& group)
{
    std::vector<std::string> names;
    for (unsigned int i = 0; i < group.getNumChildren(); ++i) names.push_back(group.getChild(i)->getName());
    return names;
}

osg::ref_ptr<osg::Node> squareMesh(float halfSide)
{
    const osg::ref_ptr<osg::Vec3Array> corners = new osg::Vec3Array;
    corners->push_back(osg::Vec3f(-halfSide, -halfSide, 0.0f));
    corners->push_back(osg::Vec3f(halfSide, -halfSide, 0.0f));
    corners->push_back(osg::Vec3f(halfSide, halfSide, 0.0f));
    corners->push_back(osg::Vec3f(-halfSide, halfSide, 0.0f));
    const osg::ref_ptr<osg::Vec3Array> normals = new osg::Vec3Array;
    normals->push_back(osg::Vec3f(0.0f, 0.0f, 1.0f));
    const osg::ref_ptr<osg::DrawElementsUShort> triangles = new osg::DrawElementsUShort(GL_TRIANGLES);
    for (const GLushort index : {GLushort(0), GLushort(1), GLushort(2), GLushort(0), GLushort(2), GLushort(3)})
        triangles->push_back(index);

    const osg::ref_ptr<osg::Geometry> geometry = new osg::Geometry;
    geometry->setVertexArray(corners);
    geometry->setNormalArray(normals, osg::Array::BIND_OVERALL);
    geometry->addPrimitiveSet(triangles);
    osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    geode->addDrawable(geometry);
    return geode;
}

} // namespace kelvtest
