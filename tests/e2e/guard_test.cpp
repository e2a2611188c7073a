// The header guard: its rules reach the web processes intact, and without the
// guard module the app's headers are not sent at all.

#include "E2E.hpp"
#include "HeaderGuard.hpp"

namespace websdk::e2e {
namespace {

// The rules survive any header names, values and hosts; anything else is no rule.
TEST(HeaderGuardRules, CarryAnyFieldsAndHostsAndNothingElseReadsAsRules) {
  using webkitgtk::guard::Rule;
  WebSDKConfig byFrame{{"example.com"}};
  byFrame.judgesFramesByTheirOwnHost = true;
  byFrame.maximumMessageBytes = 1;
  const std::vector<Rule> rules = {
      {1, {{"token", "a"}}, {{"example.com"}, false}, 7, "https://example.com/#x", {{"token", "a"}}},
      {~guint64{0}, {{"token", "x, y;z"}, {"X-App", "münchen"}}, {{"shop.example", "a,b;c", ""}, false}, 0, "", {}},
      {2, {}, {{}, true}, 0, "", {}},
      {3, {}, byFrame, ~guint64{0}, "", {}},
  };
  GVariant* encoded = g_variant_ref_sink(webkitgtk::guard::encode(rules));
  EXPECT_EQ(webkitgtk::guard::decode(encoded), rules);
  g_variant_unref(encoded);
  for (GVariant* other : {g_variant_new_string("token"), g_variant_new("(as)", nullptr)}) {
    g_variant_ref_sink(other);
    EXPECT_TRUE(webkitgtk::guard::decode(other).empty());
    g_variant_unref(other);
  }
  EXPECT_TRUE(webkitgtk::guard::decode(nullptr).empty());
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
