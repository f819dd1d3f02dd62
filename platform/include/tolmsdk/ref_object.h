#pragma once

// Reference counting: the protocol of every object that crosses a module border.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <type_traits>
#include <utility>

#include "tolmsdk/export.h"
#include "tolmsdk/heap.h"

namespace TolmSDK {

/// Identifies an interface in QueryInterface.
struct Interface_ID {
  std::uint32_t a = 0;
  std::uint32_t b = 0;
  friend bool operator==(const Interface_ID&, const Interface_ID&) = default;
};

/// The identifier that fragments, graphs, profiles and collapse tools answer.
inline constexpr Interface_ID kObjectInterfaceId{0x4fe71654u, 0x25c00a56u};

/// A counted object. It starts with a count of zero: whoever keeps it takes the first reference (usually a
/// RefPtr), and the Release that brings the count back to zero destroys it. The slot order is fixed.
/// AddRef and Release are const: holding a reference does not change what an object says.
class IRefObject : public HeapObject {
public:
  virtual ~IRefObject() = default;
  virtual void AddRef() const = 0;
  virtual void Release() const = 0;
  /// The object itself for an identifier it implements, else null. Adds no reference.
  virtual IRefObject* QueryInterface(Interface_ID id) = 0;
};

/// A reference count that threads may change at the same time.
class AtomicRefCounter {
public:
  AtomicRefCounter() = default;
  /// A copied object is a new one: nobody holds it yet.
  AtomicRefCounter(const AtomicRefCounter&) noexcept {}
  AtomicRefCounter& operator=(const AtomicRefCounter&) noexcept { return *this; }

  void increment() noexcept { count_.fetch_add(1, std::memory_order_relaxed); }
  /// True when this was the last reference; everything done before by other holders is then visible.
  bool decrement() noexcept {
    if (count_.fetch_sub(1, std::memory_order_release) != 1) return false;
    count_.load(std::memory_order_acquire);
    return true;
  }
  /// The count at this moment; for tests and assertions only.
  std::uint32_t count() const noexcept { return count_.load(std::memory_order_relaxed); }

private:
  std::atomic<std::uint32_t> count_{0};
};

/// Implements the counting of an interface derived from IRefObject. A copy starts with its own count of zero.
template <class Interface>
class RefCounted : public Interface {
public:
  using Interface::Interface;
  void AddRef() const override { references_.increment(); }
  void Release() const override {
    if (references_.decrement()) delete this;
  }
  IRefObject* QueryInterface(Interface_ID id) override { return id == kObjectInterfaceId ? this : nullptr; }

  std::uint32_t referenceCount() const noexcept { return references_.count(); }

private:
  mutable AtomicRefCounter references_;
};

/// A counted object without an interface of its own.
using ARefObject = RefCounted<IRefObject>;

/// Holds one reference on an object, or null. Converts from RefPtr of a derived or less const type.
template <class T>
class RefPtr {
public:
  using element_type = T;

  constexpr RefPtr() noexcept = default;
  constexpr RefPtr(std::nullptr_t) noexcept {}
  RefPtr(T* object) : object_(object) { acquire(); }
  RefPtr(const RefPtr& other) : RefPtr(other.object_) {}
  RefPtr(RefPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  template <class U>
  requires std::is_convertible_v<U*, T*> RefPtr(const RefPtr<U>& other) : RefPtr(other.get()) {}
  template <class U>
  requires std::is_convertible_v<U*, T*> RefPtr(RefPtr<U>&& other)
  noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ~RefPtr() { release(); }

  RefPtr& operator=(const RefPtr& other) {
    RefPtr(other).swap(*this);
    return *this;
  }
  RefPtr& operator=(RefPtr&& other) noexcept {
    RefPtr(std::move(other)).swap(*this);
    return *this;
  }
  RefPtr& operator=(T* object) {
    RefPtr(object).swap(*this);
    return *this;
  }

  T* get() const noexcept { return object_; }
  T* operator->() const noexcept { return object_; }
  T& operator*() const noexcept { return *object_; }
  explicit operator bool() const noexcept { return object_ != nullptr; }
  void reset() { RefPtr().swap(*this); }
  void swap(RefPtr& other) noexcept { std::swap(object_, other.object_); }

  friend bool operator==(const RefPtr& a, const RefPtr& b) noexcept { return a.object_ == b.object_; }
  friend bool operator==(const RefPtr& a, const T* b) noexcept { return a.object_ == b; }
  friend bool operator<(const RefPtr& a, const RefPtr& b) noexcept {
    return std::less<const T*>()(a.object_, b.object_);
  }

private:
  template <class U>
  friend class RefPtr;

  void acquire() const {
    if (object_ != nullptr) object_->AddRef();
  }
  void release() const {
    if (object_ != nullptr) object_->Release();
  }

  T* object_ = nullptr;
};

/// Creates a counted object and takes the first reference. The one place besides clone() that says `new`.
template <class T, class... Arguments>
RefPtr<T> makeRef(Arguments&&... arguments) {
  return RefPtr<T>(new T(std::forward<Arguments>(arguments)...));
}

}  // namespace TolmSDK
