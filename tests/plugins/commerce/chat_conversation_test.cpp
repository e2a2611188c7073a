#include "support/Decoding.hpp"

namespace websdk::chat_conversation_test {
namespace {

using P = WebSDKChatConversationRequestPayload;
using enum WebSDKChatConversationRequestPayloadCase;

TEST(ChatConversation, ThePayloadIsTheActionWhateverThePageSent) {
  test::expectDecodes<ChatConversationFamily>({
      {"GET_SUPPORT_UNREAD_CONVERSATION_DATA", std::nullopt, P::make<getSupportUnreadConversationData>()},
      {"GET_SUPPORT_UNREAD_CONVERSATION_DATA", R"({"x":1})", P::make<getSupportUnreadConversationData>()},
      {"UPDATE_CONVERSATION_ID", R"({"conversationId":"c-77"})", P::make<updateConversationId>()},
      {"UPDATE_CONVERSATION_ID", std::nullopt, P::make<updateConversationId>()},
  });
}

TEST(ChatConversation, TheRawPayloadReachesThePluginUntouched) {
  constexpr std::string_view payload = R"({"conversationId":"c-77","meta":{"n":[1,2.5,null]}})";
  struct Plugin final : DvWebViewChatConversationCallsBacks {
    std::optional<JSONObject> received;
    void handleChatConversationRequest(const WebSDKChatConversationRequestModel& r, const P&) override {
      received = r.payload;
    }
  };
  auto plugin = std::make_shared<Plugin>();
  test::Harness bridge({"localhost"}, false, "https://localhost/");
  bridge.view->setChatConversationPlugin(plugin);
  bridge.post(test::requestText("UPDATE_CONVERSATION_ID", payload));
  ASSERT_TRUE(plugin->received);
  EXPECT_EQ(JSON(*plugin->received), parseJSON(payload));
}

}  // namespace
}  // namespace websdk::chat_conversation_test
