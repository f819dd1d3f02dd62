// Light reflected from one light by the lit surfaces. Vectors are unit vectors in world coordinates.
// n: normal, v: direction to the eye. No surface sends back more than arrives: what one layer reflects is missing in
// the layer below, and light of the sky is reflected as much as lamps all around would be.
#ifndef SFG_SURFACES_H
#define SFG_SURFACES_H

#include "sfg_brdf.h"
#include "sfg_lights.h"

float3 sfg_shadeLambert(sfg_Light light, float3 n, float3 albedo)
{
    return albedo * (sfg_lightIrradiance(light, n) * SFG_INV_PI + sfg_lightAmbient(light, n));
}

// What facets of a rough diffuse surface send to each other comes out at last, once more coloured (after Kulla and
// Conty 2017).
float3 sfg_shadeOrenNayar(sfg_Light light, float3 n, float3 v, float3 albedo, float sigma)
{
    float mean = sfg_orenNayarMeanAlbedo(sigma);
    float lossL = 1.0 - sfg_orenNayarAlbedo(sigma, dot(n, light.direction));
    float lossV = 1.0 - sfg_orenNayarAlbedo(sigma, dot(n, v));
    float3 again = albedo * albedo * mean / (1.0 - saturate(albedo) * (1.0 - mean));
    float3 lamp = albedo * sfg_orenNayarFactor(n, light.direction, v, sigma) +
        again * (lossL * lossV / max(1.0 - mean, 0.0001));
    return sfg_lightIrradiance(light, n) * lamp * SFG_INV_PI +
        sfg_lightAmbient(light, n) * (albedo * (1.0 - lossV) + again * lossV);
}

// The same for less: light between the facets depends on the view alone.
float3 sfg_shadeOrenNayarSimple(sfg_Light light, float3 n, float3 v, float3 albedo, float sigma)
{
    float mean = sfg_orenNayarMeanAlbedo(sigma);
    float loss = 1.0 - sfg_orenNayarAlbedo(sigma, dot(n, v));
    float3 again = albedo * albedo * (mean * loss) / (1.0 - saturate(albedo) * (1.0 - mean));
    float3 lamp = albedo * sfg_orenNayarFactor(n, light.direction, v, sigma) + again;
    return sfg_lightIrradiance(light, n) * lamp * SFG_INV_PI +
        sfg_lightAmbient(light, n) * (albedo * (1.0 - loss) + again);
}

float3 sfg_shadeBlinnPhong(sfg_Light light, float3 n, float3 v, float3 diffuse, float3 specular, float exponent)
{
    float highlight = sfg_blinnPhongSpecular(n, light.direction, v, exponent);
    float3 sky = sfg_lightMirrored(light, reflect(-v, n), sqrt(sqrt(2.0 / (max(exponent, 0.0) + 2.0))));
    return sfg_shadeLambert(light, n, diffuse * (1.0 - saturate(specular))) +
        specular * (highlight * sfg_lightIrradiance(light, n) +
            sfg_blinnPhongAlbedo(exponent, saturate(dot(n, v))) * sky);
}

// Metallic and roughness: dielectrics reflect 4 percent and the rest diffusely, metals reflect their albedo.
float3 sfg_shadeGgx(sfg_Light light, float3 n, float3 v, float3 albedo, float metallic, float roughness)
{
    float3 l = light.direction;
    float alpha = sfg_alphaOf(roughness);
    float nDotL = saturate(dot(n, l));
    float nDotV = saturate(dot(n, v));
    float3 f0 = lerp(float3(0.04, 0.04, 0.04), albedo, metallic);
    float3 diffuse = albedo * (1.0 - metallic);
    float meanLoss = sfg_ggxMeanLoss(alpha);
    float3 bounced = sfg_bounceColor(f0, meanLoss) *
        (sfg_ggxLoss(alpha, nDotL) * sfg_ggxLoss(alpha, nDotV) / meanLoss * SFG_INV_PI);
    float3 albedoV = sfg_ggxAlbedo(f0, alpha, nDotV);
    float3 through = sfg_coupling(sfg_ggxAlbedo(f0, alpha, nDotL), albedoV, sfg_ggxMeanAlbedo(f0, alpha));
    float3 lamp = sfg_ggxSpecular(n, l, v, f0, roughness) + bounced + diffuse * through * SFG_INV_PI;
    return lamp * sfg_lightIrradiance(light, n) + diffuse * (1.0 - albedoV) * sfg_lightAmbient(light, n) +
        albedoV * sfg_lightMirrored(light, reflect(-v, n), roughness);
}

