#include "websdk/plugins/payments/JuspayModels.hpp"

#include <utility>

namespace websdk {
namespace {

// Gateway ids arrive as numbers or numeric text; a missing or malformed list
// is an empty one, so the host never has to tell "none sent" from "none".
std::vector<std::int64_t> gatewayIds(const Fields& params) {
  std::vector<std::int64_t> ids;
  if (const auto list = params.array("supportedGatewayIds"))
    for (const auto& id : *list) ids.push_back(lenientInt(&id));
  return ids;
}

std::string stringOrEmpty(const Fields& f, std::string_view key) { return f.strictString(key).value_or(""); }

Tenant tenantOrMeals(const Fields& p) { return p.enumeration<Tenant>("tenant").value_or(Tenant::meals); }

std::optional<std::string> callbackUrlOf(const Fields& p) {
  if (!p.has("callbackUrl")) return std::nullopt;
  return p.lenientString("callbackUrl");
}

}  // namespace

std::optional<WebSDKJuspayInitRequestModel> WebSDKJuspayInitRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  auto merchantId = p.strictString("merchantId");
  if (!merchantId) return std::nullopt;
  const auto environment =
      p.strictString("environment") == "prod" ? JuspayInitEnviromentType::prod : JuspayInitEnviromentType::sandbox;
  return WebSDKJuspayInitRequestModel{environment, std::move(*merchantId), p.lenientString("clientAuthToken"),
                                      stringOrEmpty(p, "extendedCustomerId")};
}

std::optional<WebSDKJuspayNBRequestModel> WebSDKJuspayNBRequestModel::from(const std::optional<JSONObject>& payload) {
  const Fields params = Fields(payload).nested("juspayParams");
  auto orderId = params.strictString("orderId");
  if (!orderId) return std::nullopt;
  return WebSDKJuspayNBRequestModel{std::move(*orderId), stringOrEmpty(params, "returnUrl"),
                                    stringOrEmpty(params, "bankCode"), stringOrEmpty(params, "juspayClientAuthToken")};
}

std::optional<WebSDKJuspayNewCardRequestModel> WebSDKJuspayNewCardRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields j = Fields(payload).nested("juspayParams");
  auto orderId = j.strictString("orderId");
  if (!orderId) return std::nullopt;
  return WebSDKJuspayNewCardRequestModel{
      .cardToken = stringOrEmpty(j, "cardToken"),
      .returnUrl = stringOrEmpty(j, "returnUrl"),
      .orderId = std::move(*orderId),
      .cardSecurityCode = stringOrEmpty(j, "cardSecurityCode"),
      .paymentMethodType = stringOrEmpty(j, "paymentMethodType"),
      .cardNumber = stringOrEmpty(j, "cardNumber"),
      .cardExpMonth = stringOrEmpty(j, "cardExpMonth"),
      .cardExpYear = stringOrEmpty(j, "cardExpYear"),
      .nameOnCard = stringOrEmpty(j, "nameOnCard"),
      .saveToLocker = j.strictBool("saveToLocker").value_or(false),
      .juspayClientAuthToken = stringOrEmpty(j, "juspayClientAuthToken"),
      .authTypeForCard = stringOrEmpty(j, "authTypeForCard"),
      .tokenize = j.lenientBool("tokenize"),
      .cardBin = stringOrEmpty(j, "cardBin"),
      .paymentMethod = stringOrEmpty(j, "paymentMethod"),
      .nickname = stringOrEmpty(j, "nickname"),
      .orderAmount = stringOrEmpty(j, "orderAmount"),
      .emiBank = j.strictString("emiBank"),
      .isEmi = j.strictBool("isEmi"),
      .supportedGatewayIds = gatewayIds(j),
      .emiType = j.strictString("emiType"),
      .emiTenure = j.integer("emiTenure"),
  };
}

JuspayMetaDataModel JuspayMetaDataModel::from(Fields m) {
  return JuspayMetaDataModel{stringOrEmpty(m, "tokenType"),        stringOrEmpty(m, "temporaryToken"),
                             stringOrEmpty(m, "requesterId"),      stringOrEmpty(m, "provider"),
                             stringOrEmpty(m, "providerCategory"), stringOrEmpty(m, "providerReferenceId")};
}

