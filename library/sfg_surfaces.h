// Light reflected from one light by the lit surfaces. Vectors are unit vectors in world coordinates.
// n: normal, v: direction to the eye.
#ifndef SFG_SURFACES_H
#define SFG_SURFACES_H

#include "sfg_brdf.h"
#include "sfg_lights.h"

float3 sfg_shadeLambert(sfg_Light light, float3 n, float3 albedo)
{
    return albedo * (sfg_lightIrradiance(light, n) * SFG_INV_PI + sfg_lightAmbient(light, n));
}

float3 sfg_shadeOrenNayar(sfg_Light light, float3 n, float3 v, float3 albedo, float sigma)
{
    float rough = sfg_orenNayarFactor(n, light.direction, v, sigma);
    return albedo * (sfg_lightIrradiance(light, n) * (rough * SFG_INV_PI) + sfg_lightAmbient(light, n));
}

float3 sfg_shadeBlinnPhong(sfg_Light light, float3 n, float3 v, float3 diffuse, float3 specular, float exponent)
{
    float highlight = sfg_blinnPhongSpecular(n, light.direction, v, exponent);
    return sfg_shadeLambert(light, n, diffuse) + specular * (highlight * sfg_lightIrradiance(light, n));
}

// What a rough mirror sends back from sky and ground (analytic fit of the environment term, Karis 2014).
float3 sfg_ambientSpecular(sfg_Light light, float3 n, float3 v, float3 f0, float roughness)
{
    float nDotV = saturate(dot(n, v));
    float4 r = roughness * float4(-1.0, -0.0275, -0.572, 0.022) + float4(1.0, 0.0425, 1.04, -0.04);
    float a = min(r.x * r.x, exp2(-9.28 * nDotV)) * r.x + r.y;
    float2 scaleBias = float2(-1.04, 1.04) * a + r.zw;
    return sfg_lightAmbient(light, reflect(-v, n)) * (f0 * scaleBias.x + scaleBias.y);
}

// Metallic and roughness: dielectrics reflect 4 percent and the rest diffusely, metals reflect their albedo.
float3 sfg_shadeGgx(sfg_Light light, float3 n, float3 v, float3 albedo, float metallic, float roughness)
{
    float3 f0 = lerp(float3(0.04, 0.04, 0.04), albedo, metallic);
    float3 diffuse = albedo * (1.0 - metallic);
    float3 specular = sfg_ggxSpecular(n, light.direction, v, f0, roughness) * sfg_lightIrradiance(light, n);
    return sfg_shadeLambert(light, n, diffuse) + specular + sfg_ambientSpecular(light, n, v, f0, roughness);
}

// The same look for less: a Blinn-Phong highlight whose exponent matches alpha (2 / alpha^2 - 2, Walter et al. 2007).
float3 sfg_shadeGgxSimple(sfg_Light light, float3 n, float3 v, float3 albedo, float metallic, float roughness)
{
    float alpha = max(roughness * roughness, 0.05);
    float3 f0 = lerp(float3(0.04, 0.04, 0.04), albedo, metallic);
    float exponent = max(2.0 / (alpha * alpha) - 2.0, 0.0);
    return sfg_shadeBlinnPhong(light, n, v, albedo * (1.0 - metallic), f0, exponent) +
        f0 * sfg_lightAmbient(light, n);
}

// Metal brushed along `tangent`: a wide highlight across the scratches, a narrow one along them.
float3 sfg_shadeBrushed(
    sfg_Light light, float3 n, float3 tangent, float3 v, float3 albedo, float roughnessAlong, float roughnessAcross)
{
    float3 t = sfg_safeNormalize(tangent - n * dot(n, tangent));
    float3 b = cross(n, t);
    float3 h = sfg_safeNormalize(light.direction + v);
    float alphaT = sfg_alphaOf(roughnessAlong);
    float alphaB = sfg_alphaOf(roughnessAcross);
    float d = sfg_ggxAnisotropic(alphaT, alphaB, dot(t, h), dot(b, h), saturate(dot(n, h)));
    float nDotL = saturate(dot(n, light.direction));
    float visibility = sfg_smithVisibility(sqrt(alphaT * alphaB), nDotL, saturate(dot(n, v)));
    float3 f = sfg_fresnelSchlick(albedo, saturate(dot(v, h)));
    return f * (d * visibility) * sfg_lightIrradiance(light, n) +
        sfg_ambientSpecular(light, n, v, albedo, 0.5 * (roughnessAlong + roughnessAcross));
}

// Base colour under metal flakes under a clear coat that reflects 4 percent.
float3 sfg_shadeCarPaint(sfg_Light light, float3 n, float3 flakeNormal, float3 v, float3 baseColor, float3 flakeColor,
    float flakeAmount, float coatRoughness)
{
    float3 coatF0 = float3(0.04, 0.04, 0.04);
    float3 coat = sfg_ggxSpecular(n, light.direction, v, coatF0, coatRoughness) * sfg_lightIrradiance(light, n) +
        sfg_ambientSpecular(light, n, v, coatF0, coatRoughness);
    float3 base = sfg_shadeGgx(light, n, v, baseColor, 0.3, 0.5);
    float3 flakes = sfg_ggxSpecular(flakeNormal, light.direction, v, flakeColor, 0.25) *
        sfg_lightIrradiance(light, flakeNormal);
    float3 through = 1.0 - sfg_fresnelSchlick(coatF0, saturate(dot(n, v)));
    return coat + through * (base + flakes * flakeAmount);
}

// Light in flat steps with a hard highlight. `softness` widens the borders between the steps.
float3 sfg_shadeToon(
    sfg_Light light, float3 n, float3 v, float3 albedo, float3 highlightColor, float steps, float softness)
{
    float bands = max(steps, 1.0);
    float scaled = saturate(dot(n, light.direction)) * bands;
    float whole = floor(scaled);
    float t = saturate((scaled - whole - (1.0 - softness)) / max(softness, 0.001));
    float level = (whole + t * t * (3.0 - 2.0 * t)) / bands;
    float glint = saturate(dot(n, sfg_safeNormalize(light.direction + v)));
    float highlight = saturate((glint - 0.97) / max(softness * 0.1, 0.001));
    return light.color * SFG_INV_PI * (albedo * saturate(level) + highlightColor * highlight) +
        albedo * sfg_lightAmbient(light, n);
}

// Cloth: diffuse threads and a soft sheen at grazing angles (Estevez and Kulla 2017, Neubelt and Pettineo 2013).
float3 sfg_shadeCloth(sfg_Light light, float3 n, float3 v, float3 albedo, float3 sheenColor, float roughness)
{
    float3 h = sfg_safeNormalize(light.direction + v);
    float nDotL = saturate(dot(n, light.direction));
    float nDotV = saturate(dot(n, v));
    float d = sfg_charlieDistribution(sfg_alphaOf(roughness), saturate(dot(n, h)));
    float visibility = 1.0 / max(4.0 * (nDotL + nDotV - nDotL * nDotV), 0.0001);
    return sfg_shadeLambert(light, n, albedo) + sheenColor * (d * visibility) * sfg_lightIrradiance(light, n);
}

#endif
