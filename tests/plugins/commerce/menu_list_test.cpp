#include "support/Decoding.hpp"

namespace websdk::menu_list_test {
namespace {

using P = WebSDKMenuListPayload;
using enum WebSDKMenuListPayloadCase;

TEST(MenuList, EveryActionDecodesThroughTheBridge) {
  test::expectDecodes<MenuListFamily>({
      {"SHARE_COLLECTION_INFORMATION", R"({"data":{"collectionId":"c1","items":[1,2]}})",
       P::make<shareCollectionDetails>({parseJSON(R"({"collectionId":"c1","items":[1,2]})")})},
      {"SHARE_COLLECTION_INFORMATION", R"({"data":null})", P::make<shareCollectionDetails>({JSON(nullptr)})},
      {"SHARE_COLLECTION_INFORMATION", R"({"data":"text"})", P::make<shareCollectionDetails>({JSON("text")})},
      {"SHARE_COLLECTION_INFORMATION", std::nullopt, P::make<shareCollectionDetails>({std::nullopt})},
      {"UPDATE_MENU_ITEM_LIST", R"({"id":"12","storyId":"s9"})", P::make<updateMenuList>({"12", "s9"})},
      {"UPDATE_MENU_ITEM_LIST", R"({"restaurantId":"12","storyId":9})", P::make<updateMenuList>({"", ""})},
      {"UPDATE_MENU_ITEM_LIST", std::nullopt, P::make<updateMenuList>({"", ""})},
      {"SHOW_MENULET", R"({"showMenuletFlag":true})", P::make<showMenulet>({true})},
      {"SHOW_MENULET", R"({"showMenuletFlag":false})", P::make<showMenulet>({false})},
      {"SHOW_MENULET", R"({"showMenulet":true})", P::make<showMenulet>({std::nullopt})},
      {"SHOW_MENULET", R"({"showMenuletFlag":"true"})", P::make<showMenulet>({std::nullopt})},
      {"SHOW_MENULET", std::nullopt, P::make<showMenulet>({std::nullopt})},
  });
}

}  // namespace
}  // namespace websdk::menu_list_test
