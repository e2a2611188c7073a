// Payments requests as a page sends them, through the real bridge: what the
// payments plugin receives for each action, and which payloads are declined.

#include "support/Decoding.hpp"

#include <vector>

namespace websdk {
namespace {

// Every action once, in catalogue order, with a payload that exercises its
// readings (lenient text from numbers, strict fields falling back, renamed keys).
const std::vector<test::DecodeRow> kDelivered = {
    {"IS_JUSPAY_AVAILABLE", R"({"forceEnableSDK":"true"})",
     R"({"case":"isJuspayAvailable","model":{"forceEnableSDK":true}})"},
    {"PAY_USING_JUSPAY_NB", R"({"juspayParams":{"orderId":"o1","bankCode":7}})",
     R"({"case":"payUsingJuspayNB","model":{"orderId":"o1","returnUrl":"","bankCode":"","juspayClientAuthToken":""}})"},
    {"PAY_USING_JUSPAY_NEW_CARD",
     R"({"juspayParams":{"orderId":"o1","saveToLocker":"true","tokenize":"true","cardNumber":4111,
         "supportedGatewayIds":[1,"2"],"emiTenure":6,"isEmi":"yes","emiBank":"HDFC"}})",
     R"({"case":"payUsingNewCard","model":{"cardToken":"","returnUrl":"","orderId":"o1","cardSecurityCode":"",
         "paymentMethodType":"","cardNumber":"","cardExpMonth":"","cardExpYear":"","nameOnCard":"",
         "saveToLocker":false,"juspayClientAuthToken":"","authTypeForCard":"","tokenize":true,"cardBin":"",
         "paymentMethod":"","nickname":"","orderAmount":"","emiBank":"HDFC","supportedGatewayIds":[1,2],
         "emiTenure":6}})"},
    {"PAY_USING_SAVED_CARD",
     R"({"juspayParams":{"orderId":"o1","saveToLocker":"true","tokenRequester":"VISA",
         "juspayMetaData":{"provider":"VISA","tokenType":3}}})",
     R"({"case":"payUsingSavedCard","model":{"cardToken":"","returnUrl":"","orderId":"o1","cardSecurityCode":"",
         "paymentMethodType":"","juspayClientAuthToken":"","authTypeForCard":"","tokenize":false,"cardBin":"",
         "paymentMethod":"","saveToLocker":true,"orderAmount":"","supportedGatewayIds":[],"tokenRequester":"VISA",
         "juspayMetaData":{"tokenType":"","temporaryToken":"","requesterId":"","provider":"VISA",
         "providerCategory":"","providerReferenceId":""}}})"},
    {"JUSPAY_INIT", R"({"merchantId":"m","environment":"prod","clientAuthToken":7,"extendedCustomerId":9})",
     R"({"case":"juspayInit","model":{"environment":"prod","merchantId":"m","authToken":"7","extendedCustomerId":""}})"},
    {"GET_CHECKOUT_META_INFO", std::nullopt, R"({"case":"getCheckoutMetaInfo"})"},
    {"SWITCH_TO_NATIVE_PAYMENT", R"({"x":1})", R"({"case":"switchToNativePayments"})"},
    {"POST_ORDER_EVENT", R"({"orderData":{},"showTrack":0})",
     R"({"case":"postOrderEvent","model":{"orderData":{},"showTrack":false}})"},
    {"SEND_LINK_ACCOUNT_STATUS", R"({"paymentCode":5,"source":"payments","status":"OK","token":1})",
     R"({"case":"sendLinkAccountStatus","model":{"paymentCode":"5","status":"OK"}})"},
    {"GET_WALLET_DATA", R"({"walletCode":5})", R"({"case":"getLinkWalletData","model":{"paymentCode":"5"}})"},
    {"GET_LINKED_WALLET_DETAILS", R"({"walletCode":"PAYTM"})",
     R"({"case":"getLinkedWalletDetails","model":{"paymentCode":"PAYTM"}})"},
    {"WALLET_ADD_MONEY_SUCCESS", R"({"walletCode":true})",
     R"({"case":"walletAddMoneySuccess","model":{"paymentCode":"true"}})"},
    {"WALLET_DELINKED", R"({"walletCode":"AMZ","walletCodes":["A",1],"mobileNumber":98})",
     R"({"case":"walletDelinked","model":{"walletCode":"AMZ","walletCodes":["A","1"]}})"},
    {"DELINK_AMAZON_PAY", std::nullopt, R"({"case":"delinkAmazonPay"})"},
    {"PAY_USING_AMAZON_PAY", R"({"state":"GET_BALANCE","data":{"x":1}})",
     R"({"case":"payUsingAmazonPay","model":{"state":"GET_BALANCE","data":{"x":1}}})"},
    {"PAYMENT_IN_PENDING_STATE", std::nullopt,
     R"({"case":"paymentPendingState","model":{"paymentMethodName":"","marketplaceBusinessLine":"",
         "marketplaceCategory":"","data":{}}})"},
    {"ORDER_FAILED_EVENT",
     R"({"paymentMethodData":{"name":"UPI","enabled":1,"preferred":"no","preferredPriority":"3"},"orderId":12,
         "totalBill":99.5})",
     R"({"case":"orderFailedEvent","model":{"paymentMethodData":{"name":"UPI","displayName":"","paymentCode":"",
         "enabled":true,"groupName":"","couponApplicable":false,"preferred":false,"splitPayEnabled":false,
         "preferredPriority":3},"errorCode":"","errorText":"","totalBill":"99.5"}})"},
    {"GET_CRED_ELIGIBILTY_FROM_APP_CACHE", std::nullopt, R"({"case":"getCredEligibilityFromAppCache"})"},
    {"GET_CRED_ELIGIBILTY", std::nullopt,
     R"({"case":"getCredEligibility","model":{"authToken":"","merchantId":"","amount":"","mobileNumber":""}})"},
    {"PAY_USING_JUSPAY_WALLET_CRED", R"({"juspayParams":{"orderId":1,"clientAuthToken":"t"},"callbackUrl":"cb"})",
     R"({"case":"payUsingJuspayWalletCred","model":{"callbackUrl":"cb","juspayParams":{"orderId":"1",
         "paymentMethodType":"","returnUrl":"","authToken":"t","mobileNumber":""}}})"},
    {"IS_UPI_INTENT_METHOD_AVAILABLE", R"({"methods":["gpay",3]})",
     R"({"case":"isUPIIntentMethodAvailable","model":{"methods":["gpay","3"]}})"},
    {"PAY_USING_UPI_INTENT", R"({"upiParams":{"url":"upi://pay"}})",
     R"({"case":"payUsingUPIIntent","model":{"juspayUPIParams":{"orderId":"","orderAmount":"","url":"upi://pay",
         "methodName":""}}})"},
    {"ORDER_CONFIRMED_EVENT", std::nullopt, R"({"case":"confirmOrderEvent"})"},
    {"GET_ONE_CLICK_CARD_ELIGIBILITY",
     R"({"amount":"10","cardDetails":[{"cardFingerPrint":"f","cardBin":"411111","checkType":["VIES"],"extra":1}]})",
     R"({"case":"getOneClickCardEligibility","model":{"action":"","amount":"10","cardDetails":[
         {"cardFingerPrint":"f","cardBin":"411111","checkType":["VIES"]}]}})"},
    {"ONE_CLICK_DE_ENROLL",
     R"({"action":"VIES_DELETE_CARD","cardDetail":{"cardBin":"4","cardFingerPrint":"f","maskedCardNumber":"4xx1"}})",
     R"({"case":"oneClickDeEnroll","model":{"action":"VIES_DELETE_CARD","cardDetail":{"cardBin":"4",
         "cardFingerPrint":"f","maskedCardNumber":"4xx1"},"juspayClientAuthToken":""}})"},
    {"DELETE_CARD",
     R"({"action":"VIES_DISENROLL","juspayClientAuthToken":"t",
         "cardDetail":{"cardBin":"4","cardFingerPrint":"f","maskedCardNumber":"4xx1"}})",
     R"({"case":"oneClickDeleteCard","model":{"action":"VIES_DISENROLL","cardDetail":{"cardBin":"4",
         "cardFingerPrint":"f","maskedCardNumber":"4xx1"},"juspayClientAuthToken":"t"}})"},
    {"TRANSACTION_CONFIRMED_EVENT", std::nullopt, R"({"case":"transactionConfirmed"})"},
    {"TRANSACTION_FAILED_EVENT", std::nullopt, R"({"case":"transactionFailed"})"},
    {"STORE_ORDER_INFO_EVENT", R"({"orderData":{"id":1},"businessLine":4,"orderInfoUrl":"u"})",
     R"({"case":"storeOrderInfoEvent","model":{"orderData":{"id":1},"businessLine":"4","orderInfoUrl":"u"}})"},
    {"INITIATE_INAPP_UPI_ONBOARDING",
     R"({"merchantId":"m","clientAuthToken":"t","extendedCustomerId":"c","tenant":"ZIPPA"})",
     R"({"case":"upiOnboarding","model":{"merchantId":"m","token":"t","extendedCustomerId":"c","tenant":"ZIPPA"}})"},
    {"GET_INAPP_UPI_DATA_FROM_CACHE", R"({"merchantId":"m","clientAuthToken":"t","extendedCustomerId":"c"})",
     R"({"case":"upiGSTHash","model":{"merchantId":"m","token":"t","extendedCustomerId":"c","tenant":"DV-MEALS"}})"},
    {"ADD_NEW_INAPP_UPI", R"({"merchantId":"m","clientAuthToken":"t","extendedCustomerId":"c","tenant":"zippa"})",
     R"({"case":"upiGetBankList","model":{"merchantId":"m","token":"t","extendedCustomerId":"c",
         "tenant":"DV-MEALS"}})"},
    {"PAY_USING_INAPP_UPI",
     R"({"merchantId":"m","clientAuthToken":"t","extendedCustomerId":"c","orderId":"o","accountRefId":"a",
         "orderAmount":"9.5","tenant":"CELLARO","credOfferLayerDetails":{"offer":1}})",
     R"({"case":"upiPayment","model":{"merchantId":"m","token":"t","extendedCustomerId":"c","orderId":"o",
         "referenceId":"a","amount":"9.5","tenant":"CELLARO","credData":{"offer":1}}})"},
    {"IS_INAPP_UPI_ENABLED", std::nullopt, R"({"case":"isInappUpiEnabled"})"},
};