// The same for less, by reflectance and diffuse colour: diffuse light and light between the facets depend on the view
// alone.
float3 sfg_shadeGgxOfView(sfg_Light light, float3 n, float3 v, float3 f0, float3 diffuse, float roughness)
{
    float alpha = sfg_alphaOf(roughness);
    float nDotV = saturate(dot(n, v));
    float3 bounced = sfg_bounceColor(f0, sfg_ggxMeanLoss(alpha)) * sfg_ggxLoss(alpha, nDotV);
    float3 albedoV = sfg_ggxAlbedo(f0, alpha, nDotV);
    float3 lamp = sfg_ggxSpecular(n, light.direction, v, f0, roughness) +
        (bounced + diffuse * (1.0 - albedoV)) * SFG_INV_PI;
    return lamp * sfg_lightIrradiance(light, n) + diffuse * (1.0 - albedoV) * sfg_lightAmbient(light, n) +
        albedoV * sfg_lightMirrored(light, reflect(-v, n), roughness);
}

// Skin, wax and stone that light wanders in: it comes out around the terminator too, `scatter` wide in each channel,
// and as much of it as without (wrapped and normalised: Green 2004, McAuley 2011). Diffuse light depends on the view
// alone.
float3 sfg_shadeScattering(
    sfg_Light light, float3 n, float3 v, float3 albedo, float3 scatter, float roughness)
{
    float alpha = sfg_alphaOf(roughness);
    float nDotV = saturate(dot(n, v));
    float3 f0 = float3(0.04, 0.04, 0.04);
    float3 bounced = sfg_bounceColor(f0, sfg_ggxMeanLoss(alpha)) * (sfg_ggxLoss(alpha, nDotV) * SFG_INV_PI);
    float3 albedoV = sfg_ggxAlbedo(f0, alpha, nDotV);
    float3 width = saturate(scatter);
    float3 wrapped = saturate((dot(n, light.direction) + width) / (1.0 + width)) / (1.0 + width);
    float3 below = albedo * (1.0 - albedoV);
    return (sfg_ggxSpecular(n, light.direction, v, f0, roughness) + bounced) * sfg_lightIrradiance(light, n) +
        below * (wrapped * light.color * SFG_INV_PI + sfg_lightAmbient(light, n)) +
        albedoV * sfg_lightMirrored(light, reflect(-v, n), roughness);
}

float3 sfg_shadeGgxSimple(sfg_Light light, float3 n, float3 v, float3 albedo, float metallic, float roughness)
{
    float3 f0 = lerp(float3(0.04, 0.04, 0.04), albedo, metallic);
    return sfg_shadeGgxOfView(light, n, v, f0, albedo * (1.0 - metallic), roughness);
}

// Metal brushed along `tangent`: a wide highlight across the scratches, a narrow one along them.
float3 sfg_shadeBrushed(
    sfg_Light light, float3 n, float3 tangent, float3 v, float3 albedo, float roughnessAlong, float roughnessAcross)
{
    float alphaT = sfg_alphaOf(roughnessAlong);
    float alphaB = sfg_alphaOf(roughnessAcross);
    float3 l = sfg_inFrame(n, tangent, light.direction);
    float3 eye = sfg_inFrame(n, tangent, v);
    float meanLoss = sfg_anisotropicMeanLoss(alphaT, alphaB);
    float lossV = sfg_anisotropicLossOf(alphaT, alphaB, eye);
    float lossL = sfg_anisotropicLossOf(alphaT, alphaB, l);
    float3 bounce = sfg_bounceColor(albedo, meanLoss);
    float3 lamp = sfg_ggxAnisotropicSpecular(l, eye, albedo, alphaT, alphaB) +
        bounce * (lossL * lossV / meanLoss * SFG_INV_PI);
    return lamp * sfg_lightIrradiance(light, n) + sfg_anisotropicAlbedo(albedo, bounce, alphaT, alphaB, eye) *
        sfg_lightMirrored(light, reflect(-v, n), 0.5 * (roughnessAlong + roughnessAcross));
}

