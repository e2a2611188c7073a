#pragma once
// The cart family: reading, updating, customising and clearing the local cart, and
// applying coupons.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"
#include "websdk/plugins/commerce/CartModels.hpp"

#include <optional>
#include <string>

namespace websdk {

enum class WebSDKCartAction { getCart, updateCart, customiseCartItem, clearCart, applyCoupon, switchToNativeCart };
constexpr auto rawValues(WebSDKCartAction) {
  using enum WebSDKCartAction;
  return rawValueTable<WebSDKCartAction>({{getCart, "GET_LOCAL_CART"},
                                          {updateCart, "UPDATE_LOCAL_CART"},
                                          {customiseCartItem, "CUSTOMISE_CART_ITEM"},
                                          {clearCart, "CLEAR_LOCAL_CART"},
                                          {applyCoupon, "APPLY_COUPON"},
                                          {switchToNativeCart, "SWITCH_TO_NATIVE_CART"}});
}

using WebSDKCartRequestModel = WebSDKBridgeRequest<WebSDKCartAction>;

/// Same fields and rules as WebSDKUpdateCartRequestModel.
struct WEBSDK_EXPORT WebSDKCustomiseCartItemsRequestModel {
  std::optional<JSONObject> tenant;
  std::optional<JSONObject> data;

  static std::optional<WebSDKCustomiseCartItemsRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKCustomiseCartItemsRequestModel, tenant, data)
};

/// Fails without a payload or without a string "restaurantId". `cartValue`
/// comes from "cart_total_shown_to_coupon".
struct WEBSDK_EXPORT WebSDKApplyCouponRequestModel {
  std::optional<JSONObject> tenant;
  double cartValue = 0;
  std::string restaurantId;
  std::optional<std::string> couponListingVersion;

  static std::optional<WebSDKApplyCouponRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKApplyCouponRequestModel, tenant, cartValue, restaurantId, couponListingVersion)
};

WEBSDK_NAMED_CASES(WebSDKCartRequestPayloadCase, getCart, updateCart, customiseCartItem, applyCoupon, clearCart,
                   switchToNativeCart)
class WEBSDK_EXPORT WebSDKCartRequestPayload
    : public TaggedPayload<
          WebSDKCartRequestPayload, WebSDKCartRequestPayloadCase,
          Carries<WebSDKCartRequestPayloadCase::getCart, WebSDKGetCartRequestModel>,
          Carries<WebSDKCartRequestPayloadCase::updateCart, WebSDKUpdateCartRequestModel>,
          Carries<WebSDKCartRequestPayloadCase::customiseCartItem, WebSDKCustomiseCartItemsRequestModel>,
          Carries<WebSDKCartRequestPayloadCase::applyCoupon, WebSDKApplyCouponRequestModel>> {
 public:
  static std::optional<WebSDKCartRequestPayload> validateRequest(const WebSDKCartRequestModel& request);
};

}  // namespace websdk
