// What the six smaller commerce families share: the answer a page gets when a
// family has no plugin.

#include "support/Decoding.hpp"

namespace websdk::commerce_families_test {
namespace {

struct Unsubscribed {
  std::string_view action;
  std::string_view message;
};

TEST(CommerceFamilies, EachFamilyWithoutAPluginAnswersWithItsOwnMessage) {
  const Unsubscribed rows[] = {
      {"LOGOUT", "Account plugin not subscribed or not a valid request"},
      {"KYC_INIT", "Zippa Plugin not subscribed or not a valid request"},
      {"GET_RESTAURANT_EMPATHY_DATA", "restaurant empathy plugin not subscribed or not a valid request"},
      {"SET_RECIPIENT_INFO", "Gifting plugin not subscribed or not a valid request"},
      {"SHOW_MENULET", "Menu List plugin not subscribed or not a valid request"},
      {"UPDATE_CONVERSATION_ID", "chat conversation plugin not subscribed or not a valid request"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.action);
    test::Harness bridge({"localhost"}, false, "https://localhost/");
    const auto responses = bridge.post(test::requestText(row.action, "{}"));
    ASSERT_EQ(responses.size(), 1u);
    EXPECT_EQ(responses[0], parseJSON(R"({"type":"FAILED","statusCode":1004,"statusMessage":")" +
                                      std::string(row.message) + R"(","requestId":"r1"})"));
  }
}

}  // namespace
}  // namespace websdk::commerce_families_test
