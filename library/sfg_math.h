// Constants and small helpers shared by the other include files.
#ifndef SFG_MATH_H
#define SFG_MATH_H

#define SFG_PI 3.14159265358979
#define SFG_TWO_PI 6.28318530717959
#define SFG_INV_PI 0.318309886183791
#define SFG_INV_TWO_PI 0.159154943091895

// Unit vector along v; the zero vector stays zero instead of becoming NaN.
float3 sfg_safeNormalize(float3 v)
{
    float squared = dot(v, v);
    return squared > 0.0 ? v * rsqrt(squared) : float3(0.0, 0.0, 0.0);
}

// a / b, and 0 where b is 0.
float sfg_safeDivide(float a, float b)
{
    return b != 0.0 ? a / b : 0.0;
}

// a to the power of b for a >= 0; negative a counts as 0. 0 to the power of 0 is 1.
float sfg_safePower(float a, float b)
{
    return a > 0.0 ? pow(a, b) : (b == 0.0 ? 1.0 : 0.0);
}

float3 sfg_safePower3(float3 a, float b)
{
    return float3(sfg_safePower(a.x, b), sfg_safePower(a.y, b), sfg_safePower(a.z, b));
}

// The part behind the point, in [0, 1): x - floor(x) rounds to 1 for tiny negative numbers.
float sfg_fraction(float x)
{
    return min(x - floor(x), 0.99999994);
}

// Where a lies between low (0) and high (1), clamped; a step where the two are the same.
float sfg_rampPosition(float low, float high, float a)
{
    return high == low ? step(low, a) : saturate((a - low) / (high - low));
}

// Angle of the direction (x, y) in (-pi, pi]; 0 for no direction.
float sfg_angleOf(float y, float x)
{
    return x == 0.0 && y == 0.0 ? 0.0 : atan2(y, x);
}

// Smoothed step with zero first and second derivative at both ends (Perlin 2002).
float sfg_fade(float t)
{
    return t * t * t * (t * (t * 6.0 - 15.0) + 10.0);
}

// Texture coordinates on the sides of a box: seen from outside, u to the right and v down, so that no picture is
// mirrored. On the top and the bottom u runs along x; the top is seen with z downwards, the bottom with z upwards.
float2 sfg_uvOnX(float3 p, float side)
{
    return float2(side < 0.0 ? p.z : -p.z, -p.y);
}

float2 sfg_uvOnY(float3 p, float side)
{
    return float2(p.x, side < 0.0 ? -p.z : p.z);
}

float2 sfg_uvOnZ(float3 p, float side)
{
    return float2(side < 0.0 ? -p.x : p.x, -p.y);
}

// Shares of the three projections above, adding up to 1, for a normal of any length (Geiss 2007). By the largest
// component, so that none of them gets lost in a high power.
float3 sfg_projectionShares(float3 n, float sharpness)
{
    float3 size = abs(n);
    float most = max(size.x, max(size.y, size.z));
    float3 shares = most > 0.0 ? sfg_safePower3(size / most, max(sharpness, 0.0)) : float3(1.0, 1.0, 1.0);
    return shares / (shares.x + shares.y + shares.z);
}

// The side that the normal faces most.
float2 sfg_uvOnBox(float3 p, float3 n)
{
    float3 size = abs(n);
    return size.x >= max(size.y, size.z) ? sfg_uvOnX(p, n.x) : (size.y >= size.z ? sfg_uvOnY(p, n.y) : sfg_uvOnZ(p, n.z));
}

#endif
