#pragma once
/// @file
/// The answer to one delivered request, bound to it: the plugin takes it from
/// the request it is handling (`request.reply()`), keeps or moves it wherever
/// the work goes, and answers through it exactly once, from any thread. It
/// answers only the document that asked, and only that request, even when the
/// page reuses its ids. A reply destroyed without an answer tells the page the
/// request failed, so no page waits forever on a request the host let go.

#include "websdk/Export.hpp"
#include "websdk/json/JSON.hpp"
#include "websdk/webview/WebSDKResponseModel.hpp"
#include "websdk/webview/WebSDKResponseProtocol.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace websdk {

class BridgeView;

/// The answer a request owes its page, bound to that request and the document
/// that sent it: taken once while a plugin handles the request
/// (WebSDKBridgeRequest::reply()), then answered once, from anywhere.
class WEBSDK_EXPORT WebSDKReply {
 public:
  /// An empty reply: it answers nothing (and says so when used).
  WebSDKReply() noexcept;
  /// Takes over what `other` owes; `other` is left empty.
  WebSDKReply(WebSDKReply&& other) noexcept;
  /// Answers what this reply held as abandoned (see the destructor) first.
  WebSDKReply& operator=(WebSDKReply&& other) noexcept;
  WebSDKReply(const WebSDKReply&) = delete;
  WebSDKReply& operator=(const WebSDKReply&) = delete;
  /// Unanswered, it answers the page FAILED (status `unknown`, with a message
  /// saying the app gave no answer) and tells the listener
  /// (`didAbandonRequest`). Any thread.
  ~WebSDKReply();

  /// Whether this reply still owes its request an answer.
  explicit operator bool() const noexcept;
  /// The id of the request it answers ("" when empty).
  const std::string& requestId() const noexcept;

  // The same answers as the view's send operations by id, bound to the
  // request. Each may be called once, from any thread; a second answer is
  // refused, logged and counted (`WebSDKAnswerCounts::repeated`).

  /// A dictionary payload, rendered as indented JSON text.
  void sendWebSDKResponse(const JSONObject& with, WebSDKResponseType type,
                          std::optional<std::int64_t> statusCode = std::nullopt,
                          std::optional<std::string> statusMessage = std::nullopt);
  /// A response model, rendered as indented JSON text.
  void sendWebSDKResponse(const WebSDKResponseProtocol& with, WebSDKResponseType type,
                          std::optional<std::int64_t> statusCode = std::nullopt,
                          std::optional<std::string> statusMessage = std::nullopt);
  /// A payload string used verbatim.
  void sendWebSDKResponse(std::string with, WebSDKResponseType type,
                          std::optional<std::int64_t> statusCode = std::nullopt,
                          std::optional<std::string> statusMessage = std::nullopt);
  /// Ready-encoded payload bytes (UTF-8; left out when they are not): the
  /// envelope is the one the by-id form makes of them, default code, no message.
  void sendWebSDKResponse(WebSDKResponseType type, const std::optional<std::string>& encoder);
  /// A success without a payload.
  void sendSuccess(std::optional<std::int64_t> statusCode = std::nullopt,
                   std::optional<std::string> statusMessage = std::nullopt);
  /// A failure without a payload.
  void sendFailure(std::optional<std::int64_t> statusCode = std::nullopt,
                   std::optional<std::string> statusMessage = std::nullopt);

 private:
  // What a reply is bound to, held in the reply itself: taking a reply costs
  // no allocation beyond what the answer makes.
  struct Binding {
    std::weak_ptr<BridgeView> view;
    std::string requestId;
    std::uint64_t document = 0;
    std::uint64_t serial = 0;  // tells a reused id's requests apart
    bool answered = false;
  };
  friend WEBSDK_EXPORT WebSDKReply takeReply(std::string_view requestId);
  explicit WebSDKReply(Binding binding) noexcept;
  void answer(WebSDKResponseModel response);
  std::optional<Binding> binding_;
};

/// The reply of the request with id `requestId` that a plugin is being handed
/// on this thread now; once. Empty, with a message saying why, outside the
/// plugin's call or when already taken. Requests call it as `reply()`.
WEBSDK_EXPORT WebSDKReply takeReply(std::string_view requestId);

}  // namespace websdk
