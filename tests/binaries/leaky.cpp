// A library with every fault the checks of libraries look for, and one name of ours that is no fault.

#include <openssl/evp.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iostream>

namespace TolmSDK {

struct LeakyRecord {
  int number = 0;
  friend bool operator<(LeakyRecord const& a, LeakyRecord const& b) { return a.number < b.number; }
};

int own() { return 1; }

}  // namespace TolmSDK

// Its printed name begins with our namespace, and is the standard library's all the same.
template TolmSDK::LeakyRecord const& std::max<TolmSDK::LeakyRecord>(TolmSDK::LeakyRecord const&,
                                                                    TolmSDK::LeakyRecord const&);

namespace Foreign {

void leak(int kind) {
  if (kind == 0) std::exit(1);
  if (kind == 1) std::abort();
  std::cout << kind;
  std::fputs("kind", stdout);
  EVP_MD_CTX_free(EVP_MD_CTX_new());
}

}  // namespace Foreign

extern "C" void leakyFunction() {}
