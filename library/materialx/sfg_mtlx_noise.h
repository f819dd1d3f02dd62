// Gradient, cell and Worley noise for the nodes of material documents: the same numbers on every machine.
#ifndef SFG_MTLX_NOISE_H
#define SFG_MTLX_NOISE_H

#include "sfg_math.h"
#include "sfg_mtlx_color.h"
#include "sfg_mtlx_math.h"

uint sfg_mtlxTurnBits(uint value, uint count)
{
    return (value << count) | (value >> (32u - count));
}

// The last step of a hash of three words (Jenkins 2006, lookup3).
uint sfg_mtlxFinish(uint a, uint b, uint c)
{
    c = (c ^ b) - sfg_mtlxTurnBits(b, 14u);
    a = (a ^ c) - sfg_mtlxTurnBits(c, 11u);
    b = (b ^ a) - sfg_mtlxTurnBits(a, 25u);
    c = (c ^ b) - sfg_mtlxTurnBits(b, 16u);
    a = (a ^ c) - sfg_mtlxTurnBits(c, 4u);
    b = (b ^ a) - sfg_mtlxTurnBits(a, 14u);
    return (c ^ b) - sfg_mtlxTurnBits(b, 24u);
}

// What a hash of that many words starts with.
uint sfg_mtlxSeed(uint count)
{
    return 0xdeadbeefu + (count << 2u) + 13u;
}

uint sfg_mtlxHash(int x, int y)
{
    uint seed = sfg_mtlxSeed(2u);
    return sfg_mtlxFinish(seed + uint(x), seed + uint(y), seed);
}

uint sfg_mtlxHash(int x, int y, int z)
{
    uint seed = sfg_mtlxSeed(3u);
    return sfg_mtlxFinish(seed + uint(x), seed + uint(y), seed + uint(z));
}

// With a fourth word the first three are mixed before.
uint sfg_mtlxHash(int x, int y, int z, int w)
{
    uint seed = sfg_mtlxSeed(4u);
    uint a = seed + uint(x);
    uint b = seed + uint(y);
    uint c = seed + uint(z);
    a = (a - c) ^ sfg_mtlxTurnBits(c, 4u);
    c += b;
    b = (b - a) ^ sfg_mtlxTurnBits(a, 6u);
    a += c;
    c = (c - b) ^ sfg_mtlxTurnBits(b, 8u);
    b += a;
    a = (a - c) ^ sfg_mtlxTurnBits(c, 16u);
    c += b;
    b = (b - a) ^ sfg_mtlxTurnBits(a, 19u);
    a += c;
    c = (c - b) ^ sfg_mtlxTurnBits(b, 4u);
    b += a;
    return sfg_mtlxFinish(a + uint(w), b, c);
}

// A number in [0, 1] of all bits.
float sfg_mtlxUnit(uint bits)
{
    return float(bits) / 4294967295.0;
}

// One of eight slopes of the plane, one component twice the other.
float sfg_mtlxSlope(uint hash, float2 p)
{
    bool isFlat = (hash & 7u) < 4u;
    float u = isFlat ? p.x : p.y;
    float v = 2.0 * (isFlat ? p.y : p.x);
    return ((hash & 1u) != 0u ? -u : u) + ((hash & 2u) != 0u ? -v : v);
}

// One of the slopes along the edges of a cube (Perlin 2002).
float sfg_mtlxSlope(uint hash, float3 p)
{
    uint h = hash & 15u;
    float u = h < 8u ? p.x : p.y;
    float v = h < 4u ? p.y : (h == 12u || h == 14u ? p.x : p.z);
    return ((h & 1u) != 0u ? -u : u) + ((h & 2u) != 0u ? -v : v);
}

// Three slopes of one hash, of eight bits each.
float3 sfg_mtlxSlopes(uint hash, float2 p)
{
    return float3(sfg_mtlxSlope(hash & 255u, p), sfg_mtlxSlope((hash >> 8u) & 255u, p),
        sfg_mtlxSlope((hash >> 16u) & 255u, p));
}

float3 sfg_mtlxSlopes(uint hash, float3 p)
{
    return float3(sfg_mtlxSlope(hash & 255u, p), sfg_mtlxSlope((hash >> 8u) & 255u, p),
        sfg_mtlxSlope((hash >> 16u) & 255u, p));
}

