#include "support/Decoding.hpp"

namespace websdk::zippa_test {
namespace {

using P = WebSDKZippaRequestPayload;
using enum WebSDKZippaRequestPayloadCase;

TEST(Zippa, EveryActionDecodesThroughTheBridge) {
  JSONObject callouts{{"banner", JSONObject{{"text", "hi"}}}, {"count", 2}, {"none", nullptr}};
  test::expectDecodes<ZippaFamily>({
      {"IMAGE_UPLOAD", R"({"name":"front","func_name":"onUpload"})", P::make<imageUpload>({"front", "onUpload"})},
      {"IMAGE_UPLOAD", R"({"name":"front","funcName":"cb"})", P::make<imageUpload>({"front", ""})},
      {"IMAGE_UPLOAD", R"({"name":12,"func_name":true})", P::make<imageUpload>({"12", "true"})},
      {"GOOGLE_IMAGE_UPLOAD", R"({"name":"back","func_name":"g"})", P::make<googleImageUpload>({"back", "g"})},
      {"GOOGLE_IMAGE_UPLOAD", std::nullopt, P::make<googleImageUpload>({"", ""})},
      {"PROCEED_ORDER", R"({"orderId":"42"})", P::make<proccedOrder>({"42"})},
      {"PROCEED_ORDER", R"({"orderId":42})", std::nullopt},
      {"PROCEED_ORDER", R"({})", std::nullopt},
      {"PROCEED_ORDER", std::nullopt, std::nullopt},
      {"KYC_INIT", R"({"docType":"PAN"})", P::make<kycInit>({"PAN"})},
      {"KYC_INIT", std::nullopt, P::make<kycInit>({""})},
      {"MAKE_ZIPPA_PAYMENT",
       R"({"link":"https://pay","serviceLine":"ZIPPA","isOrderAnything":"yes",)"
       R"("zippaCallouts":{"banner":{"text":"hi"},"count":2,"none":null}})",
       P::make<makeZippaPayment>({"https://pay", "ZIPPA", true, callouts})},
      {"MAKE_ZIPPA_PAYMENT", R"({"isOrderAnything":0,"zippaCallouts":[1]})",
       P::make<makeZippaPayment>({"", "", false, std::nullopt})},
      {"MAKE_ZIPPA_PAYMENT", std::nullopt, P::make<makeZippaPayment>({"", "", false, std::nullopt})},
  });
}

}  // namespace
}  // namespace websdk::zippa_test
