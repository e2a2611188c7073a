#pragma once
/// @file
/// The generic family's row and its plugin protocol, DvWebViewGenericCallsBacks:
/// a host that serves the family implements handleGenericRequest and includes
/// this header, which brings the family's actions and models and no other
/// family's.

#include "websdk/bridge/Family.hpp"
#include "websdk/plugins/generic/GenericCatalogue.hpp"

namespace websdk {

WEBSDK_FAMILY(GenericFamily, 0, "generic", "generic plugin not subscribed or not a valid request",
              DvWebViewGenericCallsBacks, handleGenericRequest, WebSDKGenericAction, WebSDKGenericRequestPayload)

}  // namespace websdk
