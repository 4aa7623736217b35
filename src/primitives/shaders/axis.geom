#version 330 core

// One light intensity for each triangle, from a light at the eye.

layout(triangles) in;
layout(triangle_strip, max_vertices = 3) out;

const vec3 lightVec = vec3(0.0, 0.0, 1.0); // in eye space

uniform bool isInside; // lights the faces turned away instead: they are what is seen through an occluder

in VS_OUT
{
    vec3 vPosition;
} vertices[];

out GS_OUT
{
    float lightIntensity;
} gsOut;

float lightOn(vec3 normal)
{
    float towardsLight = dot(lightVec, normal);
    return isInside ? abs(min(towardsLight, 0.0)) : max(towardsLight, 0.0);
}

void main()
{
    vec3 first = vertices[0].vPosition;
    vec3 normal = normalize(cross(normalize(vertices[1].vPosition - first), normalize(vertices[2].vPosition - first)));
    float intensity = lightOn(normal);
    for (int i = 0; i < 3; ++i)
    {
        gl_Position = gl_in[i].gl_Position;
        gsOut.lightIntensity = intensity;
        EmitVertex();
    }
    EndPrimitive();
}
