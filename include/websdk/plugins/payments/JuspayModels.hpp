#pragma once
// What a checkout page asks of the host's Juspay SDK: initialisation, net
// banking, new and saved cards, the CRED wallet, UPI intent apps and the in-app
// UPI flows. Amounts and card data stay the strings the page sent.

#include "websdk/Export.hpp"
#include "websdk/json/Readings.hpp"
#include "websdk/json/Record.hpp"
#include "websdk/plugins/generic/Tenant.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace websdk {

enum class JuspayInitEnviromentType { sandbox, prod };
constexpr auto rawValues(JuspayInitEnviromentType) {
  using enum JuspayInitEnviromentType;
  return rawValueTable<JuspayInitEnviromentType>({{sandbox, "sandbox"}, {prod, "prod"}});
}

/// "JUSPAY_INIT". Fails without a string "merchantId". Only "prod" exactly
/// selects production; anything else is the sandbox. `authToken` comes from
/// "clientAuthToken" but encodes as "authToken".
struct WEBSDK_EXPORT WebSDKJuspayInitRequestModel {
  JuspayInitEnviromentType environment = JuspayInitEnviromentType::sandbox;
  std::string merchantId;
  std::string authToken;
  std::string extendedCustomerId;

  static std::optional<WebSDKJuspayInitRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKJuspayInitRequestModel, environment, merchantId, authToken, extendedCustomerId)
};

/// "PAY_USING_JUSPAY_NB", read from "juspayParams". Fails without that object
/// or without a string "orderId"; the other strings default to "".
struct WEBSDK_EXPORT WebSDKJuspayNBRequestModel {
  std::string orderId;
  std::string returnUrl;
  std::string bankCode;
  std::string juspayClientAuthToken;

  static std::optional<WebSDKJuspayNBRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKJuspayNBRequestModel, orderId, returnUrl, bankCode, juspayClientAuthToken)
};

/// "PAY_USING_JUSPAY_NEW_CARD", read from "juspayParams". Fails without that
/// object or without a string "orderId". `saveToLocker` takes only a JSON bool
/// (a new card is saved only on an explicit yes); `tokenize` is lenient.
/// `supportedGatewayIds` is always set, empty when not sent.
struct WEBSDK_EXPORT WebSDKJuspayNewCardRequestModel {
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

  static std::optional<WebSDKJuspayNewCardRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKJuspayNewCardRequestModel, cardToken, returnUrl, orderId, cardSecurityCode, paymentMethodType,
                cardNumber, cardExpMonth, cardExpYear, nameOnCard, saveToLocker, juspayClientAuthToken, authTypeForCard,
                tokenize, cardBin, paymentMethod, nickname, orderAmount, emiBank, isEmi, supportedGatewayIds, emiType,
                emiTenure)
};

/// A saved card's network-token metadata. Never fails: every field is set,
/// "" for a key that is missing or not a string.
struct WEBSDK_EXPORT JuspayMetaDataModel {
  std::optional<std::string> tokenType;
  std::optional<std::string> temporaryToken;
  std::optional<std::string> requesterId;
  std::optional<std::string> provider;
  std::optional<std::string> providerCategory;
  std::optional<std::string> providerReferenceId;

  static JuspayMetaDataModel from(Fields metaData);
  WEBSDK_RECORD(JuspayMetaDataModel, tokenType, temporaryToken, requesterId, provider, providerCategory,
                providerReferenceId)
};

/// "PAY_USING_SAVED_CARD", read from "juspayParams"; the new-card rules, except
/// that `tokenize` and `saveToLocker` are both lenient here (the card is
/// already stored). `juspayMetaData` is always set.
struct WEBSDK_EXPORT WebSDKJuspaySavedCardRequestModel {
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

  static std::optional<WebSDKJuspaySavedCardRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKJuspaySavedCardRequestModel, cardToken, returnUrl, orderId, cardSecurityCode, paymentMethodType,
                juspayClientAuthToken, authTypeForCard, tokenize, cardBin, paymentMethod, saveToLocker, orderAmount,
                emiBank, isEmi, supportedGatewayIds, emiType, emiTenure, tokenRequester, juspayMetaData)
};

