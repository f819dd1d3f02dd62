// Widths of lobes by what people turn at, for the nodes of material documents.
#ifndef SFG_MTLX_PHYSICAL_H
#define SFG_MTLX_PHYSICAL_H

// Roughness and anisotropy as widths of the facets' slopes (Burley 2012).
float2 sfg_mtlxAnisotropicRoughness(float roughness, float anisotropy)
{
    float width = clamp(roughness * roughness, 0.00000001, 1.0);
    float aspect = sqrt(1.0 - clamp(anisotropy, 0.0, 0.98));
    return anisotropy > 0.0 ? float2(min(width / aspect, 1.0), width * aspect) : float2(width, width);
}

// The same with equal mean square for every anisotropy (OpenPBR Surface 1.1).
float2 sfg_mtlxEvenRoughness(float roughness, float anisotropy)
{
    float across = 1.0 - anisotropy;
    float along = roughness * roughness * sqrt(2.0 / (1.0 + across * across));
    return float2(along, across * along);
}

// The same with an anisotropy from -1 to 1 that moves the roughness across the tangent alone, to smooth or to rough.
float2 sfg_mtlxStretchedRoughness(float roughness, float anisotropy)
{
    float way = anisotropy >= 0.0 ? 1.0 - roughness : roughness;
    float across = saturate(roughness + anisotropy * way);
    return max(float2(roughness * roughness, across * across), 0.000001);
}

// Longitudinal variance and azimuthal scale of the lobes of hair (Chiang et al. 2016).
float2 sfg_mtlxHairVariance(float longitudinal, float azimuthal)
{
    float l = clamp(longitudinal, 0.001, 1.0);
    float a = clamp(azimuthal, 0.001, 1.0);
    float v = 0.726 * l + 0.812 * l * l + 3.7 * pow(l, 20.0);
    return float2(v * v, 0.265 * a + 1.194 * a * a + 5.372 * pow(a, 22.0));
}

#endif
