#pragma once
/// @file
/// Order and transaction events the checkout page reports, and the host's
/// answers about the checkout and about Juspay and UPI.

#include "websdk/Export.hpp"
#include "websdk/json/Model.hpp"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace websdk {

// ---- Requests ----------------------------------------------------------------

/// "POST_ORDER_EVENT". Fails unless "orderData" is an object.
struct WEBSDK_EXPORT WebSDKPostOrderRequestModel {
  /// The fields, read from the JSON keys of their names. `orderData` is required.
  ///@{
  JSONObject orderData;
  std::optional<std::string> businessLine;
  std::optional<bool> showTrack;
  ///@}

  WEBSDK_MODEL(WebSDKPostOrderRequestModel, anyPayload, (orderData, object, required), (businessLine, lenientString),
               (showTrack, lenientBool))
};

/// "STORE_ORDER_INFO_EVENT": the order event plus where the order can be read.
struct WEBSDK_EXPORT WebSDKStoreOrderInfoRequestModel {
  /// The fields, read from the JSON keys of their names. `orderData` is required.
  ///@{
  JSONObject orderData;
  std::optional<std::string> businessLine;
  std::optional<bool> showTrack;
  std::optional<std::string> orderInfoUrl;
  ///@}

  WEBSDK_MODEL(WebSDKStoreOrderInfoRequestModel, anyPayload, (orderData, object, required),
               (businessLine, lenientString), (showTrack, lenientBool), (orderInfoUrl, lenientString))
};

/// The payment method that failed, as the checkout page lists it.
struct WEBSDK_EXPORT PaymentMethodData {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::string name;
  std::string displayName;
  std::string paymentCode;
  bool enabled = false;
  std::string groupName;
  bool couponApplicable = false;
  std::optional<bool> preferred;
  bool splitPayEnabled = false;
  std::optional<std::int64_t> preferredPriority;
  ///@}

  /// Fails only when there is no object.
  WEBSDK_MODEL(PaymentMethodData, needsPayload, (name, lenientString), (displayName, lenientString),
               (paymentCode, lenientString), (enabled, lenientBool), (groupName, lenientString),
               (couponApplicable, lenientBool), (preferred, lenientBool), (splitPayEnabled, lenientBool),
               (preferredPriority, lenientInt))
};

/// "ORDER_FAILED_EVENT". Fails unless "paymentMethodData" is an object.
struct WEBSDK_EXPORT WebSDKOrderFailedRequestModel {
  /// The fields, read from the JSON keys of their names. `paymentMethodData` is required.
  ///@{
  PaymentMethodData paymentMethodData;
  std::optional<std::string> orderId;
  std::string errorCode;
  std::string errorText;
  std::string totalBill;
  ///@}

  WEBSDK_MODEL(WebSDKOrderFailedRequestModel, anyPayload, (paymentMethodData, model, required), (orderId, strictString),
               (errorCode, lenientString), (errorText, lenientString), (totalBill, lenientString))
};

/// "PAYMENT_IN_PENDING_STATE". Shared with the host by reference. Never
/// fails: missing strings are "", `data` is the "requestObj" object or empty.
struct WEBSDK_EXPORT WebSDKPaymentPendingStateRequestModel {
  /// The fields, read from the JSON keys of their names (`data` from "requestObj").
  ///@{
  std::string paymentMethodName;
  std::string marketplaceBusinessLine;
  std::string marketplaceCategory;
  JSONObject data;
  ///@}

  WEBSDK_MODEL(WebSDKPaymentPendingStateRequestModel, anyPayload, (paymentMethodName, lenientString),
               (marketplaceBusinessLine, lenientString), (marketplaceCategory, lenientString),
               (data, object, "requestObj"))
};

// ---- Responses -----------------------------------------------------------------

/// The restaurant of a checkout: its name and id.
struct WEBSDK_EXPORT WebSDKCheckoutRestaurantDetails {
  /// The fields, written under JSON keys of their names.
  ///@{
  std::string name{};
  std::string id{};
  ///@}

