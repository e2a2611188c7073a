#include "websdk/plugins/commerce/ChatConversation.hpp"

namespace websdk {

std::optional<WebSDKChatConversationRequestPayload> WebSDKChatConversationRequestPayload::validateRequest(
    const WebSDKChatConversationRequestModel& request) {
  using P = WebSDKChatConversationRequestPayload;
  using enum WebSDKChatConversationRequestPayloadCase;
  switch (request.type) {
    case WebSDKChatConversationAction::getSupportUnreadConversationData:
      return P::make<getSupportUnreadConversationData>();
    case WebSDKChatConversationAction::updateConversationId: return P::make<updateConversationId>();
  }
  return std::nullopt;
}

}  // namespace websdk
