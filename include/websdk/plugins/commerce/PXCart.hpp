#pragma once
// The PX cart family.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"

#include <optional>
#include <string>

namespace websdk {

enum class WebSDKPXCartAction { getPXCart, updatePXCart, updatePXCartV2, clearPXCart, pxSharedPreference };
constexpr auto rawValues(WebSDKPXCartAction) {
  using enum WebSDKPXCartAction;
  return rawValueTable<WebSDKPXCartAction>({{getPXCart, "PX_GET_LOCAL_CART"},
                                            {updatePXCart, "PX_UPDATE_LOCAL_CART"},
                                            {updatePXCartV2, "PX_UPDATE_LOCAL_CART_ITEMS"},
                                            {clearPXCart, "PX_CLEAR_LOCAL_CART"},
                                            {pxSharedPreference, "UPDATE_PX_SHARED_PREFERENCE"}});
}

using WebSDKPXCartRequestModel = WebSDKBridgeRequest<WebSDKPXCartAction>;

/// `data` from {"payload": {"data": {...}}} inside the payload; never fails.
struct WEBSDK_EXPORT WebSDKUpdatePXCartRequestModel {
  std::optional<JSONObject> data;

  static std::optional<WebSDKUpdatePXCartRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKUpdatePXCartRequestModel, data)
};

/// The whole payload dictionary as received; never fails.
struct WEBSDK_EXPORT WebSDKUpdatePXCartV2RequestModel {
  std::optional<JSONObject> data;

  static std::optional<WebSDKUpdatePXCartV2RequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKUpdatePXCartV2RequestModel, data)
};

/// The payload's "data" value as it stands; never fails.
struct WEBSDK_EXPORT WebSDKPXSharedPreferenceRequestModel {
  std::optional<JSON> sharedDict;

  static std::optional<WebSDKPXSharedPreferenceRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKPXSharedPreferenceRequestModel, sharedDict)
};

WEBSDK_NAMED_CASES(WebSDKPXCartRequestPayloadCase, updatePXCart, updatePXCartV2, sharedPreference, getPXCart,
                   clearPXCart)
class WEBSDK_EXPORT WebSDKPXCartRequestPayload
    : public TaggedPayload<
          WebSDKPXCartRequestPayload, WebSDKPXCartRequestPayloadCase,
          Carries<WebSDKPXCartRequestPayloadCase::updatePXCart, WebSDKUpdatePXCartRequestModel>,
          Carries<WebSDKPXCartRequestPayloadCase::updatePXCartV2, WebSDKUpdatePXCartV2RequestModel>,
          Carries<WebSDKPXCartRequestPayloadCase::sharedPreference, WebSDKPXSharedPreferenceRequestModel>> {
 public:
  static std::optional<WebSDKPXCartRequestPayload> validateRequest(const WebSDKPXCartRequestModel& request);
};

}  // namespace websdk
