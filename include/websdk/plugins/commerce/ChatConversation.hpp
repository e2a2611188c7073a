#pragma once
// The chat conversation family: a support page asks for unread-conversation
// data or reports a conversation id. The payload is the action itself; what
// the page sent (the conversation id, say) reaches the plugin untouched in the
// request model's `payload`.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"

#include <optional>

namespace websdk {

enum class WebSDKChatConversationAction { getSupportUnreadConversationData, updateConversationId };
constexpr auto rawValues(WebSDKChatConversationAction) {
  using enum WebSDKChatConversationAction;
  return rawValueTable<WebSDKChatConversationAction>(
      {{getSupportUnreadConversationData, "GET_SUPPORT_UNREAD_CONVERSATION_DATA"},
       {updateConversationId, "UPDATE_CONVERSATION_ID"}});
}

using WebSDKChatConversationRequestModel = WebSDKBridgeRequest<WebSDKChatConversationAction>;

// One case per action, carrying nothing.
WEBSDK_NAMED_CASES(WebSDKChatConversationRequestPayloadCase, getSupportUnreadConversationData, updateConversationId)
class WEBSDK_EXPORT WebSDKChatConversationRequestPayload
    : public TaggedPayload<WebSDKChatConversationRequestPayload, WebSDKChatConversationRequestPayloadCase> {
 public:
  /// The case of the request's action; never yields nothing.
  static std::optional<WebSDKChatConversationRequestPayload> validateRequest(
      const WebSDKChatConversationRequestModel& request);
};

}  // namespace websdk
