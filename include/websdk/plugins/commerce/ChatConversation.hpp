#pragma once
// Catalogue not filled in yet: no action belongs to this family so far.

#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"

#include <optional>

namespace websdk {

enum class WebSDKChatConversationAction {};
constexpr auto rawValues(WebSDKChatConversationAction) { return rawValueTable<WebSDKChatConversationAction>(); }

using WebSDKChatConversationRequestModel = WebSDKBridgeRequest<WebSDKChatConversationAction>;

enum class WebSDKChatConversationRequestPayloadCase {};
constexpr auto rawValues(WebSDKChatConversationRequestPayloadCase) { return rawValueTable<WebSDKChatConversationRequestPayloadCase>(); }

class WebSDKChatConversationRequestPayload : public TaggedPayload<WebSDKChatConversationRequestPayload, WebSDKChatConversationRequestPayloadCase> {
 public:
  static std::optional<WebSDKChatConversationRequestPayload> validateRequest(const WebSDKChatConversationRequestModel&) { return std::nullopt; }
};

}  // namespace websdk
