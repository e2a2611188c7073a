#pragma once
/// @file
/// The request models that the cart and the gifting cart families both carry.

#include "websdk/Export.hpp"
#include "websdk/json/Model.hpp"

#include <optional>
#include <string>

namespace websdk {

/// Read from the object under "tenant"; fails without one.
struct WEBSDK_EXPORT WebSDKGetCartRequestModel {
  /// The fields, read from the keys of their names in the object under "tenant".
  ///@{
  std::string marketplaceId;
  std::string marketplaceCategory;
  std::string marketplaceBusinessLine;
  ///@}

  WEBSDK_MODEL(WebSDKGetCartRequestModel, within("tenant"), (marketplaceId, lenientString, "tenant.marketplaceId"),
               (marketplaceCategory, lenientString, "tenant.marketplaceCategory"),
               (marketplaceBusinessLine, lenientString, "tenant.marketplaceBusinessLine"))
};

/// Never fails; with no payload both fields are absent.
struct WEBSDK_EXPORT WebSDKUpdateCartRequestModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::optional<JSONObject> tenant;
  std::optional<JSONObject> data;
  ///@}

  WEBSDK_MODEL(WebSDKUpdateCartRequestModel, anyPayload, (tenant, object), (data, object))
};

}  // namespace websdk
