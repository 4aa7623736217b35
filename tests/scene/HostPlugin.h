#pragma once

// What a plug-in of a host offers; this header needs neither Qt nor OpenSceneGraph.

namespace osg {
class Group;
}

extern "C" {

/// Makes features of all kinds in a scene of its own, uses them in every way, and drops them.
/// @return how many things went otherwise than they should
using PluginUse = int();

/// Hangs features of all kinds under the host's scene.
using PluginShow = void(osg::Group* scene);

/// Takes them away again, with their roots.
using PluginHide = void(osg::Group* scene);

/// Makes as many dots and keeps them, in place of those it kept before.
using PluginKeep = void(int count);

/// How many of the dots that it keeps can be found by their names.
using PluginCountKept = int();

/// Sets the font size of labels, of the process.
using PluginSetFontSize = void(int size);

/// Font size of the label of a dot that is made now.
using PluginFontSize = int();
}
