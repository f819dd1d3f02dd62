// Textures without a visible repetition: each corner of a triangle grid shows the texture moved and turned its own
// way, and three of them are blended (Mikkelsen 2022).
#ifndef SFG_HEX_TILING_H
#define SFG_HEX_TILING_H

#include "sfg_math.h"
#include "sfg_noise.h"
#include "sfg_samplers.h"

// The corners of the triangle around a place, as whole numbers, and their shares, which add up to 1.
struct sfg_HexCorners
{
    float2 first;
    float2 second;
    float2 third;
    float3 shares;
};

// Triangles with sides of 1, one of them along u.
sfg_HexCorners sfg_hexCorners(float2 p)
{
    float2 skewed = float2(p.x - 0.577350269189626 * p.y, 1.15470053837925 * p.y);
    float2 base = floor(skewed);
    float2 part = skewed - base;
    float rest = 1.0 - part.x - part.y;
    float upper = rest < 0.0 ? 1.0 : 0.0;
    sfg_HexCorners corners;
    corners.first = base + upper;
    corners.second = base + float2(upper, 1.0 - upper);
    corners.third = base + float2(1.0 - upper, upper);
    float3 shares = upper > 0.5 ? float3(-rest, 1.0 - part.y, 1.0 - part.x) : float3(rest, part.y, part.x);
    corners.shares = saturate(shares);
    return corners;
}

// The place of the texture that a corner shows: turned about the corner and moved at random.
float2 sfg_hexPlace(float2 corner, float2 away, float turning)
{
    float angle = (sfg_random2(corner + float2(17.0, 5.0)) - 0.5) * SFG_TWO_PI * turning;
    float s = sin(angle);
    float c = cos(angle);
    float2 turned = float2(c * away.x - s * away.y, s * away.x + c * away.y);
    return turned + float2(sfg_random2(corner), sfg_random2(corner + float2(3.0, 31.0)));
}

// In uv where the corner lies.
float2 sfg_hexCentre(float2 corner)
{
    return float2(corner.x + 0.5 * corner.y, 0.866025403784439 * corner.y);
}

// The turn of a corner changes neither the size of a pixel nor which level is read but for its axes.
float4 sfg_hexSample(sfg_sampler2D image, float2 uv, float2 corner, float count, float turning)
{
    float2 away = uv - sfg_hexCentre(corner) / count;
    float2 place = sfg_hexPlace(corner, away, turning);
#ifdef SFG_COMPUTE
    return sfg_sampleLevel2D(image, place, 0.0);
#else
    float angle = (sfg_random2(corner + float2(17.0, 5.0)) - 0.5) * SFG_TWO_PI * turning;
    float s = sin(angle);
    float c = cos(angle);
    float2 dx = ddx(uv);
    float2 dy = ddy(uv);
    return image.image.SampleGrad(image.filtering, place, float2(c * dx.x - s * dx.y, s * dx.x + c * dx.y),
        float2(c * dy.x - s * dy.y, s * dy.x + c * dy.y));
#endif
}

// Shares made sharper, more so for bright texels where contrast is 1; they add up to 1.
float3 sfg_hexWeights(float3 shares, float3 brightness, float contrast, float sharpness)
{
    float3 weights = lerp(float3(1.0, 1.0, 1.0), max(brightness, 0.001), saturate(contrast)) *
        sfg_safePower3(shares, max(sharpness, 0.0));
    return weights / max(weights.x + weights.y + weights.z, 0.0000000001);
}

float4 sfg_hexTiled(
    sfg_sampler2D image, float2 uv, float count, float turning, float contrast, float sharpness)
{
    float cells = max(count, 0.001);
    sfg_HexCorners corners = sfg_hexCorners(uv * cells);
    float4 a = sfg_hexSample(image, uv, corners.first, cells, turning);
    float4 b = sfg_hexSample(image, uv, corners.second, cells, turning);
    float4 c = sfg_hexSample(image, uv, corners.third, cells, turning);
    float3 luminance = float3(0.2126, 0.7152, 0.0722);
    float3 bright = float3(dot(a.rgb, luminance), dot(b.rgb, luminance), dot(c.rgb, luminance));
    float3 weights = sfg_hexWeights(corners.shares, bright, contrast, sharpness);
    return a * weights.x + b * weights.y + c * weights.z;
}

#endif
