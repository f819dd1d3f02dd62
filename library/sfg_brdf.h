// Reflection models. All vectors are unit vectors that point away from the surface; cosines are clamped to [0, 1]
// by the caller unless a comment says otherwise. `roughness` is perceptual, alpha = roughness * roughness (Burley 2012).
//
// The albedo of a model is the share of light it sends back in all directions: of what arrives from one direction or,
// by reciprocity, of even light from everywhere towards one eye. Its mean is weighted with the cosine.
#ifndef SFG_BRDF_H
#define SFG_BRDF_H

#include "sfg_math.h"

float sfg_alphaOf(float roughness)
{
    return clamp(roughness * roughness, 0.001, 1.0);
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
    if (eta == 1.0)
        return 0.0;
    if (g2 <= 0.0)
        return 1.0;
    float g = sqrt(g2);
    float a = (g - c) / (g + c);
    float b = (c * (g + c) - 1.0) / (c * (g - c) + 1.0);
    return 0.5 * a * a * (1.0 + b * b);
}

// GGX from both parts of the angle between normal and half vector: near the peak of a narrow lobe a cosine alone has
// too few digits.
float sfg_ggxFromSine(float alpha, float cosine, float sineSquared)
{
    float a2 = alpha * alpha;
    float d = cosine * cosine * a2 + sineSquared;
    return a2 / (SFG_PI * d * d);
}

// Normal distribution of GGX, alpha > 0 (Walter et al. 2007).
float sfg_ggxDistribution(float alpha, float nDotH)
{
    return sfg_ggxFromSine(alpha, nDotH, (1.0 - nDotH) * (1.0 + nDotH));
}