// Gradient noise (Perlin 2002), scaled to about [-1, 1].
float sfg_mtlxPerlin(float2 p)
{
    int2 cell = int2(floor(p));
    float2 f = p - floor(p);
    float low = lerp(sfg_mtlxSlope(sfg_mtlxHash(cell.x, cell.y), f),
        sfg_mtlxSlope(sfg_mtlxHash(cell.x + 1, cell.y), f - float2(1.0, 0.0)), sfg_fade(f.x));
    float high = lerp(sfg_mtlxSlope(sfg_mtlxHash(cell.x, cell.y + 1), f - float2(0.0, 1.0)),
        sfg_mtlxSlope(sfg_mtlxHash(cell.x + 1, cell.y + 1), f - 1.0), sfg_fade(f.x));
    return 0.6616 * lerp(low, high, sfg_fade(f.y));
}

float3 sfg_mtlxPerlin3(float2 p)
{
    int2 cell = int2(floor(p));
    float2 f = p - floor(p);
    float3 low = lerp(sfg_mtlxSlopes(sfg_mtlxHash(cell.x, cell.y), f),
        sfg_mtlxSlopes(sfg_mtlxHash(cell.x + 1, cell.y), f - float2(1.0, 0.0)), sfg_fade(f.x));
    float3 high = lerp(sfg_mtlxSlopes(sfg_mtlxHash(cell.x, cell.y + 1), f - float2(0.0, 1.0)),
        sfg_mtlxSlopes(sfg_mtlxHash(cell.x + 1, cell.y + 1), f - 1.0), sfg_fade(f.x));
    return 0.6616 * lerp(low, high, sfg_fade(f.y));
}

float sfg_mtlxCorner(int3 cell, float3 f, int3 corner)
{
    return sfg_mtlxSlope(
        sfg_mtlxHash(cell.x + corner.x, cell.y + corner.y, cell.z + corner.z), f - float3(corner));
}

float3 sfg_mtlxCorner3(int3 cell, float3 f, int3 corner)
{
    return sfg_mtlxSlopes(
        sfg_mtlxHash(cell.x + corner.x, cell.y + corner.y, cell.z + corner.z), f - float3(corner));
}

float sfg_mtlxPerlin(float3 p)
{
    int3 cell = int3(floor(p));
    float3 f = p - floor(p);
    float x = sfg_fade(f.x);
    float y = sfg_fade(f.y);
    float near = lerp(
        lerp(sfg_mtlxCorner(cell, f, int3(0, 0, 0)), sfg_mtlxCorner(cell, f, int3(1, 0, 0)), x),
        lerp(sfg_mtlxCorner(cell, f, int3(0, 1, 0)), sfg_mtlxCorner(cell, f, int3(1, 1, 0)), x), y);
    float far = lerp(
        lerp(sfg_mtlxCorner(cell, f, int3(0, 0, 1)), sfg_mtlxCorner(cell, f, int3(1, 0, 1)), x),
        lerp(sfg_mtlxCorner(cell, f, int3(0, 1, 1)), sfg_mtlxCorner(cell, f, int3(1, 1, 1)), x), y);
    return 0.9820 * lerp(near, far, sfg_fade(f.z));
}

float3 sfg_mtlxPerlin3(float3 p)
{
    int3 cell = int3(floor(p));
    float3 f = p - floor(p);
    float x = sfg_fade(f.x);
    float y = sfg_fade(f.y);
    float3 near = lerp(
        lerp(sfg_mtlxCorner3(cell, f, int3(0, 0, 0)), sfg_mtlxCorner3(cell, f, int3(1, 0, 0)), x),
        lerp(sfg_mtlxCorner3(cell, f, int3(0, 1, 0)), sfg_mtlxCorner3(cell, f, int3(1, 1, 0)), x), y);
    float3 far = lerp(
        lerp(sfg_mtlxCorner3(cell, f, int3(0, 0, 1)), sfg_mtlxCorner3(cell, f, int3(1, 0, 1)), x),
        lerp(sfg_mtlxCorner3(cell, f, int3(0, 1, 1)), sfg_mtlxCorner3(cell, f, int3(1, 1, 1)), x), y);
    return 0.9820 * lerp(near, far, sfg_fade(f.z));
}

float2 sfg_mtlxPerlin2(float2 p)
{
    return sfg_mtlxPerlin3(p).xy;
}

float2 sfg_mtlxPerlin2(float3 p)
{
    return sfg_mtlxPerlin3(p).xy;
}

float4 sfg_mtlxPerlin4(float2 p)
{
    return float4(sfg_mtlxPerlin3(p), sfg_mtlxPerlin(p + float2(19.0, 73.0)));
}

float4 sfg_mtlxPerlin4(float3 p)
{
    return float4(sfg_mtlxPerlin3(p), sfg_mtlxPerlin(p + float3(19.0, 73.0, 29.0)));
}

