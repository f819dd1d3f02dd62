// Closures of material documents: what one light sends to the eye, and what a layer lets through to those below it.
// n: normal that faces the eye, v: direction to the eye, x: tangent; all of length 1 in world coordinates. Widths are
// those of the facets' slopes along and across the tangent.
#ifndef SFG_MTLX_BSDF_H
#define SFG_MTLX_BSDF_H

#include "sfg_brdf.h"
#include "sfg_lights.h"
#include "sfg_stage.h"

struct sfg_MtlxBsdf
{
    float3 response;   // light towards the eye
    float3 throughput; // share that reaches the layer below and comes back
};

sfg_MtlxBsdf sfg_mtlxBsdf(float3 response, float3 throughput)
{
    sfg_MtlxBsdf made;
    made.response = response;
    made.throughput = throughput;
    return made;
}

sfg_MtlxBsdf sfg_mtlxLayer(sfg_MtlxBsdf top, sfg_MtlxBsdf base)
{
    return sfg_mtlxBsdf(top.response + base.response * top.throughput, top.throughput * base.throughput);
}

sfg_MtlxBsdf sfg_mtlxMix(sfg_MtlxBsdf bg, sfg_MtlxBsdf fg, float share)
{
    return sfg_mtlxBsdf(lerp(bg.response, fg.response, share), lerp(bg.throughput, fg.throughput, share));
}

sfg_MtlxBsdf sfg_mtlxTint(sfg_MtlxBsdf bsdf, float3 color)
{
    return sfg_mtlxBsdf(bsdf.response * color, bsdf.throughput * color);
}

// The normal on the side of the eye.
float3 sfg_mtlxFacing(float3 normal, float3 v)
{
    return dot(normal, v) < 0.0 ? -normal : normal;
}

float sfg_mtlxCosine(float3 a, float3 b)
{
    return clamp(dot(a, b), 0.00001, 1.0);
}

float sfg_mtlxLuminance(float3 color)
{
    return dot(color, float3(0.2722287, 0.6740818, 0.0536895));
}

// A tangent turned about the normal, clockwise, by degrees.
float3 sfg_mtlxTurned(float3 tangent, float3 axis, float degree)
{
    float turn = -radians(degree);
    return sfg_safeNormalize(tangent * cos(turn) + cross(axis, tangent) * sin(turn) +
        axis * (dot(axis, tangent) * (1.0 - cos(turn))));
}

// Complex refractive index of a metal by its colours from the front and at the edge (Gulbrandsen 2014).
void sfg_mtlxArtisticIor(float3 reflectivity, float3 edge, out float3 n, out float3 k)
{
    float3 r = clamp(reflectivity, 0.0, 0.99);
    n = lerp((1.0 + sqrt(r)) / (1.0 - sqrt(r)), (1.0 - r) / (1.0 + r), edge);
    k = sqrt(max(((n + 1.0) * (n + 1.0) * r - (n - 1.0) * (n - 1.0)) / (1.0 - r), 0.0));
}

// How a surface reflects by the angle: the five numbers of the general Schlick term, or a complex refractive index,
// with a thin film above or none.
struct sfg_MtlxFresnel
{
    int model; // 0 dielectric, 1 conductor, 2 Schlick
    float3 ior;
    float3 extinction;
    float3 f0;
    float3 f82;
    float3 f90;
    float exponent;
    float filmThickness; // nanometres; 0: no film
    float filmIor;
};

sfg_MtlxFresnel sfg_mtlxFresnelOfDielectric(float ior, float filmThickness, float filmIor)
{
    float root = (ior - 1.0) / (ior + 1.0);
    sfg_MtlxFresnel made;
    made.model = 0;
    made.ior = float3(ior, ior, ior);
    made.extinction = float3(0.0, 0.0, 0.0);
    made.f0 = float3(root * root, root * root, root * root);
    made.f82 = float3(1.0, 1.0, 1.0);
    made.f90 = float3(1.0, 1.0, 1.0);
    made.exponent = 5.0;
    made.filmThickness = filmThickness;
    made.filmIor = filmIor;
    return made;
}

