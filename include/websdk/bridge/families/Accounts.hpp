#pragma once
/// @file
/// The accounts family's row and its plugin protocol,
/// DvAccountsWebViewCallBacks: a host that serves the family implements
/// handleAccountsRequest and includes this header, which brings the family's
/// actions and models and no other family's.

#include "websdk/bridge/Family.hpp"
#include "websdk/plugins/commerce/Accounts.hpp"

namespace websdk {

WEBSDK_FAMILY(AccountsFamily, 10, "accounts", "Account plugin not subscribed or not a valid request",
              DvAccountsWebViewCallBacks, handleAccountsRequest, WebSDKAccountsAction, WebSDKAccountsRequestPayload)

}  // namespace websdk
