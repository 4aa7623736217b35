#pragma once

#include <osg/Group>
#include <osg/NodeVisitor>

namespace kelvtest {

/// Counts how often it is traversed.
class CountedGroup : public osg::Group
{
public:
    void traverse(osg::NodeVisitor& visitor) override
    {
        ++count;
        osg::Group::traverse(visitor);
    }
    int count = 0;
};

} // namespace kelvtest
