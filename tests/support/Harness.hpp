#pragma once
// A web view over the in-memory engine, shown on a trusted page, with a
// listener that records all traffic.

#include "websdk/testing/TestingEngine.hpp"
#include "websdk/webview/WebSDKWebView.hpp"

#include <memory>
#include <mutex>
#include <string>
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
};

struct RecordingCart final : DvCartWebViewCallBacks {
  std::vector<std::pair<WebSDKCartRequestModel, WebSDKCartRequestPayload>> received;
  void handleCartRequest(const WebSDKCartRequestModel& r, const WebSDKCartRequestPayload& p) override {
    received.emplace_back(r, p);
  }
};

struct Harness {
  std::shared_ptr<RecordingListener> listener = std::make_shared<RecordingListener>();
  testing::TestingEngine* engine = nullptr;
  std::shared_ptr<WebSDKWebView> view;

  explicit Harness(std::vector<std::string> whitelist = {"localhost"}, bool whitelistAll = false,
                   std::optional<std::string> url = "https://localhost/checkout") {
    auto owned = std::make_unique<testing::TestingEngine>();
    engine = owned.get();
    engine->setURL(std::move(url));
    view = WebSDKWebView::create(std::move(owned), std::move(whitelist), nullptr, nullptr, nullptr, listener, nullptr,
                                 whitelistAll);
  }

  /// Posts a request as the page would and runs the main queue.
  void post(std::string_view requestText) {
    engine->postRequest(requestText);
    engine->queue().drain();
  }
  std::vector<JSON> pageResponses() const { return engine->nativeResponses(); }
};

}  // namespace websdk::test