// Octaves of noise, each finer by `lacunarity` and weaker by `diminish` (Perlin 1985).
float sfg_mtlxFractal(float2 p, int octaves, float lacunarity, float diminish)
{
    float sum = 0.0;
    float weight = 1.0;
    for (int i = 0; i < octaves; ++i)
    {
        sum += weight * sfg_mtlxPerlin(p);
        weight *= diminish;
        p *= lacunarity;
    }
    return sum;
}

float3 sfg_mtlxFractal3(float2 p, int octaves, float lacunarity, float diminish)
{
    float3 sum = float3(0.0, 0.0, 0.0);
    float weight = 1.0;
    for (int i = 0; i < octaves; ++i)
    {
        sum += weight * sfg_mtlxPerlin3(p);
        weight *= diminish;
        p *= lacunarity;
    }
    return sum;
}

float2 sfg_mtlxFractal2(float2 p, int octaves, float lacunarity, float diminish)
{
    return float2(sfg_mtlxFractal(p, octaves, lacunarity, diminish),
        sfg_mtlxFractal(p + float2(19.0, 193.0), octaves, lacunarity, diminish));
}

float4 sfg_mtlxFractal4(float2 p, int octaves, float lacunarity, float diminish)
{
    return float4(sfg_mtlxFractal3(p, octaves, lacunarity, diminish),
        sfg_mtlxFractal(p + float2(19.0, 193.0), octaves, lacunarity, diminish));
}

float sfg_mtlxFractal(float3 p, int octaves, float lacunarity, float diminish)
{
    float sum = 0.0;
    float weight = 1.0;
    for (int i = 0; i < octaves; ++i)
    {
        sum += weight * sfg_mtlxPerlin(p);
        weight *= diminish;
        p *= lacunarity;
    }
    return sum;
}

float3 sfg_mtlxFractal3(float3 p, int octaves, float lacunarity, float diminish)
{
    float3 sum = float3(0.0, 0.0, 0.0);
    float weight = 1.0;
    for (int i = 0; i < octaves; ++i)
    {
        sum += weight * sfg_mtlxPerlin3(p);
        weight *= diminish;
        p *= lacunarity;
    }
    return sum;
}

float2 sfg_mtlxFractal2(float3 p, int octaves, float lacunarity, float diminish)
{
    return float2(sfg_mtlxFractal(p, octaves, lacunarity, diminish),
        sfg_mtlxFractal(p + float3(19.0, 193.0, 17.0), octaves, lacunarity, diminish));
}

float4 sfg_mtlxFractal4(float3 p, int octaves, float lacunarity, float diminish)
{
    return float4(sfg_mtlxFractal3(p, octaves, lacunarity, diminish),
        sfg_mtlxFractal(p + float3(19.0, 193.0, 17.0), octaves, lacunarity, diminish));
}

// One random number for each square or cube.
float sfg_mtlxCell(float2 p)
{
    return sfg_mtlxUnit(sfg_mtlxHash(int(floor(p.x)), int(floor(p.y))));
}

float sfg_mtlxCell(float3 p)
{
    return sfg_mtlxUnit(sfg_mtlxHash(int(floor(p.x)), int(floor(p.y)), int(floor(p.z))));
}

float3 sfg_mtlxCell3(int2 cell)
{
    return float3(sfg_mtlxUnit(sfg_mtlxHash(cell.x, cell.y, 0)), sfg_mtlxUnit(sfg_mtlxHash(cell.x, cell.y, 1)),
        sfg_mtlxUnit(sfg_mtlxHash(cell.x, cell.y, 2)));
}

float3 sfg_mtlxCell3(int3 cell)
{
    return float3(sfg_mtlxUnit(sfg_mtlxHash(cell.x, cell.y, cell.z, 0)),
        sfg_mtlxUnit(sfg_mtlxHash(cell.x, cell.y, cell.z, 1)), sfg_mtlxUnit(sfg_mtlxHash(cell.x, cell.y, cell.z, 2)));
}

// The three least squared distances, with one more.
float3 sfg_mtlxNearest(float3 sorted, float squared)
{
    if (squared < sorted.x)
        return float3(squared, sorted.xy);
    if (squared < sorted.y)
        return float3(sorted.x, squared, sorted.y);
    return float3(sorted.xy, min(sorted.z, squared));
}

// Distances to the three nearest of points that lie one in each square, off its middle by `jitter` (Worley 1996), and
// `nearest`, the nearest point.
float3 sfg_mtlxWorley(float2 p, float jitter, out float2 nearest)
{
    int2 cell = int2(floor(p));
    float2 f = p - floor(p);
    float3 sorted = float3(1000000.0, 1000000.0, 1000000.0);
    nearest = float2(0.0, 0.0);
    for (int x = -1; x <= 1; ++x)
    {
        for (int y = -1; y <= 1; ++y)
        {
            float2 away = float2(float(x), float(y)) +
                (sfg_mtlxCell3(cell + int2(x, y)).xy - 0.5) * jitter + 0.5 - f;
            float squared = dot(away, away);
            if (squared < sorted.x)
                nearest = p + away;
            sorted = sfg_mtlxNearest(sorted, squared);
        }
    }
    return sqrt(sorted);
}

