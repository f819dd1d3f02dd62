// Reads of textures with the address modes of material documents. Texture coordinates have v upwards, and the first row
// of a texture is at v = 1. Modes and filters need the size of the texture, which not every language can ask for.
#ifndef SFG_MTLX_TEXTURES_H
#define SFG_MTLX_TEXTURES_H

#include "sfg_samplers.h"

// One coordinate brought into the texture. Between the middles of the outermost texels a linear filter reads nothing
// but the texture. Modes: 0 constant, 1 clamp, 2 periodic, 3 mirror.
float sfg_mtlxAddress(float coordinate, float size, int mode)
{
    float folded = mode == 3 ? 1.0 - abs(frac(0.5 * coordinate) * 2.0 - 1.0) : coordinate;
    return mode == 2 ? coordinate : clamp(folded, 0.5 / size, 1.0 - 0.5 / size);
}

// How much of a linear filter lies within the texture, where the mode has a border.
float sfg_mtlxCoverage(float coordinate, float size, int mode)
{
    return mode == 0 ? saturate(coordinate * size + 0.5) * saturate((1.0 - coordinate) * size + 0.5) : 1.0;
}

// Filters: 0 closest, 1 linear, 2 cubic, which is read as linear. With a size of 0 the sampler does all of it.
float4 sfg_mtlxRead(sfg_sampler2D source, float2 size, float4 border, float2 uv, int uMode, int vMode, int filter)
{
    if (size.x <= 0.0)
        return sfg_sample2D(source, float2(uv.x, 1.0 - uv.y));
    float2 place = filter == 0 ? (floor(uv * size) + 0.5) / size : uv;
    float inside = sfg_mtlxCoverage(place.x, size.x, uMode) * sfg_mtlxCoverage(place.y, size.y, vMode);
    float2 p = float2(sfg_mtlxAddress(place.x, size.x, uMode), 1.0 - sfg_mtlxAddress(place.y, size.y, vMode));
    float4 texel = sfg_sample2D(source, p);
    if (filter == 0)
        texel = sfg_sampleLevel2D(source, p, 0.0);
    return lerp(border, texel, inside);
}

float sfg_mtlxImage(sfg_sampler2D source, float2 size, float border, float2 uv, int uMode, int vMode, int filter)
{
    return sfg_mtlxRead(source, size, float4(border, border, border, border), uv, uMode, vMode, filter).x;
}

float2 sfg_mtlxImage(sfg_sampler2D source, float2 size, float2 border, float2 uv, int uMode, int vMode, int filter)
{
    return sfg_mtlxRead(source, size, float4(border, 0.0, 1.0), uv, uMode, vMode, filter).xy;
}

float3 sfg_mtlxImage(sfg_sampler2D source, float2 size, float3 border, float2 uv, int uMode, int vMode, int filter)
{
    return sfg_mtlxRead(source, size, float4(border, 1.0), uv, uMode, vMode, filter).xyz;
}

float4 sfg_mtlxImage(sfg_sampler2D source, float2 size, float4 border, float2 uv, int uMode, int vMode, int filter)
{
    return sfg_mtlxRead(source, size, border, uv, uMode, vMode, filter);
}

// Texture coordinates of one side of a box in space, with the axis that points upwards.
float2 sfg_mtlxSideX(float3 p, int up)
{
    return up == 2 ? p.yz : p.zy;
}

float2 sfg_mtlxSideY(float3 p, int up)
{
    return up == 0 ? p.zx : p.xz;
}

float2 sfg_mtlxSideZ(float3 p, int up)
{
    return up == 0 ? float2(-p.y, p.x) : p.xy;
}

// Shares of the three sides: those of the normal, sharper for less blend.
float3 sfg_mtlxSideShares(float3 normal, float blend)
{
    float3 size = abs(normalize(normal));
    float3 share = size / (size.x + size.y + size.z);
    float power = 1.0 / clamp(blend, 0.03, 1.0);
    float3 sharp = pow(share, float3(power, power, power));
    return sharp / (sharp.x + sharp.y + sharp.z);
}

#endif
