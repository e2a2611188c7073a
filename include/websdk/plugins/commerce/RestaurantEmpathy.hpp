#pragma once
// Catalogue not filled in yet: no action belongs to this family so far.

#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"

#include <optional>

namespace websdk {

enum class WebSDKRestaurantEmpathyAction {};
constexpr auto rawValues(WebSDKRestaurantEmpathyAction) { return rawValueTable<WebSDKRestaurantEmpathyAction>(); }

using WebSDKRestaurantEmpathyRequestModel = WebSDKBridgeRequest<WebSDKRestaurantEmpathyAction>;

enum class WebSDKRestaurantEmpathyRequestPayloadCase {};
constexpr auto rawValues(WebSDKRestaurantEmpathyRequestPayloadCase) { return rawValueTable<WebSDKRestaurantEmpathyRequestPayloadCase>(); }

class WebSDKRestaurantEmpathyRequestPayload : public TaggedPayload<WebSDKRestaurantEmpathyRequestPayload, WebSDKRestaurantEmpathyRequestPayloadCase> {
 public:
  static std::optional<WebSDKRestaurantEmpathyRequestPayload> validateRequest(const WebSDKRestaurantEmpathyRequestModel&) { return std::nullopt; }
};

}  // namespace websdk
