// Plane shapes as signed distances, negative inside, and the share of a pixel that they cover.
#ifndef SFG_SHAPES_H
#define SFG_SHAPES_H

#include "sfg_stage.h"

// How fast a distance grows from pixel to pixel. 0 in a compute stage.
float sfg_growth(float d)
{
    float2 slope = float2(sfg_ddx(d), sfg_ddy(d));
    return sqrt(dot(slope, slope));
}

// Share of a pixel of that width inside a border at that distance; a hard step for a width of 0.
float sfg_coverage(float d, float pixel)
{
    return saturate(0.5 - d / max(pixel, 0.000001));
}

// From the line between two points, which has no width.
float sfg_segmentDistance(float2 p, float2 from, float2 to)
{
    float2 along = to - from;
    float share = saturate(dot(p - from, along) / max(dot(along, along), 0.0000000001));
    return length(p - from - along * share);
}

float sfg_circleDistance(float2 p, float radius)
{
    return length(p) - radius;
}

// A hexagon whose sides are `radius` from the middle, two of them upright. Outside, corners are mitred.
float sfg_hexagonDistance(float2 p, float radius)
{
    float2 folded = abs(p);
    return max(folded.x, dot(folded, float2(0.5, 0.866025403784439))) - radius;
}

// Four circles through the middle, each half as large as the whole.
float sfg_cloverleafDistance(float2 p, float radius)
{
    float2 folded = abs(p);
    float2 leaf = folded.x > folded.y ? folded : folded.yx;
    return length(leaf - float2(0.5 * radius, 0.0)) - 0.5 * radius;
}

float2 sfg_turned(float2 p, float angle)
{
    float s = sin(angle);
    float c = cos(angle);
    return float2(c * p.x + s * p.y, c * p.y - s * p.x);
}

#endif
