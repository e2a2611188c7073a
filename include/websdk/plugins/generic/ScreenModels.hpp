#pragma once
/// @file
/// Requests with which a page moves the user: to a native screen or a deep
/// link, to another web page or the external browser, out of the web view,
/// to a refreshed menu, to a further web view that shares data, to another
/// bottom-bar tab, or to a new delivery location followed by a deep link.

#include "websdk/Export.hpp"
#include "websdk/json/Enum.hpp"
#include "websdk/json/JSON.hpp"
#include "websdk/json/Model.hpp"
#include "websdk/plugins/generic/LocationModels.hpp"
#include "websdk/plugins/generic/Tenant.hpp"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace websdk {

// ---- Native screens and deep links ------------------------------------------

/// What a page's link names: a native screen (a ScreenType) or a deep link.
enum class NavigationType { screen, deeplink };
constexpr auto rawValues(NavigationType) {
  using enum NavigationType;
  return rawValueTable<NavigationType>({{screen, "screen"}, {deeplink, "deeplink"}});
}

/// The native screens a page may name.
enum class ScreenType { cart, orderDetail, chatWebview, refundHistory, home, menu, track, collections };
constexpr auto rawValues(ScreenType) {
  using enum ScreenType;
  return rawValueTable<ScreenType>({{cart, "cart"},
                                    {orderDetail, "order_detail"},
                                    {chatWebview, "chat"},
                                    {refundHistory, "refund_history"},
                                    {home, "home"},
                                    {menu, "menu"},
                                    {track, "track"},
                                    {collections, "collections"}});
}

/// What the native screen needs to open. Never fails: strings are taken only
/// when they are JSON strings ("" or absent otherwise), booleans leniently
/// (false, or absent when the key is absent), `tenant` only when known.
struct WEBSDK_EXPORT NavigationScreenParam {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::string id;
  bool refresh = false;
  std::optional<Tenant> tenant;
  bool shouldCloseWebview = false;
  bool shouldReplacePreviousWebview = false;
  std::optional<bool> shouldDismissPresentedScreen;
  std::optional<std::string> url;
  bool isFromCart = false;            ///< From "fromCart".
  std::optional<JSON> orderDataJson;  ///< From "data", kept as it stands for the order screen.
  std::optional<std::string> collectionId;
  std::optional<std::string> restaurantId;
  std::optional<std::string> orderId;
  std::optional<bool> hideMakePaymentButton;
  bool expandRefund = false;
  std::optional<std::string> source;
  std::optional<std::string> query;
  std::optional<bool> isPXOrder;
  ///@}

  WEBSDK_MODEL(NavigationScreenParam, anyPayload, (id, strictString), (refresh, lenientBool), (tenant, enumeration),
               (shouldCloseWebview, lenientBool), (shouldReplacePreviousWebview, lenientBool),
               (shouldDismissPresentedScreen, lenientBool), (url, strictString), (isFromCart, lenientBool, "fromCart"),
               (orderDataJson, raw, "data"), (collectionId, strictString), (restaurantId, strictString),
               (orderId, strictString), (hideMakePaymentButton, lenientBool), (expandRefund, lenientBool),
               (source, strictString), (query, strictString), (isPXOrder, lenientBool))
};

/// Whether `link` may be opened as `type`: a native screen must be one the app
/// has; a deep link is the host's to resolve.
inline bool openable(NavigationType type, const std::string& link) {
  return type != NavigationType::screen || fromRawValue<ScreenType>(link).has_value();
}

/// A native screen or a deep link. Fails unless "type" names a navigation
/// type and "link" is a string; a screen link must name a `ScreenType`.
struct WEBSDK_EXPORT DeeplinkModel {
  /// The fields, read from the JSON keys of their names. `type` and `link` are required.
  ///@{
  NavigationType type{};
  std::string link;
  ///@}

  /// A screen link names a ScreenType.
  bool isValid() const { return openable(type, link); }
  WEBSDK_MODEL(DeeplinkModel, anyPayload, (type, enumeration, required), (link, strictString, required))
};

