#include "websdk/plugins/commerce/GiftingCart.hpp"

namespace websdk {

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
