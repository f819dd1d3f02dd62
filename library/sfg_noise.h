// Integer hashes and lattice noises. All hashing is done on integers, so every device agrees on the pattern.
// Hashes: Jarzynski and Olano, "Hash Functions for GPU Rendering", JCGT 9(3), 2020.
#ifndef SFG_NOISE_H
#define SFG_NOISE_H

#include "sfg_math.h"

uint sfg_pcg(uint key)
{
    uint mixed = key * 747796405u + 2891336453u;
    uint word = ((mixed >> ((mixed >> 28u) + 4u)) ^ mixed) * 277803737u;
    return (word >> 22u) ^ word;
}

uint2 sfg_pcg2d(uint2 v)
{
    v = v * 1664525u + 1013904223u;
    v.x += v.y * 1664525u;
    v.y += v.x * 1664525u;
    v = v ^ (v >> 16u);
    v.x += v.y * 1664525u;
    v.y += v.x * 1664525u;
    v = v ^ (v >> 16u);
    return v;
}

uint3 sfg_pcg3d(uint3 v)
{
    v = v * 1664525u + 1013904223u;
    v.x += v.y * v.z;
    v.y += v.z * v.x;
    v.z += v.x * v.y;
    v = v ^ (v >> 16u);
    v.x += v.y * v.z;
    v.y += v.z * v.x;
    v.z += v.x * v.y;
    return v;
}

// The upper 24 bits of a hash as a number in [0, 1); exact in 32-bit floats.
float sfg_hashToUnit(uint h)
{
    return float(h >> 8u) * (1.0 / 16777216.0);
}

// The lattice cell that holds p, as hash input. Negative cells wrap to large unsigned numbers; beyond the range of
// whole numbers all is one cell.
uint sfg_cell1(float p)
{
    return uint(int(clamp(floor(p), -2147483648.0, 2147483520.0)));
}

uint2 sfg_cell2(float2 p)
{
    return uint2(sfg_cell1(p.x), sfg_cell1(p.y));
}

uint3 sfg_cell3(float3 p)
{
    return uint3(sfg_cell1(p.x), sfg_cell1(p.y), sfg_cell1(p.z));
}

// One number in [0, 1) per lattice cell.
float sfg_random2(float2 p)
{
    return sfg_hashToUnit(sfg_pcg2d(sfg_cell2(p)).x);
}

float sfg_random3(float3 p)
{
    return sfg_hashToUnit(sfg_pcg3d(sfg_cell3(p)).x);
}

float sfg_valueCorner2(uint2 cell, uint2 corner)
{
    return sfg_hashToUnit(sfg_pcg2d(cell + corner).x);
}

// Value noise in [0, 1): random numbers at the lattice points, blended with the fade curve of Perlin 2002.
float sfg_valueNoise2(float2 p)
{
    uint2 cell = sfg_cell2(p);
    float2 f = p - floor(p);
    float u = sfg_fade(f.x);
    float v = sfg_fade(f.y);
    float bottom = lerp(sfg_valueCorner2(cell, uint2(0u, 0u)), sfg_valueCorner2(cell, uint2(1u, 0u)), u);
    float top = lerp(sfg_valueCorner2(cell, uint2(0u, 1u)), sfg_valueCorner2(cell, uint2(1u, 1u)), u);
    return lerp(bottom, top, v);
}

float sfg_valueCorner3(uint3 cell, uint3 corner)
{
    return sfg_hashToUnit(sfg_pcg3d(cell + corner).x);
}

float sfg_valueNoise3(float3 p)
{
    uint3 cell = sfg_cell3(p);
    float3 f = p - floor(p);
    float u = sfg_fade(f.x);
    float v = sfg_fade(f.y);
    float w = sfg_fade(f.z);
    float a = lerp(sfg_valueCorner3(cell, uint3(0u, 0u, 0u)), sfg_valueCorner3(cell, uint3(1u, 0u, 0u)), u);
    float b = lerp(sfg_valueCorner3(cell, uint3(0u, 1u, 0u)), sfg_valueCorner3(cell, uint3(1u, 1u, 0u)), u);
    float c = lerp(sfg_valueCorner3(cell, uint3(0u, 0u, 1u)), sfg_valueCorner3(cell, uint3(1u, 0u, 1u)), u);
    float d = lerp(sfg_valueCorner3(cell, uint3(0u, 1u, 1u)), sfg_valueCorner3(cell, uint3(1u, 1u, 1u)), u);
    return lerp(lerp(a, b, v), lerp(c, d, v), w);
}

