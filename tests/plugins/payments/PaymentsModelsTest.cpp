// Payments readers on their own, the provider's card-eligibility answer, and
// what the host's answers look like on the wire.

#include "support/Decoding.hpp"
#include "websdk/plugins/payments/PaymentsCatalogue.hpp"

#include <gtest/gtest.h>

#include <string>

namespace websdk {
namespace {

using test::payloadOf;

std::optional<WebSDKPaymentsRequestPayload> decode(WebSDKPaymentsAction action,
                                                   std::optional<std::string_view> payload = std::nullopt) {
  return test::decodePayload<PaymentsFamily>(action, payload);
}

TEST(PaymentsReaders, ForceEnableSDKIsAbsentUnlessSentThenReadLeniently) {
  const struct {
    std::optional<std::string_view> payload;
    std::optional<bool> expected;
  } rows[] = {{std::nullopt, std::nullopt},       {"{}", std::nullopt},
              {R"({"x":1})", std::nullopt},       {R"({"forceEnableSDK":"true"})", true},
              {R"({"forceEnableSDK":1})", true},  {R"({"forceEnableSDK":"false"})", false},
              {R"({"forceEnableSDK":0})", false}, {R"({"forceEnableSDK":null})", false}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.payload.value_or("(no payload)"));
    const auto payload = decode(WebSDKPaymentsAction::isJuspayAvailable, row.payload);
    ASSERT_TRUE(payload);
    const auto* model = payload->get<WebSDKPaymentsRequestPayloadCase::isJuspayAvailable>();
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->forceEnableSDK, row.expected);
  }
}

TEST(PaymentsReaders, OnlyTheExactWordProdSelectsProduction) {
  const struct {
    std::string_view environment;
    JuspayInitEnviromentType expected;
  } rows[] = {
      {R"("prod")", JuspayInitEnviromentType::prod},       {R"("PROD")", JuspayInitEnviromentType::sandbox},
      {R"("Prod")", JuspayInitEnviromentType::sandbox},    {R"("production")", JuspayInitEnviromentType::sandbox},
      {R"("sandbox")", JuspayInitEnviromentType::sandbox}, {"1", JuspayInitEnviromentType::sandbox},
      {"null", JuspayInitEnviromentType::sandbox}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.environment);
    const auto model = WebSDKJuspayInitRequestModel::from(
        payloadOf(R"({"merchantId":"m","environment":)" + std::string(row.environment) + "}"));
    ASSERT_TRUE(model);
    EXPECT_EQ(model->environment, row.expected);
  }
  EXPECT_EQ(WebSDKJuspayInitRequestModel::from(payloadOf(R"({"merchantId":"m"})"))->environment,
            JuspayInitEnviromentType::sandbox);
}

TEST(PaymentsReaders, AmazonPayStepsOutsideTheTableAreUnknownAndDataDefaultsEmpty) {
  const struct {
    std::string_view payload;
    WebSDKAmazonPayRequestState state;
    std::size_t dataSize;
  } rows[] = {
      {R"({"state":"CHECK_CHARGE_STATUS","data":{"a":1,"b":2}})", WebSDKAmazonPayRequestState::checkChargeStatus, 2},
      {R"({"state":"get_balance","data":[1]})", WebSDKAmazonPayRequestState::unknown, 0},
      {R"({"state":5})", WebSDKAmazonPayRequestState::unknown, 0},
      {R"({"state":"unknown"})", WebSDKAmazonPayRequestState::unknown, 0},
      {"", WebSDKAmazonPayRequestState::unknown, 0}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.payload);
    const auto model = WebSDKPayUsingAmazonPayRequestModel::from(payloadOf(row.payload));
    ASSERT_TRUE(model);
    EXPECT_EQ(model->state, row.state);
    EXPECT_EQ(model->data.size(), row.dataSize);
  }
}

TEST(PaymentsReaders, OrderEventOptionalsAreReadLenientlyOnlyWhenSent) {
  auto order = WebSDKPostOrderRequestModel::from(payloadOf(R"({"orderData":{"id":"7"},"showTrack":"true"})"));
  ASSERT_TRUE(order);
  EXPECT_EQ(order->showTrack, true);
  EXPECT_EQ(order->businessLine, std::nullopt);
  EXPECT_EQ(serialize(order->orderData), R"({"id":"7"})");

  auto bare = WebSDKPostOrderRequestModel::from(payloadOf(R"({"orderData":{}})"));
  ASSERT_TRUE(bare);
  EXPECT_EQ(bare->showTrack, std::nullopt);

  auto failed = WebSDKOrderFailedRequestModel::from(payloadOf(R"({"paymentMethodData":{}})"));
  ASSERT_TRUE(failed);
  EXPECT_EQ(failed->paymentMethodData.preferred, std::nullopt);
  EXPECT_EQ(failed->paymentMethodData.preferredPriority, std::nullopt);
  EXPECT_EQ(failed->totalBill, "");
}

