// Reflection models. All vectors are unit vectors that point away from the surface; cosines are clamped to [0, 1]
// by the caller unless a comment says otherwise. `roughness` is perceptual, alpha = roughness * roughness (Burley 2012).
#ifndef SFG_BRDF_H
#define SFG_BRDF_H

#include "sfg_math.h"

float sfg_alphaOf(float roughness)
{
    return max(roughness * roughness, 0.001);
}

// Fresnel reflectance for the reflectance f0 at normal incidence (Schlick 1994).
float3 sfg_fresnelSchlick(float3 f0, float cosine)
{
    float m = saturate(1.0 - cosine);
    float m2 = m * m;
    return f0 + (1.0 - f0) * (m2 * m2 * m);
}

// Unpolarised Fresnel reflectance of a dielectric with relative index of refraction eta (Fresnel 1823).
float sfg_fresnelDielectric(float eta, float cosine)
{
    float c = saturate(cosine);
    float g2 = eta * eta - 1.0 + c * c;
    if (g2 <= 0.0)
        return 1.0;
    float g = sqrt(g2);
    float a = (g - c) / (g + c);
    float b = (c * (g + c) - 1.0) / (c * (g - c) + 1.0);
    return 0.5 * a * a * (1.0 + b * b);
}

// Normal distribution of GGX, alpha > 0 (Walter et al. 2007).
float sfg_ggxDistribution(float alpha, float nDotH)
{
    float a2 = alpha * alpha;
    float d = nDotH * nDotH * (a2 - 1.0) + 1.0;
    return a2 / (SFG_PI * d * d);
}

// Height-correlated Smith masking and shadowing of GGX divided by 4 nDotL nDotV (Heitz 2014); 0 for a light that is
// not above the surface.
float sfg_smithVisibility(float alpha, float nDotL, float nDotV)
{
    float a2 = alpha * alpha;
    float lightTerm = nDotV * sqrt(nDotL * nDotL * (1.0 - a2) + a2);
    float viewTerm = nDotL * sqrt(nDotV * nDotV * (1.0 - a2) + a2);
    return nDotL > 0.0 ? 0.5 / max(lightTerm + viewTerm, 0.00001) : 0.0;
}

// Anisotropic GGX: alphas along the tangent and the binormal (Burley 2012).
float sfg_ggxAnisotropic(float alphaT, float alphaB, float tDotH, float bDotH, float nDotH)
{
    float x = tDotH / alphaT;
    float y = bDotH / alphaB;
    float d = x * x + y * y + nDotH * nDotH;
    return 1.0 / (SFG_PI * alphaT * alphaB * max(d * d, 0.00001));
}

// Normal distribution of Beckmann, alpha > 0 (Cook and Torrance 1982).
float sfg_beckmannDistribution(float alpha, float nDotH)
{
    float c2 = max(nDotH * nDotH, 0.000001);
    float a2 = alpha * alpha;
    return exp((c2 - 1.0) / (a2 * c2)) / (SFG_PI * a2 * c2 * c2);
}

// Normal distribution of cloth threads, alpha > 0 (Estevez and Kulla 2017).
float sfg_charlieDistribution(float alpha, float nDotH)
{
    float inverse = 1.0 / alpha;
    float sine = sqrt(saturate(1.0 - nDotH * nDotH));
    return (2.0 + inverse) * sfg_safePower(sine, inverse) * SFG_INV_TWO_PI;
}

// Specular reflection with GGX, Smith and Schlick, without the cosine of the light (Cook and Torrance 1982).
float3 sfg_ggxSpecular(float3 n, float3 l, float3 v, float3 f0, float roughness)
{
    float alpha = sfg_alphaOf(roughness);
    float3 h = sfg_safeNormalize(l + v);
    float nDotL = saturate(dot(n, l));
    float nDotV = saturate(dot(n, v));
    float nDotH = saturate(dot(n, h));
    float vDotH = saturate(dot(v, h));
    return sfg_fresnelSchlick(f0, vDotH) *
        (sfg_ggxDistribution(alpha, nDotH) * sfg_smithVisibility(alpha, nDotL, nDotV));
}

// Rough diffuse reflection relative to Lambert, the qualitative model (Oren and Nayar 1994). `sigma` in radians.
float sfg_orenNayarFactor(float3 n, float3 l, float3 v, float sigma)
{
    float s2 = sigma * sigma;
    float a = 1.0 - 0.5 * s2 / (s2 + 0.33);
    float b = 0.45 * s2 / (s2 + 0.09);
    float nDotL = saturate(dot(n, l));
    float nDotV = saturate(dot(n, v));
    float3 lightPart = sfg_safeNormalize(l - n * nDotL);
    float3 viewPart = sfg_safeNormalize(v - n * nDotV);
    float sinL = sqrt(saturate(1.0 - nDotL * nDotL));
    float sinV = sqrt(saturate(1.0 - nDotV * nDotV));
    float sinProduct = sinL * sinV;
    float sinOverCos = sinProduct / max(max(nDotL, nDotV), 0.00001);
    return a + b * max(dot(lightPart, viewPart), 0.0) * sinOverCos;
}

// Diffuse reflection with retro-reflection at grazing angles, without the cosine of the light (Burley 2012).
float sfg_burleyDiffuse(float nDotL, float nDotV, float lDotH, float roughness)
{
    float f90 = 0.5 + 2.0 * roughness * lDotH * lDotH;
    float ml = saturate(1.0 - nDotL);
    float mv = saturate(1.0 - nDotV);
    float ml2 = ml * ml;
    float mv2 = mv * mv;
    float lightScatter = 1.0 + (f90 - 1.0) * ml2 * ml2 * ml;
    float viewScatter = 1.0 + (f90 - 1.0) * mv2 * mv2 * mv;
    return lightScatter * viewScatter * SFG_INV_PI;
}

// Highlight around the mirror direction, normalised to reflect at most what arrives (Phong 1975; Lewis 1993).
float sfg_phongSpecular(float3 n, float3 l, float3 v, float exponent)
{
    float c = saturate(dot(reflect(-l, n), v));
    return sfg_safePower(c, exponent) * (exponent + 2.0) * SFG_INV_TWO_PI;
}

// Highlight around the half vector (Blinn 1977), normalised with (exponent + 8) / (8 pi) (Akenine-Moeller et al. 2008).
float sfg_blinnPhongSpecular(float3 n, float3 l, float3 v, float exponent)
{
    float c = saturate(dot(n, sfg_safeNormalize(l + v)));
    return sfg_safePower(c, exponent) * (exponent + 8.0) * SFG_INV_PI / 8.0;
}

#endif
