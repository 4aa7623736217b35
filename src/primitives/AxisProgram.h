#pragma once

#include <osg/CopyOp>
#include <osg/Object>
#include <osg/Program>
#include <osg/State>

namespace KelvOsgTools::detail {

/// The shader program of axis arrows, for hosts that set nothing up.
///
/// Its vertex shader reads the `osg_ModelView...` uniforms, which OpenSceneGraph keeps up to date
/// only in contexts where they are switched on, and they are off by default. So the program
/// switches them on in every context it is applied in. They stay on there: nothing tells a state
/// attribute that it is no longer applied.
class AxisProgram : public osg::Program
{
public:
    /// Compiles the shaders from the library's resources.
    AxisProgram();
    AxisProgram(const AxisProgram& other, const osg::CopyOp& copyop);

    void apply(osg::State& state) const override;

    /// Deep copies of a scene keep the behaviour. cloneType() stays that of osg::Program on purpose:
    /// OpenSceneGraph takes it for what holds where no program is set, which must switch nothing on.
    osg::Object* clone(const osg::CopyOp& copyop) const override;

protected:
    ~AxisProgram() override;
};

} // namespace KelvOsgTools::detail