/// Fails on an empty payload and wherever `DeeplinkModel` fails.
struct WEBSDK_EXPORT WebSDKNavigationToScreenRequestModel {
  /// The fields, read from the JSON keys of their names. `type` and `link` are required.
  ///@{
  NavigationType type{};
  std::string link;
  std::optional<std::map<std::string, std::string>> httpHeaders;
  std::optional<NavigationScreenParam> params;
  std::optional<JSONArray> analyticsFunnel;
  ///@}

  /// A screen link names a ScreenType.
  bool isValid() const { return openable(type, link); }
  WEBSDK_MODEL(WebSDKNavigationToScreenRequestModel, needsEntries, (type, enumeration, required),
               (link, strictString, required), (httpHeaders, stringMap), (params, model, ifGiven),
               (analyticsFunnel, array))
};

/// Sets the delivery location, then follows a deep link. Never fails: an
/// address or deep link that does not read is left out.
struct WEBSDK_EXPORT WebSDKSetLocationWithDeeplinkRequestModel {
  std::optional<WebSDKSetLocationRequestModel> addressObject;  ///< The address to set, from "address".
  std::optional<DeeplinkModel> deeplinkDetailModel;            ///< The link to follow, from "deepLink".

  WEBSDK_MODEL(WebSDKSetLocationWithDeeplinkRequestModel, anyPayload, (addressObject, model, "address"),
               (deeplinkDetailModel, model, "deepLink"))
};

// ---- Web pages and the browser -------------------------------------------------

/// Opens another web page. Fails unless "url" is a string; the other strings
/// default to "", the booleans count only as JSON bools.
struct WEBSDK_EXPORT WebSDKWebNavigateRequestModel {
  /// The fields, read from the JSON keys of their names. `url` is required.
  ///@{
  std::string url;
  bool openAsExternal = false;
  bool showLoader = false;
  bool showBack = false;
  std::string callbackUrl;
  std::optional<std::map<std::string, std::string>> headers;
  std::string title;
  bool openAsExternalWithBridgeSupport = false;
  ///@}

  WEBSDK_MODEL(WebSDKWebNavigateRequestModel, anyPayload, (url, strictString, required), (openAsExternal, strictBool),
               (showLoader, strictBool), (showBack, strictBool), (callbackUrl, strictString), (headers, stringMap),
               (title, strictString), (openAsExternalWithBridgeSupport, strictBool))
};

/// `url` read leniently ("" when missing). Never fails.
struct WEBSDK_EXPORT WebSDKLaunchBrowserRequestModel {
  /// Read from the JSON key of its name.
  std::string url;

  WEBSDK_MODEL(WebSDKLaunchBrowserRequestModel, anyPayload, (url, lenientString))
};

/// Fails on an empty payload or without "link" (read leniently).
struct WEBSDK_EXPORT WebSDKOpenOrbisV2RequestModel {
  /// The fields, read from the JSON keys of their names. `link` is required.
  ///@{
  std::string link;
  std::optional<double> lastMile;
  ///@}

  WEBSDK_MODEL(WebSDKOpenOrbisV2RequestModel, anyPayload, (link, lenientString, required), (lastMile, number))
};

/// Fails unless "link" reads (leniently) as non-empty text.
struct WEBSDK_EXPORT WebSDKOpenOrbisV3RequestModel {
  /// Read from the JSON key of its name; required.
  std::string link;

  /// The link is not empty.
  bool isValid() const { return !link.empty(); }
  WEBSDK_MODEL(WebSDKOpenOrbisV3RequestModel, anyPayload, (link, lenientString, required))
};

// ---- Leaving the web view ------------------------------------------------------

/// Instructions for the screen under a closing web view. Never fails. A
/// boolean is true only when its value reads as "True", "true", "yes" or "1";
/// an optional boolean is absent when its key is.
struct WEBSDK_EXPORT CloseWebViewParams {
  /// The fields, read from the JSON keys of their names.
  ///@{
  bool shouldRefresh = false;
  std::int64_t rating = 0;
  std::optional<std::string> orbisV2SelectedPlanId;
  bool goToHome = false;
  bool moveToAccount = false;  ///< From "movetoAccount".
  bool moveToMenu = false;
  std::optional<std::string> menuId;
  bool isFromRating = false;  ///< From "isForRating".
  bool expandRefund = false;
  std::optional<bool> isBreachResolved;
  std::optional<bool> isCurrentDeviceLoggedOut;
  std::optional<std::string> flow;
  std::optional<std::string> stationId;
  ///@}

