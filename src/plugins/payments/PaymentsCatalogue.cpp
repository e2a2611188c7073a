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
    case A::payUsingJuspayNB: return P::whenDecoded<payUsingJuspayNB>(WebSDKJuspayNBRequestModel::from(payload));
    case A::payUsingNewCard: return P::whenDecoded<payUsingNewCard>(WebSDKJuspayNewCardRequestModel::from(payload));
    case A::payUsingSavedCard:
      return P::whenDecoded<payUsingSavedCard>(WebSDKJuspaySavedCardRequestModel::from(payload));
    case A::juspayInit: return P::whenDecoded<juspayInit>(WebSDKJuspayInitRequestModel::from(payload));
    case A::getCheckoutMetaInfo: return P::make<getCheckoutMetaInfo>();
    case A::switchToNativePayment: return P::make<switchToNativePayments>();
    case A::postOrderEvent: return P::whenDecoded<postOrderEvent>(WebSDKPostOrderRequestModel::from(payload));
    case A::sendLinkAccountStatus:
      return P::whenDecoded<sendLinkAccountStatus>(WebSDKSendLinkStatusRequestModel::from(payload));
    case A::getLinkWalletData: return P::whenDecoded<getLinkWalletData>(linkWalletData(p));
    case A::getLinkedWalletDetails: return P::whenDecoded<getLinkedWalletDetails>(linkWalletData(p));
    case A::walletAddMoneySuccess: return P::whenDecoded<walletAddMoneySuccess>(linkWalletData(p));
    case A::walletDelinked: return P::whenDecoded<walletDelinked>(WebSDKWalletDelinkedRequestModel::from(payload));
    case A::delinkAmazonPay: return P::make<delinkAmazonPay>();
    case A::payUsingAmazonPay:
      return P::whenDecoded<payUsingAmazonPay>(WebSDKPayUsingAmazonPayRequestModel::from(payload));
    case A::paymentPendingState: return P::whenDecoded<paymentPendingState>(pendingState(payload));
    case A::orderFailedEvent: return P::whenDecoded<orderFailedEvent>(WebSDKOrderFailedRequestModel::from(payload));
    case A::getCredEligibilityFromAppCache: return P::make<getCredEligibilityFromAppCache>();
    case A::getCredEligibility:
      return P::whenDecoded<getCredEligibility>(WebSDKGetCredEligibilityRequestModel::from(payload));
    case A::payUsingJuspayWalletCred:
      return P::whenDecoded<payUsingJuspayWalletCred>(WebSDKPayUsingJuspayWalletCredRequestModel::from(payload));
    case A::isUPIIntentMethodAvailable:
      return P::whenDecoded<isUPIIntentMethodAvailable>(WebSDKIsUPIIntentMethodAvailableRequestModel::from(payload));
    case A::payUsingUPIIntent:
      return P::whenDecoded<payUsingUPIIntent>(WebSDKPayUsingUPIIntentRequestModel::from(payload));
    case A::orderConfirmEvent: return P::make<confirmOrderEvent>();
    case A::getOneClickCardEligibility:
      return P::whenDecoded<getOneClickCardEligibility>(WebSDKGetOneClickCardEligibilityRequestModel::from(payload));
    case A::oneClickDeEnroll:
      return P::whenDecoded<oneClickDeEnroll>(WebSDKOneClickManageCardRequestModel::from(payload));
    case A::oneClickDeleteCard:
      return P::whenDecoded<oneClickDeleteCard>(WebSDKOneClickManageCardRequestModel::from(payload));
    case A::transactionConfirmed: return P::make<transactionConfirmed>();
    case A::transactionFailed: return P::make<transactionFailed>();
    case A::storeOrderInfoEvent:
      return P::whenDecoded<storeOrderInfoEvent>(WebSDKStoreOrderInfoRequestModel::from(payload));
    case A::upiOnboarding: return P::whenDecoded<upiOnboarding>(WebSDKJuspayInAppUpiRequestModel::from(payload));
    case A::upiGSTHash: return P::whenDecoded<upiGSTHash>(WebSDKJuspayInAppUpiRequestModel::from(payload));
    case A::upiGetBankList: return P::whenDecoded<upiGetBankList>(WebSDKJuspayInAppUpiRequestModel::from(payload));
    case A::upiPayment: return P::whenDecoded<upiPayment>(WebSDKJuspayInAppUpiPayRequestModel::from(payload));
    case A::isInappUpiEnabled: return P::make<isInappUpiEnabled>();
  }
  return std::nullopt;
}

}  // namespace websdk
