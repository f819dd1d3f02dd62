// Light scattered by a hair, a rough cylinder of glass that absorbs: reflected (R), through both sides (TT), reflected
// once inside (TRT), and all that follow as one (Chiang, Bitterli, Tappan and Burley 2016). Angles are those of its
// plane across (phi, from the normal) and of the inclination to it (theta).
#ifndef SFG_MTLX_HAIR_H
#define SFG_MTLX_HAIR_H

#include "sfg_mtlx_bsdf.h"

// Logarithm of the modified Bessel function of the first kind and order 0.
float sfg_mtlxLogBessel(float x)
{
    if (x > 12.0)
        return x + 0.5 * (1.0 / (8.0 * x) - log(SFG_TWO_PI * x));
    float quarter = 0.25 * x * x;
    float term = 1.0;
    float sum = 1.0;
    for (int i = 1; i < 10; ++i)
    {
        term *= quarter / float(i * i);
        sum += term;
    }
    return log(sum);
}

// Share by the inclination: its integral over the sphere of light directions is 1 after division by the cosine and the
// turn across (d'Eon et al. 2011). x: sine, y: cosine.
float sfg_mtlxHairAlong(float2 light, float2 eye, float variance)
{
    float v = max(variance, 0.00001);
    float exponent = sfg_mtlxLogBessel(light.y * eye.y / v) - light.x * eye.x / v;
    if (v <= 0.1)
        return exp(exponent - 1.0 / v + 0.6931472 + log(0.5 / v));
    return exp(exponent) / ((exp(1.0 / v) - exp(-1.0 / v)) * v);
}

float sfg_mtlxLogisticSum(float x, float scale)
{
    return 1.0 / (1.0 + exp(-x / scale));
}

// Share across of the path with so many legs inside: a logistic bell around where a smooth hair would send it.
float sfg_mtlxHairAcross(float turn, int legs, float scale, float gamma, float gammaInside)
{
    float s = max(0.626657069 * scale, 0.0001); // sqrt(pi / 8)
    float away = turn - (2.0 * float(legs) * gammaInside - 2.0 * gamma + float(legs) * SFG_PI);
    away -= SFG_TWO_PI * floor(away / SFG_TWO_PI + 0.5);
    float bell = exp(-abs(away) / s);
    float share = bell / (s * (1.0 + bell) * (1.0 + bell));
    return share / (2.0 * sfg_mtlxLogisticSum(SFG_PI, s) - 1.0);
}

// The eye's inclination, which the scales turn. x: sine, y: cosine.
float2 sfg_mtlxHairTurned(float2 eye, float angle)
{
    float2 turned = float2(eye.x * cos(angle) + eye.y * sin(angle), eye.y * cos(angle) - eye.x * sin(angle));
    return float2(turned.x, abs(turned.y));
}

// Roughness: variance of the inclination and width of the logistic bell. cuticle: 0.5 is no tilt, 0 and 1 a right angle.
// What a single fibre scatters is shared out over a surface by 1 / pi, as renderers of these documents do.
sfg_MtlxBsdf sfg_mtlxHair(sfg_Light light, float3 n, float3 along, float3 v, float3 tintR, float3 tintTT, float3 tintTRT,
    float ior, float2 roughnessR, float2 roughnessTT, float2 roughnessTRT, float cuticle, float3 absorption)
{
    float3 x = sfg_safeNormalize(along - n * dot(along, n));
    float3 y = cross(n, x);
    float3 l = light.direction;
    float2 thetaL = float2(clamp(dot(l, x), -1.0, 1.0), 0.0);
    float2 thetaV = float2(clamp(dot(v, x), -1.0, 1.0), 0.0);
    thetaL.y = sqrt(max(1.0 - thetaL.x * thetaL.x, 0.0));
    thetaV.y = sqrt(max(1.0 - thetaV.x * thetaV.x, 0.0));
    float gamma = atan2(dot(v, y), max(dot(v, n), 0.00001));
    float turn = atan2(dot(l, y), dot(l, n)) - gamma;

    // Refraction into the cylinder, and what is left after one way through it.
    float across = sqrt(max(ior * ior - thetaV.x * thetaV.x, 0.0)) / max(thetaV.y, 0.00001);
    float sineInside = clamp(sin(gamma) / max(across, 0.00001), -1.0, 1.0);
    float gammaInside = asin(sineInside);
    float inclined = thetaV.x / ior;
    float cosineInside = sqrt(max(1.0 - inclined * inclined, 0.00001));
    float3 left = exp(-absorption * (2.0 * sqrt(max(1.0 - sineInside * sineInside, 0.0)) / cosineInside));

    // Shares of the paths.
    float mirrored = sfg_fresnelDielectric(ior, thetaV.y * cos(gamma));
    float3 shareTT = (1.0 - mirrored) * (1.0 - mirrored) * left;
    float3 shareTRT = shareTT * left * mirrored;
    float3 shareRest = shareTRT * left * mirrored / (1.0 - left * min(mirrored, 0.9999));

    float tilt = (cuticle - 0.5) * SFG_PI;
    float3 lamp = tintR * mirrored *
        (sfg_mtlxHairAlong(thetaL, sfg_mtlxHairTurned(thetaV, -2.0 * tilt), roughnessR.x) *
            sfg_mtlxHairAcross(turn, 0, roughnessR.y, gamma, gammaInside));
    lamp += tintTT * shareTT *
        (sfg_mtlxHairAlong(thetaL, sfg_mtlxHairTurned(thetaV, tilt), roughnessTT.x) *
            sfg_mtlxHairAcross(turn, 1, roughnessTT.y, gamma, gammaInside));
    lamp += tintTRT * shareTRT *
        (sfg_mtlxHairAlong(thetaL, sfg_mtlxHairTurned(thetaV, 4.0 * tilt), roughnessTRT.x) *
            sfg_mtlxHairAcross(turn, 2, roughnessTRT.y, gamma, gammaInside));
    lamp += tintTRT * shareRest * (sfg_mtlxHairAlong(thetaL, thetaV, roughnessTRT.x) / SFG_TWO_PI);
    float3 albedo = tintR * mirrored + tintTT * shareTT + tintTRT * (shareTRT + shareRest);
    return sfg_mtlxBsdf(
        SFG_INV_PI * (lamp * light.color + albedo * sfg_lightAmbient(light, n)), float3(0.0, 0.0, 0.0));
}

#endif
