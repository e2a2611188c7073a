#include "websdk/plugins/payments/WalletModels.hpp"

#include <utility>

namespace websdk {
namespace {

std::optional<std::vector<std::string>> lenientStrings(const Fields& p, std::string_view key) {
  const auto list = p.array(key);
  if (!list) return std::nullopt;
  std::vector<std::string> out;
  out.reserve(list->size());
  for (const auto& v : *list) out.push_back(lenientString(&v));
  return out;
}

}  // namespace

std::optional<WebSDKPayUsingAmazonPayRequestModel> WebSDKPayUsingAmazonPayRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKPayUsingAmazonPayRequestModel{
      p.enumeration<WebSDKAmazonPayRequestState>("state").value_or(WebSDKAmazonPayRequestState::unknown),
      p.object("data").value_or(JSONObject{})};
}

std::optional<WebSDKSendLinkStatusRequestModel> WebSDKSendLinkStatusRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  if (!p.has("paymentCode")) return std::nullopt;
  return WebSDKSendLinkStatusRequestModel{p.lenientString("paymentCode"),
                                          p.strictString("status"),
                                          p.strictString("token"),
                                          p.strictString("linkedMobileNumber"),
                                          p.enumeration<WebSDKLinkRequestSource>("source"),
                                          p.strictString("corporateEmail")};
}

std::optional<WebSDKWalletDelinkedRequestModel> WebSDKWalletDelinkedRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  if (!p.has("walletCode")) return std::nullopt;
  return WebSDKWalletDelinkedRequestModel{p.lenientString("walletCode"), lenientStrings(p, "walletCodes"),
                                          p.strictString("mobileNumber")};
}

std::optional<WebSDKGetCredEligibilityRequestModel> WebSDKGetCredEligibilityRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKGetCredEligibilityRequestModel{p.lenientString("clientAuthToken"), p.lenientString("merchantId"),
                                              p.lenientString("amount"), p.lenientString("mobileNumber")};
}

}  // namespace websdk
