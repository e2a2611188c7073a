#pragma once
/// @file
/// The request a page posts, as one family reads it: the action, the page's
/// request id and the raw payload dictionary.

#include "websdk/bridge/WebSDKReply.hpp"
#include "websdk/json/Enum.hpp"
#include "websdk/json/JSON.hpp"
#include "websdk/json/Readings.hpp"
#include "websdk/json/Record.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace websdk {

/// A request of the family whose actions are `Action`.
template <RawEnum Action>
struct WebSDKBridgeRequest {
  Action type{};                      ///< The action, from "type".
  std::string requestId;              ///< The page's id for the request, which its answer carries back.
  std::optional<JSONObject> payload;  ///< The "payload" object as sent; nothing when it is not an object.

  /// The request of this family in `requestText`, or nothing when the text is
  /// not JSON, its "type" is not one of this family's actions, or its
  /// "requestId" is not a JSON string.
  static std::optional<WebSDKBridgeRequest> from(std::string_view requestText) {
    return fromParsed(parseJSON(requestText));
  }
  /// The same, from text already parsed.
  static std::optional<WebSDKBridgeRequest> fromParsed(const JSON& request) {
    const Fields fields = Fields::of(&request);
    auto type = fromRawValue<Action>(fields.lenientString("type"));
    if (!type) return std::nullopt;
    auto requestId = fields.strictString("requestId");
    if (!requestId) return std::nullopt;
    return WebSDKBridgeRequest{*type, std::move(*requestId), fields.object("payload")};
  }

  /// This request's reply, bound to it and to the document that sent it: take
  /// it while handling the request (once), then answer through it from
  /// anywhere. See WebSDKReply.
  WebSDKReply reply() const { return takeReply(requestId); }

  WEBSDK_RECORD(WebSDKBridgeRequest, type, requestId, payload)
};

}  // namespace websdk
