#pragma once
/// @file
/// The menu list family's row and its plugin protocol,
/// DvWebViewMenuListCallbacks: a host that serves the family implements
/// handleMenuListRequest and includes this header, which brings the family's
/// actions and models and no other family's.

#include "websdk/bridge/Family.hpp"
#include "websdk/plugins/commerce/MenuList.hpp"

namespace websdk {

WEBSDK_FAMILY(MenuListFamily, 11, "menuList", "Menu List plugin not subscribed or not a valid request",
              DvWebViewMenuListCallbacks, handleMenuListRequest, WebSDKMenuListAction, WebSDKMenuListPayload)

}  // namespace websdk