// The same for a normal and a half vector.
float sfg_ggxLobe(float alpha, float3 n, float3 h)
{
    float3 across = cross(n, h);
    return sfg_ggxFromSine(alpha, saturate(dot(n, h)), max(dot(across, across), 0.0000000001));
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

// The same for less, without square roots (Hammon 2017).
float sfg_smithVisibilityFast(float alpha, float nDotL, float nDotV)
{
    float smooth = 2.0 * nDotL * nDotV;
    float rough = nDotL + nDotV;
    return nDotL > 0.0 ? 0.5 / max(smooth + (rough - smooth) * alpha, 0.00001) : 0.0;
}

// Anisotropic GGX: alphas along the tangent and the binormal (Burley 2012).
float sfg_ggxAnisotropic(float alphaT, float alphaB, float tDotH, float bDotH, float nDotH)
{
    float x = tDotH / alphaT;
    float y = bDotH / alphaB;
    float d = x * x + y * y + nDotH * nDotH;
    return 1.0 / (SFG_PI * alphaT * alphaB * max(d * d, 0.00001));
}

// Height-correlated Smith masking and shadowing of anisotropic GGX divided by 4 nDotL nDotV (Heitz 2014). Light and
// view by their parts along tangent, binormal and normal; 0 for a light that is not above the surface.
float sfg_smithAnisotropic(float alphaT, float alphaB, float3 l, float3 v)
{
    float nDotL = saturate(l.z);
    float nDotV = saturate(v.z);
    float lightTerm = nDotV * length(float3(alphaT * l.x, alphaB * l.y, nDotL));
    float viewTerm = nDotL * length(float3(alphaT * v.x, alphaB * v.y, nDotV));
    return nDotL > 0.0 ? 0.5 / max(lightTerm + viewTerm, 0.00001) : 0.0;
}

// What rough metal that reflects everything loses when each ray meets one micro-facet only: 1 - albedo of GGX with
// the masking above. Fits to within 0.005. The mean is at most 1 percent too large, so that
// what is made good of the loss is never too much.
float sfg_ggxLoss(float alpha, float cosine)
{
    float4 a = float4(1.0, alpha, alpha * alpha, alpha * alpha * alpha);
    float u = cosine / (cosine + alpha);
    float loss = dot(a, float4(2.4231, -2.3199, -21.4127, 8.5867));
    loss = loss * u + dot(a, float4(-5.0501, 7.4376, 24.6492, -9.4478));
    loss = loss * u + dot(a, float4(2.9495, -6.9004, -6.8835, 1.5528));
    loss = loss * u + dot(a, float4(-0.3595, 2.1303, 1.6453, -0.2176));
    loss = loss * u + dot(a, float4(0.0330, -0.1820, 0.3022, -0.1377));
    return saturate(loss);
}

float sfg_ggxMeanLoss(float alpha)
{
    float r = sqrt(alpha);
    return max(0.0006 + r * (0.0105 + r * (-0.3273 + r * (2.2528 - r * 1.3462))), 0.0005);
}

// The part of GGX's albedo that Schlick's Fresnel term adds for every colour: reflectance * (1 - loss - grazing) +
// grazing is the albedo of one bounce. Fits to within 0.004.
float sfg_ggxGrazing(float alpha, float cosine)
{
    float r = sqrt(alpha);
    float4 a = float4(1.0, r, alpha, alpha * r);
    float u = cosine / (cosine + alpha);
    float part = dot(a, float4(-3.7674, 14.8829, 10.0519, 2.1917));
    part = part * u + dot(a, float4(8.2730, -40.3361, 27.6878, -0.3434));
    part = part * u + dot(a, float4(-5.3031, 32.7397, -49.5693, 22.9596));
    part = part * u + dot(a, float4(0.6739, -3.9855, 7.0771, -3.9576));
    part = part * u + dot(a, float4(1.1219, -3.2032, 3.2773, -1.1454));
    float m = saturate(1.0 - cosine);
    float m2 = m * m;
    return saturate(part * (m2 * m2 * m));
}

float sfg_ggxMeanGrazing(float alpha)
{
    float r = sqrt(alpha);
    return 0.0465 + r * (0.0535 + r * (-0.4891 + r * (0.6740 - r * 0.2818)));
}

// Colour of the light that met several micro-facets, given the mean loss of one bounce (Kulla and Conty 2017;
// Fdez-Aguera 2019). 1 for a reflectance of 1.
float3 sfg_bounceColor(float3 f0, float meanLoss)
{
    float3 f = (saturate(f0) * 20.0 + 1.0) / 21.0;
    return f * f * (1.0 - meanLoss) / (1.0 - f * meanLoss);
}

// Albedo of GGX with all bounces.
float3 sfg_ggxAlbedo(float3 f0, float alpha, float cosine)
{
    float loss = sfg_ggxLoss(alpha, cosine);
    float grazing = sfg_ggxGrazing(alpha, cosine);
    return saturate(f0 * (1.0 - loss - grazing) + grazing + sfg_bounceColor(f0, sfg_ggxMeanLoss(alpha)) * loss);
}

float3 sfg_ggxMeanAlbedo(float3 f0, float alpha)
{
    float loss = sfg_ggxMeanLoss(alpha);
    float grazing = sfg_ggxMeanGrazing(alpha);
    return saturate(f0 * (1.0 - loss - grazing) + grazing + sfg_bounceColor(f0, loss) * loss);
}

// Share of a layer below that comes through a layer which itself reflects `light` and `view` of what arrives from the
// light and leaves to the eye, `mean` on average: as much as is left, and in both directions the same (Kelemen and
// Szirmay-Kalos 2001).
float3 sfg_coupling(float3 light, float3 view, float3 mean)
{
    return (1.0 - light) * (1.0 - view) / max(1.0 - mean, 0.01);
}

// The loss of anisotropic GGX, for alphas along and across the direction. Fits to within 0.06 and stays below, so
// that what is made good of it is never too much.
float sfg_anisotropicLoss(float along, float across, float cosine)
{
    float u = cosine / (cosine + along);
    float loss = -0.0807;
    loss = loss * u - 0.3272 - 0.2377 * across - 0.4025 * along;
    loss = loss * u + 0.3582 + across * (0.6411 + 0.0022 * across) + along * (0.2760 - 0.0356 * across + 0.5609 * along);
    loss = loss * u + 0.0201 + across * (-0.3061 + across * (0.6719 - 0.2770 * across)) +
        along * (-0.0634 + across * (-0.0203 - 0.0572 * across) + along * (0.1129 + 0.0104 * across - 0.0224 * along));
    return saturate(loss - 0.03);
}

float sfg_anisotropicMeanLoss(float alphaT, float alphaB)
{
    float s = alphaT + alphaB;
    float p = alphaT * alphaB;
    float loss = s * (0.0191 + s * (0.9501 + s * (-0.7095 + s * 0.1335))) +
        p * (-1.5476 + s * (1.2042 + s * 0.0173) - p * 0.6254);
    return max(loss + 0.006, 0.01);
}

// The alphas along and across a direction, given by its parts along tangent, binormal and normal.
float2 sfg_anisotropicAlphas(float alphaT, float alphaB, float3 direction)
{
    float2 squared = direction.xy * direction.xy + 0.000001;
    float2 alpha2 = float2(alphaT * alphaT, alphaB * alphaB);
    return sqrt(float2(dot(alpha2, squared), dot(alpha2.yx, squared)) / (squared.x + squared.y));
}

float sfg_anisotropicLossOf(float alphaT, float alphaB, float3 direction)
{
    float2 alphas = sfg_anisotropicAlphas(alphaT, alphaB, direction);
    return sfg_anisotropicLoss(alphas.x, alphas.y, saturate(direction.z));
}

// Albedo of brushed metal with all bounces, whose colour is `bounce`.
float3 sfg_anisotropicAlbedo(float3 f0, float3 bounce, float alphaT, float alphaB, float3 direction)
{
    float2 alphas = sfg_anisotropicAlphas(alphaT, alphaB, direction);
    float cosine = saturate(direction.z);
    float loss = sfg_anisotropicLoss(alphas.x, alphas.y, cosine);
    float grazing = min(sfg_ggxGrazing(alphas.x, cosine), 1.0 - loss);
    return f0 * (1.0 - loss - grazing) + grazing + bounce * loss;
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

// Masking of cloth threads over 4 nDotL nDotV (Neubelt and Pettineo 2013).
float sfg_clothVisibility(float nDotL, float nDotV)
{
    return 1.0 / max(4.0 * (nDotL + nDotV - nDotL * nDotV), 0.0001);
}

// Albedo of the two above together, for roughnesses from 0.2 on; above 1 where the light grazes smooth cloth.
// Fits to within 0.013.
float sfg_sheenAlbedo(float roughness, float cosine)
{
    float i = 1.0 / roughness;
    float3 a = float3(1.0, i, i * i);
    float power = dot(a, float3(-1.2304, -0.3957, -0.6193));
    power = power * cosine + dot(a, float3(1.9287, 1.1644, 0.1751));
    power = power * cosine + dot(a, float3(-1.2607, -1.3055, -0.0357));
    power = power * cosine + dot(a, float3(-0.8783, 0.4455, -0.0275));
    return exp(power) + 0.004;
}

// The mean of what is not above 1.
float sfg_sheenMeanAlbedo(float roughness)
{
    return -0.0244 + roughness * (0.5391 + roughness * (-0.3286 + roughness * 0.0589));
}

// Specular reflection with GGX, Smith and Schlick, without the cosine of the light (Cook and Torrance 1982).
float3 sfg_ggxSpecular(float3 n, float3 l, float3 v, float3 f0, float roughness)
{
    float alpha = sfg_alphaOf(roughness);
    float3 h = sfg_safeNormalize(l + v);
    float nDotL = saturate(dot(n, l));
    float nDotV = saturate(dot(n, v));
    float vDotH = saturate(dot(v, h));
    return sfg_fresnelSchlick(f0, vDotH) * (sfg_ggxLobe(alpha, n, h) * sfg_smithVisibility(alpha, nDotL, nDotV));
}

// The same for less.
float3 sfg_ggxSpecularFast(float3 n, float3 l, float3 v, float3 f0, float roughness)
{
    float alpha = sfg_alphaOf(roughness);
    float3 h = sfg_safeNormalize(l + v);
    float nDotL = saturate(dot(n, l));
    float nDotV = saturate(dot(n, v));
    float vDotH = saturate(dot(v, h));
    return sfg_fresnelSchlick(f0, vDotH) * (sfg_ggxLobe(alpha, n, h) * sfg_smithVisibilityFast(alpha, nDotL, nDotV));
}

// A unit vector across the unit vector n (Duff et al. 2017).
float3 sfg_anyTangent(float3 n)
{
    float side = n.z < 0.0 ? -1.0 : 1.0;
    float a = -1.0 / (side + n.z);
    return float3(1.0 + side * n.x * n.x * a, side * n.x * n.y * a, -side * n.x);
}

// A direction by its parts along `tangent` made perpendicular to n, the binormal and n. A tangent that is zero or
// along n gives way to any other.
float3 sfg_inFrame(float3 n, float3 tangent, float3 direction)
{
    float3 across = tangent - n * dot(n, tangent);
    float3 t = dot(across, across) > 0.00000001 * dot(tangent, tangent) ? sfg_safeNormalize(across) : sfg_anyTangent(n);
    return float3(dot(t, direction), dot(cross(n, t), direction), dot(n, direction));
}

// Brushed metal, without the cosine of the light: directions by their parts along tangent, binormal and normal.
float3 sfg_ggxAnisotropicSpecular(float3 l, float3 v, float3 f0, float alphaT, float alphaB)
{
    float3 h = sfg_safeNormalize(l + v);
    float d = sfg_ggxAnisotropic(alphaT, alphaB, h.x, h.y, saturate(h.z));
    return sfg_fresnelSchlick(f0, saturate(dot(v, h))) * (d * sfg_smithAnisotropic(alphaT, alphaB, l, v));
}

// The two numbers of Oren and Nayar's qualitative model, made smaller by at most 2 percent so that nothing is
// brighter than the light. `sigma` in radians.
float2 sfg_orenNayarTerms(float sigma)
{
    float s2 = sigma * sigma;
    float a = 1.0 - 0.5 * s2 / (s2 + 0.33);
    float b = 0.45 * s2 / (s2 + 0.09);
    return float2(a, b) / max(a + 0.5 * b, 1.0);
}

// Albedo of the model: the integral of its formula.
float sfg_orenNayarAlbedo(float sigma, float cosine)
{
    float2 terms = sfg_orenNayarTerms(sigma);
    float c = max(saturate(cosine), 0.001);
    float s = sqrt(saturate(1.0 - c * c));
    float towards = 0.5 * s * (acos(c) - s * c) + s / c * (1.0 - s * s * s) / 3.0;
    return saturate(terms.x + 2.0 * SFG_INV_PI * terms.y * towards);
}

// pi / 6 - 16 / 45, times 4 / pi.
float sfg_orenNayarMeanAlbedo(float sigma)
{
    float2 terms = sfg_orenNayarTerms(sigma);
    return terms.x + 0.213959 * terms.y;
}

// Rough diffuse reflection relative to Lambert, the qualitative model (Oren and Nayar 1994). `sigma` in radians.
float sfg_orenNayarFactor(float3 n, float3 l, float3 v, float sigma)
{
    float2 terms = sfg_orenNayarTerms(sigma);
    float nDotL = saturate(dot(n, l));
    float nDotV = saturate(dot(n, v));
    float3 lightPart = sfg_safeNormalize(l - n * nDotL);
    float3 viewPart = sfg_safeNormalize(v - n * nDotV);
    float sinL = sqrt(saturate(1.0 - nDotL * nDotL));
    float sinV = sqrt(saturate(1.0 - nDotV * nDotV));
    float sinProduct = sinL * sinV;
    float sinOverCos = sinProduct / max(max(nDotL, nDotV), 0.00001);
    return terms.x + terms.y * max(dot(lightPart, viewPart), 0.0) * sinOverCos;
}

// Diffuse reflection with retro-reflection at grazing angles, without the cosine of the light (Burley 2012), scaled so
// that it reflects at most what arrives (Lagarde and de Rousiers 2014, who scale by 1.51 instead of 1.55).
float sfg_burleyDiffuse(float nDotL, float nDotV, float lDotH, float roughness)
{
    float r = saturate(roughness);
    float f90 = 0.5 * r + 2.0 * r * lDotH * lDotH;
    float ml = saturate(1.0 - nDotL);
    float mv = saturate(1.0 - nDotV);
    float ml2 = ml * ml;
    float mv2 = mv * mv;
    float lightScatter = 1.0 + (f90 - 1.0) * ml2 * ml2 * ml;
    float viewScatter = 1.0 + (f90 - 1.0) * mv2 * mv2 * mv;
    return lightScatter * viewScatter * lerp(1.0, 0.645161, r) * SFG_INV_PI;
}

// Highlight around the mirror direction, normalised to reflect at most what arrives (Phong 1975; Lewis 1993).
float sfg_phongSpecular(float3 n, float3 l, float3 v, float exponent)
{
    float power = max(exponent, 0.0);
    float c = saturate(dot(reflect(-l, n), v));
    return sfg_safePower(c, power) * (power + 2.0) * SFG_INV_TWO_PI;
}

// What makes the albedo of Blinn-Phong 1 for a light along the normal (Giesen 2009).
float sfg_blinnPhongScale(float exponent)
{
    float power = max(exponent, 0.0);
    return (power + 2.0) * (power + 4.0) / (8.0 * SFG_PI * (exp2(-0.5 * power) + power));
}

// Highlight around the half vector (Blinn 1977), normalised to reflect at most what arrives.
float sfg_blinnPhongSpecular(float3 n, float3 l, float3 v, float exponent)
{
    float c = saturate(dot(n, sfg_safeNormalize(l + v)));
    return sfg_safePower(c, max(exponent, 0.0)) * sfg_blinnPhongScale(exponent);
}

// Albedo of Blinn-Phong; narrow highlights fade at grazing angles. Fits to within 0.02.
float sfg_blinnPhongAlbedo(float exponent, float cosine)
{
    float power = max(exponent, 0.0);
    float constant = 1.0 / (1.0 + power * (0.7 + 0.02 * power));
    float square = max(power - 2.0, 0.0) / (power + 4.0);
    return constant + cosine * (1.0 - constant - square + cosine * square);
}

// A number cut into `steps` flat tones from 0 to 1. The borders are blurred by `softness` tone widths.
float sfg_toonTone(float value, float steps, float softness)
{
    float bands = max(floor(steps), 2.0);
    float scaled = saturate(value) * bands;
    float border = clamp(floor(scaled + 0.5), 1.0, bands - 1.0);
    float t = saturate((scaled - border) / clamp(softness, 0.001, 1.0) + 0.5);
    return (border - 1.0 + t * t * (3.0 - 2.0 * t)) / (bands - 1.0);
}

#endif
