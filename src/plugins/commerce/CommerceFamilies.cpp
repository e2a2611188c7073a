// The other commerce families' decoding and description, compiled once.
#include "websdk/plugins/commerce/Accounts.hpp"
#include "websdk/plugins/commerce/ChatConversation.hpp"
#include "websdk/plugins/commerce/MenuList.hpp"
#include "websdk/plugins/commerce/RestaurantEmpathy.hpp"
#include "websdk/plugins/commerce/SetRecipientInfo.hpp"
#include "websdk/plugins/commerce/Zippa.hpp"

namespace websdk {
WEBSDK_ACTIONS_COMPILED(WebSDKAccountsRequestPayload)
WEBSDK_ACTIONS_COMPILED(WebSDKChatConversationRequestPayload)
WEBSDK_ACTIONS_COMPILED(WebSDKMenuListPayload)
WEBSDK_ACTIONS_COMPILED(WebSDKRestaurantEmpathyRequestPayload)
WEBSDK_ACTIONS_COMPILED(WebSDKSetRecipientInfoRequestPayload)
WEBSDK_ACTIONS_COMPILED(WebSDKZippaRequestPayload)
}  // namespace websdk
