#include "text/pieces.h"

#include <gtest/gtest.h>

namespace TolmSDK::Graphics::sfg {
namespace {

TEST(Pieces, StandOneBehindAnother) {
  WString text = L"a";
  const WString long_(40, L'x');
  appendPieces(text, L"", long_, L"b", std::wstring_view(L"cd").substr(1));
  EXPECT_EQ(text, L"a" + long_ + L"bd");
}

}  // namespace
}  // namespace TolmSDK::Graphics::sfg
