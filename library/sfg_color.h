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

// Hue, saturation and value in [0, 1] (Smith 1978). The hue of a grey is 0.
float3 sfg_rgbToHsv(float3 rgb)
{
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
    return float3(frac(hue / 6.0), high > 0.0 ? range / high : 0.0, high);
}

// Inverse of sfg_rgbToHsv; the hue repeats with period 1.
float3 sfg_hsvToRgb(float3 hsv)
{
    float sextant = frac(hsv.x) * 6.0;
    float3 pure = saturate(float3(abs(sextant - 3.0) - 1.0, 2.0 - abs(sextant - 2.0), 2.0 - abs(sextant - 4.0)));
    return hsv.z * lerp(float3(1.0, 1.0, 1.0), pure, hsv.y);
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