// Reflectance of a metal by the complex refractive index, polarised along and across the plane of incidence (Lazanyi and
// Szirmay-Kalos 2005; exact form).
void sfg_mtlxFresnelConductor(float cosine, float3 n, float3 k, out float3 parallel, out float3 across)
{
    float c2 = cosine * cosine;
    float s2 = 1.0 - c2;
    float3 n2 = n * n;
    float3 k2 = k * k;
    float3 t0 = n2 - k2 - s2;
    float3 a2b2 = sqrt(t0 * t0 + 4.0 * n2 * k2);
    float3 t1 = a2b2 + c2;
    float3 a = sqrt(max(0.5 * (a2b2 + t0), 0.0));
    float3 t2 = 2.0 * a * cosine;
    across = (t1 - t2) / (t1 + t2);
    float3 t3 = c2 * a2b2 + s2 * s2;
    float3 t4 = t2 * s2;
    parallel = across * (t3 - t4) / (t3 + t4);
}

float3 sfg_mtlxConductor(float cosine, float3 n, float3 k)
{
    float3 parallel;
    float3 across;
    sfg_mtlxFresnelConductor(cosine, n, k, parallel, across);
    return 0.5 * (parallel + across);
}

// Schlick's term with a free exponent and a tint at 82 degrees (Schlick 1994; Kutz et al. 2021).
float3 sfg_mtlxSchlick(float cosine, float3 f0, float3 f82, float3 f90, float exponent)
{
    float c = saturate(cosine);
    float edge = 1.0 / 7.0;
    float3 there = lerp(f0, f90, sfg_safePower(1.0 - edge, exponent));
    float3 dip = there * (1.0 - f82) / (edge * sfg_safePower(1.0 - edge, 6.0));
    return max(lerp(f0, f90, sfg_safePower(1.0 - c, exponent)) - dip * c * sfg_safePower(1.0 - c, 6.0), 0.0);
}

sfg_MtlxFresnel sfg_mtlxFresnelOfConductor(float3 ior, float3 extinction, float filmThickness, float filmIor)
{
    sfg_MtlxFresnel made = sfg_mtlxFresnelOfDielectric(1.5, filmThickness, filmIor);
    made.model = 1;
    made.ior = ior;
    made.extinction = extinction;
    made.f0 = sfg_mtlxConductor(1.0, ior, extinction);
    return made;
}

sfg_MtlxFresnel sfg_mtlxFresnelOfSchlick(
    float3 f0, float3 f82, float3 f90, float exponent, float filmThickness, float filmIor)
{
    float3 root = sqrt(clamp(f0, 0.0, 0.99));
    sfg_MtlxFresnel made = sfg_mtlxFresnelOfDielectric(1.5, filmThickness, filmIor);
    made.model = 2;
    made.ior = (1.0 + root) / (1.0 - root);
    made.f0 = f0;
    made.f82 = f82;
    made.f90 = f90;
    made.exponent = exponent;
    return made;
}

// Amplitudes of the reflection at a dielectric border, along (x) and across (y) the plane of incidence.
float2 sfg_mtlxBorder(float cosine, float below, float n1, float n2)
{
    return float2((n2 * cosine - n1 * below) / (n2 * cosine + n1 * below),
        (n1 * cosine - n2 * below) / (n1 * cosine + n2 * below));
}

// Fourier transform of the sensitivity of the eye at a path difference in nanometres, as XYZ (Belcour and Barla 2017,
// with its Gaussian fit of the CIE functions).
float3 sfg_mtlxSensitivity(float path, float3 shift)
{
    float phase = SFG_TWO_PI * path * 0.000000001;
    float3 value = float3(5.4856e-13, 4.4201e-13, 5.2481e-13);
    float3 position = float3(1.6810e+06, 1.7953e+06, 2.2084e+06);
    float3 variance = float3(4.3278e+09, 9.3046e+09, 6.6121e+09);
    float3 xyz = value * sqrt(SFG_TWO_PI * variance) * cos(position * phase + shift) * exp(-variance * phase * phase);
    xyz.x += 9.7470e-14 * sqrt(SFG_TWO_PI * 4.5282e+09) * cos(2.2399e+06 * phase + shift.x) *
        exp(-4.5282e+09 * phase * phase);
    return xyz / 1.0685e-7;
}

// As CIE RGB of 1931, whose white has equal parts of XYZ.
float3 sfg_mtlxRgbOfXyz(float3 xyz)
{
    return float3(dot(xyz, float3(2.3706743, -0.9000405, -0.4706338)),
        dot(xyz, float3(-0.5138850, 1.4253036, 0.0885814)), dot(xyz, float3(0.0052982, -0.0146949, 1.0093968)));
}

