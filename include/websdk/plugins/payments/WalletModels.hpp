#pragma once
/// @file
/// Amazon Pay, linked wallets and CRED eligibility: what the page asks and what
/// the host answers.

#include "websdk/Export.hpp"
#include "websdk/json/Model.hpp"

#include <optional>
#include <string>
#include <vector>

namespace websdk {

// ---- Requests ----------------------------------------------------------------

/// The Amazon Pay step a request is for. "unknown" is what any other step reads
/// as; the host decides how to answer it.
enum class WebSDKAmazonPayRequestState {
  getBalance,
  linkWallet,
  proceedToPay,
  checkChargeStatus,
  isAmazonSDKAvailable,
  unknown
};
constexpr auto rawValues(WebSDKAmazonPayRequestState) {
  using enum WebSDKAmazonPayRequestState;
  return rawValueTable<WebSDKAmazonPayRequestState>({{getBalance, "GET_BALANCE"},
                                                     {linkWallet, "LINK_WALLET"},
                                                     {proceedToPay, "PROCEED_TO_PAY"},
                                                     {checkChargeStatus, "CHECK_CHARGE_STATUS"},
                                                     {isAmazonSDKAvailable, "IS_AMAZON_SDK_AVAILABLE"},
                                                     {unknown, "unknown"}});
}

/// "PAY_USING_AMAZON_PAY": one action for every Amazon Pay step, with the
/// step's parameters passed on untouched. Never fails.
struct WEBSDK_EXPORT WebSDKPayUsingAmazonPayRequestModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  WebSDKAmazonPayRequestState state = WebSDKAmazonPayRequestState::unknown;
  JSONObject data;
  ///@}

  WEBSDK_MODEL(WebSDKPayUsingAmazonPayRequestModel, anyPayload, (state, enumeration), (data, object))
};

/// The screen an account link was asked from.
enum class WebSDKLinkRequestSource { payments, accounts };
constexpr auto rawValues(WebSDKLinkRequestSource) {
  using enum WebSDKLinkRequestSource;
  return rawValueTable<WebSDKLinkRequestSource>({{payments, "PAYMENTS"}, {accounts, "ACCOUNTS"}});
}

/// "SEND_LINK_ACCOUNT_STATUS". Fails without "paymentCode"; an unknown
/// "source" only leaves `linkRequestSource` absent.
struct WEBSDK_EXPORT WebSDKSendLinkStatusRequestModel {
  /// The fields, read from the JSON keys of their names (`linkRequestSource` from "source"). `paymentCode` is required.
  /// `token`, `linkedMobileNumber` and `corporateEmail` are the user's own, masked in recordings.
  ///@{
  std::string paymentCode;
  std::optional<std::string> status;
  std::optional<std::string> token;
  std::optional<std::string> linkedMobileNumber;
  std::optional<WebSDKLinkRequestSource> linkRequestSource;
  std::optional<std::string> corporateEmail;
  ///@}

  WEBSDK_MODEL(WebSDKSendLinkStatusRequestModel, anyPayload, (paymentCode, lenientString, required),
               (status, strictString), (token, strictString, sensitive), (linkedMobileNumber, strictString, sensitive),
               (linkRequestSource, enumeration, "source"), (corporateEmail, strictString, sensitive))
};

/// The wallet a wallet-data, linked-wallet or add-money request is about: the
/// page names it "walletCode". Fails without that key.
struct WEBSDK_EXPORT WebSDKGetLinkWalletDataRequestModel {
  /// Read from the JSON key "walletCode"; required.
  std::string paymentCode;

  WEBSDK_MODEL(WebSDKGetLinkWalletDataRequestModel, anyPayload, (paymentCode, lenientString, "walletCode", required))
};

/// "WALLET_DELINKED". Fails without "walletCode".
struct WEBSDK_EXPORT WebSDKWalletDelinkedRequestModel {
  /// The fields, read from the JSON keys of their names. `walletCode` is required. `mobileNumber` is the user's own,
  /// masked in recordings.
  ///@{
  std::string walletCode;
  std::optional<std::vector<std::string>> walletCodes;
  std::optional<std::string> mobileNumber;
  ///@}

  WEBSDK_MODEL(WebSDKWalletDelinkedRequestModel, anyPayload, (walletCode, lenientString, required),
               (walletCodes, stringList), (mobileNumber, strictString, sensitive))
};

