// A host built against the installed package: WEBSDK_PACKAGE_WEB_EXTENSIONS_DIR
// (see CMakeLists.txt), taken from the include directory the engine's header
// was found in, is the default module directory, word for word, also where
// GCC's GNU mode predefines `linux` and `unix`.

#include "websdk/webkitgtk/WebKitGTKEngine.hpp"

#include <gtest/gtest.h>

namespace websdk::webkitgtk {
namespace {

TEST(PackageDirectory, IsTheConfigurationsDefault) {
  const std::string expected = WEBSDK_TEST_INCLUDE_DIR "/../lib/x86_64-linux-gnu/unix/websdk/web-extensions";
  EXPECT_EQ(WebKitGTKConfiguration{}.webExtensionsDirectory, expected);
  WebKitGTKConfiguration configuration;
  EXPECT_EQ(configuration.webExtensionsDirectory, expected);
  // The host's own use of the words is left as it was.
  EXPECT_EQ(linux + unix, 2);
}

}  // namespace
}  // namespace websdk::webkitgtk
