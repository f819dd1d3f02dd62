// Normal maps and height maps. Tangent space: x along growing u, y along growing v, z along the surface normal.
#ifndef SFG_TEXTURES_H
#define SFG_TEXTURES_H

#include "sfg_math.h"
#include "sfg_samplers.h"

// The unit vector behind a normal-map colour; strength scales its slope.
float3 sfg_unpackNormal(float3 encoded, float strength)
{
    float3 n = encoded * 2.0 - 1.0;
    return sfg_safeNormalize(float3(n.xy * strength, n.z));
}

float3 sfg_tangentToWorld(float3 n, float3 tangent, float3 binormal, float3 normal)
{
    return sfg_safeNormalize(n.x * sfg_safeNormalize(tangent) + n.y * sfg_safeNormalize(binormal) +
        n.z * sfg_safeNormalize(normal));
}

float3 sfg_worldToTangent(float3 v, float3 tangent, float3 binormal, float3 normal)
{
    return float3(dot(v, sfg_safeNormalize(tangent)), dot(v, sfg_safeNormalize(binormal)),
        dot(v, sfg_safeNormalize(normal)));
}

// Walks along the line of sight through a height map (red channel, 1 = surface) in equal steps and answers the
// texture coordinates where it meets the relief, interpolated between the last two steps (Tatarchuk 2006).
// `travel` is the shift of the texture coordinates over the full depth.
float2 sfg_parallaxMarch(sfg_sampler2D heights, float2 uv, float2 travel, int steps)
{
    float stride = 1.0 / float(steps);
    float before = 1.0 - sfg_sampleLevel2D(heights, uv, 0.0).r;
    for (int i = 1; i <= steps; ++i)
    {
        float depth = float(i) * stride;
        float after = 1.0 - sfg_sampleLevel2D(heights, uv + travel * depth, 0.0).r;
        if (after <= depth)
        {
            float above = before - (depth - stride);
            float below = depth - after;
            return uv + travel * (depth - stride * below / max(above + below, 0.00001));
        }
        before = after;
    }
    return uv + travel;
}

#endif
