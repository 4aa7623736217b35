#pragma once

#include <osg/Group>
#include <osg/Image>
#include <osg/MatrixTransform>
#include <osg/Node>
#include <osg/Vec2f>
#include <osg/Vec3d>
#include <osg/ref_ptr>
#include <osgText/Text>
#include <osgViewer/Viewer>

#include <string>

namespace tour {

/// A viewer without a window: camera, lights, background and caption for the pictures of the tour.
class Studio
{
public:
    static constexpr int kWidth = 1280;
    static constexpr int kHeight = 800;

    /// @param font file of the caption's font; empty for the default font
    /// @throws std::runtime_error if no OpenGL context can be had
    explicit Studio(const std::string& font);
    ~Studio();

    osgViewer::Viewer& viewer() { return *m_viewer; }

    /// Shows a scene, and points the camera at what is under subject so that it fills the picture.
    void show(osg::Group* scene, osg::Node* subject);

    /// Where a point of the world is in the picture, pixels from the bottom left.
    osg::Vec2f windowPosition(const osg::Vec3d& world) const;

    /// Draws a mouse pointer at a window position in the pictures that follow.
    void showPointer(const osg::Vec2f& position);
    void hidePointer();

    /// Renders the scene and writes the picture, with a caption, as PNG.
    /// @throws std::runtime_error if the file cannot be written
    void save(const std::string& path, const std::string& caption);

private:
    osg::ref_ptr<osgViewer::Viewer> m_viewer;
    osg::ref_ptr<osg::Image> m_picture;
    osg::ref_ptr<osg::Group> m_frame; // background, caption and pointer; no part of the scene
    osg::ref_ptr<osgText::Text> m_caption;
    osg::ref_ptr<osg::MatrixTransform> m_pointer;
};

} // namespace tour
