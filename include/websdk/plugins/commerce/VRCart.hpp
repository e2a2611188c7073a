#pragma once
// The VR cart family.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"

#include <optional>
#include <string>

namespace websdk {

enum class WebSDKVRCartAction { getVRCart, updateVRCart, clearVRCart };
constexpr auto rawValues(WebSDKVRCartAction) {
  using enum WebSDKVRCartAction;
  return rawValueTable<WebSDKVRCartAction>({{getVRCart, "VERANDO_GET_LOCAL_CART"},
                                            {updateVRCart, "VERANDO_UPDATE_LOCAL_CART"},
                                            {clearVRCart, "VERANDO_CLEAR_LOCAL_CART"}});
}

using WebSDKVRCartRequestModel = WebSDKBridgeRequest<WebSDKVRCartAction>;

/// Fails only without a payload dictionary.
struct WEBSDK_EXPORT WebSDKGetVRCartRequestModel {
  std::optional<std::string> flowType;

  static std::optional<WebSDKGetVRCartRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKGetVRCartRequestModel, flowType)
};

/// Fails only without a payload dictionary.
struct WEBSDK_EXPORT WebSDKClearVRCartRequestModel {
  std::optional<std::string> flowType;

  static std::optional<WebSDKClearVRCartRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKClearVRCartRequestModel, flowType)
};

/// Fails only without a payload dictionary.
struct WEBSDK_EXPORT WebSDKUpdateVRCartRequestModel {
  std::optional<JSONArray> items;
  std::optional<JSON> cartMetaData;
  std::optional<JSON> location;
  std::optional<std::string> cartType;
  std::optional<std::string> flowType;
  bool forceRefresh = false;

  static std::optional<WebSDKUpdateVRCartRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKUpdateVRCartRequestModel, items, cartMetaData, location, cartType, flowType, forceRefresh)
};

WEBSDK_NAMED_CASES(WebSDKVRCartRequestPayloadCase, getVRCart, updateVRCart, clearVRCart)
class WEBSDK_EXPORT WebSDKVRCartRequestPayload
    : public TaggedPayload<WebSDKVRCartRequestPayload, WebSDKVRCartRequestPayloadCase,
                           Carries<WebSDKVRCartRequestPayloadCase::getVRCart, WebSDKGetVRCartRequestModel>,
                           Carries<WebSDKVRCartRequestPayloadCase::updateVRCart, WebSDKUpdateVRCartRequestModel>,
                           Carries<WebSDKVRCartRequestPayloadCase::clearVRCart, WebSDKClearVRCartRequestModel>> {
 public:
  static std::optional<WebSDKVRCartRequestPayload> validateRequest(const WebSDKVRCartRequestModel& request);
};

}  // namespace websdk
