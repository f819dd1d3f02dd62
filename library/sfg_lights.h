// The one description of a light at a shading point that light fragments write and lit surfaces read.
#ifndef SFG_LIGHTS_H
#define SFG_LIGHTS_H

#include "sfg_math.h"

struct sfg_Light
{
    float3 direction;   // unit vector from the shading point to the light
    float distance;     // from the shading point to the light
    float3 color;       // irradiance on a surface that faces the light
    float3 skyColor;    // radiance from above, for surfaces that look up; zero for lamps
    float3 groundColor; // radiance from below; zero for lamps
    float3 mirrorColor; // radiance along the mirror direction of the view, where mirrorShare is 1
    float3 mirrorBlurred; // the same for the roughest surface
    float mirrorShare;  // 0: sky and ground are mirrored, 1: the two above and the four below
    float3 mirrorSmooth; // the same for a roughness of 0.2
    float3 mirrorSatin;  // 0.4
    float3 mirrorBrushed; // 0.6
    float3 mirrorRough;  // 0.8
};

// Inverse square of the distance, at least minDistance, faded to zero at `range` (Karis 2013). Range 0: no fade.
float sfg_distanceFalloff(float distance, float range)
{
    float nearest = max(distance, 0.01);
    float ratio = range > 0.0 ? distance / range : 0.0;
    float window = saturate(1.0 - ratio * ratio * ratio * ratio);
    return window * window / (nearest * nearest);
}

// The fade for less: a straight line that lets as much light through.
float sfg_rangeFadeFast(float distance, float range)
{
    return range > 0.0 ? saturate(1.724 * (1.0 - distance / range)) : 1.0;
}

// 1 inside the inner cone, 0 outside the outer cone; angles are half angles in radians.
float sfg_spotFalloff(float3 toLight, float3 axis, float innerAngle, float outerAngle)
{
    float c = dot(-toLight, axis);
    float inner = cos(innerAngle);
    float outer = cos(outerAngle);
    float t = saturate((c - outer) / max(inner - outer, 0.0001));
    return t * t * (3.0 - 2.0 * t);
}

sfg_Light sfg_makeLight(float3 direction, float distance, float3 color)
{
    sfg_Light made;
    made.direction = direction;
    made.distance = distance;
    made.color = color;
    made.skyColor = float3(0.0, 0.0, 0.0);
    made.groundColor = float3(0.0, 0.0, 0.0);
    made.mirrorColor = float3(0.0, 0.0, 0.0);
    made.mirrorBlurred = float3(0.0, 0.0, 0.0);
    made.mirrorShare = 0.0;
    made.mirrorSmooth = float3(0.0, 0.0, 0.0);
    made.mirrorSatin = float3(0.0, 0.0, 0.0);
    made.mirrorBrushed = float3(0.0, 0.0, 0.0);
    made.mirrorRough = float3(0.0, 0.0, 0.0);
    return made;
}

// `axis` is the direction in which the light travels.
sfg_Light sfg_makeDirectionalLight(float3 axis, float3 irradiance)
{
    return sfg_makeLight(-sfg_safeNormalize(axis), 1000000.0, irradiance);
}

// `intensity` is radiant intensity: the irradiance at distance 1.
sfg_Light sfg_makePointLight(float3 lamp, float3 intensity, float range, float3 receiver)
{
    float3 toLamp = lamp - receiver;
    float distance = length(toLamp);
    return sfg_makeLight(sfg_safeNormalize(toLamp), distance, intensity * sfg_distanceFalloff(distance, range));
}

sfg_Light sfg_makeSpotLight(
    float3 lamp, float3 axis, float innerAngle, float outerAngle, float3 intensity, float range, float3 receiver)
{
    sfg_Light made = sfg_makePointLight(lamp, intensity, range, receiver);
    made.color *= sfg_spotFalloff(made.direction, sfg_safeNormalize(axis), innerAngle, outerAngle);
    return made;
}

sfg_Light sfg_makeEnvironmentLight(float3 skyColor, float3 groundColor)
{
    sfg_Light made = sfg_makeLight(float3(0.0, 1.0, 0.0), 1000000.0, float3(0.0, 0.0, 0.0));
    made.skyColor = skyColor;
    made.groundColor = groundColor;
    return made;
}

// An environment of which only three directions are known: `around` arrives on the surface along its normal, the
// other two along the mirror direction of the view, sharp and blurred. Surfaces between them mix the two.
sfg_Light sfg_makeImageLight(float3 around, float3 mirrored, float3 blurred)
{
    sfg_Light made = sfg_makeEnvironmentLight(around, around);
    made.mirrorColor = mirrored;
    made.mirrorBlurred = blurred;
    made.mirrorShare = 1.0;
    made.mirrorSmooth = lerp(mirrored, blurred, 0.2);
    made.mirrorSatin = lerp(mirrored, blurred, 0.4);
    made.mirrorBrushed = lerp(mirrored, blurred, 0.6);
    made.mirrorRough = lerp(mirrored, blurred, 0.8);
    return made;
}

// The light of a scene without lights: a lamp at the eye that shows a facing white surface as white.
sfg_Light sfg_makeHeadLight(float3 eye, float3 receiver)
{
    float3 toEye = eye - receiver;
    return sfg_makeLight(sfg_safeNormalize(toEye), length(toEye), float3(SFG_PI, SFG_PI, SFG_PI));
}

// Irradiance divided by pi that a surface with normal n receives from sky and ground, up being +y.
float3 sfg_lightAmbient(sfg_Light light, float3 n)
{
    return lerp(light.groundColor, light.skyColor, 0.5 + 0.5 * n.y);
}

// What a surface of that roughness mirrors of sky and ground towards the eye, `mirrored` being the mirror direction.
float3 sfg_lightMirrored(sfg_Light light, float3 mirrored, float roughness)
{
    float place = 5.0 * saturate(roughness);
    float3 seen = light.mirrorColor * saturate(1.0 - place) + light.mirrorBlurred * saturate(place - 4.0) +
        light.mirrorSmooth * saturate(1.0 - abs(place - 1.0)) + light.mirrorSatin * saturate(1.0 - abs(place - 2.0)) +
        light.mirrorBrushed * saturate(1.0 - abs(place - 3.0)) + light.mirrorRough * saturate(1.0 - abs(place - 4.0));
    return lerp(sfg_lightAmbient(light, mirrored), seen, light.mirrorShare);
}

// Irradiance from the lamp on a surface with normal n.
float3 sfg_lightIrradiance(sfg_Light light, float3 n)
{
    return light.color * saturate(dot(n, light.direction));
}

#endif
