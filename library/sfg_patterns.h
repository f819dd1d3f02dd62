// Building blocks of the patterns: stripes, dots, bricks, hexagons, wood rings, marble veins.
// `pixel` is the width of a pixel in periods of the pattern; the pattern is averaged over it. 0: no averaging.
#ifndef SFG_PATTERNS_H
#define SFG_PATTERNS_H

#include "sfg_noise.h"

// How much of an average is used: none for a pixel of width 0, all of it from a sixteenth of a period on.
float sfg_filtering(float pixel)
{
    return saturate(16.0 * pixel);
}

// Area of a stripe from its middle to the distance d.
float sfg_stripeArea(float d, float width, float softness)
{
    float inner = max(0.5 * width, 0.0);
    float edge = max(0.5 * softness, 0.00005);
    float t = saturate((d - inner) / edge);
    return min(d, inner) + edge * (t - 0.5 * t * t);
}

// The same from the start of the period that holds q.
float sfg_stripeAreaIn(float q, float width, float softness)
{
    float fromMiddle = q - floor(q) - 0.5;
    float area = sfg_stripeArea(abs(fromMiddle), width, softness);
    return sfg_stripeArea(0.5, width, softness) + (fromMiddle < 0.0 ? -area : area);
}

// Stripes of period 1 with their middles at 0.5: 1 on the share `width`, falling to 0 over the share `softness`.
float sfg_stripes(float q, float width, float softness, float pixel)
{
    float sharp = 1.0 - saturate((abs(q - floor(q) - 0.5) * 2.0 - width) / max(softness, 0.0001));
    float w = max(pixel, 0.01);
    float low = q - 0.5 * w;
    float high = q + 0.5 * w;
    float area = (floor(high) - floor(low)) * 2.0 * sfg_stripeArea(0.5, width, softness) +
        sfg_stripeAreaIn(high, width, softness) - sfg_stripeAreaIn(low, width, softness);
    return lerp(sharp, area / w, sfg_filtering(pixel));
}

// Round dots in the middles of unit cells; squares of the same area where a pixel is as large as a dot.
float sfg_dots(float2 q, float radius, float softness, float2 pixel)
{
    float d = length(q - floor(q) - 0.5);
    float edge = max(softness, 0.0001);
    float most = max(pixel.x, pixel.y);
    float narrow = 1.0 - saturate((d - radius + 0.5 * most) / (edge + most));
    float r = max(radius, 0.0);
    float side = sqrt(saturate(SFG_PI * (r * r + r * edge + edge * edge / 3.0)));
    float square = sfg_stripes(q.x, side, 0.0, pixel.x) * sfg_stripes(q.y, side, 0.0, pixel.y);
    return lerp(narrow, square, saturate(3.0 * most - 0.5));
}

// The lines of a unit grid, `width` wide.
float sfg_gridLines(float2 q, float width, float2 pixel)
{
    float2 toLine = 0.5 - abs(q - floor(q) - 0.5);
    float sharp = min(toLine.x, toLine.y) < 0.5 * width ? 1.0 : 0.0;
    float2 lines = float2(sfg_stripes(q.x + 0.5, width, 0.0, pixel.x), sfg_stripes(q.y + 0.5, width, 0.0, pixel.y));
    float mean = 1.0 - (1.0 - lines.x) * (1.0 - lines.y);
    return lerp(sharp, mean, sfg_filtering(max(pixel.x, pixel.y)));
}

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

// The same averaged over pixels as wide as `pixel` bricks: towards the mean brick where pixels hold several.
float2 sfg_brickWallFiltered(float2 uv, float2 count, float mortar, float shift, float2 pixel)
{
    float2 sharp = sfg_brickWall(uv, count, mortar, shift);
    float2 q = uv * count;
    float row = floor(q.y);
    q.x += shift * (row - 2.0 * floor(row * 0.5));
    float bevel = max(0.125 * mortar, 0.0001);
    float2 scale = float2(sfg_safeDivide(count.x, count.y), 1.0);
    float2 width = 1.0 - (mortar + 2.0 * bevel) * scale;
    float2 edge = 2.0 * bevel * scale;
    // A pixel that reaches over rows sees the shifted bricks of several.
    float across = sfg_stripes(q.x, width.x, edge.x, lerp(pixel.x, max(pixel.x, 1.0), saturate(pixel.y - 0.5)));
    float mean = across * sfg_stripes(q.y, width.y, edge.y, pixel.y);
    float most = max(pixel.x, pixel.y);
    return float2(lerp(sharp.x, mean, sfg_filtering(most)), lerp(sharp.y, 0.5, saturate(most - 0.25)));
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

// Rings around the y axis, in years: distance from it with distortion.
float sfg_woodYear(float3 p, float ringsPerUnit, float distortion, int octaves)
{
    return length(p.xz) * ringsPerUnit + distortion * sfg_fbm3(p, octaves, 2.0, 0.5);
}

// Area below the ring profile from the start of the year.
float sfg_woodArea(float year)
{
    float rise = saturate(year / 0.8);
    float fall = saturate((year - 0.85) / 0.15);
    float rise3 = rise * rise * rise;
    float fall3 = fall * fall * fall;
    return 0.8 * (rise3 - 0.5 * rise3 * rise) + saturate((year - 0.8) / 0.05) * 0.05 +
        0.15 * (fall - fall3 + 0.5 * fall3 * fall);
}

// 0 in the early wood rising to 1 in the late wood of each year (Ebert et al. 1994). `years` are counted by
// sfg_woodYear, `pixel` is the width of a pixel in years.
float sfg_woodRing(float years, float pixel)
{
    float year = years - floor(years);
    float rise = saturate(year / 0.8);
    float fall = saturate((year - 0.85) / 0.15);
    float sharp = rise * rise * (3.0 - 2.0 * rise) * (1.0 - fall * fall * (3.0 - 2.0 * fall));
    float w = max(pixel, 0.01);
    float low = years - 0.5 * w;
    float high = years + 0.5 * w;
    float area = (floor(high) - floor(low)) * 0.525 + sfg_woodArea(high - floor(high)) - sfg_woodArea(low - floor(low));
    return lerp(sharp, area / w, sfg_filtering(pixel));
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
