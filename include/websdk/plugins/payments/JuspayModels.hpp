#pragma once
/// @file
/// What a checkout page asks of the host's Juspay SDK: initialisation, net
/// banking, new and saved cards, the CRED wallet, UPI intent apps and the in-app
/// UPI flows. Amounts and card data stay the strings the page sent.

#include "websdk/Export.hpp"
#include "websdk/json/Model.hpp"
#include "websdk/plugins/generic/Tenant.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace websdk {

/// Which Juspay environment the SDK starts in.
enum class JuspayInitEnviromentType { sandbox, prod };
constexpr auto rawValues(JuspayInitEnviromentType) {
  using enum JuspayInitEnviromentType;
  return rawValueTable<JuspayInitEnviromentType>({{sandbox, "sandbox"}, {prod, "prod"}});
}

/// "JUSPAY_INIT". Fails without a string "merchantId". Only "prod" exactly
/// selects production; anything else is the sandbox. `authToken` comes from
/// "clientAuthToken" but encodes as "authToken".
struct WEBSDK_EXPORT WebSDKJuspayInitRequestModel {
  /// The fields, read from the JSON keys of their names (`authToken` from "clientAuthToken"). `merchantId` is required.
  /// `authToken` and `extendedCustomerId` are the user's own, masked in recordings.
  ///@{
  JuspayInitEnviromentType environment = JuspayInitEnviromentType::sandbox;
  std::string merchantId;
  std::string authToken;
  std::string extendedCustomerId;
  ///@}

  WEBSDK_MODEL(WebSDKJuspayInitRequestModel, anyPayload, (environment, strictString),
               (merchantId, strictString, required), (authToken, lenientString, "clientAuthToken", sensitive),
               (extendedCustomerId, strictString, sensitive))
};

/// "PAY_USING_JUSPAY_NB", read from "juspayParams". Fails without that object
/// or without a string "orderId"; the other strings default to "".
struct WEBSDK_EXPORT WebSDKJuspayNBRequestModel {
  /// The fields, read from the keys of their names in the object under "juspayParams". `orderId` is required.
  /// `juspayClientAuthToken` is the user's own, masked in recordings.
  ///@{
  std::string orderId;
  std::string returnUrl;
  std::string bankCode;
  std::string juspayClientAuthToken;
  ///@}

  WEBSDK_MODEL(WebSDKJuspayNBRequestModel, inside("juspayParams"), (orderId, strictString, required),
               (returnUrl, strictString), (bankCode, strictString), (juspayClientAuthToken, strictString, sensitive))
};

/// "PAY_USING_JUSPAY_NEW_CARD", read from "juspayParams". Fails without that
/// object or without a string "orderId". `saveToLocker` takes only a JSON bool
/// (a new card is saved only on an explicit yes); `tokenize` is lenient.
/// `supportedGatewayIds` is always set, empty when not sent.
struct WEBSDK_EXPORT WebSDKJuspayNewCardRequestModel {
  /// The fields, read from the keys of their names in the object under "juspayParams". `orderId` is required.
  /// `cardToken`, `cardSecurityCode`, `cardNumber`, `cardExpMonth`, `cardExpYear`, `nameOnCard` and
  /// `juspayClientAuthToken` are the user's own, masked in recordings.
  ///@{
  std::string cardToken;
  std::string returnUrl;
  std::string orderId;
  std::string cardSecurityCode;
  std::string paymentMethodType;
  std::string cardNumber;
  std::string cardExpMonth;
  std::string cardExpYear;
  std::string nameOnCard;
  bool saveToLocker = false;
  std::string juspayClientAuthToken;
  std::string authTypeForCard;
  bool tokenize = false;
  std::string cardBin;
  std::string paymentMethod;
  std::string nickname;
  std::string orderAmount;
  std::optional<std::string> emiBank;
  std::optional<bool> isEmi;
  std::optional<std::vector<std::int64_t>> supportedGatewayIds;
  std::optional<std::string> emiType;
  std::optional<std::int64_t> emiTenure;
  ///@}

  WEBSDK_MODEL(WebSDKJuspayNewCardRequestModel, inside("juspayParams"), (cardToken, strictString, sensitive),
               (returnUrl, strictString), (orderId, strictString, required),
               (cardSecurityCode, strictString, sensitive), (paymentMethodType, strictString),
               (cardNumber, strictString, sensitive), (cardExpMonth, strictString, sensitive),
               (cardExpYear, strictString, sensitive), (nameOnCard, strictString, sensitive),
               (saveToLocker, strictBool), (juspayClientAuthToken, strictString, sensitive),
               (authTypeForCard, strictString), (tokenize, lenientBool), (cardBin, strictString),
               (paymentMethod, strictString), (nickname, strictString), (orderAmount, strictString),
               (emiBank, strictString), (isEmi, strictBool), (supportedGatewayIds, intList, orEmpty),
               (emiType, strictString), (emiTenure, integer))
};

