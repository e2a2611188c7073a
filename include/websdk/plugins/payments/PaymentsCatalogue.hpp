#pragma once
// The payments family: the checkout and payment actions a page may send, and
// their decoding into typed payloads for the host's payments plugin.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"
#include "websdk/plugins/payments/CardModels.hpp"
#include "websdk/plugins/payments/JuspayModels.hpp"
#include "websdk/plugins/payments/OrderModels.hpp"
#include "websdk/plugins/payments/WalletModels.hpp"

#include <memory>
#include <optional>

namespace websdk {

// Several case names differ from their strings on purpose, and
// "GET_CRED_ELIGIBILTY" is spelled the way pages send it.
enum class WebSDKPaymentsAction {
  isJuspayAvailable,
  payUsingJuspayNB,
  payUsingNewCard,
  payUsingSavedCard,
  juspayInit,
  getCheckoutMetaInfo,
  switchToNativePayment,
  postOrderEvent,
  sendLinkAccountStatus,
  getLinkWalletData,
  getLinkedWalletDetails,
  walletAddMoneySuccess,
  walletDelinked,
  delinkAmazonPay,
  payUsingAmazonPay,
  paymentPendingState,
  orderFailedEvent,
  getCredEligibilityFromAppCache,
  getCredEligibility,
  payUsingJuspayWalletCred,
  isUPIIntentMethodAvailable,
  payUsingUPIIntent,
  orderConfirmEvent,
  getOneClickCardEligibility,
  oneClickDeEnroll,
  oneClickDeleteCard,
  transactionConfirmed,
  transactionFailed,
  storeOrderInfoEvent,
  upiOnboarding,
  upiGSTHash,
  upiGetBankList,
  upiPayment,
  isInappUpiEnabled,
};
constexpr auto rawValues(WebSDKPaymentsAction) {
  using enum WebSDKPaymentsAction;
  return rawValueTable<WebSDKPaymentsAction>({{isJuspayAvailable, "IS_JUSPAY_AVAILABLE"},
                                              {payUsingJuspayNB, "PAY_USING_JUSPAY_NB"},
                                              {payUsingNewCard, "PAY_USING_JUSPAY_NEW_CARD"},
                                              {payUsingSavedCard, "PAY_USING_SAVED_CARD"},
                                              {juspayInit, "JUSPAY_INIT"},
                                              {getCheckoutMetaInfo, "GET_CHECKOUT_META_INFO"},
                                              {switchToNativePayment, "SWITCH_TO_NATIVE_PAYMENT"},
                                              {postOrderEvent, "POST_ORDER_EVENT"},
                                              {sendLinkAccountStatus, "SEND_LINK_ACCOUNT_STATUS"},
                                              {getLinkWalletData, "GET_WALLET_DATA"},
                                              {getLinkedWalletDetails, "GET_LINKED_WALLET_DETAILS"},
                                              {walletAddMoneySuccess, "WALLET_ADD_MONEY_SUCCESS"},
                                              {walletDelinked, "WALLET_DELINKED"},
                                              {delinkAmazonPay, "DELINK_AMAZON_PAY"},
                                              {payUsingAmazonPay, "PAY_USING_AMAZON_PAY"},
                                              {paymentPendingState, "PAYMENT_IN_PENDING_STATE"},
                                              {orderFailedEvent, "ORDER_FAILED_EVENT"},
                                              {getCredEligibilityFromAppCache, "GET_CRED_ELIGIBILTY_FROM_APP_CACHE"},
                                              {getCredEligibility, "GET_CRED_ELIGIBILTY"},
                                              {payUsingJuspayWalletCred, "PAY_USING_JUSPAY_WALLET_CRED"},
                                              {isUPIIntentMethodAvailable, "IS_UPI_INTENT_METHOD_AVAILABLE"},
                                              {payUsingUPIIntent, "PAY_USING_UPI_INTENT"},
                                              {orderConfirmEvent, "ORDER_CONFIRMED_EVENT"},
                                              {getOneClickCardEligibility, "GET_ONE_CLICK_CARD_ELIGIBILITY"},
                                              {oneClickDeEnroll, "ONE_CLICK_DE_ENROLL"},
                                              {oneClickDeleteCard, "DELETE_CARD"},
                                              {transactionConfirmed, "TRANSACTION_CONFIRMED_EVENT"},
                                              {transactionFailed, "TRANSACTION_FAILED_EVENT"},
                                              {storeOrderInfoEvent, "STORE_ORDER_INFO_EVENT"},
                                              {upiOnboarding, "INITIATE_INAPP_UPI_ONBOARDING"},
                                              {upiGSTHash, "GET_INAPP_UPI_DATA_FROM_CACHE"},
                                              {upiGetBankList, "ADD_NEW_INAPP_UPI"},
                                              {upiPayment, "PAY_USING_INAPP_UPI"},
                                              {isInappUpiEnabled, "IS_INAPP_UPI_ENABLED"}});
}

using WebSDKPaymentsRequestModel = WebSDKBridgeRequest<WebSDKPaymentsAction>;

// The cases that carry a model first, then those that carry nothing.
WEBSDK_NAMED_CASES(WebSDKPaymentsRequestPayloadCase, isJuspayAvailable, payUsingJuspayNB, payUsingNewCard,
                   payUsingSavedCard, juspayInit, postOrderEvent, storeOrderInfoEvent, sendLinkAccountStatus,
                   getLinkWalletData, getLinkedWalletDetails, walletAddMoneySuccess, walletDelinked, payUsingAmazonPay,
                   paymentPendingState, orderFailedEvent, getCredEligibility, payUsingJuspayWalletCred,
                   isUPIIntentMethodAvailable, payUsingUPIIntent, getOneClickCardEligibility, oneClickDeEnroll,
                   oneClickDeleteCard, upiOnboarding, upiGSTHash, upiGetBankList, upiPayment, getCheckoutMetaInfo,
                   switchToNativePayments, delinkAmazonPay, getCredEligibilityFromAppCache, confirmOrderEvent,
                   transactionConfirmed, transactionFailed, isInappUpiEnabled)

class WEBSDK_EXPORT WebSDKPaymentsRequestPayload
    : public TaggedPayload<
          WebSDKPaymentsRequestPayload, WebSDKPaymentsRequestPayloadCase,
          Carries<WebSDKPaymentsRequestPayloadCase::isJuspayAvailable, WebSDKIsJuspayAvailableRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::payUsingJuspayNB, WebSDKJuspayNBRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::payUsingNewCard, WebSDKJuspayNewCardRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::payUsingSavedCard, WebSDKJuspaySavedCardRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::juspayInit, WebSDKJuspayInitRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::postOrderEvent, WebSDKPostOrderRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::storeOrderInfoEvent, WebSDKStoreOrderInfoRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::sendLinkAccountStatus, WebSDKSendLinkStatusRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::getLinkWalletData, WebSDKGetLinkWalletDataRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::getLinkedWalletDetails, WebSDKGetLinkWalletDataRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::walletAddMoneySuccess, WebSDKGetLinkWalletDataRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::walletDelinked, WebSDKWalletDelinkedRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::payUsingAmazonPay, WebSDKPayUsingAmazonPayRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::paymentPendingState,
                  std::shared_ptr<const WebSDKPaymentPendingStateRequestModel>>,
          Carries<WebSDKPaymentsRequestPayloadCase::orderFailedEvent, WebSDKOrderFailedRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::getCredEligibility, WebSDKGetCredEligibilityRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::payUsingJuspayWalletCred,
                  WebSDKPayUsingJuspayWalletCredRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::isUPIIntentMethodAvailable,
                  WebSDKIsUPIIntentMethodAvailableRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::payUsingUPIIntent, WebSDKPayUsingUPIIntentRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::getOneClickCardEligibility,
                  WebSDKGetOneClickCardEligibilityRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::oneClickDeEnroll, WebSDKOneClickManageCardRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::oneClickDeleteCard, WebSDKOneClickManageCardRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::upiOnboarding, WebSDKJuspayInAppUpiRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::upiGSTHash, WebSDKJuspayInAppUpiRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::upiGetBankList, WebSDKJuspayInAppUpiRequestModel>,
          Carries<WebSDKPaymentsRequestPayloadCase::upiPayment, WebSDKJuspayInAppUpiPayRequestModel>> {
 public:
  /// The action's typed payload, or nothing when its payload does not decode.
  static std::optional<WebSDKPaymentsRequestPayload> validateRequest(const WebSDKPaymentsRequestModel& request);
};

}  // namespace websdk
