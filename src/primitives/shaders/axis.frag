#version 330 core

const vec3 ambient = vec3(0.2);

uniform vec3 color;
uniform bool isInside;

in GS_OUT
{
    float lightIntensity;
} face;

out vec4 fragColor;

float alphaOf(float intensity)
{
    if (!isInside) return 1.0;
    return intensity <= 0.0 ? 0.0 : 0.5;
}

void main()
{
    fragColor = vec4((face.lightIntensity * 0.8 + ambient) * color, alphaOf(face.lightIntensity));
}
