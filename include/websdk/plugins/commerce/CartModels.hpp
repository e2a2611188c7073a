#pragma once
// The request models that the cart and the gifting cart families both carry.

#include "websdk/Export.hpp"
#include "websdk/json/Readings.hpp"
#include "websdk/json/Record.hpp"

#include <optional>
#include <string>

namespace websdk {

/// Read from the object under "tenant"; fails without one.
struct WEBSDK_EXPORT WebSDKGetCartRequestModel {
  std::string marketplaceId;
  std::string marketplaceCategory;
  std::string marketplaceBusinessLine;

  static std::optional<WebSDKGetCartRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKGetCartRequestModel, marketplaceId, marketplaceCategory, marketplaceBusinessLine)
};

/// Never fails; with no payload both fields are absent.
struct WEBSDK_EXPORT WebSDKUpdateCartRequestModel {
  std::optional<JSONObject> tenant;
  std::optional<JSONObject> data;

  static std::optional<WebSDKUpdateCartRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKUpdateCartRequestModel, tenant, data)
};

}  // namespace websdk
