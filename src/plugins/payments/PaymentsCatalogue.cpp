#include "websdk/plugins/payments/PaymentsCatalogue.hpp"

#include <utility>

namespace websdk {
namespace {

// Absent unless the page sent "forceEnableSDK"; then read leniently, so "true"
// and 1 force the SDK on.
WebSDKIsJuspayAvailableRequestModel juspayAvailability(const Fields& p) {
  if (!p.has("forceEnableSDK")) return {};
  return {p.lenientBool("forceEnableSDK")};
}

// The wallet requests name their wallet "walletCode"; the model calls it the
// payment code.
std::optional<WebSDKGetLinkWalletDataRequestModel> linkWalletData(const Fields& p) {
  if (!p.has("walletCode")) return std::nullopt;
  return WebSDKGetLinkWalletDataRequestModel{p.lenientString("walletCode")};
}

std::optional<std::shared_ptr<const WebSDKPaymentPendingStateRequestModel>> pendingState(
    const std::optional<JSONObject>& payload) {
  auto model = WebSDKPaymentPendingStateRequestModel::from(payload);
  if (!model) return std::nullopt;
  return std::make_shared<const WebSDKPaymentPendingStateRequestModel>(std::move(*model));
}

}  // namespace

std::optional<WebSDKPaymentsRequestPayload> WebSDKPaymentsRequestPayload::validateRequest(
    const WebSDKPaymentsRequestModel& request) {
  using P = WebSDKPaymentsRequestPayload;
  using enum WebSDKPaymentsRequestPayloadCase;
  using A = WebSDKPaymentsAction;
  const auto& payload = request.payload;
  const Fields p(payload);
  switch (request.type) {
    case A::isJuspayAvailable: return P::make<isJuspayAvailable>(juspayAvailability(p));
    case A::payUsingJuspayNB: return P::decode<payUsingJuspayNB>(payload);
    case A::payUsingNewCard: return P::decode<payUsingNewCard>(payload);
    case A::payUsingSavedCard: return P::decode<payUsingSavedCard>(payload);
    case A::juspayInit: return P::decode<juspayInit>(payload);
    case A::getCheckoutMetaInfo: return P::make<getCheckoutMetaInfo>();
    case A::switchToNativePayment: return P::make<switchToNativePayments>();
    case A::postOrderEvent: return P::decode<postOrderEvent>(payload);
    case A::sendLinkAccountStatus: return P::decode<sendLinkAccountStatus>(payload);
    case A::getLinkWalletData: return P::whenDecoded<getLinkWalletData>(linkWalletData(p));
    case A::getLinkedWalletDetails: return P::whenDecoded<getLinkedWalletDetails>(linkWalletData(p));
    case A::walletAddMoneySuccess: return P::whenDecoded<walletAddMoneySuccess>(linkWalletData(p));
    case A::walletDelinked: return P::decode<walletDelinked>(payload);
    case A::delinkAmazonPay: return P::make<delinkAmazonPay>();
    case A::payUsingAmazonPay: return P::decode<payUsingAmazonPay>(payload);
    case A::paymentPendingState: return P::whenDecoded<paymentPendingState>(pendingState(payload));
    case A::orderFailedEvent: return P::decode<orderFailedEvent>(payload);
    case A::getCredEligibilityFromAppCache: return P::make<getCredEligibilityFromAppCache>();
    case A::getCredEligibility: return P::decode<getCredEligibility>(payload);
    case A::payUsingJuspayWalletCred: return P::decode<payUsingJuspayWalletCred>(payload);
    case A::isUPIIntentMethodAvailable: return P::decode<isUPIIntentMethodAvailable>(payload);
    case A::payUsingUPIIntent: return P::decode<payUsingUPIIntent>(payload);
    case A::orderConfirmEvent: return P::make<confirmOrderEvent>();
    case A::getOneClickCardEligibility: return P::decode<getOneClickCardEligibility>(payload);
    case A::oneClickDeEnroll: return P::decode<oneClickDeEnroll>(payload);
    case A::oneClickDeleteCard: return P::decode<oneClickDeleteCard>(payload);
    case A::transactionConfirmed: return P::make<transactionConfirmed>();
    case A::transactionFailed: return P::make<transactionFailed>();
    case A::storeOrderInfoEvent: return P::decode<storeOrderInfoEvent>(payload);
    case A::upiOnboarding: return P::decode<upiOnboarding>(payload);
    case A::upiGSTHash: return P::decode<upiGSTHash>(payload);
    case A::upiGetBankList: return P::decode<upiGetBankList>(payload);
    case A::upiPayment: return P::decode<upiPayment>(payload);
    case A::isInappUpiEnabled: return P::make<isInappUpiEnabled>();
  }
  return std::nullopt;
}

}  // namespace websdk
