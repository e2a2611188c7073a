#include "websdk/plugins/payments/OrderModels.hpp"

#include <utility>

namespace websdk {
namespace {

// Keys the page may leave out: a present key is read leniently (so a JSON null
// still counts as sent), a missing one stays absent.
std::optional<std::string> lenientStringIfPresent(const Fields& p, std::string_view key) {
  if (!p.has(key)) return std::nullopt;
  return p.lenientString(key);
}
std::optional<bool> lenientBoolIfPresent(const Fields& p, std::string_view key) {
  if (!p.has(key)) return std::nullopt;
  return p.lenientBool(key);
}

}  // namespace

std::optional<WebSDKPostOrderRequestModel> WebSDKPostOrderRequestModel::from(const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  auto orderData = p.object("orderData");
  if (!orderData) return std::nullopt;
  return WebSDKPostOrderRequestModel{std::move(*orderData), lenientStringIfPresent(p, "businessLine"),
                                     lenientBoolIfPresent(p, "showTrack")};
}

std::optional<WebSDKStoreOrderInfoRequestModel> WebSDKStoreOrderInfoRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  auto orderData = p.object("orderData");
  if (!orderData) return std::nullopt;
  return WebSDKStoreOrderInfoRequestModel{std::move(*orderData), lenientStringIfPresent(p, "businessLine"),
                                          lenientBoolIfPresent(p, "showTrack"),
                                          lenientStringIfPresent(p, "orderInfoUrl")};
}

std::optional<PaymentMethodData> PaymentMethodData::from(Fields m) {
  if (m.absent()) return std::nullopt;
  std::optional<std::int64_t> preferredPriority;
  if (m.has("preferredPriority")) preferredPriority = m.lenientInt("preferredPriority");
  return PaymentMethodData{m.lenientString("name"),
                           m.lenientString("displayName"),
                           m.lenientString("paymentCode"),
                           m.lenientBool("enabled"),
                           m.lenientString("groupName"),
                           m.lenientBool("couponApplicable"),
                           lenientBoolIfPresent(m, "preferred"),
                           m.lenientBool("splitPayEnabled"),
                           preferredPriority};
}

std::optional<WebSDKOrderFailedRequestModel> WebSDKOrderFailedRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  auto method = PaymentMethodData::from(p.nested("paymentMethodData"));
  if (!method) return std::nullopt;
  return WebSDKOrderFailedRequestModel{std::move(*method), p.strictString("orderId"), p.lenientString("errorCode"),
                                       p.lenientString("errorText"), p.lenientString("totalBill")};
}

std::optional<WebSDKPaymentPendingStateRequestModel> WebSDKPaymentPendingStateRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKPaymentPendingStateRequestModel{
      p.lenientString("paymentMethodName"), p.lenientString("marketplaceBusinessLine"),
      p.lenientString("marketplaceCategory"), p.object("requestObj").value_or(JSONObject{})};
}

}  // namespace websdk
