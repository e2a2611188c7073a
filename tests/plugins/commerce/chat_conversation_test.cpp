#include "CommerceHost.hpp"

namespace websdk {
namespace {

using P = WebSDKChatConversationRequestPayload;
using enum WebSDKChatConversationRequestPayloadCase;

TEST(ChatConversation, ThePayloadIsTheActionWhateverThePageSent) {
  test::expectDecodes<WebSDKChatConversationRequestModel, P>({
      {"GET_SUPPORT_UNREAD_CONVERSATION_DATA", std::nullopt, P::make<getSupportUnreadConversationData>()},
      {"GET_SUPPORT_UNREAD_CONVERSATION_DATA", R"({"x":1})", P::make<getSupportUnreadConversationData>()},
      {"UPDATE_CONVERSATION_ID", R"({"conversationId":"c-77"})", P::make<updateConversationId>()},
      {"UPDATE_CONVERSATION_ID", std::nullopt, P::make<updateConversationId>()},
  });
}

TEST(ChatConversation, TheRawPayloadReachesThePluginUntouched) {
  constexpr std::string_view payload = R"({"conversationId":"c-77","meta":{"n":[1,2.5,null]}})";
  test::CommerceBridge bridge;
  bridge.post(test::requestText("UPDATE_CONVERSATION_ID", payload));
  const auto& delivered = bridge.host->of<WebSDKChatConversationRequestModel, P>();
  ASSERT_EQ(delivered.size(), 1u);
  ASSERT_TRUE(delivered[0].first.payload);
  EXPECT_EQ(JSON(*delivered[0].first.payload), parseJSON(payload));
}

}  // namespace
}  // namespace websdk
