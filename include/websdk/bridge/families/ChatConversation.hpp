#pragma once
/// @file
/// The chat conversation family's row and its plugin protocol,
/// DvWebViewChatConversationCallsBacks: a host that serves the family implements
/// handleChatConversationRequest and includes this header, which brings the
/// family's actions and models and no other family's.

#include "websdk/bridge/Family.hpp"
#include "websdk/plugins/commerce/ChatConversation.hpp"

namespace websdk {

WEBSDK_FAMILY(ChatConversationFamily, 3, "chatConversation",
              "chat conversation plugin not subscribed or not a valid request", DvWebViewChatConversationCallsBacks,
              handleChatConversationRequest, WebSDKChatConversationAction, WebSDKChatConversationRequestPayload)

}  // namespace websdk
