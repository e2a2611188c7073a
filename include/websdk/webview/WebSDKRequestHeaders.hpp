#pragma once
/// @file
/// The names of the request headers a host fills.

#include "websdk/Export.hpp"

#include <string_view>

namespace websdk {

/// The header names (and page header keys) a host uses when it fills the
/// request headers of a load. The WebSDK fixes only the names; the values are
/// the host's.
struct WEBSDK_EXPORT WebSDKRequestHeaders {
  /// A header's name, as the load sends it and the page reads it.
  ///@{
  static constexpr std::string_view platform = "platform";
  static constexpr std::string_view versionCode = "version-code";
  static constexpr std::string_view lat = "lat";
  static constexpr std::string_view lng = "lng";
  static constexpr std::string_view sid = "sid";
  static constexpr std::string_view tid = "tid";
  static constexpr std::string_view token = "token";
  static constexpr std::string_view jid = "jid";
  static constexpr std::string_view deviceId = "deviceId";
  static constexpr std::string_view statusBarHeight = "statusBarHeight";
  static constexpr std::string_view bottomOffset = "bottomOffset";
  static constexpr std::string_view cartAddressId = "cartAddressId";
  static constexpr std::string_view webSDKVersion = "websdk-version";
  static constexpr std::string_view appVersion = "app-version";
  static constexpr std::string_view currentLocation = "currentLocation";
  static constexpr std::string_view osversion = "osVersion";
  static constexpr std::string_view deviceModel = "deviceModel";
  static constexpr std::string_view modelName = "model-name";
  static constexpr std::string_view manufacturer = "manufacturer";
  static constexpr std::string_view appsflyerId = "appsflyerId";
  static constexpr std::string_view analyticsPlatform = "analyticsPlatform";
  static constexpr std::string_view referrer = "referrer";
  static constexpr std::string_view userId = "userId";
  static constexpr std::string_view cartId = "cartId";
  static constexpr std::string_view marketPlaceId = "marketplaceId";
  static constexpr std::string_view marketPlaceCategory = "marketplaceCategory";
  static constexpr std::string_view marketPlaceBusinessLine = "marketplaceBusinessLine";
  static constexpr std::string_view errorUrl = "errorUrl";
  static constexpr std::string_view errorMessage = "errorMessage";
  static constexpr std::string_view cartPageLoadingFromBottomTabBar = "isFromBottomBar";
  static constexpr std::string_view isWebSDKEnabled = "x-websdk";
  static constexpr std::string_view accessibilityEnabled = "accessibility-enabled";
  static constexpr std::string_view cityId = "cityId";
  static constexpr std::string_view showPxBottomBar = "isPxBottomBarXpEnabled";
  static constexpr std::string_view plVersion = "plVersion";
  ///@}
};

}  // namespace websdk
