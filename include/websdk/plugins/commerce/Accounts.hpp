#pragma once
/// @file
/// The accounts family: profile refresh, mobile number verification and logout.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/ActionTable.hpp"
#include "websdk/json/Model.hpp"

#include <optional>
#include <string>

namespace websdk {

/// Never fails: a missing or non-string "number" gives "".
struct WEBSDK_EXPORT WebSDKVerifyMobileRequestModel {
  /// Read from the JSON key of its name; the user's own, masked in recordings.
  std::string number;

  WEBSDK_MODEL(WebSDKVerifyMobileRequestModel, anyPayload, (number, strictString, sensitive))
};

/// Never fails: a missing or non-string "tid" or "sid" gives "".
struct WEBSDK_EXPORT WebSDKAccountLogoutRequestModel {
  /// The fields, read from the JSON keys of their names. `tid` and `sid` are the user's own, masked in recordings.
  ///@{
  std::string tid;
  std::string sid;
  ///@}

  WEBSDK_MODEL(WebSDKAccountLogoutRequestModel, anyPayload, (tid, strictString, sensitive),
               (sid, strictString, sensitive))
};

WEBSDK_ACTIONS(WebSDKAccountsAction, WebSDKAccountsRequestPayload,
               (updateProfileInfo, "UPDATE_PROFILE_INFO", updateProfileInfo),
               (verifyMobileNo, "VERIFY_MOBILE_NUMBER", verifyMobileNo, WebSDKVerifyMobileRequestModel),
               (logout, "LOGOUT", logout, WebSDKAccountLogoutRequestModel))

/// A request of the accounts family: its action, the page's request id and the raw payload.
using WebSDKAccountsRequestModel = WebSDKBridgeRequest<WebSDKAccountsAction>;

}  // namespace websdk