/// The CRED wallet's payment parameters; `authToken` from "clientAuthToken".
/// Never fails: every string is lenient, "" when missing.
struct WEBSDK_EXPORT JuspayParams {
  std::string orderId;
  std::string paymentMethodType;
  std::string returnUrl;
  std::string authToken;
  std::string mobileNumber;

  static JuspayParams from(Fields params);
  WEBSDK_RECORD(JuspayParams, orderId, paymentMethodType, returnUrl, authToken, mobileNumber)
};

/// "PAY_USING_JUSPAY_WALLET_CRED". Fails unless "juspayParams" is an object.
struct WEBSDK_EXPORT WebSDKPayUsingJuspayWalletCredRequestModel {
  std::optional<std::string> callbackUrl;
  JuspayParams juspayParams;

  static std::optional<WebSDKPayUsingJuspayWalletCredRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKPayUsingJuspayWalletCredRequestModel, callbackUrl, juspayParams)
};

/// A UPI intent payment's parameters. Never fails: lenient strings, "" when
/// missing.
struct WEBSDK_EXPORT JuspayUPIParams {
  std::string orderId;
  std::string orderAmount;
  std::string url;
  std::string methodName;

  static JuspayUPIParams from(Fields params);
  WEBSDK_RECORD(JuspayUPIParams, orderId, orderAmount, url, methodName)
};

/// "PAY_USING_UPI_INTENT". Fails unless "upiParams" is an object.
struct WEBSDK_EXPORT WebSDKPayUsingUPIIntentRequestModel {
  std::optional<std::string> callbackUrl;
  JuspayUPIParams juspayUPIParams;

  static std::optional<WebSDKPayUsingUPIIntentRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKPayUsingUPIIntentRequestModel, callbackUrl, juspayUPIParams)
};

/// "IS_UPI_INTENT_METHOD_AVAILABLE". Fails on an absent or empty payload;
/// `methods` is absent unless "methods" is an array.
struct WEBSDK_EXPORT WebSDKIsUPIIntentMethodAvailableRequestModel {
  std::optional<std::vector<std::string>> methods;

  static std::optional<WebSDKIsUPIIntentMethodAvailableRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKIsUPIIntentMethodAvailableRequestModel, methods)
};

/// "IS_JUSPAY_AVAILABLE"; built by the payments decoding itself, never fails.
struct WEBSDK_EXPORT WebSDKIsJuspayAvailableRequestModel {
  std::optional<bool> forceEnableSDK;

  WEBSDK_RECORD(WebSDKIsJuspayAvailableRequestModel, forceEnableSDK)
};

/// The in-app UPI onboarding, cached-data and add-account requests. Fails
/// unless "merchantId", "clientAuthToken" and "extendedCustomerId" are all
/// strings; an unknown or missing "tenant" is `Tenant::meals`.
struct WEBSDK_EXPORT WebSDKJuspayInAppUpiRequestModel {
  std::string merchantId;
  std::string token;
  std::string extendedCustomerId;
  Tenant tenant = Tenant::meals;

  static std::optional<WebSDKJuspayInAppUpiRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKJuspayInAppUpiRequestModel, merchantId, token, extendedCustomerId, tenant)
};

/// "PAY_USING_INAPP_UPI". Fails unless "merchantId", "clientAuthToken",
/// "extendedCustomerId", "orderId", "accountRefId" and "orderAmount" are all
/// strings. Encodes with its field names, not the keys it was read from; the
/// host may replace `credData` before paying.
struct WEBSDK_EXPORT WebSDKJuspayInAppUpiPayRequestModel {
  std::string merchantId;
  std::string token;
  std::string extendedCustomerId;
  std::string orderId;
  std::string referenceId;
  std::string amount;
  Tenant tenant = Tenant::meals;
  std::optional<JSON> credData;

  static std::optional<WebSDKJuspayInAppUpiPayRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKJuspayInAppUpiPayRequestModel, merchantId, token, extendedCustomerId, orderId, referenceId,
                amount, tenant, credData)
};

}  // namespace websdk