/// "GET_CRED_ELIGIBILTY". Never fails: missing values are "". `authToken`
/// comes from "clientAuthToken".
struct WEBSDK_EXPORT WebSDKGetCredEligibilityRequestModel {
  /// The fields, read from the JSON keys of their names (`authToken` from "clientAuthToken"). `authToken` and
  /// `mobileNumber` are the user's own, masked in recordings.
  ///@{
  std::string authToken;
  std::string merchantId;
  std::string amount;
  std::string mobileNumber;
  ///@}

  WEBSDK_MODEL(WebSDKGetCredEligibilityRequestModel, anyPayload,
               (authToken, lenientString, "clientAuthToken", sensitive), (merchantId, lenientString),
               (amount, lenientString), (mobileNumber, lenientString, sensitive))
};

// ---- Responses -----------------------------------------------------------------

/// Answers the Amazon Pay SDK availability step.
struct WEBSDK_EXPORT WebSDKAmazonAvailableResponseModel {
  /// Written under the JSON key of its name.
  bool isAmazonSdkAvailable = false;

  WEBSDK_RECORD(WebSDKAmazonAvailableResponseModel, isAmazonSdkAvailable)
};

/// Answers the balance step; no balance leaves "balance" out.
struct WEBSDK_EXPORT WebSDKAmazonPayGetbalanceResponseModel {
  /// The fields, written under JSON keys of their names; an empty optional is left out.
  ///@{
  bool linked = false;
  std::optional<double> balance{};
  ///@}

  WEBSDK_RECORD(WebSDKAmazonPayGetbalanceResponseModel, linked, balance)
};

/// Answers the proceed-to-pay step.
struct WEBSDK_EXPORT WebSDKAmazonPayProceedToPayResponseModel {
  /// The fields, written under JSON keys of their names.
  ///@{
  std::string status{};
  std::string orderId{};
  std::string transactionId{};
  ///@}

  WEBSDK_RECORD(WebSDKAmazonPayProceedToPayResponseModel, status, orderId, transactionId)
};

/// Answers the charge-status step with the provider's values as text.
struct WEBSDK_EXPORT WebSDKAmazonPayChargeStatusResponseModel {
  /// The fields, written under JSON keys of their names.
  ///@{
  std::string transactionStatusDescription{};
  std::string signature{};
  std::string verificationOperationName{};
  std::string merchantTransactionId{};
  std::string transactionCurrencyCode{};
  std::string transactionStatusCode{};
  std::string transactionValue{};
  std::string transactionDate{};
  std::string transactionId{};
  ///@}

  WEBSDK_RECORD(WebSDKAmazonPayChargeStatusResponseModel, transactionStatusDescription, signature,
                verificationOperationName, merchantTransactionId, transactionCurrencyCode, transactionStatusCode,
                transactionValue, transactionDate, transactionId)
};

/// An app-pay transaction's result.
struct WEBSDK_EXPORT WebSDKAppPayTxnResponseModel {
  /// The fields, written under JSON keys of their names.
  ///@{
  std::string status{};
  std::string orderId{};
  ///@}

  WEBSDK_RECORD(WebSDKAppPayTxnResponseModel, status, orderId)
};

/// Answers "GET_CRED_ELIGIBILTY": the live answer always has all three facts.
struct WEBSDK_EXPORT WebSDKGetCredEligibilityResponseModel {
  /// The fields, written under JSON keys of their names.
  ///@{
  std::string flowType{};
  bool isEligible = false;
  std::string bannerText{};
  ///@}

  WEBSDK_RECORD(WebSDKGetCredEligibilityResponseModel, flowType, isEligible, bannerText)
};

/// Answers "GET_CRED_ELIGIBILTY_FROM_APP_CACHE": the cached answer may lack
/// the banner and the flow type.
struct WEBSDK_EXPORT WebSDKGetCredEligibilityFromAppCacheResponseModel {
  /// The fields, written under JSON keys of their names; an empty optional is left out.
  ///@{
  bool isEligible = false;
  std::optional<std::string> bannerText{};
  std::optional<std::string> flowType{};
  ///@}

  WEBSDK_RECORD(WebSDKGetCredEligibilityFromAppCacheResponseModel, isEligible, bannerText, flowType)
};

}  // namespace websdk