std::optional<WebSDKJuspaySavedCardRequestModel> WebSDKJuspaySavedCardRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields j = Fields(payload).nested("juspayParams");
  auto orderId = j.strictString("orderId");
  if (!orderId) return std::nullopt;
  return WebSDKJuspaySavedCardRequestModel{
      .cardToken = stringOrEmpty(j, "cardToken"),
      .returnUrl = stringOrEmpty(j, "returnUrl"),
      .orderId = std::move(*orderId),
      .cardSecurityCode = stringOrEmpty(j, "cardSecurityCode"),
      .paymentMethodType = stringOrEmpty(j, "paymentMethodType"),
      .juspayClientAuthToken = stringOrEmpty(j, "juspayClientAuthToken"),
      .authTypeForCard = stringOrEmpty(j, "authTypeForCard"),
      .tokenize = j.lenientBool("tokenize"),
      .cardBin = stringOrEmpty(j, "cardBin"),
      .paymentMethod = stringOrEmpty(j, "paymentMethod"),
      .saveToLocker = j.lenientBool("saveToLocker"),
      .orderAmount = stringOrEmpty(j, "orderAmount"),
      .emiBank = j.strictString("emiBank"),
      .isEmi = j.strictBool("isEmi"),
      .supportedGatewayIds = gatewayIds(j),
      .emiType = j.strictString("emiType"),
      .emiTenure = j.integer("emiTenure"),
      .tokenRequester = j.strictString("tokenRequester"),
      .juspayMetaData = JuspayMetaDataModel::from(j.nested("juspayMetaData")),
  };
}

JuspayParams JuspayParams::from(Fields p) {
  return JuspayParams{p.lenientString("orderId"), p.lenientString("paymentMethodType"), p.lenientString("returnUrl"),
                      p.lenientString("clientAuthToken"), p.lenientString("mobileNumber")};
}

std::optional<WebSDKPayUsingJuspayWalletCredRequestModel> WebSDKPayUsingJuspayWalletCredRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  const Fields params = p.nested("juspayParams");
  if (params.absent()) return std::nullopt;
  return WebSDKPayUsingJuspayWalletCredRequestModel{callbackUrlOf(p), JuspayParams::from(params)};
}

JuspayUPIParams JuspayUPIParams::from(Fields p) {
  return JuspayUPIParams{p.lenientString("orderId"), p.lenientString("orderAmount"), p.lenientString("url"),
                         p.lenientString("methodName")};
}

std::optional<WebSDKPayUsingUPIIntentRequestModel> WebSDKPayUsingUPIIntentRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  const Fields params = p.nested("upiParams");
  if (params.absent()) return std::nullopt;
  return WebSDKPayUsingUPIIntentRequestModel{callbackUrlOf(p), JuspayUPIParams::from(params)};
}

std::optional<WebSDKIsUPIIntentMethodAvailableRequestModel> WebSDKIsUPIIntentMethodAvailableRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  if (p.empty()) return std::nullopt;
  std::optional<std::vector<std::string>> methods;
  if (const auto list = p.array("methods")) {
    methods.emplace();
    for (const auto& m : *list) methods->push_back(lenientString(&m));
  }
  return WebSDKIsUPIIntentMethodAvailableRequestModel{std::move(methods)};
}

std::optional<WebSDKJuspayInAppUpiRequestModel> WebSDKJuspayInAppUpiRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  auto merchantId = p.strictString("merchantId");
  auto token = p.strictString("clientAuthToken");
  auto extendedCustomerId = p.strictString("extendedCustomerId");
  if (!merchantId || !token || !extendedCustomerId) return std::nullopt;
  return WebSDKJuspayInAppUpiRequestModel{std::move(*merchantId), std::move(*token), std::move(*extendedCustomerId),
                                          tenantOrMeals(p)};
}

std::optional<WebSDKJuspayInAppUpiPayRequestModel> WebSDKJuspayInAppUpiPayRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  auto merchantId = p.strictString("merchantId");
  auto token = p.strictString("clientAuthToken");
  auto extendedCustomerId = p.strictString("extendedCustomerId");
  auto orderId = p.strictString("orderId");
  auto referenceId = p.strictString("accountRefId");
  auto amount = p.strictString("orderAmount");
  if (!merchantId || !token || !extendedCustomerId || !orderId || !referenceId || !amount) return std::nullopt;
  return WebSDKJuspayInAppUpiPayRequestModel{std::move(*merchantId),
                                             std::move(*token),
                                             std::move(*extendedCustomerId),
                                             std::move(*orderId),
                                             std::move(*referenceId),
                                             std::move(*amount),
                                             tenantOrMeals(p),
                                             p.raw("credOfferLayerDetails")};
}

}  // namespace websdk
