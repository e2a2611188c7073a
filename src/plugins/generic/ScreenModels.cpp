#include "websdk/plugins/generic/ScreenModels.hpp"

#include <utility>

namespace websdk {
namespace {

// Absent when the key is absent; otherwise the lenient reading.
std::optional<bool> lenientBoolWhenPresent(const Fields& p, std::string_view key) {
  if (!p.has(key)) return std::nullopt;
  return p.lenientBool(key);
}

// The closing screen's flags are written by many pages in many ways; only
// these spellings (or a JSON true or 1, which read as "true" and "1") mean yes.
bool closeFlag(const Fields& p, std::string_view key) {
  const std::string text = p.lenientString(key);
  return text == "True" || text == "true" || text == "yes" || text == "1";
}

std::optional<bool> closeFlagWhenPresent(const Fields& p, std::string_view key) {
  if (!p.has(key)) return std::nullopt;
  return closeFlag(p, key);
}

// Present and not JSON null.
bool given(const Fields& p, std::string_view key) {
  const JSON* v = p[key];
  return v != nullptr && !v->is_null();
}

}  // namespace

std::optional<NavigationScreenParam> NavigationScreenParam::from(const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return NavigationScreenParam{p.strictString("id").value_or(""),
                               p.lenientBool("refresh"),
                               p.enumeration<Tenant>("tenant"),
                               p.lenientBool("shouldCloseWebview"),
                               p.lenientBool("shouldReplacePreviousWebview"),
                               lenientBoolWhenPresent(p, "shouldDismissPresentedScreen"),
                               p.strictString("url"),
                               p.lenientBool("fromCart"),
                               p.raw("data"),
                               p.strictString("collectionId"),
                               p.strictString("restaurantId"),
                               p.strictString("orderId"),
                               lenientBoolWhenPresent(p, "hideMakePaymentButton"),
                               p.lenientBool("expandRefund"),
                               p.strictString("source"),
                               p.strictString("query"),
                               lenientBoolWhenPresent(p, "isPXOrder")};
}

std::optional<DeeplinkModel> DeeplinkModel::from(const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  auto type = p.enumeration<NavigationType>("type");
  auto link = p.strictString("link");
  if (!type || !link) return std::nullopt;
  // A native screen must be one the app has; a deep link is the host's to resolve.
  if (*type == NavigationType::screen && !fromRawValue<ScreenType>(*link)) return std::nullopt;
  return DeeplinkModel{*type, std::move(*link)};
}

std::optional<WebSDKNavigationToScreenRequestModel> WebSDKNavigationToScreenRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  if (p.empty()) return std::nullopt;
  auto target = DeeplinkModel::from(payload);
  if (!target) return std::nullopt;
  std::optional<NavigationScreenParam> params;
  if (given(p, "params")) params = NavigationScreenParam::from(p.object("params"));
  return WebSDKNavigationToScreenRequestModel{target->type, std::move(target->link), p.stringMap("httpHeaders"),
                                              std::move(params), p.array("analyticsFunnel")};
}

std::optional<WebSDKSetLocationWithDeeplinkRequestModel> WebSDKSetLocationWithDeeplinkRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  std::optional<WebSDKSetLocationRequestModel> address;
  if (auto object = p.object("address")) address = WebSDKSetLocationRequestModel::from(object);
  return WebSDKSetLocationWithDeeplinkRequestModel{std::move(address), DeeplinkModel::from(p.object("deepLink"))};
}

std::optional<WebSDKWebNavigateRequestModel> WebSDKWebNavigateRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  auto url = p.strictString("url");
  if (!url) return std::nullopt;
  auto flag = [&](std::string_view key) { return p.strictBool(key).value_or(false); };
  WebSDKWebNavigateRequestModel model;
  model.url = std::move(*url);
  model.callbackUrl = p.strictString("callbackUrl").value_or("");
  model.openAsExternal = flag("openAsExternal");
  model.showLoader = flag("showLoader");
  model.showBack = flag("showBack");
  model.headers = p.stringMap("headers");
  model.title = p.strictString("title").value_or("");
  model.openAsExternalWithBridgeSupport = flag("openAsExternalWithBridgeSupport");
  return model;
}

