#pragma once
// Catalogue not filled in yet: no action belongs to this family so far.

#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"

#include <optional>

namespace websdk {

enum class WebSDKAccountsAction {};
constexpr auto rawValues(WebSDKAccountsAction) { return rawValueTable<WebSDKAccountsAction>(); }

using WebSDKAccountsRequestModel = WebSDKBridgeRequest<WebSDKAccountsAction>;

enum class WebSDKAccountsRequestPayloadCase {};
constexpr auto rawValues(WebSDKAccountsRequestPayloadCase) { return rawValueTable<WebSDKAccountsRequestPayloadCase>(); }

class WebSDKAccountsRequestPayload : public TaggedPayload<WebSDKAccountsRequestPayload, WebSDKAccountsRequestPayloadCase> {
 public:
  static std::optional<WebSDKAccountsRequestPayload> validateRequest(const WebSDKAccountsRequestModel&) { return std::nullopt; }
};

}  // namespace websdk
