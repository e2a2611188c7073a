#pragma once
// Catalogue not filled in yet: no action belongs to this family so far.

#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"

#include <optional>

namespace websdk {

enum class WebSDKPaymentsAction {};
constexpr auto rawValues(WebSDKPaymentsAction) { return rawValueTable<WebSDKPaymentsAction>(); }

using WebSDKPaymentsRequestModel = WebSDKBridgeRequest<WebSDKPaymentsAction>;

enum class WebSDKPaymentsRequestPayloadCase {};
constexpr auto rawValues(WebSDKPaymentsRequestPayloadCase) { return rawValueTable<WebSDKPaymentsRequestPayloadCase>(); }

class WebSDKPaymentsRequestPayload : public TaggedPayload<WebSDKPaymentsRequestPayload, WebSDKPaymentsRequestPayloadCase> {
 public:
  static std::optional<WebSDKPaymentsRequestPayload> validateRequest(const WebSDKPaymentsRequestModel&) { return std::nullopt; }
};

}  // namespace websdk
