// The four cart families: requests as a page sends them, and what each
// family's plugin receives.

#include "websdk/plugins/commerce/Carts.hpp"
#include "support/Decoding.hpp"

#include <gtest/gtest.h>

namespace websdk::carts_test {
namespace {

TEST(Carts, MainCartRequestsDecodeAsStated) {
  test::expectDecodes<CartFamily>({
      {"GET_LOCAL_CART", std::nullopt, std::nullopt},
      {"GET_LOCAL_CART", "{}", std::nullopt},
      {"GET_LOCAL_CART", R"({"tenant":"DV-MEALS"})", std::nullopt},
      {"GET_LOCAL_CART", R"({"tenant":{}})",
       R"({"case":"getCart","model":{"marketplaceId":"","marketplaceCategory":"","marketplaceBusinessLine":""}})"},
      {"GET_LOCAL_CART", R"({"tenant":{"marketplaceId":12,"marketplaceCategory":true,"marketplaceBusinessLine":"x"}})",
       R"({"case":"getCart","model":{"marketplaceId":"12","marketplaceCategory":"true","marketplaceBusinessLine":"x"}})"},
      {"UPDATE_LOCAL_CART", std::nullopt, R"({"case":"updateCart","model":{}})"},
      {"UPDATE_LOCAL_CART", R"({"tenant":{"a":1},"data":[1]})", R"({"case":"updateCart","model":{"tenant":{"a":1}}})"},
      {"CUSTOMISE_CART_ITEM", R"({"data":{"id":"i"}})", R"({"case":"customiseCartItem","model":{"data":{"id":"i"}}})"},
      {"CLEAR_LOCAL_CART", R"("not an object")", R"({"case":"clearCart"})"},
      {"SWITCH_TO_NATIVE_CART", std::nullopt, R"({"case":"switchToNativeCart"})"},
      {"APPLY_COUPON", std::nullopt, std::nullopt},
      {"APPLY_COUPON", "{}", std::nullopt},
      {"APPLY_COUPON", R"({"restaurantId":123})", std::nullopt},
      {"APPLY_COUPON", R"({"restaurantId":"123","cart_total_shown_to_coupon":"45"})",
       R"({"case":"applyCoupon","model":{"cartValue":0.0,"restaurantId":"123"}})"},
      {"APPLY_COUPON",
       R"({"restaurantId":"9","cart_total_shown_to_coupon":45.5,"couponListingVersion":"v2","tenant":{"t":1},"cartValue":3})",
       R"({"case":"applyCoupon","model":{"tenant":{"t":1},"cartValue":45.5,"restaurantId":"9","couponListingVersion":"v2"}})"},
      {"APPLY_COUPON", R"({"restaurantId":"9","cart_total_shown_to_coupon":true,"couponListingVersion":2})",
       R"({"case":"applyCoupon","model":{"cartValue":1.0,"restaurantId":"9"}})"},
  });
}

TEST(Carts, PXCartRequestsDecodeAsStated) {
  test::expectDecodes<PXCartFamily>({
      {"PX_GET_LOCAL_CART", R"({"x":1})", R"({"case":"getPXCart"})"},
      {"PX_CLEAR_LOCAL_CART", std::nullopt, R"({"case":"clearPXCart"})"},
      {"PX_UPDATE_LOCAL_CART", R"({"data":{"a":1}})", R"({"case":"updatePXCart","model":{}})"},
      {"PX_UPDATE_LOCAL_CART", R"({"payload":{"data":{"a":1}}})",
       R"({"case":"updatePXCart","model":{"data":{"a":1}}})"},
      {"PX_UPDATE_LOCAL_CART", std::nullopt, R"({"case":"updatePXCart","model":{}})"},
      {"PX_UPDATE_LOCAL_CART_ITEMS", R"({"items":[1],"k":"v"})",
       R"({"case":"updatePXCartV2","model":{"data":{"items":[1],"k":"v"}}})"},
      {"PX_UPDATE_LOCAL_CART_ITEMS", std::nullopt, R"({"case":"updatePXCartV2","model":{}})"},
      {"UPDATE_PX_SHARED_PREFERENCE", R"({"data":null})", R"({"case":"sharedPreference","model":{"sharedDict":null}})"},
      {"UPDATE_PX_SHARED_PREFERENCE", R"({"data":[1,"a"]})",
       R"({"case":"sharedPreference","model":{"sharedDict":[1,"a"]}})"},
      {"UPDATE_PX_SHARED_PREFERENCE", "{}", R"({"case":"sharedPreference","model":{}})"},
  });
}

TEST(Carts, VRCartRequestsDecodeAsStated) {
  test::expectDecodes<VRCartFamily>({
      {"VERANDO_GET_LOCAL_CART", std::nullopt, std::nullopt},
      {"VERANDO_GET_LOCAL_CART", "{}", R"({"case":"getVRCart","model":{}})"},
      {"VERANDO_GET_LOCAL_CART", R"({"flowType":7})", R"({"case":"getVRCart","model":{}})"},
      {"VERANDO_CLEAR_LOCAL_CART", R"({"flowType":"f"})", R"({"case":"clearVRCart","model":{"flowType":"f"}})"},
      {"VERANDO_CLEAR_LOCAL_CART", std::nullopt, std::nullopt},
      {"VERANDO_UPDATE_LOCAL_CART", std::nullopt, std::nullopt},
      {"VERANDO_UPDATE_LOCAL_CART", R"({"forceRefresh":"true"})",
       R"({"case":"updateVRCart","model":{"forceRefresh":false}})"},
      {"VERANDO_UPDATE_LOCAL_CART",
       R"({"items":[{"id":1}],"cartMetaData":null,"location":{"lat":1},"cartType":"c","flowType":"f","forceRefresh":true})",
       R"({"case":"updateVRCart","model":{"items":[{"id":1}],"cartMetaData":null,"location":{"lat":1},"cartType":"c","flowType":"f","forceRefresh":true}})"},
  });
}

TEST(Carts, GiftingCartSharesTheMainCartsModels) {
  test::expectDecodes<GiftingCartFamily>({
      {"GET_GIFTING_LOCAL_CART", R"({"tenant":{"marketplaceId":"m"}})",
       R"({"case":"getGiftingCart","model":{"marketplaceId":"m","marketplaceCategory":"","marketplaceBusinessLine":""}})"},
      {"GET_GIFTING_LOCAL_CART", std::nullopt, std::nullopt},
      {"UPDATE_GIFTING_LOCAL_CART", std::nullopt, R"({"case":"updateGiftingCart","model":{}})"},
      {"CLEAR_GIFTING_LOCAL_CART", std::nullopt, R"({"case":"clearGiftingCart"})"},
  });
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
}  // namespace websdk::carts_test
