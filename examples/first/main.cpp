#include <sfg/version.h>
#include <tolmsdk/version.h>

#include <iostream>

int main() {
  std::cout << "sfg " << TolmSDK::Graphics::sfg::sfgVersion() << " on platform " << TolmSDK::platformVersion()
            << '\n';
}
