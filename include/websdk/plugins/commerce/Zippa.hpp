#pragma once
/// @file
/// The Zippa family: image uploads, order proceeding, identity-document checks
/// and payment.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/ActionTable.hpp"
#include "websdk/json/Model.hpp"

#include <optional>
#include <string>

namespace websdk {

/// Never fails. `funcName` comes from "func_name".
struct WEBSDK_EXPORT WebSDKImageUploadRequestModel {
  /// The fields, read from the JSON keys of their names (`funcName` from "func_name").
  ///@{
  std::string name;
  std::string funcName;
  ///@}

  WEBSDK_MODEL(WebSDKImageUploadRequestModel, anyPayload, (name, lenientString), (funcName, lenientString, "func_name"))
};

/// Same fields and rules as WebSDKImageUploadRequestModel.
struct WEBSDK_EXPORT WebSDKGoogleImageUploadRequestModel {
  /// The fields, read from the JSON keys of their names (`funcName` from "func_name").
  ///@{
  std::string name;
  std::string funcName;
  ///@}

  WEBSDK_MODEL(WebSDKGoogleImageUploadRequestModel, anyPayload, (name, lenientString),
               (funcName, lenientString, "func_name"))
};

/// Fails without a string "orderId".
struct WEBSDK_EXPORT WebSDKProceedOrderRequestModel {
  /// Read from the JSON key of its name; required.
  std::string orderId;

  WEBSDK_MODEL(WebSDKProceedOrderRequestModel, anyPayload, (orderId, strictString, required))
};

/// Never fails, also without a payload.
struct WEBSDK_EXPORT WebSDKKycInitRequestModel {
  /// Read from the JSON key of its name.
  std::string docType;

  WEBSDK_MODEL(WebSDKKycInitRequestModel, anyPayload, (docType, lenientString))
};

/// Never fails. `zippaCallouts` keeps each entry as the page sent it, and is
/// absent unless "zippaCallouts" is an object.
struct WEBSDK_EXPORT WebSDKMakeZippaPaymentRequestModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::string link;
  std::string serviceLine;
  bool isOrderAnything = false;
  std::optional<JSONObject> zippaCallouts;
  ///@}

  WEBSDK_MODEL(WebSDKMakeZippaPaymentRequestModel, anyPayload, (link, lenientString), (serviceLine, lenientString),
               (isOrderAnything, lenientBool), (zippaCallouts, object))
};

WEBSDK_ACTIONS(WebSDKZippaAction, WebSDKZippaRequestPayload,
               (imageUpload, "IMAGE_UPLOAD", imageUpload, WebSDKImageUploadRequestModel),
               (googleImageUpload, "GOOGLE_IMAGE_UPLOAD", googleImageUpload, WebSDKGoogleImageUploadRequestModel),
               (proccedOrder, "PROCEED_ORDER", proccedOrder, WebSDKProceedOrderRequestModel),
               (kycInit, "KYC_INIT", kycInit, WebSDKKycInitRequestModel),
               (makeZippaPayment, "MAKE_ZIPPA_PAYMENT", makeZippaPayment, WebSDKMakeZippaPaymentRequestModel))

/// A request of the Zippa family: its action, the page's request id and the raw payload.
using WebSDKZippaRequestModel = WebSDKBridgeRequest<WebSDKZippaAction>;

}  // namespace websdk
