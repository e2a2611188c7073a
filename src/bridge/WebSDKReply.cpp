#include "websdk/bridge/WebSDKReply.hpp"

#include "../LogText.hpp"
#include "ReplyOffer.hpp"
#include "websdk/Log.hpp"

#include <utility>

namespace websdk {
namespace {

// The offers open on this thread, innermost first.
thread_local detail::ReplyOffer* currentOffer = nullptr;

const std::string kNoId;

}  // namespace

namespace detail {

ReplyOffer::ReplyOffer(const std::weak_ptr<BridgeView>& view, std::string_view requestId, DocumentID document,
                       std::uint64_t serial) noexcept
    : view_(view),
      requestId_(requestId),
      document_(document),
      serial_(serial),
      outer_(std::exchange(currentOffer, this)) {}

ReplyOffer::~ReplyOffer() { currentOffer = outer_; }

}  // namespace detail

WebSDKReply takeReply(std::string_view requestId) {
  detail::ReplyOffer* offer = currentOffer;
  if (offer == nullptr || offer->requestId_ != requestId) {
    log(LogLevel::warning, "answer",
        "reply() for request id \"" + shownInLog(requestId) +
            "\" was called outside the plugin's call for that request; this reply answers nothing. Take the "
            "reply inside handle...Request and move it to where the answer is made");
    return WebSDKReply();
  }
  if (std::exchange(offer->taken_, true)) {
    log(LogLevel::warning, "answer",
        "reply() for request id \"" + shownInLog(requestId) +
            "\" was taken already in this call; this second reply answers nothing. A request has one reply: "
            "move it rather than taking it again");
    return WebSDKReply();
  }
  return WebSDKReply(
      WebSDKReply::Binding{offer->view_, std::string(requestId), offer->document_, offer->serial_, false});
}

WebSDKReply::WebSDKReply() noexcept = default;
WebSDKReply::WebSDKReply(Binding binding) noexcept : binding_(std::move(binding)) {}
// A moved-from reply is empty: it owes nothing, and says so when used.
WebSDKReply::WebSDKReply(WebSDKReply&& other) noexcept : binding_(std::exchange(other.binding_, std::nullopt)) {}

WebSDKReply& WebSDKReply::operator=(WebSDKReply&& other) noexcept {
  if (this != &other) {
    WebSDKReply abandoned(std::move(*this));
    binding_ = std::exchange(other.binding_, std::nullopt);
  }
  return *this;
}

WebSDKReply::~WebSDKReply() {
  if (!binding_ || binding_->answered) return;
  binding_->answered = true;
  if (const auto view = binding_->view.lock())
    view->answerRequest(makeResponse(WebSDKResponseType::failure, binding_->requestId, std::nullopt, std::nullopt,
                                     "the app gave no answer to this request"),
                        binding_->document, binding_->serial, true);
}

WebSDKReply::operator bool() const noexcept { return binding_ && !binding_->answered; }

const std::string& WebSDKReply::requestId() const noexcept { return binding_ ? binding_->requestId : kNoId; }

void WebSDKReply::answer(WebSDKResponseModel response) {
  if (!binding_) {
    log(LogLevel::warning, "answer",
        "an answer to request id \"" + shownInLog(response.requestId) +
            "\" through an empty reply (moved from, or taken outside its plugin call) answers nothing");
    return;
  }
  const auto view = binding_->view.lock();
  if (std::exchange(binding_->answered, true)) {
    log(LogLevel::warning, "answer", view ? view->viewName() : std::string_view(),
        "request id \"" + shownInLog(binding_->requestId) +
            "\" was answered through its reply already; this second answer is refused");
    if (view) view->refuseRepeatedAnswer(binding_->requestId);
    return;
  }
  if (!view) {
    log(LogLevel::warning, "answer",
        "the answer to request id \"" + shownInLog(binding_->requestId) +
            "\" came after its web view was torn down; dropped");
    return;
  }
  view->answerRequest(std::move(response), binding_->document, binding_->serial, false);
}

void WebSDKReply::sendWebSDKResponse(const JSONObject& with, WebSDKResponseType type,
                                     std::optional<std::int64_t> statusCode, std::optional<std::string> statusMessage) {
  answer(makeResponse(type, requestId(), renderPayload(with), statusCode, std::move(statusMessage)));
}

void WebSDKReply::sendWebSDKResponse(const WebSDKResponseProtocol& with, WebSDKResponseType type,
                                     std::optional<std::int64_t> statusCode, std::optional<std::string> statusMessage) {
  answer(makeResponse(type, requestId(), renderPayload(with.json()), statusCode, std::move(statusMessage)));
}

void WebSDKReply::sendWebSDKResponse(std::string with, WebSDKResponseType type, std::optional<std::int64_t> statusCode,
                                     std::optional<std::string> statusMessage) {
  answer(makeResponse(type, requestId(), std::move(with), statusCode, std::move(statusMessage)));
}

void WebSDKReply::sendWebSDKResponse(WebSDKResponseType type, const std::optional<std::string>& encoder) {
  // As the by-id form: bytes that are not UTF-8 are no payload.
  std::optional<std::string> payload = encoder && isValidUTF8(*encoder) ? encoder : std::nullopt;
  answer(makeResponse(type, requestId(), std::move(payload), std::nullopt, std::nullopt));
}

void WebSDKReply::sendSuccess(std::optional<std::int64_t> statusCode, std::optional<std::string> statusMessage) {
  answer(makeResponse(WebSDKResponseType::success, requestId(), std::nullopt, statusCode, std::move(statusMessage)));
}

void WebSDKReply::sendFailure(std::optional<std::int64_t> statusCode, std::optional<std::string> statusMessage) {
  answer(makeResponse(WebSDKResponseType::failure, requestId(), std::nullopt, statusCode, std::move(statusMessage)));
}

}  // namespace websdk
