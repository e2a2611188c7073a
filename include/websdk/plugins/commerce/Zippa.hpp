#pragma once
// The Zippa family: image uploads, order proceeding, identity-document checks
// and payment.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"

#include <optional>
#include <string>

namespace websdk {

enum class WebSDKZippaAction { imageUpload, googleImageUpload, proccedOrder, kycInit, makeZippaPayment };
constexpr auto rawValues(WebSDKZippaAction) {
  using enum WebSDKZippaAction;
  return rawValueTable<WebSDKZippaAction>({{imageUpload, "IMAGE_UPLOAD"},
                                           {googleImageUpload, "GOOGLE_IMAGE_UPLOAD"},
                                           {proccedOrder, "PROCEED_ORDER"},
                                           {kycInit, "KYC_INIT"},
                                           {makeZippaPayment, "MAKE_ZIPPA_PAYMENT"}});
}

using WebSDKZippaRequestModel = WebSDKBridgeRequest<WebSDKZippaAction>;

/// Never fails. `funcName` comes from "func_name".
struct WEBSDK_EXPORT WebSDKImageUploadRequestModel {
  std::string name;
  std::string funcName;

  static std::optional<WebSDKImageUploadRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKImageUploadRequestModel, name, funcName)
};

/// Same fields and rules as WebSDKImageUploadRequestModel.
struct WEBSDK_EXPORT WebSDKGoogleImageUploadRequestModel {
  std::string name;
  std::string funcName;

  static std::optional<WebSDKGoogleImageUploadRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKGoogleImageUploadRequestModel, name, funcName)
};

/// Fails without a string "orderId".
struct WEBSDK_EXPORT WebSDKProceedOrderRequestModel {
  std::string orderId;

  static std::optional<WebSDKProceedOrderRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKProceedOrderRequestModel, orderId)
};

/// Never fails, also without a payload.
struct WEBSDK_EXPORT WebSDKKycInitRequestModel {
  std::string docType;

  static std::optional<WebSDKKycInitRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKKycInitRequestModel, docType)
};

/// Never fails. `zippaCallouts` keeps each entry as the page sent it, and is
/// absent unless "zippaCallouts" is an object.
struct WEBSDK_EXPORT WebSDKMakeZippaPaymentRequestModel {
  std::string link;
  std::string serviceLine;
  bool isOrderAnything = false;
  std::optional<JSONObject> zippaCallouts;

  static std::optional<WebSDKMakeZippaPaymentRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKMakeZippaPaymentRequestModel, link, serviceLine, isOrderAnything, zippaCallouts)
};

WEBSDK_NAMED_CASES(WebSDKZippaRequestPayloadCase, imageUpload, googleImageUpload, proccedOrder, kycInit,
                   makeZippaPayment)
class WEBSDK_EXPORT WebSDKZippaRequestPayload
    : public TaggedPayload<
          WebSDKZippaRequestPayload, WebSDKZippaRequestPayloadCase,
          Carries<WebSDKZippaRequestPayloadCase::imageUpload, WebSDKImageUploadRequestModel>,
          Carries<WebSDKZippaRequestPayloadCase::googleImageUpload, WebSDKGoogleImageUploadRequestModel>,
          Carries<WebSDKZippaRequestPayloadCase::proccedOrder, WebSDKProceedOrderRequestModel>,
          Carries<WebSDKZippaRequestPayloadCase::kycInit, WebSDKKycInitRequestModel>,
          Carries<WebSDKZippaRequestPayloadCase::makeZippaPayment, WebSDKMakeZippaPaymentRequestModel>> {
 public:
  /// Nothing only for "PROCEED_ORDER" without a string "orderId".
  static std::optional<WebSDKZippaRequestPayload> validateRequest(const WebSDKZippaRequestModel& request);
};

}  // namespace websdk