  WEBSDK_MODEL(CloseWebViewParams, anyPayload, (shouldRefresh, yesText), (rating, lenientInt),
               (orbisV2SelectedPlanId, strictString), (goToHome, yesText), (moveToAccount, yesText, "movetoAccount"),
               (moveToMenu, yesText), (menuId, strictString), (isFromRating, yesText, "isForRating"),
               (expandRefund, yesText), (isBreachResolved, yesText), (isCurrentDeviceLoggedOut, yesText),
               (flow, strictString), (stationId, strictString))
};

/// Never fails; `params` is absent when "params" is missing or JSON null.
struct WEBSDK_EXPORT WebSDKCloseWebviewWithParamsModel {
  /// Read from the JSON key of its name.
  std::optional<CloseWebViewParams> params;

  WEBSDK_MODEL(WebSDKCloseWebviewWithParamsModel, anyPayload, (params, model, ifGiven))
};

// ---- Refreshing a screen ---------------------------------------------------------

/// What a refresh request refreshes: a screen.
enum class RefreshType { screen };
constexpr auto rawValues(RefreshType) { return rawValueTable<RefreshType>({{RefreshType::screen, "screen"}}); }

/// The screens a page may ask to refresh.
enum class RefreshScreenType { menu };
constexpr auto rawValues(RefreshScreenType) {
  return rawValueTable<RefreshScreenType>({{RefreshScreenType::menu, "menu"}});
}

/// Never fails; `restaurantId` only when it is a string.
struct WEBSDK_EXPORT RefreshScreenParam {
  /// Read from the JSON key of its name.
  std::optional<std::string> restaurantId;

  WEBSDK_MODEL(RefreshScreenParam, anyPayload, (restaurantId, strictString))
};

/// Only the menu screen can be refreshed: fails unless "type" is "screen" and
/// "link" is "menu".
struct WEBSDK_EXPORT WebSDKRefreshScreenRequestModel {
  /// The fields, read from the JSON keys of their names. `type` and `link` are required.
  ///@{
  RefreshType type{};
  RefreshScreenType link{};
  std::optional<RefreshScreenParam> params;
  ///@}

  WEBSDK_MODEL(WebSDKRefreshScreenRequestModel, anyPayload, (type, enumeration, required),
               (link, enumeration, required), (params, model, ifGiven))
};

// ---- Web views that share data ---------------------------------------------------

/// Never fails; both strings "" unless given as strings.
struct WEBSDK_EXPORT WebSDKOpenWebViewAndSyncDataRequestModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::string source;
  std::string link;
  ///@}

  WEBSDK_MODEL(WebSDKOpenWebViewAndSyncDataRequestModel, anyPayload, (source, strictString), (link, strictString))
};

/// Never fails. `closeOnly` only as a JSON bool, `data` only as an object.
struct WEBSDK_EXPORT WebSDKCloseWebViewAndSyncDataRequestModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::string source;
  std::optional<bool> closeOnly;
  std::optional<JSONObject> data;
  ///@}

  WEBSDK_MODEL(WebSDKCloseWebViewAndSyncDataRequestModel, anyPayload, (source, strictString), (closeOnly, strictBool),
               (data, object))
};

// ---- Bottom bar and half card ------------------------------------------------------

/// Fails unless "tabIdentifier" is a string. Pages cannot pass tab
/// parameters: `params` is always an empty map.
struct WEBSDK_EXPORT WebSDKSwitchBottomBarModel {
  /// The fields, read from the JSON keys of their names (`params` from none). `tabIdentifier` is required.
  ///@{
  std::optional<std::string> tabIdentifier;
  std::optional<JSONObject> params = JSONObject{};
  ///@}

  WEBSDK_MODEL(WebSDKSwitchBottomBarModel, anyPayload, (tabIdentifier, strictString, required), (params, unread))
};

/// `height` read leniently ("" when missing). Never fails. The host holds it
/// by shared reference.
struct WEBSDK_EXPORT WebSDKGetHalfCardHeightRequestModel {
  /// Read from the JSON key of its name.
  std::string height;

  WEBSDK_MODEL(WebSDKGetHalfCardHeightRequestModel, anyPayload, (height, lenientString))
};

}  // namespace websdk
