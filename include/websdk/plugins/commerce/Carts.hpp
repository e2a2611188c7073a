#pragma once
// The four cart families: main cart, PX cart, VR cart and gifting cart.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"

#include <memory>
#include <optional>
#include <string>

namespace websdk {

// ---- Actions ---------------------------------------------------------------

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

enum class WebSDKPXCartAction { getPXCart, updatePXCart, updatePXCartV2, clearPXCart, pxSharedPreference };
constexpr auto rawValues(WebSDKPXCartAction) {
  using enum WebSDKPXCartAction;
  return rawValueTable<WebSDKPXCartAction>({{getPXCart, "PX_GET_LOCAL_CART"},
                                            {updatePXCart, "PX_UPDATE_LOCAL_CART"},
                                            {updatePXCartV2, "PX_UPDATE_LOCAL_CART_ITEMS"},
                                            {clearPXCart, "PX_CLEAR_LOCAL_CART"},
                                            {pxSharedPreference, "UPDATE_PX_SHARED_PREFERENCE"}});
}

enum class WebSDKVRCartAction { getVRCart, updateVRCart, clearVRCart };
constexpr auto rawValues(WebSDKVRCartAction) {
  using enum WebSDKVRCartAction;
  return rawValueTable<WebSDKVRCartAction>({{getVRCart, "VERANDO_GET_LOCAL_CART"},
                                            {updateVRCart, "VERANDO_UPDATE_LOCAL_CART"},
                                            {clearVRCart, "VERANDO_CLEAR_LOCAL_CART"}});
}

enum class WebSDKGiftingCartAction { getGiftingCart, updateGiftingCart, clearGiftingCart };
constexpr auto rawValues(WebSDKGiftingCartAction) {
  using enum WebSDKGiftingCartAction;
  return rawValueTable<WebSDKGiftingCartAction>({{getGiftingCart, "GET_GIFTING_LOCAL_CART"},
                                                 {updateGiftingCart, "UPDATE_GIFTING_LOCAL_CART"},
                                                 {clearGiftingCart, "CLEAR_GIFTING_LOCAL_CART"}});
}

using WebSDKCartRequestModel = WebSDKBridgeRequest<WebSDKCartAction>;
using WebSDKPXCartRequestModel = WebSDKBridgeRequest<WebSDKPXCartAction>;
using WebSDKVRCartRequestModel = WebSDKBridgeRequest<WebSDKVRCartAction>;
using WebSDKGiftingCartRequestModel = WebSDKBridgeRequest<WebSDKGiftingCartAction>;

// ---- Request models --------------------------------------------------------

/// Read from the object under "tenant"; fails without one.
struct WEBSDK_EXPORT WebSDKGetCartRequestModel {
  std::string marketplaceId;
  std::string marketplaceCategory;
  std::string marketplaceBusinessLine;

  static std::optional<WebSDKGetCartRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKGetCartRequestModel, marketplaceId, marketplaceCategory, marketplaceBusinessLine)
};

/// Never fails; with no payload both fields are absent.
struct WEBSDK_EXPORT WebSDKUpdateCartRequestModel {
  std::optional<JSONObject> tenant;
  std::optional<JSONObject> data;

  static std::optional<WebSDKUpdateCartRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKUpdateCartRequestModel, tenant, data)
};

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

/// `data` from {"payload": {"data": {...}}} inside the payload; never fails.
struct WEBSDK_EXPORT WebSDKUpdatePXCartRequestModel {
  std::optional<JSONObject> data;

  static std::optional<WebSDKUpdatePXCartRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKUpdatePXCartRequestModel, data)
};

/// The whole payload dictionary as received; never fails.
struct WEBSDK_EXPORT WebSDKUpdatePXCartV2RequestModel {
  std::optional<JSONObject> data;

  static std::optional<WebSDKUpdatePXCartV2RequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKUpdatePXCartV2RequestModel, data)
};

