#include "host/modules/large_stack.h"

#if __has_include(<pthread.h>)
#include <pthread.h>
#endif

namespace TolmSDK::Graphics::sfg::host {

#if __has_include(<pthread.h>)

namespace {

extern "C" void* runWork(void* work) {
  (*static_cast<const std::function<void()>*>(work))();
  return nullptr;
}

class Attributes {
public:
  Attributes() : isMade_(pthread_attr_init(&attributes_) == 0) {}
  ~Attributes() {
    if (isMade_) pthread_attr_destroy(&attributes_);
  }
  Attributes(const Attributes&) = delete;
  Attributes& operator=(const Attributes&) = delete;

  bool setStack(std::size_t bytes) { return isMade_ && pthread_attr_setstacksize(&attributes_, bytes) == 0; }
  const pthread_attr_t* get() const noexcept { return &attributes_; }

private:
  pthread_attr_t attributes_;
  bool isMade_;
};

}  // namespace

void runOnLargeStack(const std::function<void()>& work) {
  Attributes attributes;
  pthread_t thread;
  void* const argument = const_cast<std::function<void()>*>(&work);
  if (!attributes.setStack(kLargeStack) ||
      pthread_create(&thread, attributes.get(), runWork, argument) != 0) {
    return work();
  }
  pthread_join(thread, nullptr);
}

#else

void runOnLargeStack(const std::function<void()>& work) { work(); }

#endif

}  // namespace TolmSDK::Graphics::sfg::host
