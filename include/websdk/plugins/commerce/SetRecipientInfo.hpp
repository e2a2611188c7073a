#pragma once
// Catalogue not filled in yet: no action belongs to this family so far.

#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"

#include <optional>

namespace websdk {

enum class WebSDKSetRecipientInfoAction {};
constexpr auto rawValues(WebSDKSetRecipientInfoAction) { return rawValueTable<WebSDKSetRecipientInfoAction>(); }

using WebSDKSetRecipientInfoRequestModel = WebSDKBridgeRequest<WebSDKSetRecipientInfoAction>;

enum class WebSDKSetRecipientInfoRequestPayloadCase {};
constexpr auto rawValues(WebSDKSetRecipientInfoRequestPayloadCase) { return rawValueTable<WebSDKSetRecipientInfoRequestPayloadCase>(); }

class WebSDKSetRecipientInfoRequestPayload : public TaggedPayload<WebSDKSetRecipientInfoRequestPayload, WebSDKSetRecipientInfoRequestPayloadCase> {
 public:
  static std::optional<WebSDKSetRecipientInfoRequestPayload> validateRequest(const WebSDKSetRecipientInfoRequestModel&) { return std::nullopt; }
};

}  // namespace websdk
