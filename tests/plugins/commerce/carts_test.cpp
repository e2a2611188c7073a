// The four cart families, decoded straight from request texts.

#include "websdk/plugins/commerce/Carts.hpp"

#include <gtest/gtest.h>

namespace websdk {
namespace {

template <class Payload, class Request>
std::string decoded(std::string_view text) {
  const auto request = Request::from(text);
  if (!request) return "(no request)";
  const auto payload = Payload::validateRequest(*request);
  return payload ? serialize(payload->describe()) : "(declined)";
}

struct Row {
  std::string type;
  const char* payload;  // nullptr = no "payload" key
  const char* expected;
};

std::string text(const Row& row) {
  std::string t = R"({"type":")" + row.type + R"(","requestId":"1")";
  if (row.payload) t += std::string(R"(,"payload":)") + row.payload;
  return t + "}";
}

TEST(Carts, MainCartRequestsDecodeAsStated) {
  const Row rows[] = {
      {"GET_LOCAL_CART", nullptr, "(declined)"},
      {"GET_LOCAL_CART", "{}", "(declined)"},
      {"GET_LOCAL_CART", R"({"tenant":"DV-MEALS"})", "(declined)"},
      {"GET_LOCAL_CART", R"({"tenant":{}})",
       R"({"case":"getCart","model":{"marketplaceId":"","marketplaceCategory":"","marketplaceBusinessLine":""}})"},
      {"GET_LOCAL_CART", R"({"tenant":{"marketplaceId":12,"marketplaceCategory":true,"marketplaceBusinessLine":"x"}})",
       R"({"case":"getCart","model":{"marketplaceId":"12","marketplaceCategory":"true","marketplaceBusinessLine":"x"}})"},
      {"UPDATE_LOCAL_CART", nullptr, R"({"case":"updateCart","model":{}})"},
      {"UPDATE_LOCAL_CART", R"({"tenant":{"a":1},"data":[1]})", R"({"case":"updateCart","model":{"tenant":{"a":1}}})"},
      {"CUSTOMISE_CART_ITEM", R"({"data":{"id":"i"}})", R"({"case":"customiseCartItem","model":{"data":{"id":"i"}}})"},
      {"CLEAR_LOCAL_CART", R"("not an object")", R"({"case":"clearCart"})"},
      {"SWITCH_TO_NATIVE_CART", nullptr, R"({"case":"switchToNativeCart"})"},
      {"APPLY_COUPON", nullptr, "(declined)"},
      {"APPLY_COUPON", "{}", "(declined)"},
      {"APPLY_COUPON", R"({"restaurantId":123})", "(declined)"},
      {"APPLY_COUPON", R"({"restaurantId":"123","cart_total_shown_to_coupon":"45"})",
       R"({"case":"applyCoupon","model":{"cartValue":0.0,"restaurantId":"123"}})"},
      {"APPLY_COUPON",
       R"({"restaurantId":"9","cart_total_shown_to_coupon":45.5,"couponListingVersion":"v2","tenant":{"t":1},"cartValue":3})",
       R"({"case":"applyCoupon","model":{"tenant":{"t":1},"cartValue":45.5,"restaurantId":"9","couponListingVersion":"v2"}})"},
      {"APPLY_COUPON", R"({"restaurantId":"9","cart_total_shown_to_coupon":true,"couponListingVersion":2})",
       R"({"case":"applyCoupon","model":{"cartValue":1.0,"restaurantId":"9"}})"},
  };
  for (const auto& row : rows)
    EXPECT_EQ((decoded<WebSDKCartRequestPayload, WebSDKCartRequestModel>(text(row))), row.expected) << text(row);
}

TEST(Carts, PXCartRequestsDecodeAsStated) {
  const Row rows[] = {
      {"PX_GET_LOCAL_CART", R"({"x":1})", R"({"case":"getPXCart"})"},
      {"PX_CLEAR_LOCAL_CART", nullptr, R"({"case":"clearPXCart"})"},
      {"PX_UPDATE_LOCAL_CART", R"({"data":{"a":1}})", R"({"case":"updatePXCart","model":{}})"},
      {"PX_UPDATE_LOCAL_CART", R"({"payload":{"data":{"a":1}}})",
       R"({"case":"updatePXCart","model":{"data":{"a":1}}})"},
      {"PX_UPDATE_LOCAL_CART", nullptr, R"({"case":"updatePXCart","model":{}})"},
      {"PX_UPDATE_LOCAL_CART_ITEMS", R"({"items":[1],"k":"v"})",
       R"({"case":"updatePXCartV2","model":{"data":{"items":[1],"k":"v"}}})"},
      {"PX_UPDATE_LOCAL_CART_ITEMS", nullptr, R"({"case":"updatePXCartV2","model":{}})"},
      {"UPDATE_PX_SHARED_PREFERENCE", R"({"data":null})", R"({"case":"sharedPreference","model":{"sharedDict":null}})"},
      {"UPDATE_PX_SHARED_PREFERENCE", R"({"data":[1,"a"]})",
       R"({"case":"sharedPreference","model":{"sharedDict":[1,"a"]}})"},
      {"UPDATE_PX_SHARED_PREFERENCE", "{}", R"({"case":"sharedPreference","model":{}})"},
  };
  for (const auto& row : rows)
    EXPECT_EQ((decoded<WebSDKPXCartRequestPayload, WebSDKPXCartRequestModel>(text(row))), row.expected) << text(row);
}

TEST(Carts, VRCartRequestsDecodeAsStated) {
  const Row rows[] = {
      {"VERANDO_GET_LOCAL_CART", nullptr, "(declined)"},
      {"VERANDO_GET_LOCAL_CART", "{}", R"({"case":"getVRCart","model":{}})"},
      {"VERANDO_GET_LOCAL_CART", R"({"flowType":7})", R"({"case":"getVRCart","model":{}})"},
      {"VERANDO_CLEAR_LOCAL_CART", R"({"flowType":"f"})", R"({"case":"clearVRCart","model":{"flowType":"f"}})"},
      {"VERANDO_CLEAR_LOCAL_CART", nullptr, "(declined)"},
      {"VERANDO_UPDATE_LOCAL_CART", nullptr, "(declined)"},
      {"VERANDO_UPDATE_LOCAL_CART", R"({"forceRefresh":"true"})",
       R"({"case":"updateVRCart","model":{"forceRefresh":false}})"},
      {"VERANDO_UPDATE_LOCAL_CART",
       R"({"items":[{"id":1}],"cartMetaData":null,"location":{"lat":1},"cartType":"c","flowType":"f","forceRefresh":true})",
       R"({"case":"updateVRCart","model":{"items":[{"id":1}],"cartMetaData":null,"location":{"lat":1},"cartType":"c","flowType":"f","forceRefresh":true}})"},
  };
  for (const auto& row : rows)
    EXPECT_EQ((decoded<WebSDKVRCartRequestPayload, WebSDKVRCartRequestModel>(text(row))), row.expected) << text(row);
}

TEST(Carts, GiftingCartSharesTheMainCartsModels) {
  const Row rows[] = {
      {"GET_GIFTING_LOCAL_CART", R"({"tenant":{"marketplaceId":"m"}})",
       R"({"case":"getGiftingCart","model":{"marketplaceId":"m","marketplaceCategory":"","marketplaceBusinessLine":""}})"},
      {"GET_GIFTING_LOCAL_CART", nullptr, "(declined)"},
      {"UPDATE_GIFTING_LOCAL_CART", nullptr, R"({"case":"updateGiftingCart","model":{}})"},
      {"CLEAR_GIFTING_LOCAL_CART", nullptr, R"({"case":"clearGiftingCart"})"},
  };
  for (const auto& row : rows)
    EXPECT_EQ((decoded<WebSDKGiftingCartRequestPayload, WebSDKGiftingCartRequestModel>(text(row))), row.expected)
        << text(row);
}

TEST(Carts, ActionsMatchExactlyAndOnlyTheirOwnFamily) {
  EXPECT_FALSE(WebSDKCartRequestModel::from(R"({"type":"get_local_cart","requestId":"1"})"));
  EXPECT_FALSE(WebSDKCartRequestModel::from(R"({"type":"PX_GET_LOCAL_CART","requestId":"1"})"));
  EXPECT_FALSE(WebSDKCartRequestModel::from(R"({"type":"CLEAR_LOCAL_CART","requestId":1})"));
  const auto r = WebSDKCartRequestModel::from(R"({"type":"CLEAR_LOCAL_CART","requestId":"1","payload":[1]})");
  ASSERT_TRUE(r);
  EXPECT_FALSE(r->payload) << "a payload that is not an object reads as absent";
}

TEST(Carts, PublicReadersDecodeAPayloadTheHostHolds) {
  const auto payload = parseJSON(R"({"flowType":"5"})").as_object();
  const auto cart = WebSDKGetVRCartRequestModel::from(payload);
  ASSERT_TRUE(cart);
  EXPECT_EQ(*cart, (WebSDKGetVRCartRequestModel{"5"}));
  EXPECT_FALSE(WebSDKGetVRCartRequestModel::from(std::nullopt));
}

}  // namespace
}  // namespace websdk
