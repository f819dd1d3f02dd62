// Normals of heights by the derivatives over the screen, for the nodes of material documents.
#ifndef SFG_MTLX_GEOMETRY_H
#define SFG_MTLX_GEOMETRY_H

#include "sfg_math.h"
#include "sfg_stage.h"

// The surface (u, v, height) has its normal across its two derivatives; heights are in sixteenths of the square.
// Answers the colour of a normal map.
float3 sfg_mtlxNormalOfHeight(float height, float scale, float2 uv)
{
    float3 right = float3(sfg_ddx(uv), sfg_ddx(height) * scale / 16.0);
    float3 up = float3(sfg_ddy(uv), sfg_ddy(height) * scale / 16.0);
    float3 n = cross(right, up);
    n = dot(n, n) < 0.000000000001 ? float3(0.0, 0.0, 1.0) : n.z < 0.0 ? -n : n;
    return sfg_safeNormalize(n) * 0.5 + 0.5;
}

#endif
