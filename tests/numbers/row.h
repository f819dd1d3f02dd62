#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace numbers_test {

// How the values of an input are drawn.
enum class Draw {
  kRange,   // every component from [low, high]; the ends, 0 and 1 more often than chance has it
  kWhole,   // a whole number from [low, high]
  kUnit,    // a vector of length 1, axes more often than chance has it
  kAbove,   // a vector of length 1 on the side of the row's first unit vector
  kAcross,  // a vector of length 1 at a right angle to the row's first unit vector
};

// An input of a fragment (or a uniform or state variable that its code reads) and the values to try.
struct Input {
  std::string name;
  std::string type;
  Draw draw = Draw::kRange;
  double low = 0.0;
  double high = 1.0;
};

Input number(std::string name, double low, double high);
Input vector2(std::string name, double low, double high);
Input vector3(std::string name, double low, double high);
Input vector4(std::string name, double low, double high);
Input matrix3(std::string name, double low, double high);
Input matrix4(std::string name, double low, double high);
Input unit3(std::string name);
Input above3(std::string name);
Input across3(std::string name);
Input whole(std::string name, double low, double high);     // a float that holds a whole number
Input wholeInt(std::string name, double low, double high);  // an int

struct Vec2 {
  double x = 0.0, y = 0.0;
};

struct Vec3 {
  double x = 0.0, y = 0.0, z = 0.0;
};

struct Vec4 {
  double x = 0.0, y = 0.0, z = 0.0, w = 0.0;
};

// The inputs of one call, by the position of their `Input` in the row.
class Sample {
public:
  Sample(std::span<Input const> inputs, std::span<float const> values);

  double operator()(std::size_t input) const { return at(input, 0); }
  Vec2 vec2(std::size_t input) const { return {at(input, 0), at(input, 1)}; }
  Vec3 vec3(std::size_t input) const { return {at(input, 0), at(input, 1), at(input, 2)}; }
  Vec4 vec4(std::size_t input) const { return {at(input, 0), at(input, 1), at(input, 2), at(input, 3)}; }
  double at(std::size_t input, std::size_t component) const {
    return static_cast<double>(values_[offsets_[input] + component]);
  }

private:
  std::span<float const> values_;
  std::vector<std::size_t> offsets_;
};

// The components of all outputs, one behind the other, matrices row by row.
class Result {
public:
  template <typename... Values>
  explicit Result(Values const&... values) {
    (add(values), ...);
  }
  std::vector<double> const& values() const { return values_; }
  void add(double v) { values_.push_back(v); }

private:
  void add(Vec2 const& v) { addAll(v.x, v.y); }
  void add(Vec3 const& v) { addAll(v.x, v.y, v.z); }
  void add(Vec4 const& v) { addAll(v.x, v.y, v.z, v.w); }
  template <typename... Numbers>
  void addAll(Numbers... numbers) {
    (values_.push_back(numbers), ...);
  }

  std::vector<double> values_;
};

// A number agrees when it is off by no more than absolute + relative * |reference|.
struct Tolerance {
  double absolute = 0.0;
  double relative = 0.0;
  std::string reason;
};

// One fragment, or one level of detail of it, with the reference to compare it with. The reference is written
// from the formula's source, in double precision.
struct Row {
  std::string fragment;
  // Ports, uniforms and state variables by name; a port that is missing here is left unconnected.
  std::vector<Input> inputs;
  Tolerance tolerance;
  std::function<Result(Sample const&)> reference;
  double lod = -1.0;            // the level of detail it is for; -1: all that have no row of their own
  std::string inlineType = {};  // the result type of an expression fragment
  // True where the function jumps so near to the sample that rounding decides; few samples may say so.
  std::function<bool(Sample const&)> onEdge = {};
};

// The rows of one topic: a file of the standard library.
struct Topic {
  std::string file;
  std::vector<Row> rows;
};

Topic mathTopic();
Topic vectorTopic();
Topic colorTopic();
Topic noiseTopic();
Topic patternTopic();
Topic brdfTopic();
Topic coordinateTopic();
Topic inputTopic();
Topic logicTopic();
Topic operatorTopic();

std::vector<Topic> allTopics();

}  // namespace numbers_test
