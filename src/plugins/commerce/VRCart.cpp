#include "websdk/plugins/commerce/VRCart.hpp"

namespace websdk {

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

}  // namespace websdk
