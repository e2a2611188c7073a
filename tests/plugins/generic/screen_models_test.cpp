#include "websdk/plugins/generic/ScreenModels.hpp"

// Expected models are written with designated initializers naming only the
// fields a row sets; the rest keep their defaults, which is the point.
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"

#include "support/Decoding.hpp"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace websdk {
namespace {

using test::expectReads;
using test::payloadOf;
template <class T>
using Row = test::ReaderRow<T>;

TEST(ScreenModels, NavigationToScreenTypeAndLinkRules) {
  using M = WebSDKNavigationToScreenRequestModel;
  const auto screen = [](std::string link) { return M{.type = NavigationType::screen, .link = std::move(link)}; };
  expectReads<M>({
      {"null", std::nullopt},
      {"{}", std::nullopt},
      {R"({"type":"screen","link":"cart"})", screen("cart")},
      {R"({"type":"screen","link":"order_detail"})", screen("order_detail")},
      {R"({"type":"screen","link":"chat"})", screen("chat")},
      {R"({"type":"screen","link":"Cart"})", std::nullopt},
      {R"({"type":"screen","link":"orderDetail"})", std::nullopt},
      {R"({"type":"Screen","link":"cart"})", std::nullopt},
      {R"({"type":"screen","link":5})", std::nullopt},
      {R"({"type":"screen"})", std::nullopt},
      {R"({"link":"cart"})", std::nullopt},
      {R"({"type":"deeplink","link":"app://menu?id=7"})",
       M{.type = NavigationType::deeplink, .link = "app://menu?id=7"}},
      {R"({"type":"deeplink","link":""})", M{.type = NavigationType::deeplink, .link = ""}},
  });
}

TEST(ScreenModels, NavigationToScreenOptionalParts) {
  using M = WebSDKNavigationToScreenRequestModel;
  const auto cart = [](M m) {
    m.type = NavigationType::screen;
    m.link = "cart";
    return m;
  };
  expectReads<M>({
      {R"({"type":"screen","link":"cart","httpHeaders":{"a":"b","n":1}})",
       cart({.httpHeaders = std::map<std::string, std::string>{{"a", "b"}, {"n", "1"}}})},
      {R"({"type":"screen","link":"cart","httpHeaders":"a=b"})", cart({})},
      {R"({"type":"screen","link":"cart","params":null})", cart({})},
      // Params that are not an object still open the screen, with defaults.
      {R"({"type":"screen","link":"cart","params":"x"})", cart({.params = NavigationScreenParam{}})},
      {R"({"type":"screen","link":"cart","analyticsFunnel":[1,"a"]})", cart({.analyticsFunnel = JSONArray{1, "a"}})},
      {R"({"type":"screen","link":"cart","analyticsFunnel":{"a":1}})", cart({})},
  });
}

TEST(ScreenModels, NavigationScreenParamKeysAndReadings) {
  using M = NavigationScreenParam;
  expectReads<M>({
      {"null", M{}},
      {R"({"tenant":"DV-MEALS-PWA"})", M{.tenant = Tenant::mealsPWA}},
      {R"({"tenant":"dv-meals-pwa"})", M{}},
      // "fromCart" and "data" feed fields of other names.
      {R"({"fromCart":"yes","isFromCart":false})", M{.isFromCart = true}},
      {R"({"isFromCart":true})", M{}},
      {R"({"data":{"orderId":9}})", M{.orderDataJson = JSON(JSONObject{{"orderId", 9}})}},
      {R"({"data":null})", M{.orderDataJson = JSON(nullptr)}},
      // Optional flags are absent only without their key.
      {R"({"isPXOrder":0,"shouldDismissPresentedScreen":"true"})",
       M{.shouldDismissPresentedScreen = true, .isPXOrder = false}},
      {R"({"id":"r1","restaurantId":12,"orderId":"o1","refresh":1})", M{.id = "r1", .refresh = true, .orderId = "o1"}},
  });
}

TEST(ScreenModels, CloseParamsCountOnlyTheirOwnSpellingsOfYes) {
  struct FlagRow {
    std::string_view value;
    bool expected;
  };
  const std::vector<FlagRow> rows = {
      {"true", true},     {"1", true},      {"1.0", true},        {R"("True")", true}, {R"("true")", true},
      {R"("yes")", true}, {R"("1")", true}, {R"("TRUE")", false}, {R"("YES")", false}, {R"("y")", false},
      {R"("t")", false},  {"false", false}, {"0", false},         {"2", false},        {"null", false},
  };
  for (const auto& row : rows) {
    const std::string text = R"({"shouldRefresh":)" + std::string(row.value) + "}";
    SCOPED_TRACE(text);
    auto params = CloseWebViewParams::from(payloadOf(text));
    ASSERT_TRUE(params);
    EXPECT_EQ(params->shouldRefresh, row.expected);
  }
}

TEST(ScreenModels, CloseParamsIrregularKeysAndOptionals) {
  using M = CloseWebViewParams;
  expectReads<M>({
      {"null", M{}},
      {R"({"movetoAccount":"yes","isForRating":1})", M{.moveToAccount = true, .isFromRating = true}},
      {R"({"moveToAccount":true,"isFromRating":true})", M{}},
      {R"({"isBreachResolved":"no","isCurrentDeviceLoggedOut":"True"})",
       M{.isBreachResolved = false, .isCurrentDeviceLoggedOut = true}},
      {R"({"rating":"4","menuId":"m","flow":7,"stationId":"NDLS"})",
       M{.rating = 4, .menuId = "m", .stationId = "NDLS"}},
  });
  using W = WebSDKCloseWebviewWithParamsModel;
  expectReads<W>({
      {"null", W{}},
      {R"({"params":null})", W{}},
      {R"({"params":"soon"})", W{M{}}},
      {R"({"params":{"goToHome":"1"}})", W{M{.goToHome = true}}},
  });
}

TEST(ScreenModels, TabSwitchNeverCarriesParams) {
  using M = WebSDKSwitchBottomBarModel;
  expectReads<M>({
      {"null", std::nullopt},
      {R"({"tabIdentifier":5})", std::nullopt},
      {R"({"tabIdentifier":{"tab":"home"}})", std::nullopt},
      {R"({"tabIdentifier":"home"})", M{"home", JSONObject{}}},
      {R"({"tabIdentifier":"home","params":{"a":1}})", M{"home", JSONObject{}}},
  });
}

TEST(ScreenModels, RefreshOnlyTheMenu) {
  using M = WebSDKRefreshScreenRequestModel;
  const M menu{RefreshType::screen, RefreshScreenType::menu, std::nullopt};
  expectReads<M>({
      {"null", std::nullopt},
      {R"({"type":"screen","link":"menu"})", menu},
      {R"({"type":"screen","link":"menu","params":null})", menu},
      {R"({"type":"screen","link":"menu","params":{"restaurantId":"r9"}})",
       M{RefreshType::screen, RefreshScreenType::menu, RefreshScreenParam{"r9"}}},
      {R"({"type":"screen","link":"menu","params":{"restaurantId":9}})",
       M{RefreshType::screen, RefreshScreenType::menu, RefreshScreenParam{}}},
      {R"({"type":"screen","link":"cart"})", std::nullopt},
      {R"({"type":"Screen","link":"menu"})", std::nullopt},
      {R"({"link":"menu"})", std::nullopt},
  });
}

TEST(ScreenModels, WebNavigateNeedsAStringURLAndJSONBools) {
  using M = WebSDKWebNavigateRequestModel;
  expectReads<M>({
      {"null", std::nullopt},
      {"{}", std::nullopt},
      {R"({"url":5})", std::nullopt},
      {R"({"url":"u","showLoader":"true","showBack":true,"title":5,"callbackUrl":"cb"})",
       M{.url = "u", .showBack = true, .callbackUrl = "cb"}},
      {R"({"url":"u","headers":{"x":"y"},"openAsExternalWithBridgeSupport":true})",
       M{.url = "u",
         .headers = std::map<std::string, std::string>{{"x", "y"}},
         .openAsExternalWithBridgeSupport = true}},
  });
}

TEST(ScreenModels, OrbisAndSyncedWebViews) {
  using V2 = WebSDKOpenOrbisV2RequestModel;
  expectReads<V2>({
      {"null", std::nullopt},
      {R"({"lastMile":1})", std::nullopt},
      {R"({"link":null})", V2{"", std::nullopt}},
      {R"({"link":5,"lastMile":"3"})", V2{"5", std::nullopt}},
      {R"({"link":"l","lastMile":true})", V2{"l", 1.0}},
  });
  using C = WebSDKCloseWebViewAndSyncDataRequestModel;
  expectReads<C>({
      {"null", C{}},
      {R"({"source":"s","closeOnly":"true","data":[1]})", C{"s", std::nullopt, std::nullopt}},
      {R"({"closeOnly":false,"data":{"k":1}})", C{"", false, JSONObject{{"k", 1}}}},
  });
}

TEST(ScreenModels, LocationThenDeepLinkKeepsWhatReads) {
  using M = WebSDKSetLocationWithDeeplinkRequestModel;
  expectReads<M>({
      {"null", M{}},
      {R"({"address":{"lat":"1.5"},"deepLink":{"type":"screen","link":"nowhere"}})",
       M{WebSDKSetLocationRequestModel{.lat = 1.5}, std::nullopt}},
      {R"({"address":"home","deepLink":{"type":"screen","link":"track"}})",
       M{std::nullopt, DeeplinkModel{NavigationType::screen, "track"}}},
  });
}

}  // namespace
}  // namespace websdk