// Reflectance of a thin film over the surface: the sum of all its inner reflections (Belcour and Barla 2017).
float3 sfg_mtlxAiry(float cosine, sfg_MtlxFresnel fresnel)
{
    float outer = 1.0;
    float film = max(fresnel.filmIor, 1.0001);
    float below2 = 1.0 - (1.0 - cosine * cosine) * (outer / film) * (outer / film);
    if (below2 <= 0.0)
        return float3(1.0, 1.0, 1.0);
    float below = sqrt(below2);

    // The upper border.
    float2 first = sfg_mtlxBorder(cosine, below, outer, film);
    float2 r12 = first * first;
    float2 t121 = 1.0 - r12;

    // The lower border: reflectances and phases along and across.
    float3 r23p;
    float3 r23s;
    float3 k = fresnel.extinction / film;
    float3 n = fresnel.ior / film;
    if (fresnel.model == 2)
    {
        r23p = 0.5 * sfg_mtlxSchlick(below, fresnel.f0, fresnel.f82, fresnel.f90, fresnel.exponent);
        r23s = r23p;
    }
    else
    {
        sfg_mtlxFresnelConductor(below, n, k, r23p, r23s);
    }
    float brewster = cos(atan(film / outer));
    float2 phase21 = float2(cosine < brewster ? 0.0 : SFG_PI, 0.0);
    float3 phase23p;
    float3 phase23s;
    if (fresnel.model == 1)
    {
        float3 a = n * n - k * k - (1.0 - below2);
        float3 b = sqrt(a * a + 4.0 * n * n * k * k);
        float3 u = sqrt(max(0.5 * (a + b), 0.0));
        float3 w = sqrt(max(0.5 * (b - a), 0.0));
        phase23s = atan2(2.0 * w * below, u * u + w * w - below2);
        float3 real = n * n - k * k;
        float3 whole = n * n + k * k;
        phase23p = atan2(2.0 * below * (2.0 * n * k * u - real * w), whole * whole * below2 - (u * u + w * w));
    }
    else
    {
        float3 isDense = step(float3(1.0, 1.0, 1.0), n);
        phase23s = isDense * SFG_PI;
        float3 angle = cos(atan(n));
        phase23p = SFG_PI * (1.0 - step(angle, float3(below, below, below))) * isDense +
            SFG_PI * step(angle, float3(below, below, below)) * (1.0 - isDense);
    }

    float path = 2.0 * film * below * fresnel.filmThickness;
    float3 total = float3(0.0, 0.0, 0.0);
    for (int polarised = 0; polarised < 2; ++polarised)
    {
        float r1 = polarised == 0 ? r12.x : r12.y;
        float t = polarised == 0 ? t121.x : t121.y;
        float3 r2 = fresnel.model == 2 ? 2.0 * r23p : (polarised == 0 ? r23p : r23s);
        float3 shift = polarised == 0 ? phase21.x + phase23p : phase21.y + phase23s;
        float3 root = sqrt(max(r1 * r2, 0.0));
        float3 echo = t * t * r2 / (1.0 - min(r1 * r2, 0.999));
        total += 0.5 * (r1 + echo);
        float3 amount = echo - t;
        for (int order = 1; order <= 2; ++order)
        {
            amount *= root;
            total += amount * sfg_mtlxSensitivity(float(order) * path, float(order) * shift);
        }
    }
    return saturate(sfg_mtlxRgbOfXyz(total));
}

float3 sfg_mtlxFresnel(float cosine, sfg_MtlxFresnel fresnel)
{
    if (fresnel.filmThickness > 0.0)
        return sfg_mtlxAiry(cosine, fresnel);
    if (fresnel.model == 0)
    {
        float f = sfg_fresnelDielectric(fresnel.ior.x, cosine);
        return float3(f, f, f);
    }
    if (fresnel.model == 1)
        return sfg_mtlxConductor(cosine, fresnel.ior, fresnel.extinction);
    return sfg_mtlxSchlick(cosine, fresnel.f0, fresnel.f82, fresnel.f90, fresnel.exponent);
}

// Albedo of facets that are met once, between its values for a reflectance of 0 and of 1 everywhere.
float3 sfg_mtlxGgxAlbedo(float cosine, float alpha, float3 f0, float3 f90)
{
    float loss = sfg_ggxLoss(alpha, cosine);
    float grazing = min(sfg_ggxGrazing(alpha, cosine), 1.0 - loss);
    return saturate(f0 * (1.0 - loss - grazing) + f90 * grazing);
}

