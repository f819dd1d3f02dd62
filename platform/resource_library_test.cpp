#include "tolmsdk/resource_library.h"

#include <gtest/gtest.h>

namespace TolmSDK {
namespace {

class Resource : public ARefObject {
public:
  explicit Resource(bool* destroyed = nullptr) : destroyed_(destroyed) {}
  ~Resource() override {
    if (destroyed_ != nullptr) *destroyed_ = true;
  }

private:
  bool* destroyed_;
};

TEST(ResourceLibrary, KeepsOneReference) {
  const RefPtr<Resource> resource = makeRef<Resource>();
  {
    ResourceLibrary library;
    EXPECT_TRUE(library.registerResource(L"noise", resource.get()));
    EXPECT_EQ(resource->referenceCount(), 2u);
  }
  EXPECT_EQ(resource->referenceCount(), 1u);
}

TEST(ResourceLibrary, AcquiresWithoutAReference) {
  ResourceLibrary library;
  auto* const resource = new Resource();
  library.registerResource(L"noise", resource);
  EXPECT_EQ(library.acquireResource(L"noise"), resource);
  EXPECT_EQ(resource->referenceCount(), 1u);
  EXPECT_EQ(library.acquireResource(L"Noise"), nullptr);
  EXPECT_EQ(library.acquireResource(L""), nullptr);
}

TEST(ResourceLibrary, LaterObjectReplacesAndReleasesTheEarlier) {
  ResourceLibrary library;
  bool destroyed = false;
  library.registerResource(L"noise", new Resource(&destroyed));
  auto* const later = new Resource();
  EXPECT_TRUE(library.registerResource(L"noise", later));
  EXPECT_TRUE(destroyed);
  EXPECT_EQ(library.acquireResource(L"noise"), later);
  EXPECT_TRUE(library.registerResource(L"noise", later));
  EXPECT_EQ(later->referenceCount(), 1u);
}

TEST(ResourceLibrary, RefusesNull) {
  ResourceLibrary library;
  auto* const resource = new Resource();
  library.registerResource(L"noise", resource);
  EXPECT_FALSE(library.registerResource(L"noise", nullptr));
  EXPECT_FALSE(library.registerResource(L"other", nullptr));
  EXPECT_EQ(library.acquireResource(L"noise"), resource);
  EXPECT_EQ(library.getResourceNames(), (Array<WString>{L"noise"}));
}

TEST(ResourceLibrary, NamesAreInOrderOfText) {
  ResourceLibrary library;
  for (const wchar_t* const name : {L"b", L"a", L"B"}) library.registerResource(name, new Resource());
  EXPECT_EQ(library.getResourceNames(), (Array<WString>{L"B", L"a", L"b"}));
}

}  // namespace
}  // namespace TolmSDK
