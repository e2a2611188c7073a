#pragma once
/// @file
/// The gifting cart family's row and its plugin protocol,
/// DvGiftingCartWebViewCallBacks: a host that serves the family implements
/// handleGiftingCartRequest and includes this header, which brings the family's
/// actions and models and no other family's.

#include "websdk/bridge/Family.hpp"
#include "websdk/plugins/commerce/GiftingCart.hpp"

namespace websdk {

WEBSDK_FAMILY(GiftingCartFamily, 7, "giftingCart", "Gifting Cart Plugin not subscribed or not a valid request",
              DvGiftingCartWebViewCallBacks, handleGiftingCartRequest, WebSDKGiftingCartAction,
              WebSDKGiftingCartRequestPayload)

}  // namespace websdk