// Albedo of a rough surface with what one bounce loses; a thin film is left out.
float3 sfg_mtlxFacetAlbedo(float3 n, float3 v, sfg_MtlxFresnel fresnel, float2 width)
{
    float2 alpha = clamp(width, 0.000001, 1.0);
    float mean = sqrt(alpha.x * alpha.y);
    float nDotV = sfg_mtlxCosine(n, v);
    float one = 1.0 - sfg_ggxLoss(mean, nDotV);
    float3 albedo = sfg_mtlxGgxAlbedo(nDotV, mean, fresnel.f0, fresnel.f90);
    return saturate(albedo * (1.0 + fresnel.f0 * (1.0 - one) / max(one, 0.001)));
}

// A rough surface with facets (GGX, Smith with correlated heights), what one bounce loses made good by the reflectance
// (Turquin 2019). Retroreflection takes the mirrored eye as the light (Belcour et al. 2014).
sfg_MtlxBsdf sfg_mtlxFacets(sfg_Light light, float3 n, float3 x, float3 v, sfg_MtlxFresnel fresnel, float2 width,
    float3 tint, float weight, bool isRetroreflective)
{
    float2 alpha = clamp(width, 0.000001, 1.0);
    float mean = sqrt(alpha.x * alpha.y);
    float3 t = sfg_safeNormalize(x - n * dot(x, n));
    float3 b = cross(n, t);
    float3 l = light.direction;
    float3 eye = isRetroreflective ? reflect(-v, n) : v;
    float3 h = sfg_safeNormalize(l + eye);
    float nDotL = sfg_mtlxCosine(n, l);
    float nDotV = sfg_mtlxCosine(n, v);
    float vDotH = sfg_mtlxCosine(eye, h);
    float2 slope = float2(dot(h, t), dot(h, b)) / alpha;
    float nDotH = dot(n, h);
    float d = dot(slope, slope) + nDotH * nDotH;
    float facets = 1.0 / (SFG_PI * alpha.x * alpha.y * d * d);
    float3 reflected = sfg_mtlxFresnel(vDotH, fresnel);
    float one = 1.0 - sfg_ggxLoss(mean, nDotV);
    float3 again = 1.0 + reflected * (1.0 - one) / max(one, 0.001);
    float3 albedo = sfg_mtlxFacetAlbedo(n, v, fresnel, width);
    float3 lamp = dot(n, l) > 0.0
        ? reflected * again * (facets * sfg_smithVisibility(mean, nDotL, nDotV) * nDotL) * light.color
        : float3(0.0, 0.0, 0.0);
    float3 sky = albedo * sfg_lightMirrored(light, isRetroreflective ? v : reflect(-v, n), sqrt(mean));
    return sfg_mtlxBsdf((lamp + sky) * tint * weight, 1.0 - albedo * weight);
}

// Scattering of a dielectric: 0 reflects, 1 lets through, 2 does both. What is let through comes from behind the
// surface, which is not known here.
sfg_MtlxBsdf sfg_mtlxDielectric(sfg_Light light, float3 n, float3 x, float3 v, float ior, float2 width, float3 tint,
    float weight, bool isRetroreflective, float filmThickness, float filmIor, int mode)
{
    sfg_MtlxFresnel fresnel = sfg_mtlxFresnelOfDielectric(ior, filmThickness, filmIor);
    sfg_MtlxBsdf made = sfg_mtlxFacets(light, n, x, v, fresnel, width, tint, weight, isRetroreflective);
    if (mode == 1)
        made.response = float3(0.0, 0.0, 0.0);
    return made;
}

// Rough diffuse reflection: the qualitative model (Oren and Nayar 1994).
float sfg_mtlxOrenNayar(float nDotL, float nDotV, float lDotV, float sigma)
{
    float s = lDotV - nDotL * nDotV;
    float t = s > 0.0 ? s / max(nDotL, nDotV) : 0.0;
    float s2 = sigma * sigma;
    return 1.0 - 0.5 * s2 / (s2 + 0.33) + 0.45 * s2 / (s2 + 0.09) * t;
}

// Albedo of Fujii's variant: a fit of its integral (Portsmouth et al. 2024).
float sfg_mtlxFujiiAlbedo(float cosine, float roughness)
{
    float m = 1.0 - cosine;
    float g = m * (0.0571085289 + m * (0.491881867 + m * (-0.332181442 + m * 0.0714429953)));
    return (1.0 + roughness * g) / (1.0 + roughness * 0.287793409);
}

