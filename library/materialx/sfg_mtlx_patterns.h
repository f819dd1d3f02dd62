// Flat shapes, tiles and ramps for the nodes of material documents. A shape is 1 inside and 0 outside.
#ifndef SFG_MTLX_PATTERNS_H
#define SFG_MTLX_PATTERNS_H

#include "sfg_stage.h"

// A step at `edge`, as wide as the distance of two pixels.
float sfg_mtlxEdge(float edge, float value)
{
    float width = 0.70710678 * length(float2(sfg_ddx(value), sfg_ddy(value)));
    return width > 0.0 ? smoothstep(edge - width, edge + width, value) : (value >= edge ? 1.0 : 0.0);
}

float sfg_mtlxLine(float2 p, float radius, float2 start, float2 end)
{
    float2 along = end - start;
    float share = saturate(dot(p - start, along) / dot(along, along));
    return length(p - start - along * share) > radius ? 0.0 : 1.0;
}

float sfg_mtlxCircle(float2 p, float radius)
{
    return dot(p, p) > radius * radius ? 0.0 : 1.0;
}

// Four circles of half the size, each touching the middle.
float sfg_mtlxCloverleaf(float2 p, float radius)
{
    float2 twice = 2.0 * p;
    float across = max(sfg_mtlxCircle(twice + float2(radius, 0.0), radius),
        sfg_mtlxCircle(twice - float2(radius, 0.0), radius));
    float up = max(sfg_mtlxCircle(twice + float2(0.0, radius), radius),
        sfg_mtlxCircle(twice - float2(0.0, radius), radius));
    return max(across, up);
}

// Folded into one twelfth of the hexagon, and compared with the side there; `radius` is that of the circle inside.
float sfg_mtlxHexagon(float2 p, float radius)
{
    float2 q = abs(p).yx;
    q -= 2.0 * min(dot(float2(-0.866025, 0.5), q), 0.0) * float2(-0.866025, 0.5);
    q -= 2.0 * min(dot(float2(0.866025, 0.5), q), 0.0) * float2(0.866025, 0.5);
    q -= float2(clamp(q.x, -0.57735 * radius, 0.57735 * radius), radius);
    return q.x + q.y > 0.0 ? 0.0 : 1.0;
}

// 0 circle, 1 cloverleaf, 2 hexagon.
float sfg_mtlxShape(float2 p, float radius, int shape)
{
    return shape == 0 ? sfg_mtlxCircle(p, radius)
        : shape == 1  ? sfg_mtlxCloverleaf(p, radius)
                      : sfg_mtlxHexagon(p, radius);
}

float2 sfg_mtlxWrap(float2 p, float2 period)
{
    return p - period * floor(p / period);
}

// One shape in each square, or rows of that height of which every other one is moved by half a shape.
float sfg_mtlxTiles(float2 p, float size, bool isStaggered, float row, int shape)
{
    if (!isStaggered)
        return sfg_mtlxShape(frac(p) * 2.0 - 1.0, size, shape);
    float away = sfg_mtlxWrap(p, float2(1.0, 2.0 * row)).y > row ? 0.5 : 0.0;
    float2 q = sfg_mtlxWrap(float2(p.x + away, p.y), float2(1.0, row));
    float beside = max(sfg_mtlxShape(q, 0.5 * size, shape), sfg_mtlxShape(float2(1.0 - q.x, q.y), 0.5 * size, shape));
    return max(beside, sfg_mtlxShape(float2(q.x - 0.5, row - q.y), 0.5 * size, shape));
}

// Coordinates in a square of -1 to 1, with every other row moved by half a square.
float2 sfg_mtlxBrick(float2 p, bool isStaggered)
{
    float away = isStaggered && sfg_mtlxWrap(p, float2(1.0, 2.0)).y > 1.0 ? 0.5 : 0.0;
    return frac(float2(p.x + away, p.y)) * 2.0 - 1.0;
}

float sfg_mtlxGrid(float2 p, float thickness, bool isStaggered)
{
    float2 q = abs(sfg_mtlxBrick(p, isStaggered));
    return max(q.x, q.y) > 1.0 - thickness ? 1.0 : 0.0;
}

float sfg_mtlxCrosshatch(float2 p, float thickness, bool isStaggered)
{
    float2 q = sfg_mtlxBrick(p, isStaggered);
    return max(sfg_mtlxLine(q, thickness, float2(1.0, 1.0), float2(-1.0, -1.0)),
        sfg_mtlxLine(q, thickness, float2(-1.0, 1.0), float2(1.0, -1.0)));
}

// Where on a ramp a point of the square is: along u, around the middle, away from it, or on squares around it.
float sfg_mtlxRampPlace(float2 uv, int type)
{
    float2 p = uv - 0.5;
    if (type == 0)
        return uv.x;
    if (type == 1)
        return atan2(p.x, p.y) / 6.28319 + 0.5;
    if (type == 2)
        return length(p * 1.414);
    return 2.0 * max(abs(p.x), abs(p.y));
}

// One interval of a ramp: what stood before below its start, its two colours mixed within it.
float4 sfg_mtlxRampStep(float x, float start, float end, float4 first, float4 second, int interpolation, float4 before)
{
    float share = interpolation == 0 ? (clamp(x, start, end) - start) / (end - start) : smoothstep(start, end, x);
    float4 mixed = interpolation == 2 ? (end > x ? first : second) : lerp(first, second, share);
    return x > start ? mixed : before;
}

#endif
