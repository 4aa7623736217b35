# Headers of other projects that most sources of ours include; reading them is two thirds of the time that
# a source takes to compile. Off by default: a build without them tells when a source forgets an include.
option(KELVOSGTOOLS_PRECOMPILE_HEADERS "Precompile the headers of OpenSceneGraph and Qt" OFF)

set(kelvosgtools_common_headers
    <osg/AutoTransform>
    <osg/Camera>
    <osg/Geode>
    <osg/Geometry>
    <osg/MatrixTransform>
    <osg/ShapeDrawable>
    <osg/ValueObject>
    <osg/observer_ptr>
    <osgText/Text>
    <osgUtil/IntersectionVisitor>
    <osgUtil/LineSegmentIntersector>
    <osgViewer/Viewer>
    <QDebug>
    <QFile>
    <QFileInfo>
    <QString>
    <algorithm>
    <array>
    <cmath>
    <functional>
    <map>
    <optional>
    <string>
    <utility>
    <vector>)

# Precompiles the common headers, and HEADERS, for the target.
function(kelvosgtools_precompile_headers target)
    if(KELVOSGTOOLS_PRECOMPILE_HEADERS)
        cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "HEADERS")
        target_precompile_headers(${target} PRIVATE ${kelvosgtools_common_headers} ${arg_HEADERS})
    endif()
endfunction()

# Lets the target use what is precompiled for the other one, which must have the same compile options.
function(kelvosgtools_reuse_precompiled_headers target other)
    if(KELVOSGTOOLS_PRECOMPILE_HEADERS)
        target_precompile_headers(${target} REUSE_FROM ${other})
    endif()
endfunction()
