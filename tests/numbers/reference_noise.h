#pragma once

#include <array>
#include <cstdint>

#include "tests/numbers/reference_tools.h"

// The noises of the library, written from the papers they cite. What the papers leave open is the library's
// choice: a cell is hashed by its whole coordinates as unsigned numbers, a random number is the upper 24 bits
// of the first word, a gradient is chosen by the lowest bits of the first word.
namespace numbers_test {

using Words2 = std::array<std::uint32_t, 2>;
using Words3 = std::array<std::uint32_t, 3>;

// Jarzynski and Olano 2020: PCG in one, two and three dimensions.
std::uint32_t pcgHash(std::uint32_t key);
Words2 pcgHash(Words2 key);
Words3 pcgHash(Words3 key);

std::uint32_t cellWord(double coordinate);
Words2 cellOf(Vec2 p);
Words3 cellOf(Vec3 p);

double unitFromWord(std::uint32_t word);
double randomOf(Vec2 p);
double randomOf(Vec3 p);

double valueNoise(Vec2 p);
double valueNoise(Vec3 p);

// Perlin 2002: gradients to the lattice points, blended with the quintic.
double perlinNoise(Vec2 p);
double perlinNoise(Vec3 p);

// The lattice of an octave, which is turned and moved; the library's choice.
Vec3 turned(Vec3 p);

// The sum of octaves of weight gain^i at frequency lacunarity^i over the sum of the weights; 0 without
// octaves. Each octave's lattice is turned once more than the one before.
double fbm(Vec2 p, int octaves, double lacunarity, double gain);
double fbm(Vec3 p, int octaves, double lacunarity, double gain);
double turbulence(Vec3 p, int octaves, double lacunarity, double gain);

// Musgrave's ridged multifractal with offset 1, gain 2 and octaves of weight 2^-i, over the sum of the
// weights.
double ridged(Vec3 p, int octaves, double lacunarity);

}  // namespace numbers_test