/// A saved card's network-token metadata. Never fails: every field is set,
/// "" for a key that is missing or not a string.
struct WEBSDK_EXPORT JuspayMetaDataModel {
  /// The fields, read from the JSON keys of their names. `temporaryToken` is the user's own, masked in recordings.
  ///@{
  std::optional<std::string> tokenType;
  std::optional<std::string> temporaryToken;
  std::optional<std::string> requesterId;
  std::optional<std::string> provider;
  std::optional<std::string> providerCategory;
  std::optional<std::string> providerReferenceId;
  ///@}

  WEBSDK_MODEL(JuspayMetaDataModel, anyPayload, (tokenType, strictString, orEmpty),
               (temporaryToken, strictString, orEmpty, sensitive), (requesterId, strictString, orEmpty),
               (provider, strictString, orEmpty), (providerCategory, strictString, orEmpty),
               (providerReferenceId, strictString, orEmpty))
};

/// "PAY_USING_SAVED_CARD", read from "juspayParams"; the new-card rules, except
/// that `tokenize` and `saveToLocker` are both lenient here (the card is
/// already stored). `juspayMetaData` is always set.
struct WEBSDK_EXPORT WebSDKJuspaySavedCardRequestModel {
  /// The fields, read from the keys of their names in the object under "juspayParams". `orderId` is required.
  /// `cardToken`, `cardSecurityCode` and `juspayClientAuthToken` are the user's own, masked in recordings.
  ///@{
  std::string cardToken;
  std::string returnUrl;
  std::string orderId;
  std::string cardSecurityCode;
  std::string paymentMethodType;
  std::string juspayClientAuthToken;
  std::string authTypeForCard;
  bool tokenize = false;
  std::string cardBin;
  std::string paymentMethod;
  bool saveToLocker = false;
  std::string orderAmount;
  std::optional<std::string> emiBank;
  std::optional<bool> isEmi;
  std::optional<std::vector<std::int64_t>> supportedGatewayIds;
  std::optional<std::string> emiType;
  std::optional<std::int64_t> emiTenure;
  std::optional<std::string> tokenRequester;
  std::optional<JuspayMetaDataModel> juspayMetaData;
  ///@}

  WEBSDK_MODEL(WebSDKJuspaySavedCardRequestModel, inside("juspayParams"), (cardToken, strictString, sensitive),
               (returnUrl, strictString), (orderId, strictString, required),
               (cardSecurityCode, strictString, sensitive), (paymentMethodType, strictString),
               (juspayClientAuthToken, strictString, sensitive), (authTypeForCard, strictString),
               (tokenize, lenientBool), (cardBin, strictString), (paymentMethod, strictString),
               (saveToLocker, lenientBool), (orderAmount, strictString), (emiBank, strictString), (isEmi, strictBool),
               (supportedGatewayIds, intList, orEmpty), (emiType, strictString), (emiTenure, integer),
               (tokenRequester, strictString), (juspayMetaData, model))
};

/// The CRED wallet's payment parameters; `authToken` from "clientAuthToken".
/// Never fails: every string is lenient, "" when missing.
struct WEBSDK_EXPORT JuspayParams {
  /// The fields, read from the JSON keys of their names (`authToken` from "clientAuthToken"). `authToken` and
  /// `mobileNumber` are the user's own, masked in recordings.
  ///@{
  std::string orderId;
  std::string paymentMethodType;
  std::string returnUrl;
  std::string authToken;
  std::string mobileNumber;
  ///@}

  WEBSDK_MODEL(JuspayParams, anyPayload, (orderId, lenientString), (paymentMethodType, lenientString),
               (returnUrl, lenientString), (authToken, lenientString, "clientAuthToken", sensitive),
               (mobileNumber, lenientString, sensitive))
};

/// "PAY_USING_JUSPAY_WALLET_CRED". Fails unless "juspayParams" is an object.
struct WEBSDK_EXPORT WebSDKPayUsingJuspayWalletCredRequestModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::optional<std::string> callbackUrl;
  JuspayParams juspayParams;
  ///@}

  WEBSDK_MODEL(WebSDKPayUsingJuspayWalletCredRequestModel, within("juspayParams"), (callbackUrl, lenientString),
               (juspayParams, model))
};

