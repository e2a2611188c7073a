#include "websdk/plugins/commerce/SetRecipientInfo.hpp"

namespace websdk {

std::optional<WebSDKRecipientInfoUserDataResponseModel> WebSDKRecipientInfoUserDataResponseModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKRecipientInfoUserDataResponseModel{p.strictString("messageId"), p.strictString("recipientName"),
                                                  p.strictString("createdTs"), p.strictString("expiredTs")};
}

std::optional<WebSDKRecipientInfoUserFlowResponseModel> WebSDKRecipientInfoUserFlowResponseModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKRecipientInfoUserFlowResponseModel{p.strictString("flowType"),
                                                  WebSDKRecipientInfoUserDataResponseModel::from(p.object("flowData"))};
}

std::optional<WebSDKSetRecipientInfoRequestPayload> WebSDKSetRecipientInfoRequestPayload::validateRequest(
    const WebSDKSetRecipientInfoRequestModel& request) {
  using P = WebSDKSetRecipientInfoRequestPayload;
  switch (request.type) {
    case WebSDKSetRecipientInfoAction::SetRecipientInfo:
      return P::decode<WebSDKSetRecipientInfoRequestPayloadCase::SetRecipientInfo>(request.payload);
  }
  return std::nullopt;
}

}  // namespace websdk
