#pragma once
/// @file
/// The cart family: reading, updating, customising and clearing the local cart, and
/// applying coupons.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/ActionTable.hpp"
#include "websdk/json/Model.hpp"
#include "websdk/plugins/commerce/CartModels.hpp"

#include <optional>
#include <string>

namespace websdk {

/// Same fields and rules as WebSDKUpdateCartRequestModel.
struct WEBSDK_EXPORT WebSDKCustomiseCartItemsRequestModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::optional<JSONObject> tenant;
  std::optional<JSONObject> data;
  ///@}

  WEBSDK_MODEL(WebSDKCustomiseCartItemsRequestModel, anyPayload, (tenant, object), (data, object))
};

/// Fails without a payload or without a string "restaurantId".
struct WEBSDK_EXPORT WebSDKApplyCouponRequestModel {
  /// The fields, read from the JSON keys of their names (`cartValue` from "cart_total_shown_to_coupon"). `restaurantId`
  /// is required.
  ///@{
  std::optional<JSONObject> tenant;
  double cartValue = 0;
  std::string restaurantId;
  std::optional<std::string> couponListingVersion;
  ///@}

  WEBSDK_MODEL(WebSDKApplyCouponRequestModel, needsEntries, (tenant, object),
               (cartValue, number, "cart_total_shown_to_coupon"), (restaurantId, strictString, required),
               (couponListingVersion, strictString))
};

WEBSDK_ACTIONS(WebSDKCartAction, WebSDKCartRequestPayload,
               (getCart, "GET_LOCAL_CART", getCart, WebSDKGetCartRequestModel),
               (updateCart, "UPDATE_LOCAL_CART", updateCart, WebSDKUpdateCartRequestModel),
               (customiseCartItem, "CUSTOMISE_CART_ITEM", customiseCartItem, WebSDKCustomiseCartItemsRequestModel),
               (clearCart, "CLEAR_LOCAL_CART", clearCart),
               (applyCoupon, "APPLY_COUPON", applyCoupon, WebSDKApplyCouponRequestModel),
               (switchToNativeCart, "SWITCH_TO_NATIVE_CART", switchToNativeCart))

/// A request of the cart family: its action, the page's request id and the raw payload.
using WebSDKCartRequestModel = WebSDKBridgeRequest<WebSDKCartAction>;

}  // namespace websdk
