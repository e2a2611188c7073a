#pragma once
/// @file
/// The gifting cart family; it carries the cart's read and update models.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/ActionTable.hpp"
#include "websdk/json/Model.hpp"
#include "websdk/plugins/commerce/CartModels.hpp"

#include <optional>
#include <string>

namespace websdk {

WEBSDK_ACTIONS(WebSDKGiftingCartAction, WebSDKGiftingCartRequestPayload,
               (getGiftingCart, "GET_GIFTING_LOCAL_CART", getGiftingCart, WebSDKGetCartRequestModel),
               (updateGiftingCart, "UPDATE_GIFTING_LOCAL_CART", updateGiftingCart, WebSDKUpdateCartRequestModel),
               (clearGiftingCart, "CLEAR_GIFTING_LOCAL_CART", clearGiftingCart))

/// A request of the gifting cart family: its action, the page's request id and the raw payload.
using WebSDKGiftingCartRequestModel = WebSDKBridgeRequest<WebSDKGiftingCartAction>;

}  // namespace websdk
