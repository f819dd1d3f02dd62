// References of noise.fraglib.

#include <vector>

#include "tests/numbers/reference_noise.h"
#include "tests/numbers/row.h"

namespace numbers_test {

namespace {

Tolerance const kBlend{2e-6, 0.0,
                       "some twenty roundings around 1; positions up to 20 are exact in their cells"};
Tolerance const kOctaves{2e-4, 0.0,
                         "the scaled positions of the last octaves are rounded at magnitudes around 400"};
Tolerance const kPoints{2e-5, 0.0, "the root of rounded squares; distances below 0.01 are rare"};

int whole(Sample const& in, std::size_t input, int most) {
  return std::min(static_cast<int>(in(input)), most);
}

// Worley 1996: the two smallest distances from p to the points of the cells from `first` to `last`, one point
// in each.
template <typename Vector>
Result twoNearest(Vector p, std::vector<Vector> const& cells, double jitter) {
  std::vector<double> distances;
  for (Vector const& cell : cells) {
    auto const words = pcgHash(cellOf(cell));
    Vector point;
    if constexpr (std::is_same_v<Vector, Vec2>) {
      point = {unitFromWord(words[0]), unitFromWord(words[1])};
      point = cell + mix(Vec2{0.5, 0.5}, point, jitter);
    } else {
      point = {unitFromWord(words[0]), unitFromWord(words[1]), unitFromWord(words[2])};
      point = cell + mix(splat(0.5), point, jitter);
    }
    distances.push_back(length(point - p));
  }
  std::sort(distances.begin(), distances.end());
  return Result(distances[0], distances[1]);
}

// The cells from `first` to `last` along each axis, relative to the cell of p - shift.
std::vector<Vec2> cellsAround(Vec2 p, double shift, int first, int last) {
  std::vector<Vec2> cells;
  for (int y = first; y <= last; ++y) {
    for (int x = first; x <= last; ++x) {
      cells.push_back({std::floor(p.x - shift) + x, std::floor(p.y - shift) + y});
    }
  }
  return cells;
}

std::vector<Vec3> cellsAround(Vec3 p, double shift, int first, int last) {
  std::vector<Vec3> cells;
  for (int z = first; z <= last; ++z) {
    for (Vec2 const cell : cellsAround(Vec2{p.x, p.y}, shift, first, last)) {
      cells.push_back({cell.x, cell.y, std::floor(p.z - shift) + z});
    }
  }
  return cells;
}

Result worleyAll(Vec2 p, double jitter) { return twoNearest(p, cellsAround(p, 0.0, -1, 1), jitter); }

Result worleyAll(Vec3 p, double jitter) { return twoNearest(p, cellsAround(p, 0.0, -1, 1), jitter); }

// Only the cells that p is nearest to: two along each axis.
Result worleyFew(Vec2 p, double jitter) { return twoNearest(p, cellsAround(p, 0.5, 0, 1), jitter); }

Result worleyFew(Vec3 p, double jitter) { return twoNearest(p, cellsAround(p, 0.5, 0, 1), jitter); }

std::vector<Row> latticeRows() {
  std::vector<Input> const plane = {vector2("position", -20, 20)};
  std::vector<Input> const space = {vector3("position", -20, 20)};
  return {
      {"randomCell2", plane, exactly(), [](Sample const& in) { return Result(randomOf(in.vec2(0))); }},
      {"randomCell3", space, exactly(), [](Sample const& in) { return Result(randomOf(in.vec3(0))); }},
      {"randomColor",
       {number("seed", -1000, 1000)},
       exactly(),
       [](Sample const& in) {
         // The colour of cell (seed, 17, 91).
         Words3 const words = pcgHash(Words3{cellWord(in(0)), 17, 91});
         return Result(unitFromWord(words[0]), unitFromWord(words[1]), unitFromWord(words[2]));
       }},
      {"valueNoise2", plane, kBlend, [](Sample const& in) { return Result(valueNoise(in.vec2(0))); }},
      {"valueNoise3", space, kBlend, [](Sample const& in) { return Result(valueNoise(in.vec3(0))); }},
      {"perlinNoise2", plane, kBlend, [](Sample const& in) { return Result(perlinNoise(in.vec2(0))); }},
      {"perlinNoise3", space, kBlend, [](Sample const& in) { return Result(perlinNoise(in.vec3(0))); }},
      {"worleyNoise2",
       {vector2("position", -20, 20), number("jitter", 0, 1)},
       kPoints,
       [](Sample const& in) { return worleyAll(in.vec2(0), in(1)); },
       100.0},
      {"worleyNoise2",
       {vector2("position", -20, 20), number("jitter", 0, 1)},
       kPoints,
       [](Sample const& in) { return worleyFew(in.vec2(0), in(1)); },
       0.0},
      {"worleyNoise3",
       {vector3("position", -20, 20), number("jitter", 0, 1)},
       kPoints,
       [](Sample const& in) { return worleyAll(in.vec3(0), in(1)); },
       100.0},
      {"worleyNoise3",
       {vector3("position", -20, 20), number("jitter", 0, 1)},
       kPoints,
       [](Sample const& in) { return worleyFew(in.vec3(0), in(1)); },
       0.0},
  };
}

std::vector<Row> fractalRows() {
  std::vector<Row> rows;
  std::vector<Input> const rest = {wholeInt("octaves", 0, 6), number("lacunarity", 1.5, 2.5),
                                   number("gain", 0.2, 0.7)};
  auto const inputs = [&rest](Input position, std::size_t count) {
    std::vector<Input> all = {std::move(position)};
    all.insert(all.end(), rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(count));
    return all;
  };
  struct Detail {
    double lod;
    int most;
  };
  for (Detail const detail : {Detail{100.0, 6}, {50.0, 3}, {0.0, 1}}) {
    int const most = detail.most;
    rows.push_back(
        {"fbmNoise2", inputs(vector2("position", -4, 4), 3), kOctaves,
         [=](Sample const& in) { return Result(fbm(in.vec2(0), whole(in, 1, most), in(2), in(3))); },
         detail.lod});
    rows.push_back(
        {"fbmNoise3", inputs(vector3("position", -4, 4), 3), kOctaves,
         [=](Sample const& in) { return Result(fbm(in.vec3(0), whole(in, 1, most), in(2), in(3))); },
         detail.lod});
  }
  for (Detail const detail : {Detail{100.0, 6}, {0.0, 2}}) {
    int const most = detail.most;
    rows.push_back(
        {"turbulenceNoise3", inputs(vector3("position", -4, 4), 3), kOctaves,
         [=](Sample const& in) { return Result(turbulence(in.vec3(0), whole(in, 1, most), in(2), in(3))); },
         detail.lod});
    rows.push_back(
        {"ridgedNoise3",
         inputs(vector3("position", -4, 4), 2),
         {1e-3, 0.0, "rounded positions of the last octaves, weighed by the squares of the crests before"},
         [=](Sample const& in) { return Result(ridged(in.vec3(0), whole(in, 1, most), in(2))); },
         detail.lod});
  }
  std::vector<Input> const warped = {vector3("position", -4, 4), number("warp", 0, 2),
                                     wholeInt("octaves", 0, 5)};
  rows.push_back({"warpedNoise3",
                  warped,
                  {1e-3, 0.0, "the position of the outer noise moves with the inner's errors"},
                  [](Sample const& in) {
                    int const octaves = static_cast<int>(in(2));
                    auto const inner = [&](Vec3 offset) {
                      return fbm(in.vec3(0) + offset, octaves, 2.0, 0.5);
                    };
                    Vec3 const shift{inner({}), inner({5.2, 1.3, 8.7}), inner({1.7, 9.2, 2.8})};
                    return Result(fbm(in.vec3(0) + shift * in(1), octaves, 2.0, 0.5));
                  },
                  100.0});
  rows.push_back({"warpedNoise3", warped, kOctaves,
                  [](Sample const& in) { return Result(fbm(in.vec3(0), whole(in, 2, 3), 2.0, 0.5)); }, 0.0});
  return rows;
}

}  // namespace

Topic noiseTopic() {
  Topic topic{"noise.fraglib", latticeRows()};
  std::vector<Row> const more = fractalRows();
  topic.rows.insert(topic.rows.end(), more.begin(), more.end());
  return topic;
}

}  // namespace numbers_test