// The same with what the facets send to each other (Portsmouth et al. 2024).
float3 sfg_mtlxOrenNayarWhole(float nDotL, float nDotV, float lDotV, float roughness, float3 color)
{
    float s = lDotV - nDotL * nDotV;
    float t = s > 0.0 ? s / max(nDotL, nDotV) : s;
    float a = 1.0 / (1.0 + roughness * 0.287793409);
    float3 once = color * (a * (1.0 + roughness * t));
    float lossV = 1.0 - sfg_mtlxFujiiAlbedo(nDotV, roughness);
    float lossL = 1.0 - sfg_mtlxFujiiAlbedo(nDotL, roughness);
    float mean = a * (1.0 + roughness * 0.072488);
    float3 again = color * color * mean / (1.0 - color * max(0.0, 1.0 - mean));
    return once + again * (max(0.0000001, lossV) * max(0.0000001, lossL) / max(0.0000001, 1.0 - mean));
}

sfg_MtlxBsdf sfg_mtlxDiffuse(
    sfg_Light light, float3 n, float3 v, float3 color, float roughness, float weight, bool isWhole)
{
    float nDotL = sfg_mtlxCosine(n, light.direction);
    float nDotV = sfg_mtlxCosine(n, v);
    float lDotV = dot(light.direction, v);
    float3 share = isWhole ? sfg_mtlxOrenNayarWhole(nDotL, nDotV, lDotV, roughness, color)
                           : color * (roughness > 0.0 ? sfg_mtlxOrenNayar(nDotL, nDotV, lDotV, roughness) : 1.0);
    return sfg_mtlxBsdf(weight * (share * SFG_INV_PI * sfg_lightIrradiance(light, n) + color * sfg_lightAmbient(light, n)),
        float3(0.0, 0.0, 0.0));
}

// Diffuse reflection that is stronger at the edge of rough surfaces (Burley 2012).
sfg_MtlxBsdf sfg_mtlxBurley(sfg_Light light, float3 n, float3 v, float3 color, float roughness, float weight)
{
    float3 h = sfg_safeNormalize(light.direction + v);
    float lDotH = sfg_mtlxCosine(light.direction, h);
    float edge = 2.0 * roughness * lDotH * lDotH - 0.5;
    float towards = 1.0 + edge * sfg_safePower(1.0 - sfg_mtlxCosine(n, light.direction), 5.0);
    float away = 1.0 + edge * sfg_safePower(1.0 - sfg_mtlxCosine(n, v), 5.0);
    return sfg_mtlxBsdf(weight * color * (towards * away * SFG_INV_PI * sfg_lightIrradiance(light, n) +
                            sfg_lightAmbient(light, n)),
        float3(0.0, 0.0, 0.0));
}

// Light that comes through a thin sheet from behind.
sfg_MtlxBsdf sfg_mtlxTranslucent(sfg_Light light, float3 n, float3 color, float weight)
{
    return sfg_mtlxBsdf(weight * color * (SFG_INV_PI * sfg_lightIrradiance(light, -n) + sfg_lightAmbient(light, -n)),
        float3(0.0, 0.0, 0.0));
}

// Light that wanders below a surface as curved as here, taken for a sphere of that radius: the diffusion profile of
// Christensen and Burley 2015, integrated around it (after Penner 2011).
float3 sfg_mtlxWandered(float cosine, float radius, float3 freePath)
{
    float theta = acos(clamp(cosine, -1.0, 1.0));
    float3 shape = 1.0 / max(freePath, 0.1);
    float3 lit = float3(0.0, 0.0, 0.0);
    float3 whole = float3(0.0, 0.0, 0.0);
    for (int i = 0; i < 32; ++i)
    {
        float angle = SFG_TWO_PI * (float(i) + 0.5) / 32.0 - SFG_PI;
        float distance = radius * abs(2.0 * sin(0.5 * angle));
        float3 profile = (exp(-shape * distance) + exp(-shape * distance / 3.0)) / max(distance, 0.00001);
        lit += profile * max(cos(theta + angle), 0.0);
        whole += profile;
    }
    return lit / whole;
}

// Radius of the sphere that is as curved as the surface, from the derivatives over the screen; 1 without them.
float sfg_mtlxBend(float3 normal, float3 position)
{
    float3 turned = abs(sfg_ddx(normal)) + abs(sfg_ddy(normal));
    float3 moved = abs(sfg_ddx(position)) + abs(sfg_ddy(position));
    float bend = length(turned);
    return bend > 0.0 ? length(moved) / bend : 1.0;
}

