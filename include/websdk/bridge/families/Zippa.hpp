#pragma once
/// @file
/// The Zippa family's row and its plugin protocol, DvZippaWebViewCallBacks: a
/// host that serves the family implements handleZippaRequest and includes this
/// header, which brings the family's actions and models and no other family's.

#include "websdk/bridge/Family.hpp"
#include "websdk/plugins/commerce/Zippa.hpp"

namespace websdk {

WEBSDK_FAMILY(ZippaFamily, 8, "zippa", "Zippa Plugin not subscribed or not a valid request", DvZippaWebViewCallBacks,
              handleZippaRequest, WebSDKZippaAction, WebSDKZippaRequestPayload)

}  // namespace websdk
