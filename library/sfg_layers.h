// Parts of layered materials: Fresnel terms of metals and thin films, sheen and clear coat over another layer, hair,
// light that goes through. Vectors are unit vectors that point away from the surface.
#ifndef SFG_LAYERS_H
#define SFG_LAYERS_H

#include "sfg_brdf.h"

// Unpolarised reflectance of a metal with index and extinction, for every colour (Gulbrandsen 2014, equations 1 to 3).
float3 sfg_metalFresnel(float3 index, float3 extinction, float cosine)
{
    float c = saturate(cosine);
    float3 twice = 2.0 * index * c;
    float3 squares = index * index + extinction * extinction;
    float3 across = (squares - twice + c * c) / (squares + twice + c * c);
    float3 along = (squares * (c * c) - twice + 1.0) / (squares * (c * c) + twice + 1.0);
    return saturate(0.5 * (across + along));
}

// Index of a metal of that reflectance along the normal, between the least and the greatest that there is.
float3 sfg_metalIndex(float3 reflectance, float3 edgeTint)
{
    float3 root = sqrt(reflectance);
    return lerp((1.0 + root) / (1.0 - root), (1.0 - reflectance) / (1.0 + reflectance), saturate(edgeTint));
}

float3 sfg_metalExtinction(float3 reflectance, float3 index)
{
    float3 above = index + 1.0;
    float3 below = index - 1.0;
    return sqrt(max((above * above * reflectance - below * below) / (1.0 - reflectance), 0.0));
}

// Mean of cos(phase + shift) over what each colour of the screen sees; `path` is an optical path in metres. White light
// is white. Gaussians that stand for the colour-matching functions (Belcour and Barla 2017).
float3 sfg_interference(float path, float shift)
{
    float phase = SFG_TWO_PI * path;
    float square = phase * phase;
    float3 place = float3(1681000.0, 1795300.0, 2208400.0) * phase + shift;
    float3 width = float3(4327800000.0, 9304600000.0, 6612100000.0) * square;
    float3 xyz = float3(0.846202, 1.0, 1.0) * cos(place) * exp(-width);
    xyz.x += 0.153798 * cos(2239900.0 * phase + shift) * exp(-4528200000.0 * square);
    xyz *= float3(0.950456, 1.0, 1.089058);
    return float3(dot(xyz, float3(3.240479, -1.537150, -0.498535)), dot(xyz, float3(-0.969256, 1.875992, 0.041556)),
        dot(xyz, float3(0.055648, -0.204043, 1.057311)));
}

// Amplitude that a boundary between two indices reflects, across (x) and along (y) the plane of incidence.
float2 sfg_boundary(float from, float to, float cosineFrom, float cosineTo)
{
    float across = (from * cosineFrom - to * cosineTo) / max(from * cosineFrom + to * cosineTo, 0.000001);
    float along = (to * cosineFrom - from * cosineTo) / max(to * cosineFrom + from * cosineTo, 0.000001);
    return float2(across, along);
}

// Reflectance of a film for one polarisation, from the amplitudes of its outer and inner boundary: what leaves after
// 0, 1, 2 .. turns within the film interferes. Waves of more than four turns have no colour any more.
float3 sfg_filmReflectance(float outer, float inner, float path)
{
    float reflected = outer * outer;
    float within = inner * inner;
    float both = max(1.0 - reflected * within, 0.000001);
    float constant = reflected + (1.0 - reflected) * (1.0 - reflected) * within / both;
    float scale = -2.0 * (1.0 - reflected) * (1.0 - within) / both;
    float turn = -outer * inner;
    float3 sum = float3(constant, constant, constant);
    float share = scale * turn;
    sum += share * sfg_interference(path, 0.0);
    share *= turn;
    sum += share * sfg_interference(2.0 * path, 0.0);
    share *= turn;
    sum += share * sfg_interference(3.0 * path, 0.0);
    share *= turn;
    return sum + share * sfg_interference(4.0 * path, 0.0);
}

// Unpolarised reflectance of a film of that thickness in nanometres on a non-metal, both of index 1 or more.
float3 sfg_filmFresnel(float thickness, float filmIndex, float baseIndex, float cosine)
{
    float film = max(filmIndex, 1.0);
    float base = max(baseIndex, 1.0);
    float c = saturate(cosine);
    float square = 1.0 - c * c;
    float cosineFilm = sqrt(max(1.0 - square / (film * film), 0.0));
    float cosineBase = sqrt(max(1.0 - square / (base * base), 0.0));
    float2 outer = sfg_boundary(1.0, film, c, cosineFilm);
    float2 inner = sfg_boundary(film, base, cosineFilm, cosineBase);
    float path = 0.000000002 * film * clamp(thickness, 0.0, 100000.0) * cosineFilm;
    return saturate(0.5 * (sfg_filmReflectance(outer.x, inner.x, path) + sfg_filmReflectance(outer.y, inner.y, path)));
}

// What sheen reflects of light of irradiance 1, without its cosine (x), and the share of a layer below that is still
// seen (y): as clothSurface has them, for a white sheen of that strength.
float2 sfg_sheenLayer(float3 n, float3 l, float3 v, float strength, float roughness)
{
    float nDotL = saturate(dot(n, l));
    float nDotV = saturate(dot(n, v));
    float r = clamp(roughness, 0.2, 1.0);
    float share = saturate(strength);
    float eL = sfg_sheenAlbedo(r, nDotL);
    float eV = sfg_sheenAlbedo(r, nDotV);
    float lobe = sfg_charlieDistribution(sfg_alphaOf(r), saturate(dot(n, sfg_safeNormalize(l + v)))) *
        sfg_clothVisibility(nDotL, nDotV) / max(max(eL, eV), 1.0);
    float through = (1.0 - share * min(eL, 1.0)) * (1.0 - share * min(eV, 1.0)) /
        max(1.0 - share * sfg_sheenMeanAlbedo(r), 0.01);
    return nDotL > 0.0 ? float2(share * lobe, through) : float2(0.0, 0.0);
}

