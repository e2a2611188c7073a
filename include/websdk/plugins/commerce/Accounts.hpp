#pragma once
// The accounts family: profile refresh, mobile number verification and logout.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"

#include <optional>
#include <string>

namespace websdk {

enum class WebSDKAccountsAction { updateProfileInfo, verifyMobileNo, logout };
constexpr auto rawValues(WebSDKAccountsAction) {
  using enum WebSDKAccountsAction;
  return rawValueTable<WebSDKAccountsAction>(
      {{updateProfileInfo, "UPDATE_PROFILE_INFO"}, {verifyMobileNo, "VERIFY_MOBILE_NUMBER"}, {logout, "LOGOUT"}});
}

using WebSDKAccountsRequestModel = WebSDKBridgeRequest<WebSDKAccountsAction>;

/// Never fails: a missing or non-string "number" gives "".
struct WEBSDK_EXPORT WebSDKVerifyMobileRequestModel {
  std::string number;

  static std::optional<WebSDKVerifyMobileRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKVerifyMobileRequestModel, number)
};

/// Never fails: a missing or non-string "tid" or "sid" gives "".
struct WEBSDK_EXPORT WebSDKAccountLogoutRequestModel {
  std::string tid;
  std::string sid;

  static std::optional<WebSDKAccountLogoutRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKAccountLogoutRequestModel, tid, sid)
};

WEBSDK_NAMED_CASES(WebSDKAccountsRequestPayloadCase, verifyMobileNo, logout, updateProfileInfo)
class WEBSDK_EXPORT WebSDKAccountsRequestPayload
    : public TaggedPayload<WebSDKAccountsRequestPayload, WebSDKAccountsRequestPayloadCase,
                           Carries<WebSDKAccountsRequestPayloadCase::verifyMobileNo, WebSDKVerifyMobileRequestModel>,
                           Carries<WebSDKAccountsRequestPayloadCase::logout, WebSDKAccountLogoutRequestModel>> {
 public:
  /// Never yields nothing: every accounts action decodes.
  static std::optional<WebSDKAccountsRequestPayload> validateRequest(const WebSDKAccountsRequestModel& request);
};

}  // namespace websdk
