#pragma once
// Catalogue not filled in yet: no action belongs to this family so far.

#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"

#include <optional>

namespace websdk {

enum class WebSDKMenuListAction {};
constexpr auto rawValues(WebSDKMenuListAction) { return rawValueTable<WebSDKMenuListAction>(); }

using WebSDKMenuListRequestModel = WebSDKBridgeRequest<WebSDKMenuListAction>;

enum class WebSDKMenuListPayloadCase {};
constexpr auto rawValues(WebSDKMenuListPayloadCase) { return rawValueTable<WebSDKMenuListPayloadCase>(); }

class WebSDKMenuListPayload : public TaggedPayload<WebSDKMenuListPayload, WebSDKMenuListPayloadCase> {
 public:
  static std::optional<WebSDKMenuListPayload> validateRequest(const WebSDKMenuListRequestModel&) { return std::nullopt; }
};

}  // namespace websdk
