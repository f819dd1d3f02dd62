#pragma once

// Process-wide tables that outlive every static destructor.

#include <cstddef>
#include <memory>
#include <new>
#include <utility>

namespace TolmSDK {

/// Holds a T that is made but never destroyed. As a function-local static it is ready whenever somebody asks,
/// during the static initialisation of another module as well as during its static destruction.
template <class T>
class NeverDestroyed {
public:
  template <class... Arguments>
  explicit NeverDestroyed(Arguments&&... arguments) {
    std::construct_at(std::launder(reinterpret_cast<T*>(place_)), std::forward<Arguments>(arguments)...);
  }
  NeverDestroyed(const NeverDestroyed&) = delete;
  NeverDestroyed& operator=(const NeverDestroyed&) = delete;

  T& get() noexcept { return *std::launder(reinterpret_cast<T*>(place_)); }
  const T& get() const noexcept { return *std::launder(reinterpret_cast<const T*>(place_)); }

private:
  alignas(T) std::byte place_[sizeof(T)];
};

}  // namespace TolmSDK