// The same for less: light between the facets depends on the view alone.
float3 sfg_shadeBrushedSimple(
    sfg_Light light, float3 n, float3 tangent, float3 v, float3 albedo, float roughnessAlong, float roughnessAcross)
{
    float alphaT = sfg_alphaOf(roughnessAlong);
    float alphaB = sfg_alphaOf(roughnessAcross);
    float3 eye = sfg_inFrame(n, tangent, v);
    float3 bounce = sfg_bounceColor(albedo, sfg_anisotropicMeanLoss(alphaT, alphaB));
    float3 lamp = sfg_ggxAnisotropicSpecular(sfg_inFrame(n, tangent, light.direction), eye, albedo, alphaT, alphaB) +
        bounce * (sfg_anisotropicLossOf(alphaT, alphaB, eye) * SFG_INV_PI);
    return lamp * sfg_lightIrradiance(light, n) + sfg_anisotropicAlbedo(albedo, bounce, alphaT, alphaB, eye) *
        sfg_lightMirrored(light, reflect(-v, n), 0.5 * (roughnessAlong + roughnessAcross));
}

// What a clear coat of 4 percent lets through on the way in and out.
float3 sfg_throughCoat(float3 n, float3 l, float3 v, float coatRoughness)
{
    float alpha = sfg_alphaOf(coatRoughness);
    float3 f0 = float3(0.04, 0.04, 0.04);
    float3 through = (1.0 - sfg_ggxAlbedo(f0, alpha, saturate(dot(n, l)))) *
        (1.0 - sfg_ggxAlbedo(f0, alpha, saturate(dot(n, v))));
    return dot(n, l) > 0.0 ? through : float3(0.0, 0.0, 0.0);
}

// A light as it arrives below the clear coat and its reflection leaves: dimmed both ways.
sfg_Light sfg_lightThroughCoat(sfg_Light light, float3 n, float3 v, float coatRoughness)
{
    float3 f0 = float3(0.04, 0.04, 0.04);
    float alpha = sfg_alphaOf(coatRoughness);
    float3 sky = (1.0 - sfg_ggxAlbedo(f0, alpha, saturate(dot(n, v)))) * (1.0 - sfg_ggxMeanAlbedo(f0, alpha));
    sfg_Light below = light;
    below.color = light.color * sfg_throughCoat(n, light.direction, v, coatRoughness);
    below.skyColor = light.skyColor * sky;
    below.groundColor = light.groundColor * sky;
    below.mirrorColor = light.mirrorColor * sky;
    below.mirrorBlurred = light.mirrorBlurred * sky;
    below.mirrorSmooth = light.mirrorSmooth * sky;
    below.mirrorSatin = light.mirrorSatin * sky;
    below.mirrorBrushed = light.mirrorBrushed * sky;
    below.mirrorRough = light.mirrorRough * sky;
    return below;
}

// What a clear coat reflects, 4 percent where it is seen from the front.
float3 sfg_shadeClearCoat(sfg_Light light, float3 n, float3 v, float coatRoughness)
{
    float3 coatF0 = float3(0.04, 0.04, 0.04);
    return sfg_ggxSpecular(n, light.direction, v, coatF0, coatRoughness) * sfg_lightIrradiance(light, n) +
        sfg_ggxAlbedo(coatF0, sfg_alphaOf(coatRoughness), saturate(dot(n, v))) *
            sfg_lightMirrored(light, reflect(-v, n), coatRoughness);
}

// Base colour, in part covered by metal flakes, under a clear coat that reflects 4 percent.
float3 sfg_shadeCarPaint(sfg_Light light, float3 n, float3 flakeNormal, float3 v, float3 baseColor, float3 flakeColor,
    float flakeAmount, float coatRoughness)
{
    float3 coat = sfg_shadeClearCoat(light, n, v, coatRoughness);
    sfg_Light below = sfg_lightThroughCoat(light, n, v, coatRoughness);
    float3 base = sfg_shadeGgx(below, n, v, baseColor, 0.3, 0.5);
    float3 flakes = sfg_shadeGgx(below, flakeNormal, v, flakeColor, 1.0, 0.25);
    return coat + lerp(base, flakes, saturate(flakeAmount));
}

