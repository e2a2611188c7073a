#pragma once
// Catalogue not filled in yet: no action belongs to this family so far.

#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"

#include <optional>

namespace websdk {

enum class WebSDKGenericAction {};
constexpr auto rawValues(WebSDKGenericAction) { return rawValueTable<WebSDKGenericAction>(); }

using WebSDKGenericRequestModel = WebSDKBridgeRequest<WebSDKGenericAction>;

enum class WebSDKGenericRequestPayloadCase {};
constexpr auto rawValues(WebSDKGenericRequestPayloadCase) { return rawValueTable<WebSDKGenericRequestPayloadCase>(); }

class WebSDKGenericRequestPayload : public TaggedPayload<WebSDKGenericRequestPayload, WebSDKGenericRequestPayloadCase> {
 public:
  static std::optional<WebSDKGenericRequestPayload> validateRequest(const WebSDKGenericRequestModel&) { return std::nullopt; }
};

}  // namespace websdk