TEST(PaymentsReaders, PendingStateIsOneSharedObjectEvenWithoutAPayload) {
  const auto payload =
      decode(WebSDKPaymentsAction::paymentPendingState, R"({"requestObj":{"txn":"t"},"paymentMethodName":1})");
  ASSERT_TRUE(payload);
  const auto* shared = payload->get<WebSDKPaymentsRequestPayloadCase::paymentPendingState>();
  ASSERT_NE(shared, nullptr);
  ASSERT_TRUE(*shared);
  EXPECT_EQ((*shared)->paymentMethodName, "1");
  EXPECT_EQ(serialize((*shared)->data), R"({"txn":"t"})");
  // Two payloads holding equal objects are equal, though the objects are distinct.
  EXPECT_EQ(*payload, *decode(WebSDKPaymentsAction::paymentPendingState,
                              R"({"requestObj":{"txn":"t"},"paymentMethodName":"1"})"));
  EXPECT_NE(*payload, *decode(WebSDKPaymentsAction::paymentPendingState));
}

TEST(PaymentsReaders, OneManageCardModelServesBothActionsUnderTheirOwnCases) {
  const std::string_view body =
      R"({"action":"VIES_DELETE_CARD","cardDetail":{"cardBin":"4","cardFingerPrint":"f","maskedCardNumber":"m"}})";
  const auto deEnrol = decode(WebSDKPaymentsAction::oneClickDeEnroll, body);
  const auto remove = decode(WebSDKPaymentsAction::oneClickDeleteCard, body);
  ASSERT_TRUE(deEnrol && remove);
  EXPECT_EQ(deEnrol->kind(), WebSDKPaymentsRequestPayloadCase::oneClickDeEnroll);
  EXPECT_EQ(remove->kind(), WebSDKPaymentsRequestPayloadCase::oneClickDeleteCard);
  EXPECT_NE(*deEnrol, *remove);
  EXPECT_EQ(*deEnrol->get<WebSDKPaymentsRequestPayloadCase::oneClickDeEnroll>(),
            *remove->get<WebSDKPaymentsRequestPayloadCase::oneClickDeleteCard>());
}

// ---- The provider's eligibility answer -------------------------------------------

std::string providerCard(std::string_view bin, std::string_view alias, std::string_view vies) {
  std::string card = R"({"cardBin":")" + std::string(bin) + R"(")";
  if (!alias.empty()) card += R"(,"cardAlias":")" + std::string(alias) + R"(")";
  return card + R"(,"checkType":{"vies":)" + std::string(vies) + "}}";
}

constexpr std::string_view kVies = R"({"eligibility":true,"enrolled":false,"expired":false,"extra":1})";

TEST(CardEligibilityAnswer, UnreadableCardsAreSkippedAndTheOthersKeepTheirOrder) {
  const std::string answer =
      R"({"payload":{"cards":[)" + providerCard("111", "a1", kVies) + "," + providerCard("222", "", kVies) + "," +
      providerCard("333", "a3", R"({"eligibility":true,"enrolled":true,"expired":false,"responseMsg":"ok"})") + "," +
      providerCard("444", "a4", R"({"eligibility":"true","enrolled":false,"expired":false})") + "," +
      providerCard("555", "a5", R"({"eligibility":true,"enrolled":false,"expired":false,"responseMsg":5})") +
      R"(,"not a card"]}})";
  const auto model = WebSDKGetOneClickCardEligibilityResponseModel::from(payloadOf(answer));
  ASSERT_TRUE(model);
  ASSERT_EQ(model->cardEligiblityDetails.size(), 2u);
  EXPECT_EQ(model->cardEligiblityDetails[0].cardBin, "111");
  EXPECT_EQ(model->cardEligiblityDetails[0].cardFingerPrint, "a1");
  EXPECT_EQ(model->cardEligiblityDetails[1].cardBin, "333");
  EXPECT_EQ(model->cardEligiblityDetails[1].checkType.vies.responseMsg, "ok");

  // The page gets the provider's words back, and no responseMsg where there is none.
  const auto dicts = model->getCardEligiblityDetailsDict();
  ASSERT_EQ(dicts.size(), 2u);
  EXPECT_EQ(
      serialize(dicts[0]),
      R"({"check_type":{"vies":{"eligibility":true,"enrolled":false,"expired":false}},"cardBin":"111","cardAlias":"a1"})");
  EXPECT_EQ(
      serialize(dicts[1]),
      R"({"check_type":{"vies":{"eligibility":true,"enrolled":true,"responseMsg":"ok","expired":false}},"cardBin":"333","cardAlias":"a3"})");

  // Its own encoding decodes back to the same model.
  EXPECT_EQ(WebSDKGetOneClickCardEligibilityResponseModel::decode(toJSON(*model)), model);
}

