#pragma once
// A web view over the in-memory engine, shown on a trusted page, with a
// listener that records all traffic.

#include "websdk/WebSDK.hpp"
#include "websdk/testing/TestingEngine.hpp"
#include "websdk/webview/WebSDKWebView.hpp"

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace websdk::test {

// Notices of answers come on the sender's thread, so they are recorded under a lock.
struct RecordingListener final : WebSDKJSCommunicationProtocol {
  std::mutex mutex;
  std::vector<std::string> requests;
  std::vector<WebSDKResponseModel> responses;
  void didSendResponse(const WebSDKResponseModel& r) override {
    std::lock_guard lock(mutex);
    responses.push_back(r);
  }
  void didReceiveRequest(std::string_view r) override { requests.emplace_back(r); }
  std::vector<std::pair<std::string, WebSDKDropReason>> dropped;  // request ids, or push scripts
  void didDropResponse(const WebSDKResponseModel& r, WebSDKDropReason why) override {
    dropped.emplace_back(r.requestId, why);
  }
  void didDropPush(std::string_view script, WebSDKDropReason why) override { dropped.emplace_back(script, why); }
  std::vector<std::string> missed;  // "id family action" of each request past its deadline
  void didMissAnswerDeadline(const WebSDKPendingRequest& r) override {
    missed.push_back(r.requestId + " " + std::string(r.family) + " " + std::string(r.action));
  }
};

struct RecordingCart final : DvCartWebViewCallBacks {
  std::vector<std::pair<WebSDKCartRequestModel, WebSDKCartRequestPayload>> received;
  void handleCartRequest(const WebSDKCartRequestModel& r, const WebSDKCartRequestPayload& p) override {
    received.emplace_back(r, p);
  }
};

/// The plugins a view takes when it is built.
struct FirstPlugins {
  std::shared_ptr<DvWebViewGenericCallsBacks> generic = nullptr;
  std::shared_ptr<DvWebViewPaymentsCallsBacks> payments = nullptr;
  std::shared_ptr<DvWebViewSetRecipientInfoCallsBacks> setRecipientInfo = nullptr;
};

struct Harness {
  std::shared_ptr<RecordingListener> listener = std::make_shared<RecordingListener>();
  testing::TestingEngine* engine = nullptr;
  std::shared_ptr<WebSDKWebView> view;

  explicit Harness(std::vector<std::string> whitelist = {"localhost"}, bool whitelistAll = false,
                   std::optional<std::string> url = "https://localhost/checkout", const FirstPlugins& plugins = {}) {
    auto owned = std::make_unique<testing::TestingEngine>();
    engine = owned.get();
    engine->setURL(std::move(url));
    view = WebSDKWebView::create(std::move(owned), std::move(whitelist), plugins.generic, plugins.payments, nullptr,
                                 listener, plugins.setRecipientInfo, whitelistAll);
  }

  /// A view made with `config`, on https://localhost/checkout.
  explicit Harness(const WebSDKConfig& config) {
    auto owned = std::make_unique<testing::TestingEngine>();
    engine = owned.get();
    engine->setURL("https://localhost/checkout");
    view = WebSDKWebView::create(std::move(owned), config, nullptr, nullptr, nullptr, listener);
  }

  /// Posts a request as the page would, runs the main queue, and returns
  /// every envelope the page has received so far.
  std::vector<JSON> post(std::string_view requestText) {
    engine->postRequest(requestText);
    engine->queue().drain();
    return engine->nativeResponses();
  }
  std::vector<JSON> pageResponses() const { return engine->nativeResponses(); }
};

/// {"type": action, "requestId": "r1", "payload": payload}; no "payload" key
/// when `payload` is nothing.
inline std::string requestText(std::string_view action, std::optional<std::string_view> payload) {
  std::string text = R"({"type":")" + std::string(action) + R"(","requestId":"r1")";
  if (payload) text += R"(,"payload":)" + std::string(*payload);
  return text + "}";
}

}  // namespace websdk::test
