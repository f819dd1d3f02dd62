// A texture together with its sampler, as one value that can be handed from function to function.
// The generator passes an unconnected texture input as sfg_make_sampler2D(texture, sampler_texture).
// Where SFG_COMPUTE is defined there are no derivatives, and sfg_sample... reads level 0.
#ifndef SFG_SAMPLERS_H
#define SFG_SAMPLERS_H

struct sfg_sampler1D
{
    Texture1D<float4> image;
    SamplerState filtering;
};

struct sfg_sampler2D
{
    Texture2D<float4> image;
    SamplerState filtering;
};

struct sfg_sampler3D
{
    Texture3D<float4> image;
    SamplerState filtering;
};

struct sfg_samplerCube
{
    TextureCube<float4> image;
    SamplerState filtering;
};

sfg_sampler1D sfg_make_sampler1D(Texture1D<float4> image, SamplerState filtering)
{
    sfg_sampler1D pair;
    pair.image = image;
    pair.filtering = filtering;
    return pair;
}

sfg_sampler2D sfg_make_sampler2D(Texture2D<float4> image, SamplerState filtering)
{
    sfg_sampler2D pair;
    pair.image = image;
    pair.filtering = filtering;
    return pair;
}

sfg_sampler3D sfg_make_sampler3D(Texture3D<float4> image, SamplerState filtering)
{
    sfg_sampler3D pair;
    pair.image = image;
    pair.filtering = filtering;
    return pair;
}

sfg_samplerCube sfg_make_samplerCube(TextureCube<float4> image, SamplerState filtering)
{
    sfg_samplerCube pair;
    pair.image = image;
    pair.filtering = filtering;
    return pair;
}

// Reads at an explicit mip level; level 0 is the full image.
float4 sfg_sampleLevel1D(sfg_sampler1D source, float u, float level)
{
    return source.image.SampleLevel(source.filtering, u, level);
}

float4 sfg_sampleLevel2D(sfg_sampler2D source, float2 uv, float level)
{
    return source.image.SampleLevel(source.filtering, uv, level);
}

float4 sfg_sampleLevel3D(sfg_sampler3D source, float3 uvw, float level)
{
    return source.image.SampleLevel(source.filtering, uvw, level);
}

float4 sfg_sampleLevelCube(sfg_samplerCube source, float3 direction, float level)
{
    return source.image.SampleLevel(source.filtering, direction, level);
}

// Reads at the mip level that the screen-space derivatives ask for.
#ifdef SFG_COMPUTE
#define sfg_sample1D(source, u) sfg_sampleLevel1D(source, u, 0.0)
#define sfg_sample2D(source, uv) sfg_sampleLevel2D(source, uv, 0.0)
#define sfg_sample3D(source, uvw) sfg_sampleLevel3D(source, uvw, 0.0)
#define sfg_sampleCube(source, direction) sfg_sampleLevelCube(source, direction, 0.0)
#else
float4 sfg_sample1D(sfg_sampler1D source, float u)
{
    return source.image.Sample(source.filtering, u);
}

float4 sfg_sample2D(sfg_sampler2D source, float2 uv)
{
    return source.image.Sample(source.filtering, uv);
}

float4 sfg_sample3D(sfg_sampler3D source, float3 uvw)
{
    return source.image.Sample(source.filtering, uvw);
}

float4 sfg_sampleCube(sfg_samplerCube source, float3 direction)
{
    return source.image.Sample(source.filtering, direction);
}
#endif

#endif
