#pragma once
/// @file
/// The chat conversation family: a support page asks for unread-conversation
/// data or reports a conversation id. The payload is the action itself; what
/// the page sent (the conversation id, say) reaches the plugin untouched in the
/// request model's `payload`.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/ActionTable.hpp"
#include "websdk/json/Model.hpp"

#include <optional>

namespace websdk {

// One case per action, carrying nothing.
WEBSDK_ACTIONS(WebSDKChatConversationAction, WebSDKChatConversationRequestPayload,
               (getSupportUnreadConversationData, "GET_SUPPORT_UNREAD_CONVERSATION_DATA",
                getSupportUnreadConversationData),
               (updateConversationId, "UPDATE_CONVERSATION_ID", updateConversationId))

/// A request of the chat conversation family: its action, the page's request id and the raw payload.
using WebSDKChatConversationRequestModel = WebSDKBridgeRequest<WebSDKChatConversationAction>;

}  // namespace websdk
