// What code translated from MetaSL shares: the record that one lighting function fills for one light.
#ifndef SFG_MSL_COMMON_H
#define SFG_MSL_COMMON_H

#include "sfg_brdf.h"
#include "sfg_lights.h"

struct Light_iterator
{
    float3 msl_point;            // position of the light
    float3 msl_direction;        // unit vector from the light to the shading point
    float msl_distance;          // between the light and the shading point
    float msl_dot_nl;            // cosine between the normal and the direction to the light, clamped to [0, 1]
    float3 msl_contribution;     // light that arrives, shadow included
    float3 msl_raw_contribution; // light that would arrive without shadow
    float3 msl_shadow;           // 1 where nothing blocks the light
    int msl_count;               // number of samples behind this record; 0: light from all around
};

// A light description as a MetaSL light record, for the shading point Pw with the normal Nw.
Light_iterator sfg_mslFromLight(sfg_Light light, float3 Pw, float3 Nw)
{
    Light_iterator record;
    record.msl_point = Pw + light.direction * light.distance;
    record.msl_direction = -light.direction;
    record.msl_distance = light.distance;
    record.msl_dot_nl = saturate(dot(Nw, light.direction));
    record.msl_contribution = light.color;
    record.msl_raw_contribution = light.color;
    record.msl_shadow = float3(1.0, 1.0, 1.0);
    record.msl_count = 1;
    return record;
}

// The same for light from all around, of which `radiance` arrives about the normal: it stands for a lamp there, but
// makes no highlight of one.
Light_iterator sfg_mslFromAround(float3 radiance, float3 Pw, float3 Nw)
{
    Light_iterator record = sfg_mslFromLight(sfg_makeLight(Nw, 1000000.0, SFG_PI * radiance), Pw, Nw);
    record.msl_count = 0;
    return record;
}

// Diffuse and specular weight of one light record (Lambert 1760; Blinn 1977, normalised), without colours.
float sfg_mslDiffuse(Light_iterator record)
{
    return record.msl_dot_nl * SFG_INV_PI;
}

float sfg_mslSpecular(Light_iterator record, float3 Nw, float3 toEye, float exponent)
{
    float around = sfg_blinnPhongAlbedo(exponent, saturate(dot(Nw, toEye))) * SFG_INV_PI;
    float lamp = sfg_blinnPhongSpecular(Nw, -record.msl_direction, toEye, exponent) * record.msl_dot_nl;
    return record.msl_count == 0 ? around : lamp;
}

#endif