TEST(CardEligibilityAnswer, AnswersWithNoUsableCardGiveNoModel) {
  const std::string_view answers[] = {
      "",
      "{}",
      R"({"cards":[]})",
      R"({"payload":{"cards":[]}})",
      R"({"payload":{"cards":{"cardBin":"1"}}})",
      R"({"payload":"cards"})",
      R"({"payload":{"cards":[{"cardBin":"1","cardAlias":"a"}]}})",
  };
  for (const auto answer : answers) {
    SCOPED_TRACE(answer);
    EXPECT_FALSE(WebSDKGetOneClickCardEligibilityResponseModel::from(payloadOf(answer)));
  }
}

// ---- Answers on the wire ---------------------------------------------------------

TEST(PaymentsResponses, EncodeWithTheirKeysInOrderLeavingAbsentValuesOut) {
  const struct {
    JSON encoded;
    std::string_view expected;
  } rows[] = {
      {toJSON(WebSDKCheckoutMetaResponseModel{.slaTime = 25}), R"({"slaTime":25})"},
      {toJSON(WebSDKCheckoutMetaResponseModel{
           .restaurantDetails = WebSDKCheckoutRestaurantDetails{"Dosa Hut", "r9"},
           .cartItemsCount = 2,
           .deliveryAddress = WebSDKCheckoutDeliveryAddress{"1 Main St", "Home", "Asha"},
           .couponCode = "SAVE",
           .irctc_data = std::map<std::string, std::string>{{"pnr", "123"}}}),
       R"({"restaurantDetails":{"name":"Dosa Hut","id":"r9"},"cartItemsCount":2,"deliveryAddress":{"address":"1 Main St","annotation":"Home","name":"Asha"},"couponCode":"SAVE","irctc_data":{"pnr":"123"}})"},
      {toJSON(WebSDKAmazonPayGetbalanceResponseModel{.linked = true}), R"({"linked":true})"},
      {toJSON(WebSDKAmazonPayGetbalanceResponseModel{true, 120.5}), R"({"linked":true,"balance":120.5})"},
      {toJSON(WebSDKGetCredEligibilityFromAppCacheResponseModel{.isEligible = true}), R"({"isEligible":true})"},
      {toJSON(WebSDKGetCredEligibilityResponseModel{"POPUP", true, "Pay with CRED"}),
       R"({"flowType":"POPUP","isEligible":true,"bannerText":"Pay with CRED"})"},
      {toJSON(WebSDKJuspayAvailableResponseModel{true, {{"upi", true}, {"cards", false}}}),
       R"({"isAvailable":true,"featuresAvailability":{"cards":false,"upi":true}})"},
      {toJSON(WebSDKIsUPIIntentMethodAvailableResponseModel{{"gpay", "phonepe"}}), R"({"methods":["gpay","phonepe"]})"},
      {toJSON(WebSDKOneClickDeleteResponseModel{false, "not found", "E404"}),
       R"({"isDeleted":false,"errorMessage":"not found","errorCode":"E404"})"},
      {toJSON(WebSDKAmazonPayChargeStatusResponseModel{"ok", "s", "v", "m", "INR", "00", "10.00", "2024-01-01", "t"}),
       R"({"transactionStatusDescription":"ok","signature":"s","verificationOperationName":"v","merchantTransactionId":"m","transactionCurrencyCode":"INR","transactionStatusCode":"00","transactionValue":"10.00","transactionDate":"2024-01-01","transactionId":"t"})"},
  };
  for (const auto& row : rows) EXPECT_EQ(serialize(row.encoded), row.expected);
}

TEST(PaymentsResponses, RequestsPassedOnByTheHostEncodeWithFieldNamesNotPageKeys) {
  const auto init = WebSDKJuspayInitRequestModel::from(
      payloadOf(R"({"merchantId":"m","clientAuthToken":"tok","extendedCustomerId":"c"})"));
  ASSERT_TRUE(init);
  EXPECT_EQ(serialize(toJSON(*init)),
            R"({"environment":"sandbox","merchantId":"m","authToken":"tok","extendedCustomerId":"c"})");

  auto pay = WebSDKJuspayInAppUpiPayRequestModel::from(
      payloadOf(R"({"merchantId":"m","clientAuthToken":"t","extendedCustomerId":"c","orderId":"o",
                    "accountRefId":"a","orderAmount":"1.00","tenant":"ZIPPA"})"));
  ASSERT_TRUE(pay);
  EXPECT_EQ(
      serialize(toJSON(*pay)),
      R"({"merchantId":"m","token":"t","extendedCustomerId":"c","orderId":"o","referenceId":"a","amount":"1.00","tenant":"ZIPPA"})");
  pay->credData = parseJSON(R"({"offer":"x"})");  // the host may swap the offer before paying
  EXPECT_EQ(serialize(toJSON(*pay)).ends_with(R"("tenant":"ZIPPA","credData":{"offer":"x"}})"), true);
}

}  // namespace
}  // namespace websdk
