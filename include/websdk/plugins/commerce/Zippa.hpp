#pragma once
// Catalogue not filled in yet: no action belongs to this family so far.

#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"

#include <optional>

namespace websdk {

enum class WebSDKZippaAction {};
constexpr auto rawValues(WebSDKZippaAction) { return rawValueTable<WebSDKZippaAction>(); }

using WebSDKZippaRequestModel = WebSDKBridgeRequest<WebSDKZippaAction>;

enum class WebSDKZippaRequestPayloadCase {};
constexpr auto rawValues(WebSDKZippaRequestPayloadCase) { return rawValueTable<WebSDKZippaRequestPayloadCase>(); }

class WebSDKZippaRequestPayload : public TaggedPayload<WebSDKZippaRequestPayload, WebSDKZippaRequestPayloadCase> {
 public:
  static std::optional<WebSDKZippaRequestPayload> validateRequest(const WebSDKZippaRequestModel&) { return std::nullopt; }
};

}  // namespace websdk
