#include "host/documents/port_finder.h"

#include <algorithm>
#include <numeric>

namespace TolmSDK::Graphics::sfg::host {

namespace {

/// So few are looked at one after another.
constexpr std::size_t kFew = 16;

std::size_t findAmongFew(const PortFinder::Ports& ports, std::wstring_view name) {
  for (std::size_t i = 0; i < ports.size(); ++i) {
    if (ports[i]->getName() == name) return i;
  }
  return kNotFound;
}

}  // namespace

std::size_t PortFinder::find(const Ports& ports, std::wstring_view name) {
  if (ports.size() <= kFew) return findAmongFew(ports, name);
  const auto [entry, isNew] = orders_.try_emplace(&ports);
  Order& order = entry->second;
  if (isNew) order = sorted(ports);
  const auto isBefore = [&](std::size_t port, std::wstring_view sought) {
    return ports[port]->getName() < sought;
  };
  const auto found = std::lower_bound(order.begin(), order.end(), name, isBefore);
  return found != order.end() && ports[*found]->getName() == name ? *found : kNotFound;
}

PortFinder::Order PortFinder::sorted(const Ports& ports) {
  Order order(ports.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return ports[a]->getName() < ports[b]->getName(); });
  return order;
}

}  // namespace TolmSDK::Graphics::sfg::host
