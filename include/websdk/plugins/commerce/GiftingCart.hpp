#pragma once
// The gifting cart family; it carries the cart's read and update models.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"
#include "websdk/plugins/commerce/CartModels.hpp"

#include <optional>
#include <string>

namespace websdk {

enum class WebSDKGiftingCartAction { getGiftingCart, updateGiftingCart, clearGiftingCart };
constexpr auto rawValues(WebSDKGiftingCartAction) {
  using enum WebSDKGiftingCartAction;
  return rawValueTable<WebSDKGiftingCartAction>({{getGiftingCart, "GET_GIFTING_LOCAL_CART"},
                                                 {updateGiftingCart, "UPDATE_GIFTING_LOCAL_CART"},
                                                 {clearGiftingCart, "CLEAR_GIFTING_LOCAL_CART"}});
}

using WebSDKGiftingCartRequestModel = WebSDKBridgeRequest<WebSDKGiftingCartAction>;

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