// Dot product of `offset` with one of eight gradients: the four diagonals and the four axes, all of length sqrt(2).
// Bit 2 of the hash picks axes or diagonals, bits 0 and 1 the signs (bit 1 the axis, when it is an axis).
float sfg_gradient2(uint h, float2 offset)
{
    float first = (h & 1u) == 0u ? 1.0 : -1.0;
    float second = (h & 2u) == 0u ? 1.0 : -1.0;
    float diagonal = first * offset.x + second * offset.y;
    float axis = 1.41421356237310 * first * ((h & 2u) == 0u ? offset.x : offset.y);
    return (h & 4u) == 0u ? diagonal : axis;
}

float sfg_perlinCorner2(uint2 cell, uint2 corner, float2 f)
{
    return sfg_gradient2(sfg_pcg2d(cell + corner).x, f - float2(corner));
}

// Gradient noise in [-1, 1], zero at the lattice points (Perlin 2002, lattice hashed with pcg2d).
float sfg_perlinNoise2(float2 p)
{
    uint2 cell = sfg_cell2(p);
    float2 f = p - floor(p);
    float u = sfg_fade(f.x);
    float v = sfg_fade(f.y);
    float bottom = lerp(sfg_perlinCorner2(cell, uint2(0u, 0u), f), sfg_perlinCorner2(cell, uint2(1u, 0u), f), u);
    float top = lerp(sfg_perlinCorner2(cell, uint2(0u, 1u), f), sfg_perlinCorner2(cell, uint2(1u, 1u), f), u);
    return lerp(bottom, top, v);
}

// Dot product of `offset` with one of the twelve edge gradients, four of them doubled (Perlin 2002).
float sfg_gradient3(uint h, float3 offset)
{
    uint low = h & 15u;
    float first = low < 8u ? offset.x : offset.y;
    float second = low < 4u ? offset.y : ((low == 12u || low == 14u) ? offset.x : offset.z);
    return ((low & 1u) == 0u ? first : -first) + ((low & 2u) == 0u ? second : -second);
}

float sfg_perlinCorner3(uint3 cell, uint3 corner, float3 f)
{
    return sfg_gradient3(sfg_pcg3d(cell + corner).x, f - float3(corner));
}

// Gradient noise in about [-1, 1], zero at the lattice points (Perlin 2002, lattice hashed with pcg3d).
float sfg_perlinNoise3(float3 p)
{
    uint3 cell = sfg_cell3(p);
    float3 f = p - floor(p);
    float u = sfg_fade(f.x);
    float v = sfg_fade(f.y);
    float w = sfg_fade(f.z);
    float a = lerp(sfg_perlinCorner3(cell, uint3(0u, 0u, 0u), f), sfg_perlinCorner3(cell, uint3(1u, 0u, 0u), f), u);
    float b = lerp(sfg_perlinCorner3(cell, uint3(0u, 1u, 0u), f), sfg_perlinCorner3(cell, uint3(1u, 1u, 0u), f), u);
    float c = lerp(sfg_perlinCorner3(cell, uint3(0u, 0u, 1u), f), sfg_perlinCorner3(cell, uint3(1u, 0u, 1u), f), u);
    float d = lerp(sfg_perlinCorner3(cell, uint3(0u, 1u, 1u), f), sfg_perlinCorner3(cell, uint3(1u, 1u, 1u), f), u);
    return lerp(lerp(a, b, v), lerp(c, d, v), w);
}

