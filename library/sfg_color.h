// Colour spaces and tone curves. Colours are linear with Rec. 709 primaries unless a name says otherwise.
#ifndef SFG_COLOR_H
#define SFG_COLOR_H

#include "sfg_math.h"  // keep

// Relative luminance (ITU-R BT.709).
float sfg_luminance(float3 rgb)
{
    return dot(rgb, float3(0.2126, 0.7152, 0.0722));
}

// IEC 61966-2-1, one channel; negative values count as 0.
float sfg_srgbToLinear1(float encoded)
{
    return encoded <= 0.04045 ? max(encoded, 0.0) / 12.92 : pow((max(encoded, 0.0) + 0.055) / 1.055, 2.4);
}

float sfg_linearToSrgb1(float value)
{
    return value <= 0.0031308 ? max(value, 0.0) * 12.92 : 1.055 * pow(max(value, 0.0), 1.0 / 2.4) - 0.055;
}

float3 sfg_srgbToLinear(float3 encoded)
{
    return float3(sfg_srgbToLinear1(encoded.r), sfg_srgbToLinear1(encoded.g), sfg_srgbToLinear1(encoded.b));
}

float3 sfg_linearToSrgb(float3 value)
{
    return float3(sfg_linearToSrgb1(value.r), sfg_linearToSrgb1(value.g), sfg_linearToSrgb1(value.b));
}

// Hue in [0, 1), saturation in [0, 1] and value, the largest channel (Smith 1978). The hue of a grey is 0; negative
// channels count as 0.
float3 sfg_rgbToHsv(float3 color)
{
    float3 rgb = max(color, float3(0.0, 0.0, 0.0));
    float high = max(rgb.r, max(rgb.g, rgb.b));
    float low = min(rgb.r, min(rgb.g, rgb.b));
    float range = high - low;
    float hue = 0.0;
    if (range > 0.0)
    {
        if (high == rgb.r)
            hue = (rgb.g - rgb.b) / range;
        else if (high == rgb.g)
            hue = 2.0 + (rgb.b - rgb.r) / range;
        else
            hue = 4.0 + (rgb.r - rgb.g) / range;
    }
    return float3(sfg_fraction(hue / 6.0), high > 0.0 ? range / high : 0.0, high);
}

// Inverse of sfg_rgbToHsv; the hue repeats with period 1.
float3 sfg_hsvToRgb(float3 hsv)
{
    float sextant = frac(hsv.x) * 6.0;
    float3 pure = saturate(float3(abs(sextant - 3.0) - 1.0, 2.0 - abs(sextant - 2.0), 2.0 - abs(sextant - 4.0)));
    return hsv.z * lerp(float3(1.0, 1.0, 1.0), pure, hsv.y);
}

// Blending after Compositing and Blending Level 1 (W3C 2015), which is made for [0, 1]. Above it, what lies below
// keeps its excess and no mode turns round.
float3 sfg_screen(float3 under, float3 over)
{
    return under + over - saturate(under) * saturate(over);
}

float3 sfg_hardLight(float3 under, float3 over)
{
    float3 dark = 2.0 * under * max(over, float3(0.0, 0.0, 0.0));
    return lerp(dark, sfg_screen(under, 2.0 * over - 1.0), step(float3(0.5, 0.5, 0.5), over));
}

float3 sfg_overlay(float3 under, float3 over)
{
    float3 inside = saturate(under);
    return sfg_hardLight(over, inside) + (under - inside);
}

float sfg_softLight1(float under, float over)
{
    float inside = saturate(under);
    float amount = saturate(over);
    float curve = inside <= 0.25 ? ((16.0 * inside - 12.0) * inside + 4.0) * inside : sqrt(inside);
    float change = amount <= 0.5 ? (2.0 * amount - 1.0) * inside * (1.0 - inside) :
        (2.0 * amount - 1.0) * (curve - inside);
    return under + change;
}

float3 sfg_softLight(float3 under, float3 over)
{
    return float3(
        sfg_softLight1(under.r, over.r), sfg_softLight1(under.g, over.g), sfg_softLight1(under.b, over.b));
}

// The modes that divide, of one channel in [0, 1].
float sfg_dodge1(float under, float over)
{
    return under <= 0.0 ? 0.0 : (over >= 1.0 ? 1.0 : min(under / (1.0 - over), 1.0));
}

float sfg_burn1(float under, float over)
{
    return under >= 1.0 ? 1.0 : (over <= 0.0 ? 0.0 : 1.0 - min((1.0 - under) / over, 1.0));
}

// The modes that are no matter of one channel. Luminosity after the same text, which weighs as old monitors did.
float sfg_luminosity(float3 color)
{
    return dot(color, float3(0.3, 0.59, 0.11));
}

float sfg_chroma(float3 color)
{
    return max(color.r, max(color.g, color.b)) - min(color.r, min(color.g, color.b));
}

