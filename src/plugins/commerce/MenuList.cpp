#include "websdk/plugins/commerce/MenuList.hpp"

namespace websdk {

std::optional<WebSDKShareCollectionRequestModel> WebSDKShareCollectionRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKShareCollectionRequestModel{Fields(payload).raw("data")};
}

std::optional<WebSDKUpdateMenuListRequestModel> WebSDKUpdateMenuListRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKUpdateMenuListRequestModel{p.strictString("id").value_or(""), p.strictString("storyId").value_or("")};
}

std::optional<WebSDKShowMenuletRequestModel> WebSDKShowMenuletRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKShowMenuletRequestModel{Fields(payload).strictBool("showMenuletFlag")};
}

std::optional<WebSDKMenuListPayload> WebSDKMenuListPayload::validateRequest(const WebSDKMenuListRequestModel& request) {
  using P = WebSDKMenuListPayload;
  using enum WebSDKMenuListPayloadCase;
  const auto& payload = request.payload;
  switch (request.type) {
    case WebSDKMenuListAction::shareCollection: return P::decode<shareCollectionDetails>(payload);
    case WebSDKMenuListAction::updateMenuList: return P::decode<updateMenuList>(payload);
    case WebSDKMenuListAction::showMenulet: return P::decode<showMenulet>(payload);
  }
  return std::nullopt;
}

}  // namespace websdk
