#pragma once
/// @file
/// The set recipient info family: a gifting page hands the host the
/// recipient's details and the gift flow.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/ActionTable.hpp"
#include "websdk/json/Model.hpp"

#include <optional>
#include <string>

namespace websdk {

/// Its `type` is always SetRecipientInfo, the family's one action.

/// The recipient's details; each field absent unless its key holds a string.
struct WEBSDK_EXPORT WebSDKRecipientInfoUserDataResponseModel {
  /// The fields, read from the JSON keys of their names. `recipientName` is the user's own, masked in recordings.
  ///@{
  std::optional<std::string> messageId;
  std::optional<std::string> recipientName;
  std::optional<std::string> createdTs;
  std::optional<std::string> expiredTs;
  ///@}

  WEBSDK_MODEL(WebSDKRecipientInfoUserDataResponseModel, anyPayload, (messageId, strictString),
               (recipientName, strictString, sensitive), (createdTs, strictString), (expiredTs, strictString))
};

/// Read from the request despite its name. Never fails; `flowData` is always
/// there, with all its fields absent when "flowData" is not an object.
struct WEBSDK_EXPORT WebSDKRecipientInfoUserFlowResponseModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::optional<std::string> flowType;
  std::optional<WebSDKRecipientInfoUserDataResponseModel> flowData;
  ///@}

  WEBSDK_MODEL(WebSDKRecipientInfoUserFlowResponseModel, anyPayload, (flowType, strictString), (flowData, model))
};

WEBSDK_ACTIONS(WebSDKSetRecipientInfoAction, WebSDKSetRecipientInfoRequestPayload,
               (SetRecipientInfo, "SET_RECIPIENT_INFO", SetRecipientInfo, WebSDKRecipientInfoUserFlowResponseModel))

/// A request of the recipient info family: its action, the page's request id and the raw payload.
using WebSDKSetRecipientInfoRequestModel = WebSDKBridgeRequest<WebSDKSetRecipientInfoAction>;

}  // namespace websdk