float3 sfg_withLuminosity(float3 color, float luminosity)
{
    float3 moved = color + (luminosity - sfg_luminosity(color));
    float l = sfg_luminosity(moved);
    float low = min(moved.r, min(moved.g, moved.b));
    float high = max(moved.r, max(moved.g, moved.b));
    moved = low < 0.0 ? l + (moved - l) * (l / max(l - low, 0.0000001)) : moved;
    return high > 1.0 ? l + (moved - l) * ((1.0 - l) / max(high - l, 0.0000001)) : moved;
}

float3 sfg_withSaturation(float3 color, float saturation)
{
    float low = min(color.r, min(color.g, color.b));
    float range = sfg_chroma(color);
    return range > 0.0 ? (color - low) * (saturation / range) : float3(0.0, 0.0, 0.0);
}

// CIE XYZ for the white D65 (IEC 61966-2-1).
float3 sfg_rgbToXyz(float3 rgb)
{
    return float3(dot(rgb, float3(0.4124564, 0.3575761, 0.1804375)), dot(rgb, float3(0.2126729, 0.7151522, 0.0721750)),
        dot(rgb, float3(0.0193339, 0.1191920, 0.9503041)));
}

float3 sfg_xyzToRgb(float3 xyz)
{
    return float3(dot(xyz, float3(3.2404542, -1.5371385, -0.4985314)),
        dot(xyz, float3(-0.9692660, 1.8760108, 0.0415560)), dot(xyz, float3(0.0556434, -0.2040259, 1.0572252)));
}

float3 sfg_whiteXyz()
{
    return float3(0.95047, 1.0, 1.08883);
}

// The curve of L*a*b* and its inverse (CIE 15:2004).
float sfg_labCurve(float t)
{
    return t > 0.008856452 ? pow(max(t, 0.0), 1.0 / 3.0) : t * 7.787037 + 0.13793103;
}

float sfg_labInverse(float f)
{
    return f > 0.20689655 ? f * f * f : (f - 0.13793103) * 0.12841855;
}

// A space in which equal distances look about equal (Ottosson 2020).
float3 sfg_rgbToOklab(float3 rgb)
{
    float3 lms = float3(dot(rgb, float3(0.4122214708, 0.5363325363, 0.0514459929)),
        dot(rgb, float3(0.2119034982, 0.6806995451, 0.1073969566)),
        dot(rgb, float3(0.0883024619, 0.2817188376, 0.6299787005)));
    float3 root = sfg_safePower3(lms, 1.0 / 3.0);
    return float3(dot(root, float3(0.2104542553, 0.7936177850, -0.0040720468)),
        dot(root, float3(1.9779984951, -2.4285922050, 0.4505937099)),
        dot(root, float3(0.0259040371, 0.7827717662, -0.8086757660)));
}

float3 sfg_oklabToRgb(float3 lab)
{
    float3 root = lab.x + float3(dot(lab.yz, float2(0.3963377774, 0.2158037573)),
        dot(lab.yz, float2(-0.1055613458, -0.0638541728)), dot(lab.yz, float2(-0.0894841775, -1.2914855480)));
    float3 lms = root * root * root;
    return float3(dot(lms, float3(4.0767416621, -3.3077115913, 0.2309699292)),
        dot(lms, float3(-1.2684380046, 2.6097574011, -0.3413193965)),
        dot(lms, float3(-0.0041960863, -0.7034186147, 1.7076147010)));
}

// Colour of a glowing body, of luminance 1: its chromaticity by a cubic spline from 1667 to 25000 kelvin (Kim et al.
// 2002). Colours outside of the triangle are moved to its edge.
float3 sfg_blackbody(float temperature)
{
    float i = 1000.0 / clamp(temperature, 1667.0, 25000.0);
    float i2 = i * i;
    float x = i > 0.25 ? -0.2661239 * i2 * i - 0.2343589 * i2 + 0.8776956 * i + 0.179910 :
        -3.0258469 * i2 * i + 2.1070379 * i2 + 0.2226347 * i + 0.240390;
    float x2 = x * x;
    float y = i > 1000.0 / 2222.0 ? -1.1063814 * x2 * x - 1.34811020 * x2 + 2.18555832 * x - 0.20219683 :
        (i > 0.25 ? -0.9549476 * x2 * x - 1.37418593 * x2 + 2.09137015 * x - 0.16748867 :
            3.0817580 * x2 * x - 5.87338670 * x2 + 3.75112997 * x - 0.37001483);
    float3 rgb = max(sfg_xyzToRgb(float3(x / y, 1.0, (1.0 - x - y) / y)), float3(0.0, 0.0, 0.0));
    return rgb / sfg_luminance(rgb);
}

// Filmic curve without its exposure and white scale (Hable 2010).
float3 sfg_hableCurve(float3 x)
{
    return ((x * (0.15 * x + 0.05) + 0.004) / (x * (0.15 * x + 0.50) + 0.06)) - 0.02 / 0.30;
}

// Fitted filmic curve (Narkowicz 2015), clamped to [0, 1].
float3 sfg_acesFitted(float3 x)
{
    return saturate((x * (2.51 * x + 0.03)) / (x * (2.43 * x + 0.59) + 0.14));
}

#endif
