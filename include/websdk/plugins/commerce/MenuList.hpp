#pragma once
/// @file
/// The menu list family: a restaurant menu page shares a collection, refreshes
/// the menu list for a story, or shows the menulet.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/ActionTable.hpp"
#include "websdk/json/Model.hpp"

#include <optional>
#include <string>

namespace websdk {

/// The payload's "data" value as it stands; never fails.
struct WEBSDK_EXPORT WebSDKShareCollectionRequestModel {
  /// Read from the JSON key of its name.
  std::optional<JSON> data;

  WEBSDK_MODEL(WebSDKShareCollectionRequestModel, anyPayload, (data, raw))
};

/// Never fails; each field is "" unless its key holds a string. `restaurantId`
/// comes from "id".
struct WEBSDK_EXPORT WebSDKUpdateMenuListRequestModel {
  /// The fields, read from the JSON keys of their names (`restaurantId` from "id").
  ///@{
  std::optional<std::string> restaurantId;
  std::optional<std::string> storyId;
  ///@}

  WEBSDK_MODEL(WebSDKUpdateMenuListRequestModel, anyPayload, (restaurantId, strictString, "id", orEmpty),
               (storyId, strictString, orEmpty))
};

/// Never fails; `showMenulet` comes from "showMenuletFlag" and is absent
/// unless that is a JSON bool.
struct WEBSDK_EXPORT WebSDKShowMenuletRequestModel {
  /// Read from the JSON key "showMenuletFlag".
  std::optional<bool> showMenulet;

  WEBSDK_MODEL(WebSDKShowMenuletRequestModel, anyPayload, (showMenulet, strictBool, "showMenuletFlag"))
};

WEBSDK_ACTIONS(WebSDKMenuListAction, WebSDKMenuListPayload,
               (shareCollection, "SHARE_COLLECTION_INFORMATION", shareCollectionDetails,
                WebSDKShareCollectionRequestModel),
               (updateMenuList, "UPDATE_MENU_ITEM_LIST", updateMenuList, WebSDKUpdateMenuListRequestModel),
               (showMenulet, "SHOW_MENULET", showMenulet, WebSDKShowMenuletRequestModel))

/// A request of the menu list family: its action, the page's request id and the raw payload.
using WebSDKMenuListRequestModel = WebSDKBridgeRequest<WebSDKMenuListAction>;

}  // namespace websdk
