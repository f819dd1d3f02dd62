#include "host/shader/reserved_words.h"

#include <algorithm>
#include <vector>

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// Separated by blanks; words of more than one language stand once.
constexpr std::wstring_view kWords =
    // C++, and so Metal
    L"alignas alignof and and_eq asm auto bitand bitor bool break case catch char char16_t char32_t class "
    L"compl "
    L"const const_cast constexpr continue decltype default delete do double dynamic_cast else enum explicit "
    L"export extern false float for friend goto if inline int long mutable namespace new noexcept not not_eq "
    L"nullptr operator or or_eq private protected public register reinterpret_cast return short signed "
    L"sizeof "
    L"static static_assert static_cast struct switch template this thread_local throw true try typedef "
    L"typeid "
    L"typename union unsigned using virtual void volatile wchar_t while xor xor_eq "
    // Metal
    L"access array array_ref assert atomic_bool atomic_int atomic_uint bfloat buffer color constant coord "
    L"depth "
    L"depth2d depthcube device discard_fragment early_fragment_tests fast flat fragment front_facing "
    L"function_constant half id imageblock index instance_id kernel main main0 main1 mesh metal object "
    L"packed_float2 "
    L"packed_float3 packed_float4 patch point_coord point_size position precise primitive_id ptrdiff_t read "
    L"read_write sample sample_id sample_mask sampler size_t stage_in stencil texture texture1d texture2d "
    L"texture3d texturecube thread thread_index_in_threadgroup thread_position_in_grid "
    L"thread_position_in_threadgroup threadgroup threadgroup_barrier threadgroup_position_in_grid "
    L"threadgroup_imageblock simd_active user vec vertex vertex_id visible write atomic_store_explicit "
    L"atomic_load_explicit extract_bits insert_bits reverse_bits clz ctz popcount select rint fmin fmax "
    L"fmin3 "
    L"fmax3 fmedian3 min3 max3 median3 madhi mad24 mul24 mulhi absdiff hadd rhadd rotate addsat subsat "
    L"madsat "
    L"abs_diff as_type unpack_unorm4x8_to_float unpack_snorm4x8_to_float pack_float_to_unorm4x8 "
    L"pack_float_to_snorm4x8 dfdx dfdy fwidth get_width get_height get_depth gather sample_compare "
    L"level bias gradient2d gradient3d gradientcube min_lod_clamp compare_func coord_type filter address "
    L"mag_filter min_filter mip_filter border_color max_anisotropy lod_clamp "
    // HLSL
    L"AppendStructuredBuffer BlendState Buffer ByteAddressBuffer CompileShader ComputeShader "
    L"ConsumeStructuredBuffer DepthStencilState DepthStencilView DomainShader GeometryShader HullShader "
    L"InputPatch LineStream NULL OutputPatch PixelShader PointStream RWBuffer RWByteAddressBuffer "
    L"RWStructuredBuffer RWTexture1D RWTexture2D RWTexture3D RasterizerState RenderTargetView SamplerState "
    L"SamplerComparisonState StructuredBuffer Texture1D Texture2D Texture2DArray Texture2DMS Texture3D "
    L"TextureCube TriangleStream VertexShader asm_fragment cbuffer centroid column_major compile "
    L"compile_fragment discard dword export fixedfunction fxgroup globallycoherent groupshared in inout "
    L"interface line lineadj linear lineardepth matrix min10float min12int min16float min16int min16uint "
    L"nointerpolation noperspective out packoffset pass payload pixelfragment point pointadj precise "
    L"resource "
    L"row_major sampler1D sampler2D sampler3D samplerCUBE sampler_state shared snorm stateblock "
    L"stateblock_state state string tbuffer technique technique10 technique11 triangle triangleadj uint "
    L"uniform "
    L"unorm vector vertexfragment "
    // GLSL, ESSL
    L"active atomic_uint attribute cast coherent common demote dmat2 dmat3 dmat4 dvec2 dvec3 dvec4 bvec2 "
    L"bvec3 "
    L"bvec4 external fixed filter fvec2 fvec3 fvec4 highp hvec2 hvec3 hvec4 iimage2D image1D image2D image3D "
    L"imageBuffer imageCube input invariant isampler1D isampler2D isampler3D isamplerCube ivec2 ivec3 ivec4 "
    L"layout lowp mat2 mat2x2 mat2x3 mat2x4 mat3 mat3x2 mat3x3 mat3x4 mat4 mat4x2 mat4x3 mat4x4 mediump "
    L"noinline "
    L"output partition precision readonly restrict resource sampler1DArray sampler1DShadow sampler2DArray "
    L"sampler2DMS sampler2DRect sampler2DShadow samplerBuffer samplerCube samplerCubeShadow smooth "
    L"subroutine "
    L"superp texture1D texture2D texture3D textureCube uimage2D usampler1D usampler2D usampler3D "
    L"usamplerCube "
    L"uvec2 uvec3 uvec4 varying vec2 vec3 vec4 writeonly subpassInput "
    // functions of theirs
    L"abs acos acosh all any asin asinh atan atan2 atanh bitfieldExtract bitfieldInsert bitfieldReverse "
    L"bitCount "
    L"ceil clamp clip cos cosh cross ddx ddy degrees determinant dFdx dFdy distance dot equal exp exp2 "
    L"faceforward findLSB findMSB floatBitsToInt floatBitsToUint floor fma fmod frac fract frexp greaterThan "
    L"greaterThanEqual imageLoad imageSize imageStore imulExtended intBitsToFloat interpolateAtCentroid "
    L"interpolateAtOffset interpolateAtSample inverse inversesqrt isfinite isinf isnan ldexp length lerp "
    L"lessThan "
    L"lessThanEqual lit log log10 log2 mad matrixCompMult max memoryBarrier min mix mod modf mul noise1 "
    L"noise2 "
    L"noise3 noise4 normalize notEqual outerProduct packHalf2x16 packSnorm2x16 packSnorm4x8 packUnorm2x16 "
    L"packUnorm4x8 pow powr radians rcp reflect refract round roundEven rsqrt saturate sign sin sincos sinh "
    L"smoothstep sqrt step tan tanh tex1D tex2D tex3D texCUBE texelFetch textureGather textureGrad "
    L"textureLod "
    L"textureSize transpose trunc uaddCarry uintBitsToFloat umulExtended unpackHalf2x16 unpackSnorm2x16 "
    L"unpackSnorm4x8 unpackUnorm2x16 unpackUnorm4x8 usubBorrow asdouble asfloat asint asuint countbits "
    L"firstbithigh firstbitlow f16tof32 f32tof16 msad4 dst "
    L"ftransform EmitVertex EndPrimitive dmat2x2 dmat2x3 dmat2x4 dmat3x2 dmat3x3 dmat3x4 dmat4x2 dmat4x3 "
    L"dmat4x4 "
    // of complete shaders
    L"State state";

