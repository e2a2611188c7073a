// The header guard's rules as they travel to the web processes: intact, for
// any header names, values and hosts; anything else reads as no rule.

#include "HeaderGuard.hpp"

#include <gtest/gtest.h>

namespace websdk::webkitgtk::guard {
namespace {

// The rules survive any header names, values and hosts; anything else is no rule.
TEST(HeaderGuardRules, CarryAnyFieldsAndHostsAndNothingElseReadsAsRules) {
  WebSDKConfig byFrame{{"example.com"}};
  byFrame.judgesFramesByTheirOwnHost = true;
  byFrame.maximumMessageBytes = 1;
  byFrame.allowsServiceWorkers = true;
  const std::vector<Rule> rules = {
      {1, {{"token", "a"}}, {{"example.com"}, false}, 7, "https://example.com/#x", {{"token", "a"}}},
      {~guint64{0}, {{"token", "x, y;z"}, {"X-App", "münchen"}}, {{"shop.example", "a,b;c", ""}, false}, 0, "", {}},
      {2, {}, {{}, true}, 0, "", {}},
      {3, {}, byFrame, ~guint64{0}, "", {}},
  };
  GVariant* encoded = g_variant_ref_sink(encode(rules));
  EXPECT_EQ(decode(encoded), rules);
  g_variant_unref(encoded);
  for (GVariant* other : {g_variant_new_string("token"), g_variant_new("(as)", nullptr)}) {
    g_variant_ref_sink(other);
    EXPECT_TRUE(decode(other).empty());
    g_variant_unref(other);
  }
  EXPECT_TRUE(decode(nullptr).empty());
}

}  // namespace
}  // namespace websdk::webkitgtk::guard
