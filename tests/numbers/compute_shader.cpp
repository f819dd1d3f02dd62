#include "tests/numbers/compute_shader.h"

#include <cctype>
#include <stdexcept>

namespace numbers_test {

namespace {

struct Shape {
  std::string scalar;
  std::size_t rows = 1;
  std::size_t columns = 1;
};

Shape shapeOf(std::string const& type) {
  Shape shape;
  std::size_t const letters = type.find_first_of("1234");
  shape.scalar = type.substr(0, letters);
  if (shape.scalar != "float" && shape.scalar != "int" && shape.scalar != "uint" && shape.scalar != "bool") {
    throw std::invalid_argument("`" + type + "` is not made of numbers");
  }
  if (letters != std::string::npos) {
    shape.columns = static_cast<std::size_t>(type[letters] - '0');
    if (letters + 2 < type.size() && type[letters + 1] == 'x') {
      shape.rows = shape.columns;
      shape.columns = static_cast<std::size_t>(type[letters + 2] - '0');
    }
  }
  return shape;
}

// The expression that makes a value of `type` from the floats at `offset` of the sample.
std::string readValue(std::string const& type, std::size_t offset) {
  Shape const shape = shapeOf(type);
  std::string text = type + "(";
  for (std::size_t i = 0; i < shape.rows * shape.columns; ++i) {
    std::string const element = "numbers_in[numbers_read + " + std::to_string(offset + i) + "u]";
    text += (i == 0 ? "" : ", ");
    text += shape.scalar == "bool" ? element + " != 0.0" : shape.scalar + "(" + element + ")";
  }
  return text + ")";
}

// The statements that write the components of `port`, matrices row by row.
std::string writeValue(Port const& port, std::size_t offset) {
  Shape const shape = shapeOf(port.type);
  std::string text;
  for (std::size_t i = 0; i < shape.rows * shape.columns; ++i) {
    std::string element = port.name;
    if (shape.rows > 1) {
      element.append("[").append(std::to_string(i / shape.columns)).append("]");
    }
    if (shape.columns > 1) {
      element.append("[").append(std::to_string(i % shape.columns)).append("]");
    }
    text +=
        "    numbers_out[numbers_write + " + std::to_string(offset + i) + "u] = float(" + element + ");\n";
  }
  return text;
}

template <typename Ports>
std::size_t totalComponents(Ports const& ports) {
  std::size_t count = 0;
  for (Port const& port : ports) {
    count += componentCount(port.type);
  }
  return count;
}

}  // namespace

std::size_t componentCount(std::string const& type) {
  Shape const shape = shapeOf(type);
  return shape.rows * shape.columns;
}

std::string computeShader(Function const& function) {
  std::string globals;
  std::string body;
  std::size_t read = 0;
  for (SampledPort const& port : function.inputs) {
    if (port.isGlobal) {
      globals += "static " + port.type + " " + port.name + ";\n";
    }
    body += "    " + (port.isGlobal ? "" : port.type + " ") + port.name + " = " + readValue(port.type, read) +
            ";\n";
    read += componentCount(port.type);
  }
  for (Port const& port : function.zeros) {
    body += "    " + port.type + " " + port.name + " = (" + port.type + ")0;\n";
  }
  for (Port const& port : function.outputs) {
    body += "    " + port.type + " " + port.name + ";\n";
  }
  body += "    " + function.call + "\n";
  std::size_t written = 0;
  for (Port const& port : function.outputs) {
    body += writeValue(port, written);
    written += componentCount(port.type);
  }

  return "#define SFG_COMPUTE 1\n"
         "StructuredBuffer<float> numbers_in : register(t0);\n"
         "RWStructuredBuffer<float> numbers_out : register(u0);\n" +
         globals + function.code + "\n[numthreads(" + std::to_string(kGroupSize) +
         ", 1, 1)]\n"
         "void main(uint3 numbers_id : SV_DispatchThreadID)\n"
         "{\n"
         "    uint numbers_read = numbers_id.x * " +
         std::to_string(totalComponents(function.inputs)) +
         "u;\n"
         "    uint numbers_write = numbers_id.x * " +
         std::to_string(written) + "u;\n" + body + "}\n";
}

}  // namespace numbers_test