std::vector<std::wstring_view> sortedWords() {
  std::vector<std::wstring_view> words;
  for (std::size_t start = 0; start < kWords.size();) {
    const std::size_t end = std::min(kWords.find(L' ', start), kWords.size());
    if (end != start) words.push_back(kWords.substr(start, end - start));
    start = end + 1;
  }
  std::sort(words.begin(), words.end());
  return words;
}

/// "float3", "half2x4", "int16_t3": types with their sizes.
bool isSizedType(std::wstring_view name) {
  for (const std::wstring_view scalar :
       {L"float",     L"int",      L"uint",      L"bool",   L"half",    L"double",     L"char",
        L"uchar",     L"short",    L"ushort",    L"long",   L"ulong",   L"int64_t",    L"uint64_t",
        L"float16_t", L"int16_t",  L"uint16_t",  L"int8_t", L"uint8_t", L"min16float", L"min10float",
        L"min16int",  L"min12int", L"min16uint", L"f16vec", L"i64vec",  L"u64vec"}) {
    if (name.starts_with(scalar) &&
        name.substr(scalar.size()).find_first_not_of(L"1234x") == std::wstring_view::npos) {
      return true;
    }
  }
  return false;
}

/// Whether the text is a row of such parts, at least one.
bool isMadeOf(std::wstring_view text, std::initializer_list<std::wstring_view> parts) {
  std::size_t pos = 0;
  while (pos < text.size()) {
    const std::wstring_view rest = text.substr(pos);
    const auto part =
        std::find_if(parts.begin(), parts.end(), [&](std::wstring_view p) { return rest.starts_with(p); });
    if (part == parts.end()) return false;
    pos += part->size();
  }
  return pos != 0;
}

/// Behind the prefix, or the whole name without it.
std::wstring_view behind(std::wstring_view name, std::wstring_view prefix) {
  return name.starts_with(prefix) ? name.substr(prefix.size()) : name;
}

/// GLSL's types of textures and images, "usampler2DArray", and the functions that read them,
/// "textureProjLod", "shadow2DProj".
bool isOfTextures(std::wstring_view name) {
  const std::wstring_view typed = behind(behind(name, L"i"), L"u");
  for (const std::wstring_view kind : {L"sampler", L"image", L"texture", L"shadow"}) {
    for (const std::wstring_view prefixed : {name, typed}) {
      if (!prefixed.starts_with(kind)) continue;
      const std::wstring_view rest = prefixed.substr(kind.size());
      for (const std::wstring_view dimension : {L"1D", L"2D", L"3D", L"Cube", L"Buffer"}) {
        if (!rest.starts_with(dimension)) continue;
        const std::wstring_view suffix = rest.substr(dimension.size());
        if (suffix.empty()) return true;
        if (isMadeOf(suffix, {L"Rect", L"MS", L"Array", L"Shadow", L"Proj", L"Lod", L"Grad", L"ARB", L"EXT"}))
          return true;
      }
    }
  }
  for (const std::wstring_view kind : {L"texture", L"texelFetch"}) {
    if (!name.starts_with(kind)) continue;
    if (isMadeOf(name.substr(kind.size()), {L"Proj", L"Lod", L"Grad", L"Offsets", L"Offset", L"Gather",
                                            L"Size", L"QueryLod", L"QueryLevels", L"Samples"}))
      return true;
  }
  return false;
}

}  // namespace

bool isReservedWord(std::wstring_view name) {
  static const std::vector<std::wstring_view> words = sortedWords();
  if (std::binary_search(words.begin(), words.end(), name) || isSizedType(name) || isOfTextures(name)) {
    return true;
  }
  for (const std::wstring_view prefix : {L"gl_", L"sfg_", L"spv", L"SPIRV_Cross_", L"sampler_", L"webgl_"}) {
    if (name.starts_with(prefix)) return true;
  }
  return name.find(L"__") != name.npos || name.starts_with(L"_");
}

}  // namespace TolmSDK::Graphics::sfg::host
