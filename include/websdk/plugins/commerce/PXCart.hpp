#pragma once
/// @file
/// The PX cart family.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/ActionTable.hpp"
#include "websdk/json/Model.hpp"

#include <optional>
#include <string>

namespace websdk {

/// `data` from {"payload": {"data": {...}}} inside the payload; never fails.
struct WEBSDK_EXPORT WebSDKUpdatePXCartRequestModel {
  /// Read from the JSON key of its name.
  std::optional<JSONObject> data;

  WEBSDK_MODEL(WebSDKUpdatePXCartRequestModel, anyPayload, (data, object, "payload.data"))
};

/// The whole payload dictionary as received; never fails.
struct WEBSDK_EXPORT WebSDKUpdatePXCartV2RequestModel {
  /// The whole payload, as received.
  std::optional<JSONObject> data;

  WEBSDK_MODEL(WebSDKUpdatePXCartV2RequestModel, anyPayload, (data, wholePayload))
};

/// The payload's "data" value as it stands; never fails.
struct WEBSDK_EXPORT WebSDKPXSharedPreferenceRequestModel {
  /// Read from the JSON key "data".
  std::optional<JSON> sharedDict;

  WEBSDK_MODEL(WebSDKPXSharedPreferenceRequestModel, anyPayload, (sharedDict, raw, "data"))
};

WEBSDK_ACTIONS(WebSDKPXCartAction, WebSDKPXCartRequestPayload, (getPXCart, "PX_GET_LOCAL_CART", getPXCart),
               (updatePXCart, "PX_UPDATE_LOCAL_CART", updatePXCart, WebSDKUpdatePXCartRequestModel),
               (updatePXCartV2, "PX_UPDATE_LOCAL_CART_ITEMS", updatePXCartV2, WebSDKUpdatePXCartV2RequestModel),
               (clearPXCart, "PX_CLEAR_LOCAL_CART", clearPXCart),
               (pxSharedPreference, "UPDATE_PX_SHARED_PREFERENCE", sharedPreference,
                WebSDKPXSharedPreferenceRequestModel))

/// A request of the PX cart family: its action, the page's request id and the raw payload.
using WebSDKPXCartRequestModel = WebSDKBridgeRequest<WebSDKPXCartAction>;

}  // namespace websdk
