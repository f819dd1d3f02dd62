// Colour codings and adjustments for the nodes of material documents. Colours with a coverage keep it.
#ifndef SFG_MTLX_COLOR_H
#define SFG_MTLX_COLOR_H

float3 sfg_mtlxDecodeGamma(float3 color, float gamma)
{
    return pow(max(color, 0.0), float3(gamma, gamma, gamma));
}

float4 sfg_mtlxDecodeGamma(float4 color, float gamma)
{
    return float4(sfg_mtlxDecodeGamma(color.xyz, gamma), color.w);
}

float sfg_mtlxDecodeSrgb(float coded)
{
    return coded > 0.04045 ? pow((coded + 0.055) / 1.055, 2.4) : coded / 12.92;
}

// IEC 61966-2-1.
float3 sfg_mtlxDecodeSrgb(float3 color)
{
    return float3(sfg_mtlxDecodeSrgb(color.x), sfg_mtlxDecodeSrgb(color.y), sfg_mtlxDecodeSrgb(color.z));
}

float4 sfg_mtlxDecodeSrgb(float4 color)
{
    return float4(sfg_mtlxDecodeSrgb(color.xyz), color.w);
}

// From the primaries of SMPTE ST 2065-1 (AP1) with Bradford adaptation from D60 to D65.
float3 sfg_mtlxFromAcesCg(float3 color)
{
    return float3(dot(color, float3(1.70505099, -0.62179212, -0.08325887)),
        dot(color, float3(-0.13025642, 1.14080474, -0.01054832)),
        dot(color, float3(-0.02400336, -0.12896898, 1.15297233)));
}

float4 sfg_mtlxFromAcesCg(float4 color)
{
    return float4(sfg_mtlxFromAcesCg(color.xyz), color.w);
}

// From the primaries of Adobe RGB (1998); the white is the same.
float3 sfg_mtlxFromAdobeRgb(float3 color)
{
    return float3(dot(color, float3(1.39835574, -0.39835574, 0.0)), color.y,
        dot(color, float3(0.0, -0.04292899, 1.04292899)));
}

float4 sfg_mtlxFromAdobeRgb(float4 color)
{
    return float4(sfg_mtlxFromAdobeRgb(color.xyz), color.w);
}

// From the primaries of SMPTE EG 432-1 (P3) with the white D65.
float3 sfg_mtlxFromDisplayP3(float3 color)
{
    return float3(dot(color, float3(1.2249402, -0.2249402, 0.0)), dot(color, float3(-0.0420570, 1.0420570, 0.0)),
        dot(color, float3(-0.0196376, -0.0786361, 1.0982736)));
}

float4 sfg_mtlxFromDisplayP3(float4 color)
{
    return float4(sfg_mtlxFromDisplayP3(color.xyz), color.w);
}

// Smith 1978; hue in turns.
float3 sfg_mtlxToHsv(float3 color)
{
    float most = max(max(color.x, color.y), color.z);
    float spread = most - min(min(color.x, color.y), color.z);
    float hue = 0.0;
    if (spread > 0.0)
    {
        if (color.x >= most)
            hue = (color.y - color.z) / spread;
        else if (color.y >= most)
            hue = 2.0 + (color.z - color.x) / spread;
        else
            hue = 4.0 + (color.x - color.y) / spread;
        hue = hue / 6.0;
        hue = hue < 0.0 ? hue + 1.0 : hue;
    }
    return float3(hue, most > 0.0 ? spread / most : 0.0, most);
}

float3 sfg_mtlxFromHsv(float3 hsv)
{
    if (hsv.y < 0.0001)
        return float3(hsv.z, hsv.z, hsv.z);
    float turns = hsv.x - floor(hsv.x);
    float3 wave = abs(frac(turns + float3(1.0, 2.0 / 3.0, 1.0 / 3.0)) * 6.0 - 3.0) - 1.0;
    return hsv.z * lerp(float3(1.0, 1.0, 1.0), saturate(wave), hsv.y);
}

float3 sfg_mtlxAdjustHsv(float3 color, float3 amount)
{
    float3 hsv = sfg_mtlxToHsv(color);
    return sfg_mtlxFromHsv(float3(hsv.x + amount.x, hsv.yz * amount.yz));
}

float3 sfg_mtlxCorrect(float3 color, float hue, float saturation, float gamma, float lift, float gain, float contrast,
    float pivot, float exposure)
{
    float3 turned = sfg_mtlxAdjustHsv(color, float3(hue, 1.0, 1.0));
    float grey = dot(turned, float3(0.2722287, 0.6740818, 0.0536895));
    float3 strong = lerp(float3(grey, grey, grey), turned, saturation);
    float power = 1.0 / gamma;
    float3 bent = sign(strong) * pow(abs(strong), float3(power, power, power));
    float3 lifted = (bent * (1.0 - lift) + lift) * gain;
    return ((lifted - pivot) * contrast + pivot) * exp2(exposure);
}

// Chromaticity of a black body (Kim et al. 2002) as linear Rec. 709 of luminance 1.
float3 sfg_mtlxBlackbody(float kelvin)
{
    float t = 1000.0 / clamp(kelvin, 1000.0, 15000.0);
    float t2 = t * t;
    float t3 = t2 * t;
    float x = kelvin < 4000.0 ? -0.2661239 * t3 - 0.2343580 * t2 + 0.8776956 * t + 0.179910
                              : -3.0258469 * t3 + 2.1070379 * t2 + 0.2226347 * t + 0.240390;
    float x2 = x * x;
    float x3 = x2 * x;
    float y = kelvin < 2222.0   ? -1.1063814 * x3 - 1.34811020 * x2 + 2.18555832 * x - 0.20219683
              : kelvin < 4000.0 ? -0.9549476 * x3 - 1.37418593 * x2 + 2.09137015 * x - 0.16748867
                                : 3.0817580 * x3 - 5.87338670 * x2 + 3.75112997 * x - 0.37001483;
    float3 xyz = float3(x / y, 1.0, (1.0 - x - y) / y);
    return max(float3(dot(xyz, float3(3.2404542, -1.5371385, -0.4985314)),
                   dot(xyz, float3(-0.9692660, 1.8760108, 0.0415560)),
                   dot(xyz, float3(0.0556434, -0.2040259, 1.0572252))),
        0.0);
}

#endif
