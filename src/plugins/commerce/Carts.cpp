#include "websdk/plugins/commerce/Carts.hpp"

namespace websdk {

std::optional<WebSDKGetCartRequestModel> WebSDKGetCartRequestModel::from(const std::optional<JSONObject>& payload) {
  const Fields tenant = Fields(payload).nested("tenant");
  if (tenant.absent()) return std::nullopt;
  return WebSDKGetCartRequestModel{tenant.lenientString("marketplaceId"), tenant.lenientString("marketplaceCategory"),
                                   tenant.lenientString("marketplaceBusinessLine")};
}

std::optional<WebSDKUpdateCartRequestModel> WebSDKUpdateCartRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKUpdateCartRequestModel{p.object("tenant"), p.object("data")};
}

std::optional<WebSDKCustomiseCartItemsRequestModel> WebSDKCustomiseCartItemsRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKCustomiseCartItemsRequestModel{p.object("tenant"), p.object("data")};
}

std::optional<WebSDKApplyCouponRequestModel> WebSDKApplyCouponRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  if (p.empty()) return std::nullopt;
  auto restaurantId = p.strictString("restaurantId");
  if (!restaurantId) return std::nullopt;
  return WebSDKApplyCouponRequestModel{p.object("tenant"), p.number("cart_total_shown_to_coupon").value_or(0),
                                       std::move(*restaurantId), p.strictString("couponListingVersion")};
}

std::optional<WebSDKUpdatePXCartRequestModel> WebSDKUpdatePXCartRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKUpdatePXCartRequestModel{Fields(payload).nested("payload").object("data")};
}

std::optional<WebSDKUpdatePXCartV2RequestModel> WebSDKUpdatePXCartV2RequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKUpdatePXCartV2RequestModel{payload};
}

std::optional<WebSDKPXSharedPreferenceRequestModel> WebSDKPXSharedPreferenceRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKPXSharedPreferenceRequestModel{Fields(payload).raw("data")};
}

std::optional<WebSDKGetVRCartRequestModel> WebSDKGetVRCartRequestModel::from(const std::optional<JSONObject>& payload) {
  if (!payload) return std::nullopt;
  return WebSDKGetVRCartRequestModel{Fields(payload).strictString("flowType")};
}

std::optional<WebSDKClearVRCartRequestModel> WebSDKClearVRCartRequestModel::from(
    const std::optional<JSONObject>& payload) {
  if (!payload) return std::nullopt;
  return WebSDKClearVRCartRequestModel{Fields(payload).strictString("flowType")};
}

std::optional<WebSDKUpdateVRCartRequestModel> WebSDKUpdateVRCartRequestModel::from(
    const std::optional<JSONObject>& payload) {
  if (!payload) return std::nullopt;
  const Fields p(payload);
  return WebSDKUpdateVRCartRequestModel{p.array("items"),           p.raw("cartMetaData"),
                                        p.raw("location"),          p.strictString("cartType"),
                                        p.strictString("flowType"), p.strictBool("forceRefresh").value_or(false)};
}

std::optional<WebSDKCartRequestPayload> WebSDKCartRequestPayload::validateRequest(
    const WebSDKCartRequestModel& request) {
  using P = WebSDKCartRequestPayload;
  using enum WebSDKCartRequestPayloadCase;
  const auto& payload = request.payload;
  switch (request.type) {
    case WebSDKCartAction::getCart: return P::decode<getCart>(payload);
    case WebSDKCartAction::updateCart: return P::decode<updateCart>(payload);
    case WebSDKCartAction::customiseCartItem: return P::decode<customiseCartItem>(payload);
    case WebSDKCartAction::clearCart: return P::make<clearCart>();
    case WebSDKCartAction::applyCoupon: return P::decode<applyCoupon>(payload);
    case WebSDKCartAction::switchToNativeCart: return P::make<switchToNativeCart>();
  }
  return std::nullopt;
}

std::optional<WebSDKPXCartRequestPayload> WebSDKPXCartRequestPayload::validateRequest(
    const WebSDKPXCartRequestModel& request) {
  using P = WebSDKPXCartRequestPayload;
  using enum WebSDKPXCartRequestPayloadCase;
  const auto& payload = request.payload;
  switch (request.type) {
    case WebSDKPXCartAction::getPXCart: return P::make<getPXCart>();
    case WebSDKPXCartAction::updatePXCart: return P::decode<updatePXCart>(payload);
    case WebSDKPXCartAction::updatePXCartV2: return P::decode<updatePXCartV2>(payload);
    case WebSDKPXCartAction::clearPXCart: return P::make<clearPXCart>();
    case WebSDKPXCartAction::pxSharedPreference: return P::decode<sharedPreference>(payload);
  }
  return std::nullopt;
}

std::optional<WebSDKVRCartRequestPayload> WebSDKVRCartRequestPayload::validateRequest(
    const WebSDKVRCartRequestModel& request) {
  using P = WebSDKVRCartRequestPayload;
  using enum WebSDKVRCartRequestPayloadCase;
  const auto& payload = request.payload;
  switch (request.type) {
    case WebSDKVRCartAction::getVRCart: return P::decode<getVRCart>(payload);
    case WebSDKVRCartAction::updateVRCart: return P::decode<updateVRCart>(payload);
    case WebSDKVRCartAction::clearVRCart: return P::decode<clearVRCart>(payload);
  }
  return std::nullopt;
}

std::optional<WebSDKGiftingCartRequestPayload> WebSDKGiftingCartRequestPayload::validateRequest(
    const WebSDKGiftingCartRequestModel& request) {
  using P = WebSDKGiftingCartRequestPayload;
  using enum WebSDKGiftingCartRequestPayloadCase;
  const auto& payload = request.payload;
  switch (request.type) {
    case WebSDKGiftingCartAction::getGiftingCart: return P::decode<getGiftingCart>(payload);
    case WebSDKGiftingCartAction::updateGiftingCart: return P::decode<updateGiftingCart>(payload);
    case WebSDKGiftingCartAction::clearGiftingCart: return P::make<clearGiftingCart>();
  }
  return std::nullopt;
}

}  // namespace websdk