TEST(PaymentsBridge, EveryActionReachesThePluginWithItsTypedPayload) {
  EXPECT_EQ(test::expectDecodes<PaymentsFamily>(kDelivered), test::everyAction<PaymentsFamily>());
}

const std::vector<test::DecodeRow> kDeclined = {
    {"PAY_USING_JUSPAY_NB", R"({"orderId":"o1"})", std::nullopt},                // parameters at the top level
    {"PAY_USING_JUSPAY_NB", R"({"juspayParams":{"orderId":5}})", std::nullopt},  // numeric orderId
    {"PAY_USING_JUSPAY_NB", std::nullopt, std::nullopt},                         // no payload
    {"PAY_USING_JUSPAY_NEW_CARD", R"({"juspayParams":{"cardNumber":"4111"}})", std::nullopt},  // no orderId
    {"PAY_USING_SAVED_CARD", "{}", std::nullopt},                                              // empty payload
    {"JUSPAY_INIT", R"({"merchantId":5})", std::nullopt},                                      // numeric merchantId
    {"JUSPAY_INIT", "{}", std::nullopt},                                                       // empty payload
    {"POST_ORDER_EVENT", R"({"orderData":[]})", std::nullopt},                                 // orderData an array
    {"STORE_ORDER_INFO_EVENT", R"({"orderInfoUrl":"u"})", std::nullopt},                       // no orderData
    {"SEND_LINK_ACCOUNT_STATUS", R"({"status":"LINKED"})", std::nullopt},                      // no paymentCode
    {"GET_WALLET_DATA", R"({"paymentCode":"P"})", std::nullopt},    // paymentCode instead of walletCode
    {"GET_LINKED_WALLET_DETAILS", "{}", std::nullopt},              // empty payload
    {"WALLET_ADD_MONEY_SUCCESS", std::nullopt, std::nullopt},       // no payload
    {"WALLET_DELINKED", R"({"walletCodes":["A"]})", std::nullopt},  // no walletCode
    {"ORDER_FAILED_EVENT", R"({"paymentMethodData":"UPI","orderId":"o"})",
     std::nullopt},                                                             // paymentMethodData not an object
    {"PAY_USING_JUSPAY_WALLET_CRED", R"({"juspayParams":"x"})", std::nullopt},  // juspayParams not an object
    {"PAY_USING_UPI_INTENT", R"({"juspayUPIParams":{"orderId":"o"}})", std::nullopt},  // parameters under the wrong key
    {"IS_UPI_INTENT_METHOD_AVAILABLE", "{}", std::nullopt},                            // empty payload
    {"GET_ONE_CLICK_CARD_ELIGIBILITY", R"({"amount":"1"})", std::nullopt},             // no cardDetails
    {"GET_ONE_CLICK_CARD_ELIGIBILITY", R"({"cardDetails":[{"cardFingerPrint":"f","cardBin":"4"}]})",
     std::nullopt},  // card without checkType
    {"GET_ONE_CLICK_CARD_ELIGIBILITY", R"({"cardDetails":[{"cardFingerPrint":"f","cardBin":4,"checkType":[]}]})",
     std::nullopt},  // numeric cardBin
    {"GET_ONE_CLICK_CARD_ELIGIBILITY",
     R"({"cardDetails":[{"cardFingerPrint":"f","cardBin":"4","checkType":["VIES",1]}]})",
     std::nullopt},  // numeric check type
    {"GET_ONE_CLICK_CARD_ELIGIBILITY", R"({"cardDetails":{"cardFingerPrint":"f"}})",
     std::nullopt},  // cardDetails not a list
    {"ONE_CLICK_DE_ENROLL",
     R"({"action":"vies_disenroll","cardDetail":{"cardBin":"4","cardFingerPrint":"f","maskedCardNumber":"m"}})",
     std::nullopt},  // action in lower case
    {"ONE_CLICK_DE_ENROLL",
     R"({"action":"VIES_DISENROL","cardDetail":{"cardBin":"4","cardFingerPrint":"f","maskedCardNumber":"m"}})",
     std::nullopt},                                                           // action one letter short
    {"ONE_CLICK_DE_ENROLL", R"({"action":"VIES_DISENROLL"})", std::nullopt},  // no cardDetail
    {"DELETE_CARD", R"({"action":"VIES_DELETE_CARD","cardDetail":{"cardBin":"4","cardFingerPrint":"f"}})",
     std::nullopt},                               // cardDetail without maskedCardNumber
    {"DELETE_CARD", std::nullopt, std::nullopt},  // no payload
    {"INITIATE_INAPP_UPI_ONBOARDING", R"({"merchantId":"m","clientAuthToken":"t"})",
     std::nullopt},  // no extendedCustomerId
    {"GET_INAPP_UPI_DATA_FROM_CACHE", R"({"merchantId":"m","clientAuthToken":1,"extendedCustomerId":"c"})",
     std::nullopt},                                     // numeric token
    {"ADD_NEW_INAPP_UPI", std::nullopt, std::nullopt},  // no payload
    {"PAY_USING_INAPP_UPI",
     R"({"merchantId":"m","clientAuthToken":"t","extendedCustomerId":"c","orderId":"o","referenceId":"a",
         "orderAmount":"1"})",
     std::nullopt},                                              // referenceId instead of accountRefId
    {"GET_CRED_ELIGIBILITY", std::nullopt, std::nullopt},        // the action spelled in full is not an action
    {"get_wallet_data", R"({"walletCode":"P"})", std::nullopt},  // action strings match case-sensitively
};

TEST(PaymentsBridge, PayloadsThatFailTheirModelAreDeclinedAndAnsweredNotValid) {
  test::expectDecodes<PaymentsFamily>(kDeclined);
}

TEST(PaymentsBridge, WithoutAPaymentsPluginTheFamilyNamesItselfInTheAnswer) {
  test::Harness bridge({"localhost"}, false, "https://localhost/");
  const auto responses = bridge.post(test::requestText("TRANSACTION_FAILED_EVENT", std::nullopt));
  ASSERT_EQ(responses.size(), 1u);
  const Fields answer = Fields::of(&responses.front());
  EXPECT_EQ(answer.integer("statusCode"), 1004);
  EXPECT_EQ(answer.strictString("statusMessage"), "payment plugin not subscribed or not a valid request");
}

}  // namespace
}  // namespace websdk
