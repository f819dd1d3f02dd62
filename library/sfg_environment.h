// Light from a picture all around, prepared by the renderer: spherical harmonics for diffuse light, a cube map whose
// levels are blurred for reflections.
#ifndef SFG_ENVIRONMENT_H
#define SFG_ENVIRONMENT_H

#include "sfg_samplers.h"

// Irradiance divided by pi along the unit vector n. The nine colours are factors of 1, y, z, x, xy, yz, 3 z z - 1, xz
// and x x - y y (Ramamoorthi and Hanrahan 2001).
float3 sfg_harmonicIrradiance(
    float3 n, float3 c0, float3 c1, float3 c2, float3 c3, float3 c4, float3 c5, float3 c6, float3 c7, float3 c8)
{
    float3 sum = c0 + c1 * n.y + c2 * n.z + c3 * n.x;
    sum += c4 * (n.x * n.y) + c5 * (n.y * n.z) + c6 * (3.0 * n.z * n.z - 1.0) + c7 * (n.x * n.z);
    return max(sum + c8 * (n.x * n.x - n.y * n.y), 0.0);
}

// What a surface of that roughness mirrors of a cube map whose levels 0 to lastLevel are blurred for a roughness of 0
// to 1 (Karis 2013).
float3 sfg_mirroredEnvironment(sfg_samplerCube image, float3 direction, float roughness, float lastLevel)
{
    return sfg_sampleLevelCube(image, direction, saturate(roughness) * lastLevel).rgb;
}

#endif