// The same of a clear coat of index 1.5 that covers a share of the surface.
float2 sfg_coatLayer(float3 n, float3 l, float3 v, float strength, float roughness)
{
    float nDotL = saturate(dot(n, l));
    float nDotV = saturate(dot(n, v));
    float alpha = sfg_alphaOf(roughness);
    float share = saturate(strength);
    float3 f0 = float3(0.04, 0.04, 0.04);
    float lobe = sfg_ggxSpecular(n, l, v, f0, roughness).x;
    float through = (1.0 - share * sfg_ggxAlbedo(f0, alpha, nDotL).x) * (1.0 - share * sfg_ggxAlbedo(f0, alpha, nDotV).x);
    return nDotL > 0.0 ? float2(share * lobe, through) : float2(0.0, 0.0);
}

// The point of a ball of that radius about `toLamp` that a mirror shows nearest to its middle, as a direction, and by
// how much a lobe that is wider for the ball is dimmed (Karis 2013).
float4 sfg_ballPoint(float3 n, float3 v, float3 toLamp, float radius, float alpha)
{
    float3 mirrored = reflect(-v, n);
    float3 aside = mirrored * dot(toLamp, mirrored) - toLamp;
    float3 nearest = toLamp + aside * saturate(radius / max(sqrt(dot(aside, aside)), 0.000001));
    float wider = saturate(alpha + 0.5 * radius / max(sqrt(dot(toLamp, toLamp)), 0.000001));
    float dimmed = alpha / max(wider, alpha);
    return float4(sfg_safeNormalize(nearest), dimmed * dimmed);
}

// Bell curve over an angle, of area 1.
float sfg_hairSpread(float width, float angle)
{
    float w = max(width, 0.01);
    float x = angle / w;
    return exp(-0.5 * x * x) * 0.398942280401433 / w;
}

// Light of irradiance 1 that a hair along `tangent` sends to the eye: what its surface reflects, what goes through
// it, and what is reflected at its back, each tilted by its scales and spread along the hair by a bell curve, around it
// by a power of the cosine (Marschner et al. 2003, simplified). It never sends out more than arrives.
float3 sfg_hair(float3 t, float3 l, float3 v, float3 color, float tilt, float width)
{
    float sineL = clamp(dot(t, l), -1.0, 1.0);
    float sineV = clamp(dot(t, v), -1.0, 1.0);
    float cosineL = sqrt(1.0 - sineL * sineL);
    float cosineV = sqrt(1.0 - sineV * sineV);
    float3 aroundL = sfg_safeNormalize(l - t * sineL);
    float3 aroundV = sfg_safeNormalize(v - t * sineV);
    float towards = saturate(0.5 + 0.5 * dot(aroundL, aroundV));
    float away = 1.0 - towards;
    float middle = 0.5 * (asin(sineL) + asin(sineV));
    float f = sfg_fresnelDielectric(1.55, sqrt(saturate(0.5 + 0.5 * dot(l, v))));
    // Light that enters does so all over the width of the hair.
    float entering = 1.0 - sfg_fresnelDielectric(1.55, 0.5 * cos(0.5 * (asin(sineV) - asin(sineL))));
    float3 tint = saturate(color);
    float surface = f * sfg_hairSpread(width, middle + tilt) * 0.25 * sqrt(towards);
    float through = entering * entering * sfg_hairSpread(0.5 * width, middle - 0.5 * tilt) * away * away * away * away *
        0.582053;
    float back = entering * entering * (1.0 - entering) * sfg_hairSpread(2.0 * width, middle - 1.5 * tilt) *
        towards * towards * 0.424413;
    float least = max(max(cosineL, cosineV), 0.001);
    return (surface + tint * through + tint * tint * back) * (0.5 * cosineL / (least * least));
}

// What a hair seen from the side sends out of even light from everywhere.
float3 sfg_hairInEvenLight(float3 color)
{
    float f = 0.098;
    float3 tint = saturate(color);
    return f + (1.0 - f) * (1.0 - f) * (tint + tint * tint * f);
}

// What leaves a flat translucent body at a distance from where light enters, for each unit of area (Christensen and
// Burley 2015): the integral over the plane is the albedo.
float sfg_diffusionProfile(float distance, float albedo, float meanFreePath)
{
    float off = abs(saturate(albedo) - 0.8);
    float s = (1.85 - saturate(albedo) + 7.0 * off * off * off) / max(meanFreePath, 0.0001);
    float r = max(distance, 0.0001 / s);
    return saturate(albedo) * s * (exp(-s * r) + exp(-s * r / 3.0)) / (8.0 * SFG_PI * r);
}

// Light from behind that a thin body lets through to the eye (Barre-Brisebois and Bouchard 2011).
float sfg_translucency(float3 n, float3 l, float3 v, float distortion, float power, float thinness)
{
    float3 bent = sfg_safeNormalize(l + n * distortion);
    return sfg_safePower(saturate(dot(v, -bent)), max(power, 0.001)) * saturate(thinness);
}

#endif