// Distances to the nearest (x) and second nearest (y) feature point, one point per cell (Worley 1996).
// `jitter` 0 puts the points in the middle of their cells, 1 anywhere in them.
// `first` and `last` bound the cells searched, which lie around p: -1 .. 1 is the usual 3 by 3 (by 3), 0 .. 1 the
// nearest 2 by 2 (by 2).
float2 sfg_worley2(float2 p, float jitter, int first, int last)
{
    float2 base = floor(p - 0.5 * float(first + last));
    float2 f = p - base;
    float2 nearest = float2(8.0, 8.0);
    for (int y = first; y <= last; ++y)
    {
        for (int x = first; x <= last; ++x)
        {
            float2 offset = float2(float(x), float(y));
            uint2 h = sfg_pcg2d(sfg_cell2(base + offset));
            float2 scatter = float2(sfg_hashToUnit(h.x), sfg_hashToUnit(h.y));
            float2 toPoint = offset + 0.5 + (scatter - 0.5) * jitter - f;
            float squared = dot(toPoint, toPoint);
            nearest.y = min(nearest.y, max(nearest.x, squared));
            nearest.x = min(nearest.x, squared);
        }
    }
    return sqrt(nearest);
}

float2 sfg_worley3(float3 p, float jitter, int first, int last)
{
    float3 base = floor(p - 0.5 * float(first + last));
    float3 f = p - base;
    float2 nearest = float2(12.0, 12.0);
    for (int z = first; z <= last; ++z)
    {
        for (int y = first; y <= last; ++y)
        {
            for (int x = first; x <= last; ++x)
            {
                float3 offset = float3(float(x), float(y), float(z));
                uint3 h = sfg_pcg3d(sfg_cell3(base + offset));
                float3 scatter = float3(sfg_hashToUnit(h.x), sfg_hashToUnit(h.y), sfg_hashToUnit(h.z));
                float3 toPoint = offset + 0.5 + (scatter - 0.5) * jitter - f;
                float squared = dot(toPoint, toPoint);
                nearest.y = min(nearest.y, max(nearest.x, squared));
                nearest.x = min(nearest.x, squared);
            }
        }
    }
    return sqrt(nearest);
}

// The lattices of fractal sums, turned by no simple angle and moved for each octave: their points, where gradient noise
// is zero, do not fall together, and no plane such as z = 0 runs along them.
float2 sfg_turned2(float2 p)
{
    return float2(0.8 * p.x - 0.6 * p.y, 0.6 * p.x + 0.8 * p.y) + float2(0.37, 0.71);
}

float3 sfg_turned3(float3 p)
{
    float3 turned = float3(dot(p, float3(8.0, 1.0, -4.0)), dot(p, float3(-4.0, 4.0, -7.0)), dot(p, float3(1.0, 8.0, 4.0)));
    return turned * (1.0 / 9.0) + float3(0.37, 0.71, 0.53);
}

// Fractal sums: octave i has the frequency lacunarity^i and the weight gain^i (a negative gain
// counts as 0); at most 12 octaves.
// The sum is divided by the sum of the weights, so that it stays in the range of the noise, most of it near the middle.
// Musgrave, in Ebert et al. 1994.
float sfg_fbm2(float2 p, int octaves, float lacunarity, float gain)
{
    float total = 0.0;
    float weights = 0.0;
    float weight = 1.0;
    for (int i = 0; i < min(octaves, 12); ++i)
    {
        p = sfg_turned2(p);
        total += weight * sfg_perlinNoise2(p);
        weights += weight;
        weight *= max(gain, 0.0);
        p *= lacunarity;
    }
    return weights > 0.0 ? total / weights : 0.0;
}

float sfg_fbm3(float3 p, int octaves, float lacunarity, float gain)
{
    float total = 0.0;
    float weights = 0.0;
    float weight = 1.0;
    for (int i = 0; i < min(octaves, 12); ++i)
    {
        p = sfg_turned3(p);
        total += weight * sfg_perlinNoise3(p);
        weights += weight;
        weight *= max(gain, 0.0);
        p *= lacunarity;
    }
    return weights > 0.0 ? total / weights : 0.0;
}

// As sfg_fbm3, of the absolute value of the noise: creases instead of hills (Perlin 1985). In [0, 1].
float sfg_turbulence3(float3 p, int octaves, float lacunarity, float gain)
{
    float total = 0.0;
    float weights = 0.0;
    float weight = 1.0;
    for (int i = 0; i < min(octaves, 12); ++i)
    {
        p = sfg_turned3(p);
        total += weight * abs(sfg_perlinNoise3(p));
        weights += weight;
        weight *= max(gain, 0.0);
        p *= lacunarity;
    }
    return weights > 0.0 ? total / weights : 0.0;
}

#endif