std::optional<WebSDKLaunchBrowserRequestModel> WebSDKLaunchBrowserRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKLaunchBrowserRequestModel{Fields(payload).lenientString("url")};
}

std::optional<WebSDKOpenOrbisV2RequestModel> WebSDKOpenOrbisV2RequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  if (!p.has("link")) return std::nullopt;
  return WebSDKOpenOrbisV2RequestModel{p.lenientString("link"), p.number("lastMile")};
}

std::optional<WebSDKOpenOrbisV3RequestModel> WebSDKOpenOrbisV3RequestModel::from(
    const std::optional<JSONObject>& payload) {
  std::string link = Fields(payload).lenientString("link");
  if (link.empty()) return std::nullopt;
  return WebSDKOpenOrbisV3RequestModel{std::move(link)};
}

std::optional<CloseWebViewParams> CloseWebViewParams::from(const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return CloseWebViewParams{closeFlag(p, "shouldRefresh"),
                            p.lenientInt("rating"),
                            p.strictString("orbisV2SelectedPlanId"),
                            closeFlag(p, "goToHome"),
                            closeFlag(p, "movetoAccount"),
                            closeFlag(p, "moveToMenu"),
                            p.strictString("menuId"),
                            closeFlag(p, "isForRating"),
                            closeFlag(p, "expandRefund"),
                            closeFlagWhenPresent(p, "isBreachResolved"),
                            closeFlagWhenPresent(p, "isCurrentDeviceLoggedOut"),
                            p.strictString("flow"),
                            p.strictString("stationId")};
}

std::optional<WebSDKCloseWebviewWithParamsModel> WebSDKCloseWebviewWithParamsModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  std::optional<CloseWebViewParams> params;
  // Params that are not an object still close the web view, with every default.
  if (given(p, "params")) params = CloseWebViewParams::from(p.object("params"));
  return WebSDKCloseWebviewWithParamsModel{std::move(params)};
}

std::optional<RefreshScreenParam> RefreshScreenParam::from(const std::optional<JSONObject>& payload) {
  return RefreshScreenParam{Fields(payload).strictString("restaurantId")};
}

std::optional<WebSDKRefreshScreenRequestModel> WebSDKRefreshScreenRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  auto type = p.enumeration<RefreshType>("type");
  auto link = p.enumeration<RefreshScreenType>("link");
  if (!type || !link) return std::nullopt;
  std::optional<RefreshScreenParam> params;
  if (given(p, "params")) params = RefreshScreenParam::from(p.object("params"));
  return WebSDKRefreshScreenRequestModel{*type, *link, std::move(params)};
}

std::optional<WebSDKOpenWebViewAndSyncDataRequestModel> WebSDKOpenWebViewAndSyncDataRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKOpenWebViewAndSyncDataRequestModel{p.strictString("source").value_or(""),
                                                  p.strictString("link").value_or("")};
}

std::optional<WebSDKCloseWebViewAndSyncDataRequestModel> WebSDKCloseWebViewAndSyncDataRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKCloseWebViewAndSyncDataRequestModel{p.strictString("source").value_or(""), p.strictBool("closeOnly"),
                                                   p.object("data")};
}

std::optional<WebSDKSwitchBottomBarModel> WebSDKSwitchBottomBarModel::from(const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  auto tab = p.strictString("tabIdentifier");
  if (!tab) return std::nullopt;
  // Tab parameters have always been looked up under "tabIdentifier" itself,
  // which holds a string, so they come out empty; pages rely on the tab alone
  // and must not start passing parameters through this action.
  return WebSDKSwitchBottomBarModel{std::move(tab), JSONObject{}};
}

std::optional<WebSDKGetHalfCardHeightRequestModel> WebSDKGetHalfCardHeightRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKGetHalfCardHeightRequestModel{Fields(payload).lenientString("height")};
}

}  // namespace websdk