/// The payload's "data" value as it stands; never fails.
struct WEBSDK_EXPORT WebSDKPXSharedPreferenceRequestModel {
  std::optional<JSON> sharedDict;

  static std::optional<WebSDKPXSharedPreferenceRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKPXSharedPreferenceRequestModel, sharedDict)
};

/// Fails only without a payload dictionary.
struct WEBSDK_EXPORT WebSDKGetVRCartRequestModel {
  std::optional<std::string> flowType;

  static std::optional<WebSDKGetVRCartRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKGetVRCartRequestModel, flowType)
};

/// Fails only without a payload dictionary.
struct WEBSDK_EXPORT WebSDKClearVRCartRequestModel {
  std::optional<std::string> flowType;

  static std::optional<WebSDKClearVRCartRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKClearVRCartRequestModel, flowType)
};

/// Fails only without a payload dictionary.
struct WEBSDK_EXPORT WebSDKUpdateVRCartRequestModel {
  std::optional<JSONArray> items;
  std::optional<JSON> cartMetaData;
  std::optional<JSON> location;
  std::optional<std::string> cartType;
  std::optional<std::string> flowType;
  bool forceRefresh = false;

  static std::optional<WebSDKUpdateVRCartRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKUpdateVRCartRequestModel, items, cartMetaData, location, cartType, flowType, forceRefresh)
};

// ---- Typed payloads --------------------------------------------------------

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

WEBSDK_NAMED_CASES(WebSDKPXCartRequestPayloadCase, updatePXCart, updatePXCartV2, sharedPreference, getPXCart,
                   clearPXCart)
class WEBSDK_EXPORT WebSDKPXCartRequestPayload
    : public TaggedPayload<
          WebSDKPXCartRequestPayload, WebSDKPXCartRequestPayloadCase,
          Carries<WebSDKPXCartRequestPayloadCase::updatePXCart, WebSDKUpdatePXCartRequestModel>,
          Carries<WebSDKPXCartRequestPayloadCase::updatePXCartV2, WebSDKUpdatePXCartV2RequestModel>,
          Carries<WebSDKPXCartRequestPayloadCase::sharedPreference, WebSDKPXSharedPreferenceRequestModel>> {
 public:
  static std::optional<WebSDKPXCartRequestPayload> validateRequest(const WebSDKPXCartRequestModel& request);
};

WEBSDK_NAMED_CASES(WebSDKVRCartRequestPayloadCase, getVRCart, updateVRCart, clearVRCart)
class WEBSDK_EXPORT WebSDKVRCartRequestPayload
    : public TaggedPayload<WebSDKVRCartRequestPayload, WebSDKVRCartRequestPayloadCase,
                           Carries<WebSDKVRCartRequestPayloadCase::getVRCart, WebSDKGetVRCartRequestModel>,
                           Carries<WebSDKVRCartRequestPayloadCase::updateVRCart, WebSDKUpdateVRCartRequestModel>,
                           Carries<WebSDKVRCartRequestPayloadCase::clearVRCart, WebSDKClearVRCartRequestModel>> {
 public:
  static std::optional<WebSDKVRCartRequestPayload> validateRequest(const WebSDKVRCartRequestModel& request);
};

WEBSDK_NAMED_CASES(WebSDKGiftingCartRequestPayloadCase, getGiftingCart, updateGiftingCart, clearGiftingCart)
class WEBSDK_EXPORT WebSDKGiftingCartRequestPayload
    : public TaggedPayload<
          WebSDKGiftingCartRequestPayload, WebSDKGiftingCartRequestPayloadCase,
          Carries<WebSDKGiftingCartRequestPayloadCase::getGiftingCart, WebSDKGetCartRequestModel>,
          Carries<WebSDKGiftingCartRequestPayloadCase::updateGiftingCart, WebSDKUpdateCartRequestModel>> {
 public:
  static std::optional<WebSDKGiftingCartRequestPayload> validateRequest(const WebSDKGiftingCartRequestModel& request);
};

}  // namespace websdk
