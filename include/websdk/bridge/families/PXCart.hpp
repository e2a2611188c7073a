#pragma once
/// @file
/// The PX cart family's row and its plugin protocol, DvPXCartWebViewCallBacks: a
/// host that serves the family implements handlePXCartRequest and includes this
/// header, which brings the family's actions and models and no other family's.

#include "websdk/bridge/Family.hpp"
#include "websdk/plugins/commerce/PXCart.hpp"

namespace websdk {

WEBSDK_FAMILY(PXCartFamily, 5, "pxCart", "PX Cart Plugin not subscribed or not a valid request",
              DvPXCartWebViewCallBacks, handlePXCartRequest, WebSDKPXCartAction, WebSDKPXCartRequestPayload)

}  // namespace websdk