sfg_MtlxBsdf sfg_mtlxSubsurface(
    sfg_Light light, float3 n, float3 color, float3 freePath, float weight, float radius)
{
    float3 lit = sfg_mtlxWandered(dot(n, light.direction), radius, freePath) * SFG_INV_PI;
    return sfg_mtlxBsdf(weight * color * (lit * light.color + sfg_lightAmbient(light, n)), float3(0.0, 0.0, 0.0));
}

// Albedo of cloth threads: a fit of the integral of the two terms below, roughness from 0.05 on.
float sfg_mtlxThreadAlbedo(float cosine, float roughness)
{
    return saturate(sfg_sheenAlbedo(max(sqrt(roughness), 0.2), cosine));
}

// Albedo of a volume of fibres: a bell over the cosine, whose place, width and height go with the roughness (Zeltner,
// Burley and Chiang 2022, fit of the reflectance).
float sfg_mtlxFibreAlbedo(float cosine, float roughness)
{
    float y = roughness;
    float width = y * (0.0206607 + 1.58491 * y) / (0.0379424 + y * (1.32227 + y));
    float middle = y * (-0.193854 + y * (-1.14885 + y * (1.7932 - 0.95943 * y))) / (0.046391 + y);
    float least = y * (0.000654023 + y * (-0.0207818 + 0.119681 * y)) / (1.26264 + y * (-1.92021 + y));
    float away = (cosine - middle) / width;
    return saturate(exp(-0.5 * away * away) / (width * sqrt(SFG_TWO_PI)) + least);
}

// How the fibres share out what they reflect, with the cosine to the light: a cosine lobe drawn along the plane of the
// eye, whose integral is 1 (Zeltner, Burley and Chiang 2022). along: cosine between the light and the part of v in the
// surface, 0 at the zenith, where the lobe is round.
float sfg_mtlxFibreLobe(float nDotL, float along, float nDotV, float roughness)
{
    float y = roughness;
    float spread = (2.58126 * nDotV + 0.813703 * y) * y / (1.0 + 0.310327 * nDotV * nDotV + 2.60994 * nDotV * y);
    float skew = sqrt(max(1.0 - nDotV, 0.0)) * (y - 1.0) * y * y * y /
        (0.0000254053 + 1.71228 * nDotV - 1.71506 * nDotV * y + 1.34174 * y * y);
    float up = max(nDotL, 0.0);
    float length2 = spread * spread * (1.0 - up * up) + up * (2.0 * spread * skew * along + up * (skew * skew + 1.0));
    float share = spread / max(length2, 0.00000001);
    return up * share * share * SFG_INV_PI;
}

// Albedo of sheen; mode 0 threads, 1 fibres.
float sfg_mtlxSheenAlbedo(float cosine, float roughness, int mode)
{
    float r = clamp(roughness, 0.01, 1.0);
    return mode == 1 ? sfg_mtlxFibreAlbedo(cosine, r) : sfg_mtlxThreadAlbedo(cosine, r);
}

// Sheen of cloth; mode 0: threads (Estevez and Kulla 2017, Neubelt and Pettineo 2013), 1: a volume of fibres (Zeltner,
// Burley and Chiang 2022).
sfg_MtlxBsdf sfg_mtlxSheen(
    sfg_Light light, float3 n, float3 v, float3 color, float roughness, float weight, int mode)
{
    float r = clamp(roughness, 0.01, 1.0);
    float nDotV = sfg_mtlxCosine(n, v);
    float albedo = sfg_mtlxSheenAlbedo(nDotV, r, mode);
    float3 lamp;
    if (mode == 1)
    {
        float along = dot(light.direction, sfg_safeNormalize(v - n * dot(n, v)));
        lamp = albedo * sfg_mtlxFibreLobe(dot(n, light.direction), along, nDotV, r) * light.color;
    }
    else
    {
        float3 h = sfg_safeNormalize(light.direction + v);
        float nDotL = sfg_mtlxCosine(n, light.direction);
        lamp = sfg_charlieDistribution(r, sfg_mtlxCosine(n, h)) * sfg_clothVisibility(nDotL, nDotV) *
            sfg_lightIrradiance(light, n);
    }
    return sfg_mtlxBsdf(weight * color * (lamp + albedo * sfg_lightAmbient(light, reflect(-v, n))),
        (1.0 - weight * albedo) * float3(1.0, 1.0, 1.0));
}

#endif
