#pragma once
// The set recipient info family: a gifting page hands the host the
// recipient's details and the gift flow.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"

#include <optional>
#include <string>

namespace websdk {

enum class WebSDKSetRecipientInfoAction { SetRecipientInfo };
constexpr auto rawValues(WebSDKSetRecipientInfoAction) {
  return rawValueTable<WebSDKSetRecipientInfoAction>(
      {{WebSDKSetRecipientInfoAction::SetRecipientInfo, "SET_RECIPIENT_INFO"}});
}

/// Its `type` is always SetRecipientInfo, the family's one action.
using WebSDKSetRecipientInfoRequestModel = WebSDKBridgeRequest<WebSDKSetRecipientInfoAction>;

/// The recipient's details; each field absent unless its key holds a string.
struct WEBSDK_EXPORT WebSDKRecipientInfoUserDataResponseModel {
  std::optional<std::string> messageId;
  std::optional<std::string> recipientName;
  std::optional<std::string> createdTs;
  std::optional<std::string> expiredTs;

  static std::optional<WebSDKRecipientInfoUserDataResponseModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKRecipientInfoUserDataResponseModel, messageId, recipientName, createdTs, expiredTs)
};

/// Read from the request despite its name. Never fails; `flowData` is always
/// there, with all its fields absent when "flowData" is not an object.
struct WEBSDK_EXPORT WebSDKRecipientInfoUserFlowResponseModel {
  std::optional<std::string> flowType;
  std::optional<WebSDKRecipientInfoUserDataResponseModel> flowData;

  static std::optional<WebSDKRecipientInfoUserFlowResponseModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKRecipientInfoUserFlowResponseModel, flowType, flowData)
};

WEBSDK_NAMED_CASES(WebSDKSetRecipientInfoRequestPayloadCase, SetRecipientInfo)
class WEBSDK_EXPORT WebSDKSetRecipientInfoRequestPayload
    : public TaggedPayload<WebSDKSetRecipientInfoRequestPayload, WebSDKSetRecipientInfoRequestPayloadCase,
                           Carries<WebSDKSetRecipientInfoRequestPayloadCase::SetRecipientInfo,
                                   WebSDKRecipientInfoUserFlowResponseModel>> {
 public:
  /// Never yields nothing.
  static std::optional<WebSDKSetRecipientInfoRequestPayload> validateRequest(
      const WebSDKSetRecipientInfoRequestModel& request);
};

}  // namespace websdk
