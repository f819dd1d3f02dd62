#include "tests/numbers/reference_texture.h"

#include "tests/numbers/reference_tools.h"

namespace numbers_test {

namespace {

constexpr long kSide = 8;

Vec4 operator+(Vec4 a, Vec4 b) { return {a.x + b.x, a.y + b.y, a.z + b.z, a.w + b.w}; }
Vec4 operator*(Vec4 a, double b) { return {a.x * b, a.y * b, a.z * b, a.w * b}; }

double texel(long i, long j, long k, long level, long channel) {
  return static_cast<double>((5 * i + 3 * j + 9 * k + 11 * level + 7 * channel + i * j) % 16) / 15.0;
}

long repeated(double index) {
  long const whole = static_cast<long>(index) % kSide;
  return whole < 0 ? whole + kSide : whole;
}

// An axis: the two texels around a place, and the share of the second.
struct Between {
  explicit Between(double place) {
    double const at = place * static_cast<double>(kSide) - 0.5;
    first = repeated(std::floor(at));
    second = (first + 1) % kSide;
    share = fraction(at);
  }
  long first = 0;
  long second = 0;
  double share = 0.0;
};

// Axes that a texture lacks are read at texel 0.
Vec4 atLevel(Vec3 place, long level, int axes) {
  Between const x(place.x);
  Between const y(place.y);
  Between const z(place.z);
  Vec4 sum;
  for (int corner = 0; corner < (1 << axes); ++corner) {
    bool const right = (corner & 1) != 0;
    bool const upper = (corner & 2) != 0;
    bool const behind = (corner & 4) != 0;
    long const i = right ? x.second : x.first;
    long const j = axes < 2 ? 0 : (upper ? y.second : y.first);
    long const k = axes < 3 ? 0 : (behind ? z.second : z.first);
    double const share = (right ? x.share : 1.0 - x.share) *
                         (axes < 2 ? 1.0 : (upper ? y.share : 1.0 - y.share)) *
                         (axes < 3 ? 1.0 : (behind ? z.share : 1.0 - z.share));
    sum = sum + Vec4{texel(i, j, k, level, 0), texel(i, j, k, level, 1), texel(i, j, k, level, 2),
                     texel(i, j, k, level, 3)} *
                    share;
  }
  return sum;
}

Vec4 filtered(Vec3 place, double level, int axes) {
  long const below = static_cast<long>(std::floor(level));
  double const share = fraction(level);
  return atLevel(place, below, axes) * (1.0 - share) + atLevel(place, below + 1, axes) * share;
}

}  // namespace

Vec4 textureAt(double place, double level) { return filtered({place, 0.0, 0.0}, level, 1); }

Vec4 textureAt(Vec2 place, double level) { return filtered({place.x, place.y, 0.0}, level, 2); }

Vec4 textureAt(Vec3 place, double level) { return filtered(place, level, 3); }

Vec4 textureTowards(Vec3 direction, double level) {
  return textureAt(unit(direction) * 0.5 + splat(0.5), level);
}

std::string textureOnDevice() {
  return R"(#define SFG_SAMPLERS_H
struct sfg_sampler1D { float unused; };
struct sfg_sampler2D { float unused; };
struct sfg_sampler3D { float unused; };
struct sfg_samplerCube { float unused; };
#define sfg_make_sampler2D(image, filtering) ((sfg_sampler2D)0)
#define sfg_make_samplerCube(image, filtering) ((sfg_samplerCube)0)

float numbers_texel(int3 at, int level, int channel)
{
    return float(uint(5 * at.x + 3 * at.y + 9 * at.z + 11 * level + 7 * channel + at.x * at.y) % 16u) / 15.0;
}

float4 numbers_texels(int3 at, int level)
{
    return float4(numbers_texel(at, level, 0), numbers_texel(at, level, 1), numbers_texel(at, level, 2),
        numbers_texel(at, level, 3));
}

// `axes` is 0 for an axis that the texture lacks.
float4 numbers_atLevel(float3 place, int3 axes, int level)
{
    float3 at = place * 8.0 - 0.5;
    float3 share = (at - floor(at)) * float3(axes);
    int3 first = (int3(floor(at)) & 7) * axes;
    int3 second = ((first + 1) & 7) * axes;
    float4 sum = float4(0.0, 0.0, 0.0, 0.0);
    for (int corner = 0; corner < 8; ++corner)
    {
        int3 bits = int3(corner & 1, (corner >> 1) & 1, corner >> 2);
        int3 texel = first + bits * (second - first);
        float3 shares = float3(bits) * share + float3(1 - bits) * (1.0 - share);
        sum += numbers_texels(texel, level) * (shares.x * shares.y * shares.z);
    }
    return sum;
}

float4 numbers_filtered(float3 place, int3 axes, float level)
{
    int below = int(floor(level));
    return lerp(numbers_atLevel(place, axes, below), numbers_atLevel(place, axes, below + 1), level - floor(level));
}

float4 sfg_sampleLevel1D(sfg_sampler1D source, float u, float level)
{
    return numbers_filtered(float3(u, 0.0, 0.0), int3(1, 0, 0), level);
}

float4 sfg_sampleLevel2D(sfg_sampler2D source, float2 uv, float level)
{
    return numbers_filtered(float3(uv, 0.0), int3(1, 1, 0), level);
}

float4 sfg_sampleLevel3D(sfg_sampler3D source, float3 uvw, float level)
{
    return numbers_filtered(uvw, int3(1, 1, 1), level);
}

float4 sfg_sampleLevelCube(sfg_samplerCube source, float3 direction, float level)
{
    return numbers_filtered(normalize(direction) * 0.5 + 0.5, int3(1, 1, 1), level);
}

#define sfg_sample1D(source, u) sfg_sampleLevel1D(source, u, 0.0)
#define sfg_sample2D(source, uv) sfg_sampleLevel2D(source, uv, 0.0)
#define sfg_sample3D(source, uvw) sfg_sampleLevel3D(source, uvw, 0.0)
#define sfg_sampleCube(source, direction) sfg_sampleLevelCube(source, direction, 0.0)
)";
}

}  // namespace numbers_test