float3 sfg_mtlxWorley(float3 p, float jitter, out float3 nearest)
{
    int3 cell = int3(floor(p));
    float3 f = p - floor(p);
    float3 sorted = float3(1000000.0, 1000000.0, 1000000.0);
    nearest = float3(0.0, 0.0, 0.0);
    for (int x = -1; x <= 1; ++x)
    {
        for (int y = -1; y <= 1; ++y)
        {
            for (int z = -1; z <= 1; ++z)
            {
                float3 away = float3(float(x), float(y), float(z)) +
                    (sfg_mtlxCell3(cell + int3(x, y, z)) - 0.5) * jitter + 0.5 - f;
                float squared = dot(away, away);
                if (squared < sorted.x)
                    nearest = p + away;
                sorted = sfg_mtlxNearest(sorted, squared);
            }
        }
    }
    return sqrt(sorted);
}

// The distances, or a random value for the region of each point.
float3 sfg_mtlxWorleyStyle(float2 p, float jitter, int style)
{
    float2 nearest;
    float3 distances = sfg_mtlxWorley(p, jitter, nearest);
    return style == 1 ? sfg_mtlxCell3(int2(floor(nearest))) : distances;
}

float sfg_mtlxWorleyFirst(float2 p, float jitter, int style)
{
    float2 nearest;
    float3 distances = sfg_mtlxWorley(p, jitter, nearest);
    return style == 1 ? sfg_mtlxCell(nearest) : distances.x;
}

float3 sfg_mtlxWorleyStyle(float3 p, float jitter, int style)
{
    float3 nearest;
    float3 distances = sfg_mtlxWorley(p, jitter, nearest);
    return style == 1 ? sfg_mtlxCell3(int3(floor(nearest))) : distances;
}

float sfg_mtlxWorleyFirst(float3 p, float jitter, int style)
{
    float3 nearest;
    float3 distances = sfg_mtlxWorley(p, jitter, nearest);
    return style == 1 ? sfg_mtlxCell(nearest) : distances.x;
}

float sfg_mtlxInRange(float share, float low, float high, bool doClamp)
{
    float there = low + share * (high - low);
    return doClamp ? clamp(there, low, high) : there;
}

float sfg_mtlxUnified(float2 p, float jitter, int octaves, float lacunarity, float diminish, int type, int style)
{
    float turn = (jitter - 1.0) * 90000.0;
    if (type == 0)
        return 0.5 * sfg_mtlxPerlin(sfg_mtlxTurn(p, turn)) + 0.5;
    if (type == 1)
        return sfg_mtlxCell(sfg_mtlxTurn(p, turn));
    if (type == 2)
        return sfg_mtlxWorleyFirst(p, jitter, style);
    return sfg_mtlxFractal(float3(p, turn), octaves, lacunarity, diminish);
}

float sfg_mtlxUnified(float3 p, float jitter, int octaves, float lacunarity, float diminish, int type, int style)
{
    float turn = radians((1.0 - jitter) * 90000.0);
    float3 axis = normalize(float3(0.1, 1.0, 0.0));
    float3 turned = p * cos(turn) + cross(axis, p) * sin(turn) + axis * (dot(axis, p) * (1.0 - cos(turn)));
    if (type == 0)
        return 0.5 * sfg_mtlxPerlin(turned) + 0.5;
    if (type == 1)
        return sfg_mtlxCell(turned);
    if (type == 2)
        return sfg_mtlxWorleyFirst(p, jitter, style);
    return sfg_mtlxFractal(turned, octaves, lacunarity, diminish);
}

// A random number for each value and seed.
float sfg_mtlxRandom(float value, float seed, float low, float high)
{
    return clamp(low + sfg_mtlxCell(float2(value, seed)) * (high - low), low, high);
}

float3 sfg_mtlxRandomColor(float value, float seed, float2 hue, float2 saturation, float2 brightness)
{
    float3 share = float3(sfg_mtlxRandom(value, ceil(seed + 413.3), 0.0, 1.0),
        sfg_mtlxRandom(value, ceil(seed + 1522.4), 0.0, 1.0), sfg_mtlxRandom(value, ceil(seed + 1813.8), 0.0, 1.0));
    return sfg_mtlxFromHsv(float3(lerp(hue.x, hue.y, share.x), lerp(saturation.x, saturation.y, share.y),
        lerp(brightness.x, brightness.y, share.z)));
}

#endif
