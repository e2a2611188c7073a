#include "support/Decoding.hpp"

namespace websdk::restaurant_empathy_test {
namespace {

using P = WebSDKRestaurantEmpathyRequestPayload;
using enum WebSDKRestaurantEmpathyRequestPayloadCase;
using Share = WebSDKShareSocialMediaResponseModel;
using Data = WebSDKRestaurantEmpathyDataRequestModel;

TEST(RestaurantEmpathy, EveryActionDecodesThroughTheBridge) {
  test::expectDecodes<RestaurantEmpathyFamily>({
      {"GET_RESTAURANT_EMPATHY_DATA", std::nullopt, P::make<getRestaurantEmpathyData>()},
      {"GET_RESTAURANT_EMPATHY_DATA", R"({"orderId":5})", P::make<getRestaurantEmpathyData>()},
      {"SHARE_ON_SOCIAL_MEDIA",
       R"({"message":"Thanks!","title":"From us","platform":"WHATSAPP","url":"https://u","image":"img"})",
       P::make<shareSocialMediaMessage>(Share{"Thanks!", "From us", "WHATSAPP", "https://u", "img"})},
      // A missing message or title stays absent; a missing platform, url or image is "".
      {"SHARE_ON_SOCIAL_MEDIA", std::nullopt,
       P::make<shareSocialMediaMessage>(Share{std::nullopt, std::nullopt, "", "", ""})},
      {"SHARE_ON_SOCIAL_MEDIA", R"({"message":"","title":5,"platform":1,"url":null})",
       P::make<shareSocialMediaMessage>(Share{"", std::nullopt, "", "", ""})},
  });
}

Data sample() {
  return Data{.imageId = "img-1",
              .header = "A note from the kitchen",
              .message = "Thank you",
              .share = {.buttonText = "Share",
                        .header = "Spread the word",
                        .message = "Try it",
                        .title = "Hi",
                        .url = std::nullopt},
              .userName = "Asha",
              .restaurantName = "Dosa Point",
              .orderId = "o-9"};
}

TEST(RestaurantEmpathyData, EncodesWithItsFieldNamesLeavingAbsentOptionalsOut) {
  EXPECT_EQ(serialize(toJSON(sample())),
            R"({"imageId":"img-1","header":"A note from the kitchen","message":"Thank you",)"
            R"("share":{"buttonText":"Share","header":"Spread the word","message":"Try it","title":"Hi"},)"
            R"("userName":"Asha","restaurantName":"Dosa Point","orderId":"o-9"})");
}

TEST(RestaurantEmpathyData, DecodesWhatItEncodes) {
  auto withURL = sample();
  withURL.share.url = "https://share";
  for (const auto& model : {sample(), withURL}) {
    const JSON json = toJSON(model);
    EXPECT_EQ(Data::from(object(&json)), model);
  }
}

// Each row changes one key of an encoded sample ("share.x" inside the share);
// no value removes the key. A row that decodes gives the sample back.
struct Edit {
  const char* key;
  std::optional<JSON> value;
  bool decodes;
};

TEST(RestaurantEmpathyData, DecodingNeedsEveryRequiredKeyWithItsType) {
  const Edit edits[] = {
      {"orderId", std::nullopt, false},
      {"imageId", 7, false},
      {"share", std::nullopt, false},
      {"share", "text", false},
      {"share.buttonText", std::nullopt, false},
      {"share.header", true, false},
      {"share.url", 3, false},
      {"share.url", nullptr, true},
      {"unknownKey", "ignored", true},
  };
  for (const auto& edit : edits) {
    SCOPED_TRACE(edit.key);
    JSON json = toJSON(sample());
    std::string_view key = edit.key;
    JSONObject* target = json.if_object();
    if (key.starts_with("share.")) {
      target = (*target)["share"].if_object();
      key.remove_prefix(6);
    }
    if (edit.value) {
      (*target)[key] = *edit.value;
    } else {
      target->erase(key);
    }
    const auto decoded = Data::from(object(&json));
    EXPECT_EQ(decoded.has_value(), edit.decodes);
    if (decoded) {
      EXPECT_EQ(*decoded, sample());
    }
  }
  EXPECT_FALSE(Data::from(std::nullopt));
}

}  // namespace
}  // namespace websdk::restaurant_empathy_test
