// The header guard: its field survives any header names and hosts, anything
// else in the field is no guard, and without the guard module the app's
// headers are not sent at all.

#include "E2E.hpp"
#include "HeaderGuard.hpp"

namespace websdk::e2e {
namespace {

using webkitgtk::guard::Guard;

TEST(HeaderGuardField, CarriesAnyNamesAndHostsAndRefusesWhatIsNotAGuard) {
  const Guard guards[] = {
      {{"token"}, {{"example.com"}, false}},
      {{"token", "X-App, Version;1"}, {{"shop.example", "münchen.test", "a,b;c", ""}, false}},
      {{"token"}, {{}, true}},
  };
  for (const auto& g : guards) {
    const std::string field = webkitgtk::guard::encode(g);
    EXPECT_TRUE(std::ranges::all_of(field, [](unsigned char c) { return c > 0x20 && c < 0x7f; })) << field;
    const auto back = webkitgtk::guard::decode(field.c_str());
    ASSERT_TRUE(back) << field;
    EXPECT_EQ(back->confined, g.confined);
    EXPECT_EQ(back->trust, g.trust);
  }
  // A page can set the field on its own requests: none of these may confine anything.
  const std::string empty = webkitgtk::guard::encode({{}, {{"example.com"}, false}});
  for (const char* field : {"", "!!!", "AAAA", "dG9rZW4=", "////////////////////", empty.c_str()})
    EXPECT_FALSE(webkitgtk::guard::decode(field)) << field;
}

// Run by ctest in processes of their own, with WEBSDK_WEB_EXTENSIONS_DIR
// naming a directory without the module, or one that anyone may write to
// (see CMakeLists.txt); skipped in the ordinary run.
TEST_F(E2ETest, WithoutTheGuardModuleTheAppsHeadersAreNotSent) {
  if (g_getenv("WEBSDK_E2E_NO_GUARD") == nullptr) GTEST_SKIP() << "run by ctest with an unusable module directory";
  server.page("/page", testPage());
  ASSERT_TRUE(loadAndWait(server.url("/page"), {{"token", "a"}}, WebSDKHeaders{{"x-extra", "1"}}));
  const auto seen = server.requestsTo("/page");
  ASSERT_EQ(seen.size(), 1u);
  EXPECT_EQ(seen[0].header("token"), std::nullopt);
  EXPECT_EQ(seen[0].header("x-extra"), "1");
}

}  // namespace
}  // namespace websdk::e2e