// The same for less: base and flakes as one layer along the normal. Flakes that are tilted at random shine wider, and
// whiter where they graze the view; the two numbers for that are fits.
float3 sfg_shadeCarPaintSimple(sfg_Light light, float3 n, float3 v, float3 baseColor, float3 flakeColor,
    float flakeAmount, float coatRoughness)
{
    float3 coat = sfg_shadeClearCoat(light, n, v, coatRoughness);
    sfg_Light below = sfg_lightThroughCoat(light, n, v, coatRoughness);
    float share = saturate(flakeAmount);
    float3 f0 = lerp(lerp(0.04, baseColor, 0.3), lerp(flakeColor, 1.0, 0.24), share);
    return coat + sfg_shadeGgxOfView(below, n, v, f0, baseColor * (0.7 * (1.0 - share)), 0.66);
}

// Light in flat steps with a hard highlight in the tone of its place. `softness` widens the borders.
float3 sfg_shadeToon(
    sfg_Light light, float3 n, float3 v, float3 albedo, float3 highlightColor, float steps, float softness)
{
    float level = sfg_toonTone(dot(n, light.direction), steps, softness);
    float glint = saturate(dot(n, sfg_safeNormalize(light.direction + v)));
    float highlight = saturate((glint - 0.97) / max(softness * 0.1, 0.001));
    return light.color * (SFG_INV_PI * level) * lerp(albedo, highlightColor, highlight) +
        albedo * sfg_lightAmbient(light, n);
}

// Sheen of smooth cloth is cut off at this roughness: it would shine like a mirror at its silhouette only.
float sfg_sheenRoughness(float roughness)
{
    return clamp(roughness, 0.2, 1.0);
}

// Cloth: diffuse threads below a soft sheen at grazing angles (Estevez and Kulla 2017, Neubelt and Pettineo 2013).
float3 sfg_shadeCloth(sfg_Light light, float3 n, float3 v, float3 albedo, float3 sheenColor, float roughness)
{
    float3 h = sfg_safeNormalize(light.direction + v);
    float nDotL = saturate(dot(n, light.direction));
    float nDotV = saturate(dot(n, v));
    float r = sfg_sheenRoughness(roughness);
    float eL = sfg_sheenAlbedo(r, nDotL);
    float eV = sfg_sheenAlbedo(r, nDotV);
    float sheen = sfg_charlieDistribution(sfg_alphaOf(r), saturate(dot(n, h))) * sfg_clothVisibility(nDotL, nDotV) /
        max(max(eL, eV), 1.0);
    float strength = saturate(max(max(sheenColor.x, sheenColor.y), sheenColor.z));
    eL = strength * min(eL, 1.0);
    eV = strength * min(eV, 1.0);
    float mean = strength * sfg_sheenMeanAlbedo(r);
    float through = (1.0 - eL) * (1.0 - eV) / max(1.0 - mean, 0.01);
    return (albedo * (through * SFG_INV_PI) + sheenColor * sheen) * sfg_lightIrradiance(light, n) +
        albedo * (1.0 - eV) * sfg_lightAmbient(light, n) +
        sheenColor * min(sfg_sheenAlbedo(r, nDotV), 1.0) * sfg_lightAmbient(light, reflect(-v, n));
}

// The same for less: how much of the threads is seen depends on the view alone.
float3 sfg_shadeClothSimple(sfg_Light light, float3 n, float3 v, float3 albedo, float3 sheenColor, float roughness)
{
    float3 h = sfg_safeNormalize(light.direction + v);
    float nDotL = saturate(dot(n, light.direction));
    float nDotV = saturate(dot(n, v));
    float r = sfg_sheenRoughness(roughness);
    float e = sfg_sheenAlbedo(r, nDotV);
    float sheen = sfg_charlieDistribution(sfg_alphaOf(r), saturate(dot(n, h))) * sfg_clothVisibility(nDotL, nDotV) /
        max(e, 1.0);
    e = min(e, 1.0);
    float strength = saturate(max(max(sheenColor.x, sheenColor.y), sheenColor.z));
    float3 below = albedo * (1.0 - strength * e);
    return (below * SFG_INV_PI + sheenColor * sheen) * sfg_lightIrradiance(light, n) +
        (below + sheenColor * e) * sfg_lightAmbient(light, n);
}

#endif
