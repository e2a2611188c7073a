#include "websdk/plugins/commerce/PXCart.hpp"

namespace websdk {

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

}  // namespace websdk