/// A UPI intent payment's parameters. Never fails: lenient strings, "" when
/// missing.
struct WEBSDK_EXPORT JuspayUPIParams {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::string orderId;
  std::string orderAmount;
  std::string url;
  std::string methodName;
  ///@}

  WEBSDK_MODEL(JuspayUPIParams, anyPayload, (orderId, lenientString), (orderAmount, lenientString),
               (url, lenientString), (methodName, lenientString))
};

/// "PAY_USING_UPI_INTENT". Fails unless "upiParams" is an object.
struct WEBSDK_EXPORT WebSDKPayUsingUPIIntentRequestModel {
  /// The fields, read from the JSON keys of their names (`juspayUPIParams` from "upiParams").
  ///@{
  std::optional<std::string> callbackUrl;
  JuspayUPIParams juspayUPIParams;
  ///@}

  WEBSDK_MODEL(WebSDKPayUsingUPIIntentRequestModel, within("upiParams"), (callbackUrl, lenientString),
               (juspayUPIParams, model, "upiParams"))
};

/// "IS_UPI_INTENT_METHOD_AVAILABLE". Fails on an absent or empty payload;
/// `methods` is absent unless "methods" is an array.
struct WEBSDK_EXPORT WebSDKIsUPIIntentMethodAvailableRequestModel {
  /// Read from the JSON key of its name.
  std::optional<std::vector<std::string>> methods;

  WEBSDK_MODEL(WebSDKIsUPIIntentMethodAvailableRequestModel, needsEntries, (methods, stringList))
};

/// "IS_JUSPAY_AVAILABLE". Never fails; `forceEnableSDK` is absent unless sent,
/// and read leniently, so "true" and 1 force the SDK on.
struct WEBSDK_EXPORT WebSDKIsJuspayAvailableRequestModel {
  /// Read from the JSON key of its name.
  std::optional<bool> forceEnableSDK;

  WEBSDK_MODEL(WebSDKIsJuspayAvailableRequestModel, anyPayload, (forceEnableSDK, lenientBool))
};

/// The in-app UPI onboarding, cached-data and add-account requests. Fails
/// unless "merchantId", "clientAuthToken" and "extendedCustomerId" are all
/// strings; an unknown or missing "tenant" is `Tenant::meals`.
struct WEBSDK_EXPORT WebSDKJuspayInAppUpiRequestModel {
  /// The fields, read from the JSON keys of their names (`token` from "clientAuthToken"). `merchantId`, `token` and
  /// `extendedCustomerId` are required. `token` and `extendedCustomerId` are the user's own, masked in recordings.
  ///@{
  std::string merchantId;
  std::string token;
  std::string extendedCustomerId;
  Tenant tenant = Tenant::meals;
  ///@}

  WEBSDK_MODEL(WebSDKJuspayInAppUpiRequestModel, anyPayload, (merchantId, strictString, required),
               (token, strictString, "clientAuthToken", required, sensitive),
               (extendedCustomerId, strictString, required, sensitive), (tenant, enumeration))
};

/// "PAY_USING_INAPP_UPI". Fails unless "merchantId", "clientAuthToken",
/// "extendedCustomerId", "orderId", "accountRefId" and "orderAmount" are all
/// strings. Encodes with its field names, not the keys it was read from; the
/// host may replace `credData` before paying.
struct WEBSDK_EXPORT WebSDKJuspayInAppUpiPayRequestModel {
  /// The fields, read from the JSON keys of their names (`token` from "clientAuthToken", `referenceId` from
  /// "accountRefId", `amount` from "orderAmount", `credData` from "credOfferLayerDetails"). `merchantId`, `token`,
  /// `extendedCustomerId`, `orderId`, `referenceId` and `amount` are required. `token` and `extendedCustomerId` are the
  /// user's own, masked in recordings.
  ///@{
  std::string merchantId;
  std::string token;
  std::string extendedCustomerId;
  std::string orderId;
  std::string referenceId;
  std::string amount;
  Tenant tenant = Tenant::meals;
  std::optional<JSON> credData;
  ///@}

  WEBSDK_MODEL(WebSDKJuspayInAppUpiPayRequestModel, anyPayload, (merchantId, strictString, required),
               (token, strictString, "clientAuthToken", required, sensitive),
               (extendedCustomerId, strictString, required, sensitive), (orderId, strictString, required),
               (referenceId, strictString, "accountRefId", required), (amount, strictString, "orderAmount", required),
               (tenant, enumeration), (credData, raw, "credOfferLayerDetails"))
};

}  // namespace websdk
