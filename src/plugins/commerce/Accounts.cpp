#include "websdk/plugins/commerce/Accounts.hpp"

namespace websdk {

std::optional<WebSDKVerifyMobileRequestModel> WebSDKVerifyMobileRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKVerifyMobileRequestModel{Fields(payload).strictString("number").value_or("")};
}

std::optional<WebSDKAccountLogoutRequestModel> WebSDKAccountLogoutRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKAccountLogoutRequestModel{p.strictString("tid").value_or(""), p.strictString("sid").value_or("")};
}

std::optional<WebSDKAccountsRequestPayload> WebSDKAccountsRequestPayload::validateRequest(
    const WebSDKAccountsRequestModel& request) {
  using P = WebSDKAccountsRequestPayload;
  using enum WebSDKAccountsRequestPayloadCase;
  const auto& payload = request.payload;
  switch (request.type) {
    case WebSDKAccountsAction::updateProfileInfo: return P::make<updateProfileInfo>();
    case WebSDKAccountsAction::verifyMobileNo: return P::decode<verifyMobileNo>(payload);
    case WebSDKAccountsAction::logout: return P::decode<logout>(payload);
  }
  return std::nullopt;
}

}  // namespace websdk
