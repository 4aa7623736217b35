#include "primitives/AxisProgram.h"

#include "primitives/ShaderText.h"

#include <osg/Shader>
#include <osg/Uniform>
#include <osg/ref_ptr>

#include <string>

namespace KelvOsgTools::detail {
namespace {

osg::ref_ptr<osg::Shader> shaderFromResource(osg::Shader::Type type, const std::string& name)
{
    const QString path = QStringLiteral(":/shaders/") + QString::fromStdString(name);
    osg::ref_ptr<osg::Shader> shader = new osg::Shader(type, readShaderText(path));
    shader->setName(name); // what OpenSceneGraph logs if a driver rejects it
    return shader;
}

/// Switches the matrix uniforms on. The matrices of the drawable ahead have been applied by then, so
/// without this update its uniforms would still hold what they held when they were last on.
void provideMatrixUniforms(osg::State& state)
{
    state.setUseModelViewAndProjectionUniforms(true);
    state.getModelViewMatrixUniform()->set(state.getModelViewMatrix());
    state.getProjectionMatrixUniform()->set(state.getProjectionMatrix());
    state.updateModelViewAndProjectionMatrixUniforms();
}

} // namespace

AxisProgram::AxisProgram()
{
    addShader(shaderFromResource(osg::Shader::VERTEX, "axis.vert"));
    addShader(shaderFromResource(osg::Shader::GEOMETRY, "axis.geom"));
    addShader(shaderFromResource(osg::Shader::FRAGMENT, "axis.frag"));
}

AxisProgram::AxisProgram(const AxisProgram& other, const osg::CopyOp& copyop) : osg::Program(other, copyop) {}

AxisProgram::~AxisProgram() = default;

void AxisProgram::apply(osg::State& state) const
{
    provideMatrixUniforms(state);
    osg::Program::apply(state);
}

osg::Object* AxisProgram::clone(const osg::CopyOp& copyop) const
{
    return new AxisProgram(*this, copyop);
}

} // namespace KelvOsgTools::detail
