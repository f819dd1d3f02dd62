#include "host/modules/speed_passes.h"

#include <gtest/gtest.h>

#include "host/modules/test_passes.h"

namespace TolmSDK::Graphics::sfg::host {
namespace {

// What standard fragments do not have: loops to unroll, branches on constants, early returns, arrays.
constexpr const char* kUnrolled = R"(cbuffer C : register(b0) { float4 k; int n; };
float weigh(float x, int i) { if (i == 2) return x * 2; if (x > 3) return 1; return x; }
float4 main(float4 p : UV) : SV_Target {
  float w[5];
  float3 c[5];
  [unroll] for (int i = 0; i < 5; ++i) { w[i] = weigh(k.x * i, i); c[i] = p.xyz * i; }
  float3 sum = 0;
  [unroll] for (int j = 0; j < 5; ++j) sum += w[j] * c[j];
  if (sum.x > k.y) sum = sum.yzx; else sum.x = 2;
  return float4(sum, w[2] + w[n]);
})";
constexpr const char* kBranches = R"(cbuffer C : register(b0) { float4 k; int n; };
struct M { float3 a; float b; float2 q[3]; };
M make(float4 p) { M m; m.a = p.xyz; m.b = p.w; [unroll] for (int i = 0; i < 3; ++i) m.q[i] = p.xy + i; return m; }
float pick(M m, int i) {
  switch (i) {
  case 0: return m.a.x;
  case 2: { if (m.b > 0) return m.q[1].x; break; }
  default: clip(m.b - 1);
  }
  return m.q[2].y;
}
float4 main(float4 p : UV) : SV_Target {
  M m = make(p);
  float r = 0;
  for (int i = 0; i < n; ++i) { float v = pick(m, i); if (v < 0) continue; if (v > 9) break; r += v; }
  if (k.z > 1) discard;
  const bool never = false;
  if (never) r = 3;
  return float4(r, pick(m, 2), k.w > 0 ? sin(r) : sin(r), (1 > 2) ? k.x : k.y);
})";
constexpr const char* kNested = R"(cbuffer C : register(b0) { float4 k; int n; float4x4 mm; };
float3 turn(float3 v, inout float a) {
  [unroll] for (int i = 0; i < 4; ++i) {
    [unroll] for (int j = 0; j < 2; ++j) { a += v[j] * i; if (i == 3 && j == 1) v = v.zyx; }
  }
  return v;
}
float4 main(float4 p : UV, float3 normal : NORMAL) : SV_Target {
  float a = 0;
  float3 table[4] = { float3(1, 2, 3), float3(2, 2, 2), k.xyz, normal };
  float3 v = turn(turn(normal, a), a);
  float4 q = mul(float4(v, 1), mm);
  float b;
  if (a > 1) { a = 2; } else { a = 3; }
  if (q.x > 0) b = q.y; else b = q.z;
  return float4(table[n & 3] * a + table[1] + b, p.x);
})";

// Graphs of standard fragments are tried in tests/shaders.
TEST(SpeedPassesTest, KeepTheBytesOfBothLists) {
  for (const char* shader : {kUnrolled, kBranches, kNested})
    EXPECT_EQ(difference(shader, ShaderStage::pixel), "");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
