#include "host/documents/port_finder.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg::host {
namespace {

PortFinder::Ports portsNamed(std::size_t count) {
  PortFinder::Ports ports;
  for (std::size_t i = 0; i < count; ++i) {
    ports.emplace_back(makeRef<AParameter>(TypeID_float, WString(std::to_wstring(count - i))).get());
  }
  return ports;
}

TEST(PortFinderTest, FindsEachPortOfShortAndLongLists) {
  PortFinder finder;
  const PortFinder::Ports lists[] = {portsNamed(1), portsNamed(16), portsNamed(17), portsNamed(300)};
  for (const PortFinder::Ports& ports : lists) {
    const std::size_t count = ports.size();
    for (std::size_t i = 0; i < count; ++i) EXPECT_EQ(finder.find(ports, ports[i]->getName()), i) << count;
    EXPECT_EQ(finder.find(ports, L"0"), kNotFound) << count;
    EXPECT_EQ(finder.find(ports, L"zz"), kNotFound) << count;
  }
}

TEST(PortFinderTest, AnswersTheFirstOfEqualNames) {
  for (const std::size_t count : {4u, 40u}) {
    PortFinder::Ports ports = portsNamed(count);
    ports.push_back(ports[2]);
    EXPECT_EQ(PortFinder().find(ports, ports[2]->getName()), 2u);
  }
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg::host
