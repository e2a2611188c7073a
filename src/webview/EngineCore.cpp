#include "websdk/webview/EngineCore.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace websdk {

EngineCore::EngineCore(MainQueue& queue, std::string timeoutDomain, int timeoutCode, StopTimedOutLoad stop)
    : queue_(queue), timeoutDomain_(std::move(timeoutDomain)), timeoutCode_(timeoutCode), stop_(std::move(stop)) {}

void EngineCore::close() {
  disarmTimeout();
  pendingTimeout_.reset();
  client_ = nullptr;
}

void EngineCore::showNothing() {
  committedURL_.reset();
  document_ = 0;
}

std::optional<std::string_view> EngineCore::url() const {
  if (!committedURL_ || committedURL_->empty()) return std::nullopt;
  return std::string_view(*committedURL_);
}

DocumentID EngineCore::commitDocument(std::string url) {
  committedURL_ = std::move(url);
  return document_ = ++lastDocument_;
}

void EngineCore::dropped(const ScriptCompletion& completion) {
  if (completion) completion(ScriptResult{std::nullopt, std::nullopt, true});
}

bool EngineCore::addHandler(std::weak_ptr<ScriptMessageHandler> handler, std::string name) {
  return handlers_.try_emplace(std::move(name), std::move(handler)).second;
}

bool EngineCore::removeHandler(std::string_view name) {
  const auto it = handlers_.find(name);
  if (it == handlers_.end()) return false;
  handlers_.erase(it);
  return true;
}

std::vector<std::string> EngineCore::handlerNames() const {
  std::vector<std::string> names;
  for (const auto& [name, handler] : handlers_) names.push_back(name);
  return names;
}

bool EngineCore::deliver(const ScriptMessage& message) const {
  const auto it = handlers_.find(message.name);
  if (it == handlers_.end()) return false;
  const auto handler = it->second.lock();
  if (!handler) return false;
  // The answers the handler gives go as it returns, before the loop turns
  // again. The handler may destroy the engine, and this core with it: only
  // the hold is used after the call.
  const auto held = queue_.holdTurns();
  handler->userContentController(message);
  return true;
}

void EngineCore::expectLoad(double timeoutInterval) {
  disarmTimeout();
  pendingTimeout_ = timeoutInterval;
}

const WebSDKNavigation& EngineCore::startNavigation(std::string url) {
  current_ = WebSDKNavigation{++lastNavigation_, std::move(url)};
  if (pendingTimeout_) armTimeout(*std::exchange(pendingTimeout_, std::nullopt));
  if (client_) client_->didStartProvisionalNavigation(&*current_);
  return *current_;
}

void EngineCore::finished() {
  if (client_) client_->didFinish(navigation());
}

void EngineCore::failed(bool committed, const WebSDKError& error) {
  if (!client_) return;
  if (committed)
    client_->didFail(navigation(), error);
  else
    client_->didFailProvisionalNavigation(navigation(), error);
}

void EngineCore::armTimeout(double seconds) {
  disarmTimeout();
  if (!(seconds > 0) || !std::isfinite(seconds)) return;
  // Whole milliseconds, rounded up: the load gets all its time. Each queue
  // bounds the delay by what its toolkit takes.
  constexpr double kLongest = 1e15;
  const auto ms = std::chrono::milliseconds(static_cast<std::int64_t>(std::ceil(std::min(seconds * 1000.0, kLongest))));
  queue_.postAfter(ms, [weak = weak_from_this(), armed = armed_] {
    // Held for the call: a client may destroy the engine when told.
    if (const auto core = weak.lock(); core && core->armed_ == armed) core->timedOut();
  });
}

void EngineCore::timedOut() {
  disarmTimeout();
  Emitting emitting(*this);
  const WebSDKNavigation navigation = current_.value_or(WebSDKNavigation{});
  if (!stop_(navigation) || !client_) return;
  client_->didFailProvisionalNavigation(&navigation,
                                        WebSDKError{timeoutDomain_, timeoutCode_, "The request timed out.", true});
}

bool EngineCore::pinchBegins() {
  Emitting emitting(*this);
  if (client_) pinchEnabled_ = client_->scrollViewWillBeginZooming();
  return pinchEnabled_;
}

}  // namespace websdk
