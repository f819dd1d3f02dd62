// Lights that have a size, and lamps measured in all directions.
#ifndef SFG_AREA_LIGHTS_H
#define SFG_AREA_LIGHTS_H

#include "sfg_lights.h"

// Irradiance divided by pi and the radiance of a disc of light that is seen under the angle whose sine is squared here,
// at that cosine from the normal: what is below the horizon is missing (Snyder 1996).
float sfg_discFactor(float sineSquared, float cosine)
{
    float s2 = clamp(sineSquared, 0.0000001, 0.999999);
    float c = clamp(cosine, -1.0, 1.0);
    float sine = sqrt(max(1.0 - c * c, 0.000001));
    float x = sqrt(1.0 / s2 - 1.0);
    float y = -x * c / sine;
    float root = sine * sqrt(max(1.0 - y * y, 0.0));
    float part = ((c * acos(clamp(y, -1.0, 1.0)) - x * root) * s2 + atan(root / max(x, 0.000001))) * 0.318309886183791;
    return c * c > s2 ? s2 * max(c, 0.0) : max(part, 0.0);
}

// A light of that radiance towards `middle`. On a surface with normal n it brings what the visible part of it does, from
// the middle of that part.
sfg_Light sfg_makeAreaLight(float3 middle, float distance, float sineSquared, float3 radiance, float3 n)
{
    float c = clamp(dot(n, middle), -1.0, 1.0);
    float s2 = saturate(sineSquared);
    float high = acos(c);
    float wide = asin(sqrt(s2));
    float seen = min(0.5 * (max(high - wide, 0.0) + min(high + wide, 0.5 * SFG_PI)), 1.55);
    float3 across = sfg_safeNormalize(middle - n * c);
    bool isWhole = c * c > s2 && c > 0.0;
    float3 direction = isWhole ? middle : n * cos(seen) + across * sin(seen);
    float factor = sfg_discFactor(s2, c) / max(isWhole ? c : cos(seen), 0.0001);
    return sfg_makeLight(direction, distance, radiance * (SFG_PI * factor));
}

// `intensity` is radiant intensity, as of a point light. Within the ball nothing is lit brighter than at its surface.
sfg_Light sfg_makeBallLight(float3 lamp, float radius, float3 intensity, float3 receiver, float3 n)
{
    float3 toLamp = lamp - receiver;
    float size = max(radius, 0.001);
    float distance = sqrt(dot(toLamp, toLamp));
    float sine = size / max(distance, size);
    return sfg_makeAreaLight(sfg_safeNormalize(toLamp), distance, sine * sine, intensity / (SFG_PI * size * size), n);
}

// The part of one edge of a polygon, by its ends as unit vectors (Lambert 1760).
float3 sfg_edgeIrradiance(float3 a, float3 b)
{
    float3 normal = cross(a, b);
    float sine = sqrt(max(dot(normal, normal), 0.00000000000001));
    return normal * (atan2(sine, dot(a, b)) / sine);
}

// `right` and `up` lead from the middle to the sides; the light shines where right x up points.
sfg_Light sfg_makeRectangleLight(float3 lamp, float3 right, float3 up, float3 radiance, float3 receiver, float3 n)
{
    float3 toLamp = lamp - receiver;
    float3 a = sfg_safeNormalize(toLamp - right - up);
    float3 b = sfg_safeNormalize(toLamp + right - up);
    float3 c = sfg_safeNormalize(toLamp + right + up);
    float3 d = sfg_safeNormalize(toLamp - right + up);
    float3 sum = sfg_edgeIrradiance(b, a) + sfg_edgeIrradiance(c, b) + sfg_edgeIrradiance(d, c) + sfg_edgeIrradiance(a, d);
    float3 seen = sum * (0.5 * 0.318309886183791);
    float front = dot(cross(right, up), -toLamp) > 0.0 ? 1.0 : 0.0;
    float size = sqrt(dot(seen, seen));
    return sfg_makeAreaLight(sfg_safeNormalize(seen), length(toLamp), size, radiance * front, n);
}

// Where a table of intensities holds the direction in which light leaves a lamp: v is the angle from its axis over pi, u
// the angle about it over 2 pi, from `reference` in the direction of axis x reference.
float2 sfg_photometricUv(float3 axis, float3 reference, float3 leaving)
{
    float3 down = sfg_safeNormalize(axis);
    float3 side = sfg_safeNormalize(reference - down * dot(reference, down));
    float around = sfg_angleOf(dot(leaving, cross(down, side)), dot(leaving, side)) * SFG_INV_TWO_PI;
    return float2(sfg_fraction(around), acos(clamp(dot(leaving, down), -1.0, 1.0)) * SFG_INV_PI);
}

#endif
