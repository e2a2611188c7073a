#pragma once
/// @file
/// The cart family's row and its plugin protocol, DvCartWebViewCallBacks: a host
/// that serves the family implements handleCartRequest and includes this header,
/// which brings the family's actions and models and no other family's.

#include "websdk/bridge/Family.hpp"
#include "websdk/plugins/commerce/Cart.hpp"

namespace websdk {

WEBSDK_FAMILY(CartFamily, 4, "cart", "Cart Plugin not subscribed or not a valid request", DvCartWebViewCallBacks,
              handleCartRequest, WebSDKCartAction, WebSDKCartRequestPayload)

}  // namespace websdk
