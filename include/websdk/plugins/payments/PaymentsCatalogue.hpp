#pragma once
/// @file
/// The payments family: the checkout and payment actions a page may send, and
/// their decoding into typed payloads for the host's payments plugin.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/ActionTable.hpp"
#include "websdk/plugins/payments/CardModels.hpp"
#include "websdk/plugins/payments/JuspayModels.hpp"
#include "websdk/plugins/payments/OrderModels.hpp"
#include "websdk/plugins/payments/WalletModels.hpp"

#include <memory>
#include <optional>

namespace websdk {

// Several case names differ from their actions' on purpose, and
// "GET_CRED_ELIGIBILTY" is spelled the way pages send it.
WEBSDK_ACTIONS(
    WebSDKPaymentsAction, WebSDKPaymentsRequestPayload,
    (isJuspayAvailable, "IS_JUSPAY_AVAILABLE", isJuspayAvailable, WebSDKIsJuspayAvailableRequestModel),
    (payUsingJuspayNB, "PAY_USING_JUSPAY_NB", payUsingJuspayNB, WebSDKJuspayNBRequestModel),
    (payUsingNewCard, "PAY_USING_JUSPAY_NEW_CARD", payUsingNewCard, WebSDKJuspayNewCardRequestModel),
    (payUsingSavedCard, "PAY_USING_SAVED_CARD", payUsingSavedCard, WebSDKJuspaySavedCardRequestModel),
    (juspayInit, "JUSPAY_INIT", juspayInit, WebSDKJuspayInitRequestModel),
    (getCheckoutMetaInfo, "GET_CHECKOUT_META_INFO", getCheckoutMetaInfo),
    (switchToNativePayment, "SWITCH_TO_NATIVE_PAYMENT", switchToNativePayments),
    (postOrderEvent, "POST_ORDER_EVENT", postOrderEvent, WebSDKPostOrderRequestModel),
    (sendLinkAccountStatus, "SEND_LINK_ACCOUNT_STATUS", sendLinkAccountStatus, WebSDKSendLinkStatusRequestModel),
    (getLinkWalletData, "GET_WALLET_DATA", getLinkWalletData, WebSDKGetLinkWalletDataRequestModel),
    (getLinkedWalletDetails, "GET_LINKED_WALLET_DETAILS", getLinkedWalletDetails, WebSDKGetLinkWalletDataRequestModel),
    (walletAddMoneySuccess, "WALLET_ADD_MONEY_SUCCESS", walletAddMoneySuccess, WebSDKGetLinkWalletDataRequestModel),
    (walletDelinked, "WALLET_DELINKED", walletDelinked, WebSDKWalletDelinkedRequestModel),
    (delinkAmazonPay, "DELINK_AMAZON_PAY", delinkAmazonPay),
    (payUsingAmazonPay, "PAY_USING_AMAZON_PAY", payUsingAmazonPay, WebSDKPayUsingAmazonPayRequestModel),
    (paymentPendingState, "PAYMENT_IN_PENDING_STATE", paymentPendingState,
     std::shared_ptr<const WebSDKPaymentPendingStateRequestModel>),
    (orderFailedEvent, "ORDER_FAILED_EVENT", orderFailedEvent, WebSDKOrderFailedRequestModel),
    (getCredEligibilityFromAppCache, "GET_CRED_ELIGIBILTY_FROM_APP_CACHE", getCredEligibilityFromAppCache),
    (getCredEligibility, "GET_CRED_ELIGIBILTY", getCredEligibility, WebSDKGetCredEligibilityRequestModel),
    (payUsingJuspayWalletCred, "PAY_USING_JUSPAY_WALLET_CRED", payUsingJuspayWalletCred,
     WebSDKPayUsingJuspayWalletCredRequestModel),
    (isUPIIntentMethodAvailable, "IS_UPI_INTENT_METHOD_AVAILABLE", isUPIIntentMethodAvailable,
     WebSDKIsUPIIntentMethodAvailableRequestModel),
    (payUsingUPIIntent, "PAY_USING_UPI_INTENT", payUsingUPIIntent, WebSDKPayUsingUPIIntentRequestModel),
    (orderConfirmEvent, "ORDER_CONFIRMED_EVENT", confirmOrderEvent),
    (getOneClickCardEligibility, "GET_ONE_CLICK_CARD_ELIGIBILITY", getOneClickCardEligibility,
     WebSDKGetOneClickCardEligibilityRequestModel),
    (oneClickDeEnroll, "ONE_CLICK_DE_ENROLL", oneClickDeEnroll, WebSDKOneClickManageCardRequestModel),
    (oneClickDeleteCard, "DELETE_CARD", oneClickDeleteCard, WebSDKOneClickManageCardRequestModel),
    (transactionConfirmed, "TRANSACTION_CONFIRMED_EVENT", transactionConfirmed),
    (transactionFailed, "TRANSACTION_FAILED_EVENT", transactionFailed),
    (storeOrderInfoEvent, "STORE_ORDER_INFO_EVENT", storeOrderInfoEvent, WebSDKStoreOrderInfoRequestModel),
    (upiOnboarding, "INITIATE_INAPP_UPI_ONBOARDING", upiOnboarding, WebSDKJuspayInAppUpiRequestModel),
    (upiGSTHash, "GET_INAPP_UPI_DATA_FROM_CACHE", upiGSTHash, WebSDKJuspayInAppUpiRequestModel),
    (upiGetBankList, "ADD_NEW_INAPP_UPI", upiGetBankList, WebSDKJuspayInAppUpiRequestModel),
    (upiPayment, "PAY_USING_INAPP_UPI", upiPayment, WebSDKJuspayInAppUpiPayRequestModel),
    (isInappUpiEnabled, "IS_INAPP_UPI_ENABLED", isInappUpiEnabled))

/// A request of the payments family: its action, the page's request id and the raw payload.
using WebSDKPaymentsRequestModel = WebSDKBridgeRequest<WebSDKPaymentsAction>;

}  // namespace websdk
