#pragma once
/// @file
/// The VR cart family's row and its plugin protocol, DvVRCartWebViewCallBacks: a
/// host that serves the family implements handleVRCartRequest and includes this
/// header, which brings the family's actions and models and no other family's.

#include "websdk/bridge/Family.hpp"
#include "websdk/plugins/commerce/VRCart.hpp"

namespace websdk {

WEBSDK_FAMILY(VRCartFamily, 6, "vrCart", "VR Cart Plugin not subscribed or not a valid request",
              DvVRCartWebViewCallBacks, handleVRCartRequest, WebSDKVRCartAction, WebSDKVRCartRequestPayload)

}  // namespace websdk