  WEBSDK_RECORD(WebSDKCheckoutRestaurantDetails, name, id)
};

/// Where a checkout delivers: the address, its annotation and the name on it.
struct WEBSDK_EXPORT WebSDKCheckoutDeliveryAddress {
  /// The fields, written under JSON keys of their names.
  ///@{
  std::string address{};
  std::string annotation{};
  std::string name{};
  ///@}

  WEBSDK_RECORD(WebSDKCheckoutDeliveryAddress, address, annotation, name)
};

/// Answers "GET_CHECKOUT_META_INFO". Absent values are left out; the train
/// journey travels under "irctc_data" as flat string pairs.
struct WEBSDK_EXPORT WebSDKCheckoutMetaResponseModel {
  /// The fields, written under JSON keys of their names; an empty optional is left out.
  ///@{
  std::optional<WebSDKCheckoutRestaurantDetails> restaurantDetails{};
  std::optional<std::int64_t> cartItemsCount{};
  std::optional<std::int64_t> slaTime{};
  std::optional<std::string> slaMessage{};
  std::optional<WebSDKCheckoutDeliveryAddress> deliveryAddress{};
  std::optional<std::string> couponCode{};
  std::optional<std::string> discountMessage{};
  std::optional<std::string> orderComments{};
  std::optional<std::map<std::string, std::string>> irctc_data{};
  ///@}

  WEBSDK_RECORD(WebSDKCheckoutMetaResponseModel, restaurantDetails, cartItemsCount, slaTime, slaMessage,
                deliveryAddress, couponCode, discountMessage, orderComments, irctc_data)
};

/// Answers "IS_JUSPAY_AVAILABLE", with each SDK feature's availability.
struct WEBSDK_EXPORT WebSDKJuspayAvailableResponseModel {
  /// The fields, written under JSON keys of their names.
  ///@{
  bool isAvailable = false;
  std::map<std::string, bool> featuresAvailability{};
  ///@}

  WEBSDK_RECORD(WebSDKJuspayAvailableResponseModel, isAvailable, featuresAvailability)
};

/// Answers the Juspay payment actions.
struct WEBSDK_EXPORT WebSDKJuspayGenericResponseModel {
  /// The fields, written under JSON keys of their names.
  ///@{
  std::string status{};
  std::string orderId{};
  ///@}

  WEBSDK_RECORD(WebSDKJuspayGenericResponseModel, status, orderId)
};

/// Answers "PAY_USING_UPI_INTENT".
struct WEBSDK_EXPORT WebSDKPayUsingUPIIntentResponseModel {
  /// The fields, written under JSON keys of their names.
  ///@{
  std::string status{};
  std::string orderId{};
  ///@}

  WEBSDK_RECORD(WebSDKPayUsingUPIIntentResponseModel, status, orderId)
};

/// Answers "IS_UPI_INTENT_METHOD_AVAILABLE" with the UPI apps found.
struct WEBSDK_EXPORT WebSDKIsUPIIntentMethodAvailableResponseModel {
  /// Written under the JSON key of its name.
  std::vector<std::string> methods{};

  WEBSDK_RECORD(WebSDKIsUPIIntentMethodAvailableResponseModel, methods)
};

/// Answers "IS_INAPP_UPI_ENABLED".
struct WEBSDK_EXPORT WebSDKUpiEnabledResponseModel {
  /// Written under the JSON key of its name.
  bool isEnabled = false;

  WEBSDK_RECORD(WebSDKUpiEnabledResponseModel, isEnabled)
};

/// Answers "GET_INAPP_UPI_DATA_FROM_CACHE" with the hash of the user's in-app
/// UPI accounts.
struct WEBSDK_EXPORT WebSDKUpiGstResponseModel {
  /// Written under the JSON key of its name.
  std::string inAppUPIAccountsHash{};

  WEBSDK_RECORD(WebSDKUpiGstResponseModel, inAppUPIAccountsHash)
};

}  // namespace websdk
