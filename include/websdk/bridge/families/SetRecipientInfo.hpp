#pragma once
/// @file
/// The set recipient info family's row and its plugin protocol,
/// DvWebViewSetRecipientInfoCallsBacks: a host that serves the family implements
/// handleSetRecipientInfoRequest and includes this header, which brings the
/// family's actions and models and no other family's. Its pages know it as the
/// gifting plugin, hence its failure message.

#include "websdk/bridge/Family.hpp"
#include "websdk/plugins/commerce/SetRecipientInfo.hpp"

namespace websdk {

WEBSDK_FAMILY(SetRecipientInfoFamily, 9, "setRecipientInfo", "Gifting plugin not subscribed or not a valid request",
              DvWebViewSetRecipientInfoCallsBacks, handleSetRecipientInfoRequest, WebSDKSetRecipientInfoAction,
              WebSDKSetRecipientInfoRequestPayload)

}  // namespace websdk
