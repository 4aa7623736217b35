#version 330 core

layout(location = 0) in vec3 pos;

uniform mat4 osg_ModelViewProjectionMatrix;
uniform mat4 osg_ModelViewMatrix;

out VS_OUT
{
    vec3 vPosition; // in eye space
} vsOut;

void main()
{
    vsOut.vPosition = vec3(osg_ModelViewMatrix * vec4(pos, 1.0));
    gl_Position = osg_ModelViewProjectionMatrix * vec4(pos, 1.0);
}
