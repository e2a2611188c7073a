// The cart families' decoding and description, compiled once.
#include "websdk/plugins/commerce/Cart.hpp"
#include "websdk/plugins/commerce/GiftingCart.hpp"
#include "websdk/plugins/commerce/PXCart.hpp"
#include "websdk/plugins/commerce/VRCart.hpp"

namespace websdk {
WEBSDK_ACTIONS_COMPILED(WebSDKCartRequestPayload)
WEBSDK_ACTIONS_COMPILED(WebSDKGiftingCartRequestPayload)
WEBSDK_ACTIONS_COMPILED(WebSDKPXCartRequestPayload)
WEBSDK_ACTIONS_COMPILED(WebSDKVRCartRequestPayload)
}  // namespace websdk
