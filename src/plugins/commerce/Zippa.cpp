#include "websdk/plugins/commerce/Zippa.hpp"

namespace websdk {

std::optional<WebSDKImageUploadRequestModel> WebSDKImageUploadRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKImageUploadRequestModel{p.lenientString("name"), p.lenientString("func_name")};
}

std::optional<WebSDKGoogleImageUploadRequestModel> WebSDKGoogleImageUploadRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKGoogleImageUploadRequestModel{p.lenientString("name"), p.lenientString("func_name")};
}

std::optional<WebSDKProceedOrderRequestModel> WebSDKProceedOrderRequestModel::from(
    const std::optional<JSONObject>& payload) {
  auto orderId = Fields(payload).strictString("orderId");
  if (!orderId) return std::nullopt;
  return WebSDKProceedOrderRequestModel{std::move(*orderId)};
}

std::optional<WebSDKKycInitRequestModel> WebSDKKycInitRequestModel::from(const std::optional<JSONObject>& payload) {
  return WebSDKKycInitRequestModel{Fields(payload).lenientString("docType")};
}

std::optional<WebSDKMakeZippaPaymentRequestModel> WebSDKMakeZippaPaymentRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKMakeZippaPaymentRequestModel{p.lenientString("link"), p.lenientString("serviceLine"),
                                            p.lenientBool("isOrderAnything"), p.object("zippaCallouts")};
}

std::optional<WebSDKZippaRequestPayload> WebSDKZippaRequestPayload::validateRequest(
    const WebSDKZippaRequestModel& request) {
  using P = WebSDKZippaRequestPayload;
  using enum WebSDKZippaRequestPayloadCase;
  const auto& payload = request.payload;
  switch (request.type) {
    case WebSDKZippaAction::imageUpload: return P::decode<imageUpload>(payload);
    case WebSDKZippaAction::googleImageUpload: return P::decode<googleImageUpload>(payload);
    case WebSDKZippaAction::proccedOrder: return P::decode<proccedOrder>(payload);
    case WebSDKZippaAction::kycInit: return P::decode<kycInit>(payload);
    case WebSDKZippaAction::makeZippaPayment: return P::decode<makeZippaPayment>(payload);
  }
  return std::nullopt;
}

}  // namespace websdk
