#include "websdk/plugins/commerce/Cart.hpp"

namespace websdk {

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

}  // namespace websdk
