#include "tolmsdk/ref_object.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <thread>
#include <utility>
#include <vector>

#include "tolmsdk/heap.h"
#include "tolmsdk/host_interfaces.h"
#include "tolmsdk/object_data_node.h"
#include "tolmsdk/parameter.h"
#include "tolmsdk/text_parameter_list.h"

namespace TolmSDK {
namespace {

class Probe : public ARefObject {
public:
  explicit Probe(int* destroyed) : destroyed_(destroyed) {}
  ~Probe() override { ++*destroyed_; }

private:
  int* destroyed_;
};

TEST(RefObject, StartsWithoutReferencesAndDiesWithTheLast) {
  int destroyed = 0;
  auto* const probe = new Probe(&destroyed);
  EXPECT_EQ(probe->referenceCount(), 0u);
  probe->AddRef();
  probe->AddRef();
  probe->Release();
  EXPECT_EQ(destroyed, 0);
  probe->Release();
  EXPECT_EQ(destroyed, 1);
}

TEST(RefObject, CopyStartsWithoutReferences) {
  int destroyed = 0;
  const RefPtr<Probe> original = makeRef<Probe>(&destroyed);
  const RefPtr<Probe> copy(new Probe(*original));
  EXPECT_EQ(original->referenceCount(), 1u);
  EXPECT_EQ(copy->referenceCount(), 1u);
}

TEST(RefObject, AnswersItsInterfaceWithoutAReference) {
  int destroyed = 0;
  const RefPtr<Probe> probe = makeRef<Probe>(&destroyed);
  EXPECT_EQ(probe->QueryInterface(kObjectInterfaceId), probe.get());
  EXPECT_EQ(probe->QueryInterface(Interface_ID{1, 2}), nullptr);
  EXPECT_EQ(probe->referenceCount(), 1u);
}

TEST(RefPtr, HoldsOneReferenceEach) {
  int destroyed = 0;
  {
    RefPtr<Probe> first = makeRef<Probe>(&destroyed);
    RefPtr<const Probe> second = first;
    const RefPtr<const IRefObject> third = second;
    EXPECT_EQ(first->referenceCount(), 3u);
    RefPtr<Probe> moved = std::move(first);
    EXPECT_EQ(moved->referenceCount(), 3u);
    second.reset();
    EXPECT_FALSE(second);
    EXPECT_EQ(moved->referenceCount(), 2u);
    moved = moved.get();
    EXPECT_EQ(moved->referenceCount(), 2u);
    EXPECT_EQ(destroyed, 0);
  }
  EXPECT_EQ(destroyed, 1);
}

TEST(RefPtr, HandsItsReferenceOnToOneOfABase) {
  int destroyed = 0;
  RefPtr<Probe> probe = makeRef<Probe>(&destroyed);
  const Probe* const object = probe.get();
  {
    const RefPtr<IRefObject const> base(std::move(probe));
    EXPECT_FALSE(probe);
    EXPECT_EQ(base.get(), object);
    EXPECT_EQ(object->referenceCount(), 1u);
  }
  EXPECT_EQ(destroyed, 1);
}

TEST(RefObject, CountsReferencesOfManyThreads) {
  int destroyed = 0;
  RefPtr<Probe> probe = makeRef<Probe>(&destroyed);
  std::vector<std::thread> threads;
  threads.reserve(8);
  for (int thread = 0; thread < 8; ++thread) {
    threads.emplace_back([probe] {
      for (int round = 0; round < 2000; ++round) {
        const RefPtr<const Probe> copy = probe;
        const RefPtr<const IRefObject> another = copy;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  threads.clear();
  EXPECT_EQ(probe->referenceCount(), 1u);
  EXPECT_EQ(destroyed, 0);
  probe.reset();
  EXPECT_EQ(destroyed, 1);
}

TEST(RefObject, IsDestroyedByWhicheverThreadReleasesLast) {
  for (int round = 0; round < 50; ++round) {
    int destroyed = 0;
    std::vector<std::thread> threads;
    threads.reserve(8);
    {
      const RefPtr<Probe> probe = makeRef<Probe>(&destroyed);
      for (int thread = 0; thread < 8; ++thread) threads.emplace_back([probe] {});
    }
    for (std::thread& thread : threads) thread.join();
    threads.clear();
    EXPECT_EQ(destroyed, 1);
  }
}

TEST(Heap, TakesEverySizeAndFreesNull) {
  void* const nothing = HeapAllocate(0);
  EXPECT_NE(nothing, nullptr);
  HeapFree(nothing);
  HeapFree(nullptr);
  CrossDllFree(nullptr);
  void* const memory = CrossDllAllocate(1000);
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % alignof(std::max_align_t), 0u);
  std::memset(memory, 1, 1000);
  CrossDllFree(memory);
}

TEST(Heap, RefusesWhatNoMemoryHolds) {
  EXPECT_THROW(StlAllocator<int>().allocate(kNotFound / 2), std::bad_array_new_length);
}

#if defined(__GXX_ABI_VERSION)  // The layout of virtual tables that these tests read.

/// Where a virtual member function stands in its table, counted in slots. A destructor takes two.
template <class Member>
std::size_t slotOf(Member member) {
  static_assert(sizeof member == 2 * sizeof(std::uintptr_t));
  std::uintptr_t words[2];
  std::memcpy(words, &member, sizeof member);
  const bool marksVirtualInFirstWord = (words[0] & 1) != 0;
  return (marksVirtualInFirstWord ? words[0] - 1 : words[0]) / sizeof(void*);
}

template <class Interface>
void expectFixedSlots() {
  EXPECT_EQ(slotOf(&Interface::AddRef), 2u);
  EXPECT_EQ(slotOf(&Interface::Release), 3u);
  EXPECT_EQ(slotOf(&Interface::QueryInterface), 4u);
}

TEST(RefObject, SlotsAreDestructorAddRefReleaseQueryInterface) {
  expectFixedSlots<IRefObject>();
  expectFixedSlots<ARefObject>();
  expectFixedSlots<IObjectDataNode>();
  expectFixedSlots<Graphics::ITextParameterList>();
  expectFixedSlots<Graphics::AParameter>();
  expectFixedSlots<Graphics::sfg::ILanguageTraits>();
  expectFixedSlots<Graphics::sfg::IShadingEnvironment>();
  expectFixedSlots<Graphics::sfg::IShaderOptions>();
  expectFixedSlots<Graphics::sfg::IShaderFlags>();
  expectFixedSlots<Graphics::sfg::INodeAccessor>();
  expectFixedSlots<Graphics::sfg::IGraphAccessor>();
}

#endif

}  // namespace
}  // namespace TolmSDK
