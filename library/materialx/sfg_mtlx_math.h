// Plane transforms, inverse matrices and blending of single channels for the nodes of material documents.
#ifndef SFG_MTLX_MATH_H
#define SFG_MTLX_MATH_H

// Inverses by cofactors (Cramer 1750). Row i of the transposed cofactors belongs to column i of the matrix.
float3x3 sfg_mtlxInverse(float3x3 m)
{
    float3 a = cross(m[1], m[2]);
    float3 b = cross(m[2], m[0]);
    float3 c = cross(m[0], m[1]);
    return transpose(float3x3(a, b, c)) * (1.0 / dot(m[0], a));
}

// Two rows at a time: the determinants of their 2 by 2 parts (Laplace 1772).
float4x4 sfg_mtlxInverse(float4x4 m)
{
    float3 s = m[0].xxx * m[1].yzw - m[1].xxx * m[0].yzw; // columns 01, 02, 03 of the upper rows
    float3 t = m[0].yyz * m[1].zww - m[1].yyz * m[0].zww; // columns 12, 13, 23
    float3 u = m[2].xxx * m[3].yzw - m[3].xxx * m[2].yzw; // the same of the lower rows
    float3 w = m[2].yyz * m[3].zww - m[3].yyz * m[2].zww;
    float whole = s.x * w.z - s.y * w.y + s.z * w.x + t.x * u.z - t.y * u.y + t.z * u.x;
    float4x4 adjugate = float4x4(
        m[1].y * w.z - m[1].z * w.y + m[1].w * w.x, -m[0].y * w.z + m[0].z * w.y - m[0].w * w.x,
        m[3].y * t.z - m[3].z * t.y + m[3].w * t.x, -m[2].y * t.z + m[2].z * t.y - m[2].w * t.x,
        -m[1].x * w.z + m[1].z * u.z - m[1].w * u.y, m[0].x * w.z - m[0].z * u.z + m[0].w * u.y,
        -m[3].x * t.z + m[3].z * s.z - m[3].w * s.y, m[2].x * t.z - m[2].z * s.z + m[2].w * s.y,
        m[1].x * w.y - m[1].y * u.z + m[1].w * u.x, -m[0].x * w.y + m[0].y * u.z - m[0].w * u.x,
        m[3].x * t.y - m[3].y * s.z + m[3].w * s.x, -m[2].x * t.y + m[2].y * s.z - m[2].w * s.x,
        -m[1].x * w.x + m[1].y * u.y - m[1].z * u.x, m[0].x * w.x - m[0].y * u.y + m[0].z * u.x,
        -m[3].x * t.x + m[3].y * s.y - m[3].z * s.x, m[2].x * t.x - m[2].y * s.y + m[2].z * s.x);
    return adjugate * (1.0 / whole);
}

// A point turned clockwise about the origin.
float2 sfg_mtlxTurn(float2 p, float degree)
{
    float turn = radians(degree);
    return float2(p.x * cos(turn) + p.y * sin(turn), p.y * cos(turn) - p.x * sin(turn));
}

// Texture coordinates of a picture that is scaled, turned and moved about the pivot (order 0) or moved, turned and
// scaled (order 1).
float2 sfg_mtlxPlace(float2 uv, float2 pivot, float2 scale, float rotate, float2 offset, int order)
{
    float2 p = uv - pivot;
    return pivot + (order == 0 ? sfg_mtlxTurn(p / scale, rotate) - offset : sfg_mtlxTurn(p - offset, rotate) / scale);
}

float sfg_mtlxBurn(float fg, float bg)
{
    return abs(fg) < 0.00000001 ? 0.0 : 1.0 - (1.0 - bg) / fg;
}

float3 sfg_mtlxBurn(float3 fg, float3 bg)
{
    return float3(sfg_mtlxBurn(fg.x, bg.x), sfg_mtlxBurn(fg.y, bg.y), sfg_mtlxBurn(fg.z, bg.z));
}

float4 sfg_mtlxBurn(float4 fg, float4 bg)
{
    return float4(sfg_mtlxBurn(fg.xyz, bg.xyz), sfg_mtlxBurn(fg.w, bg.w));
}

float sfg_mtlxDodge(float fg, float bg)
{
    return abs(1.0 - fg) < 0.00000001 ? 0.0 : bg / (1.0 - fg);
}

float3 sfg_mtlxDodge(float3 fg, float3 bg)
{
    return float3(sfg_mtlxDodge(fg.x, bg.x), sfg_mtlxDodge(fg.y, bg.y), sfg_mtlxDodge(fg.z, bg.z));
}

float4 sfg_mtlxDodge(float4 fg, float4 bg)
{
    return float4(sfg_mtlxDodge(fg.xyz, bg.xyz), sfg_mtlxDodge(fg.w, bg.w));
}

float sfg_mtlxOverlay(float fg, float bg)
{
    return bg >= 0.5 ? 1.0 - 2.0 * (1.0 - fg) * (1.0 - bg) : 2.0 * fg * bg;
}

float3 sfg_mtlxOverlay(float3 fg, float3 bg)
{
    return float3(sfg_mtlxOverlay(fg.x, bg.x), sfg_mtlxOverlay(fg.y, bg.y), sfg_mtlxOverlay(fg.z, bg.z));
}

float4 sfg_mtlxOverlay(float4 fg, float4 bg)
{
    return float4(sfg_mtlxOverlay(fg.xyz, bg.xyz), sfg_mtlxOverlay(fg.w, bg.w));
}

// Between edges in any order: what is not above the low one is 0, then what is not below the high one is 1.
float sfg_mtlxSmoothstep(float low, float high, float value)
{
    if (value <= low)
        return 0.0;
    return value >= high ? 1.0 : smoothstep(low, high, value);
}

float2 sfg_mtlxSmoothstep(float2 low, float2 high, float2 value)
{
    return float2(sfg_mtlxSmoothstep(low.x, high.x, value.x), sfg_mtlxSmoothstep(low.y, high.y, value.y));
}

float3 sfg_mtlxSmoothstep(float3 low, float3 high, float3 value)
{
    return float3(sfg_mtlxSmoothstep(low.xy, high.xy, value.xy), sfg_mtlxSmoothstep(low.z, high.z, value.z));
}

float4 sfg_mtlxSmoothstep(float4 low, float4 high, float4 value)
{
    return float4(sfg_mtlxSmoothstep(low.xy, high.xy, value.xy), sfg_mtlxSmoothstep(low.zw, high.zw, value.zw));
}

#endif
