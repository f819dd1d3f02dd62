#include "host/lints/lint_list.h"

#include <algorithm>
#include <tuple>

namespace TolmSDK::Graphics::sfg::host {

std::vector<Diagnostic> LintList::take() {
  Map<std::string, std::size_t> order;
  for (const Diagnostic& lint : lints_) order.try_emplace(lint.file, order.size());
  std::stable_sort(lints_.begin(), lints_.end(), [&](const Diagnostic& a, const Diagnostic& b) {
    return std::tuple(order.find(a.file)->second, a.line, a.column) <
           std::tuple(order.find(b.file)->second, b.line, b.column);
  });
  return std::move(lints_);
}

}  // namespace TolmSDK::Graphics::sfg::host
