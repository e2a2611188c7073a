#pragma once
/// @file
/// The VR cart family.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/ActionTable.hpp"
#include "websdk/json/Model.hpp"

#include <optional>
#include <string>

namespace websdk {

/// Fails only without a payload dictionary.
struct WEBSDK_EXPORT WebSDKGetVRCartRequestModel {
  /// Read from the JSON key of its name.
  std::optional<std::string> flowType;

  WEBSDK_MODEL(WebSDKGetVRCartRequestModel, needsPayload, (flowType, strictString))
};

/// Fails only without a payload dictionary.
struct WEBSDK_EXPORT WebSDKClearVRCartRequestModel {
  /// Read from the JSON key of its name.
  std::optional<std::string> flowType;

  WEBSDK_MODEL(WebSDKClearVRCartRequestModel, needsPayload, (flowType, strictString))
};

/// Fails only without a payload dictionary.
struct WEBSDK_EXPORT WebSDKUpdateVRCartRequestModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::optional<JSONArray> items;
  std::optional<JSON> cartMetaData;
  std::optional<JSON> location;
  std::optional<std::string> cartType;
  std::optional<std::string> flowType;
  bool forceRefresh = false;
  ///@}

  WEBSDK_MODEL(WebSDKUpdateVRCartRequestModel, needsPayload, (items, array), (cartMetaData, raw), (location, raw),
               (cartType, strictString), (flowType, strictString), (forceRefresh, strictBool))
};

WEBSDK_ACTIONS(WebSDKVRCartAction, WebSDKVRCartRequestPayload,
               (getVRCart, "VERANDO_GET_LOCAL_CART", getVRCart, WebSDKGetVRCartRequestModel),
               (updateVRCart, "VERANDO_UPDATE_LOCAL_CART", updateVRCart, WebSDKUpdateVRCartRequestModel),
               (clearVRCart, "VERANDO_CLEAR_LOCAL_CART", clearVRCart, WebSDKClearVRCartRequestModel))

/// A request of the VR cart family: its action, the page's request id and the raw payload.
using WebSDKVRCartRequestModel = WebSDKBridgeRequest<WebSDKVRCartAction>;

}  // namespace websdk
