// Building blocks of the patterns: bricks, hexagons, wood rings, marble veins.
#ifndef SFG_PATTERNS_H
#define SFG_PATTERNS_H

#include "sfg_noise.h"

// A wall of `count` bricks per unit of uv. x: 0 in the mortar, 1 on the brick. y: random number of the brick.
// `mortar` is the joint's width in brick heights, `shift` how far every second row is moved, in brick widths.
float2 sfg_brickWall(float2 uv, float2 count, float mortar, float shift)
{
    float2 q = uv * count;
    float row = floor(q.y);
    q.x += shift * (row - 2.0 * floor(row * 0.5));
    float2 cell = floor(q);
    float2 f = q - cell;
    float2 border = min(f, 1.0 - f);
    border.x *= sfg_safeDivide(count.y, count.x);
    float joint = 0.5 * mortar;
    float bevel = max(0.25 * joint, 0.0001);
    float t = saturate((min(border.x, border.y) - joint) / bevel);
    return float2(t * t * (3.0 - 2.0 * t), sfg_random2(cell));
}

// Share of the wall that is brick and not mortar.
float sfg_brickCoverage(float2 count, float mortar)
{
    return saturate(1.0 - mortar) * saturate(1.0 - mortar * sfg_safeDivide(count.x, count.y));
}

// Hexagons of width 1. xy: centre of the hexagon. z: distance to its border.
float3 sfg_hexagon(float2 p)
{
    float2 period = float2(1.0, 1.73205080756888);
    float2 half_ = 0.5 * period;
    float2 a = p - period * floor(p / period) - half_;
    float2 b = (p - half_) - period * floor((p - half_) / period) - half_;
    float2 nearest = dot(a, a) < dot(b, b) ? a : b;
    float2 folded = abs(nearest);
    float outward = max(folded.x, dot(folded, half_));
    return float3(p - nearest, 0.5 - outward);
}

// Rings around the y axis, 0 in the early wood rising to 1 in the late wood of each year (Ebert et al. 1994).
float sfg_woodRing(float3 p, float ringsPerUnit, float distortion, int octaves)
{
    float radius = length(p.xz) * ringsPerUnit + distortion * sfg_fbm3(p, octaves, 2.0, 0.5);
    float year = radius - floor(radius);
    float rise = saturate(year / 0.8);
    float fall = saturate((year - 0.85) / 0.15);
    return rise * rise * (3.0 - 2.0 * rise) * (1.0 - fall * fall * (3.0 - 2.0 * fall));
}

// Sine veins across x, disturbed by turbulence; in [0, 1] (Perlin 1985).
float sfg_marbleVein(float3 p, float veinsPerUnit, float distortion, int octaves)
{
    float phase = p.x * veinsPerUnit + distortion * sfg_turbulence3(p, octaves, 2.0, 0.5);
    return 0.5 + 0.5 * sin(SFG_TWO_PI * phase);
}

// Rolling hills in [0, 1], from a fractal sum of which little is far from 0.
float sfg_hills(float3 p, int octaves)
{
    return saturate(0.5 + 1.2 * sfg_fbm3(p, octaves, 2.0, 0.5));
}

// Ridged sum of gradient noise with offset 1 and gain 2; in [0, 1] (Musgrave, in Ebert et al. 1994).
float sfg_ridged3(float3 p, int octaves, float lacunarity)
{
    float total = 0.0;
    float weights = 0.0;
    float weight = 1.0;
    float amplitude = 1.0;
    for (int i = 0; i < min(octaves, 12); ++i)
    {
        p = sfg_turned3(p);
        float ridge = 1.0 - abs(sfg_perlinNoise3(p));
        ridge = ridge * ridge * weight;
        weight = saturate(ridge * 2.0);
        total += ridge * amplitude;
        weights += amplitude;
        amplitude *= 0.5;
        p *= lacunarity;
    }
    return weights > 0.0 ? total / weights : 0.0;
}

#endif
