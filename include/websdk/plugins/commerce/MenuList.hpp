#pragma once
// The menu list family: a restaurant menu page shares a collection, refreshes
// the menu list for a story, or shows the menulet.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"

#include <optional>
#include <string>

namespace websdk {

enum class WebSDKMenuListAction { shareCollection, updateMenuList, showMenulet };
constexpr auto rawValues(WebSDKMenuListAction) {
  using enum WebSDKMenuListAction;
  return rawValueTable<WebSDKMenuListAction>({{shareCollection, "SHARE_COLLECTION_INFORMATION"},
                                              {updateMenuList, "UPDATE_MENU_ITEM_LIST"},
                                              {showMenulet, "SHOW_MENULET"}});
}

using WebSDKMenuListRequestModel = WebSDKBridgeRequest<WebSDKMenuListAction>;

/// The payload's "data" value as it stands; never fails.
struct WEBSDK_EXPORT WebSDKShareCollectionRequestModel {
  std::optional<JSON> data;

  static std::optional<WebSDKShareCollectionRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKShareCollectionRequestModel, data)
};

/// Never fails; each field is "" unless its key holds a string. `restaurantId`
/// comes from "id".
struct WEBSDK_EXPORT WebSDKUpdateMenuListRequestModel {
  std::optional<std::string> restaurantId;
  std::optional<std::string> storyId;

  static std::optional<WebSDKUpdateMenuListRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKUpdateMenuListRequestModel, restaurantId, storyId)
};

/// Never fails; `showMenulet` comes from "showMenuletFlag" and is absent
/// unless that is a JSON bool.
struct WEBSDK_EXPORT WebSDKShowMenuletRequestModel {
  std::optional<bool> showMenulet;

  static std::optional<WebSDKShowMenuletRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKShowMenuletRequestModel, showMenulet)
};

WEBSDK_NAMED_CASES(WebSDKMenuListPayloadCase, shareCollectionDetails, updateMenuList, showMenulet)
class WEBSDK_EXPORT WebSDKMenuListPayload
    : public TaggedPayload<
          WebSDKMenuListPayload, WebSDKMenuListPayloadCase,
          Carries<WebSDKMenuListPayloadCase::shareCollectionDetails, WebSDKShareCollectionRequestModel>,
          Carries<WebSDKMenuListPayloadCase::updateMenuList, WebSDKUpdateMenuListRequestModel>,
          Carries<WebSDKMenuListPayloadCase::showMenulet, WebSDKShowMenuletRequestModel>> {
 public:
  /// Never yields nothing.
  static std::optional<WebSDKMenuListPayload> validateRequest(const WebSDKMenuListRequestModel& request);
};

}  // namespace websdk
