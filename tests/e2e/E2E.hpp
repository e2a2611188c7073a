#pragma once
// What every real-engine test stands on: a loopback HTTP server that records
// what reaches it, a web view in a window, and recorders for the page's
// reports, navigation events and bridge traffic. Tests wait by running the
// GLib main loop until the event they expect, with a bound; they never sleep.

#include "Engine.hpp"
#include "tools/common/LoopbackServer.hpp"
#include "websdk/bridge/families/Cart.hpp"
#include "websdk/webview/WebSDKNavigationDelegate.hpp"
#include "websdk/webview/WebSDKWebView.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace websdk::e2e {

using namespace std::chrono_literals;

// Generous: a loaded machine (CI, sanitizers) may take many seconds to start
// a view's first web processes; a test that passes never waits this long.
inline constexpr auto kBound = 30s;

inline bool waitFor(const std::function<bool()>& done, std::chrono::milliseconds bound = kBound) {
  return engine::runUntil(done, bound);
}

/// Whatever the page reports through window.webkit.messageHandlers.e2e.
class PageReports final : public ScriptMessageHandler {
 public:
  void userContentController(const ScriptMessage& message) override { reports.push_back(message.body); }
  /// The reports whose "kind" is `kind`, their "data" values in order.
  std::vector<JSON> of(std::string_view kind) const {
    std::vector<JSON> out;
    for (const auto& r : reports) {
      const auto* o = r.if_object();
      if (o == nullptr) continue;
      const auto* k = o->if_contains("kind");
      if (k != nullptr && k->is_string() && k->get_string() == kind) out.push_back(o->at("data"));
    }
    return out;
  }
  std::vector<JSON> reports;
};

/// Records navigation events; answers policy questions with `actionPolicy`
/// (nothing = never answer).
class RecordingDelegate final : public WebSDKNavigationDelegate {
 public:
  std::function<std::optional<WebSDKNavigationActionPolicy>(const WebSDKNavigationAction&)> actionPolicy =
      [](const WebSDKNavigationAction&) { return WebSDKNavigationActionPolicy::allow; };
  std::function<void(const WebSDKAuthenticationChallenge&, WebSDKAuthChallengeCompletion)> challengeAnswer;

  std::vector<std::string> started, finished, actions;
  std::vector<std::pair<std::string, WebSDKError>> provisionalFailures, committedFailures;
  std::vector<WebSDKAuthenticationChallenge> challenges;

  void didStartProvisionalNavigation(WebSDKWebView&, const WebSDKNavigation* n) override {
    started.push_back(n ? n->url : "");
  }
  void didFinish(WebSDKWebView&, const WebSDKNavigation* n) override { finished.push_back(n ? n->url : ""); }
  void didFail(WebSDKWebView&, const WebSDKNavigation* n, const WebSDKError& e) override {
    committedFailures.emplace_back(n ? n->url : "", e);
  }
  void didFailProvisionalNavigation(WebSDKWebView&, const WebSDKNavigation* n, const WebSDKError& e) override {
    provisionalFailures.emplace_back(n ? n->url : "", e);
  }
  void decidePolicyFor(WebSDKWebView&, const WebSDKNavigationAction& action,
                       WebSDKNavigationActionDecision decisionHandler) override {
    actions.push_back(action.url);
    if (auto policy = actionPolicy(action)) decisionHandler(*policy);
  }
  void didReceive(WebSDKWebView&, const WebSDKAuthenticationChallenge& challenge,
                  WebSDKAuthChallengeCompletion completionHandler) override {
    challenges.push_back(challenge);
    if (challengeAnswer) challengeAnswer(challenge, std::move(completionHandler));
  }
};

class RecordingListener final : public WebSDKJSCommunicationProtocol {
 public:
  // Answers may be sent from any thread, and the notice comes on the sender's.
  void didSendResponse(const WebSDKResponseModel& response) override {
    std::lock_guard lock(mutex);
    responses.push_back(response);
  }
  std::mutex mutex;
  void didReceiveRequest(std::string_view request) override {
    if (keepsRequests) requests.emplace_back(request);
  }
  bool keepsRequests = true;  // off where a test measures the library's own memory
  void didDropResponse(const WebSDKResponseModel& response, WebSDKDropReason reason) override {
    dropped.emplace_back(response, reason);
  }
  void didDropPush(std::string_view script, WebSDKDropReason reason) override {
    droppedPushes.emplace_back(script, reason);
  }
  std::vector<WebSDKResponseModel> responses;
  std::vector<std::string> requests;
  std::vector<std::pair<WebSDKResponseModel, WebSDKDropReason>> dropped;
  std::vector<std::pair<std::string, WebSDKDropReason>> droppedPushes;
};

/// A cart plugin that notes the id of each request it is handed.
class IdRecordingCart final : public DvCartWebViewCallBacks {
 public:
  std::vector<std::string> ids;
  void handleCartRequest(const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload&) override {
    ids.push_back(request.requestId);
  }
};

/// A GET_LOCAL_CART request's text, with id `id`.
inline std::string cartRequest(const std::string& id) {
  return R"({"type":"GET_LOCAL_CART","requestId":")" + id +
         R"(","payload":{"tenant":{"marketplaceId":"m","marketplaceCategory":"c","marketplaceBusinessLine":"b"}}})";
}

/// A page that defines every function the WebSDK calls and reports each call
/// (and the header object as it stood at document start) to "e2e".
std::string testPage(std::string_view body = "");

/// A web view in a shown window, over a loopback server.
class E2ETest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  /// Builds the view (again): whitelist, delegate (may be null), listener.
  void makeView(std::vector<std::string> whitelist, std::shared_ptr<RecordingDelegate> navigationDelegate);
  void makeView(const WebSDKConfig& config, std::shared_ptr<RecordingDelegate> navigationDelegate);
  /// Loads `url` and waits for its finish; false when it did not finish.
  /// Loads `path` with the app's token and an external field, and expects
  /// only the external one to arrive.
  void expectLoadWithoutTheAppsHeaders(const std::string& path);
  bool loadAndWait(const std::string& url, const WebSDKHeaders& requestHeaders = {},
                   const std::optional<WebSDKHeaders>& externalHeaders = std::nullopt);
  /// Has the page post `requestText` to "nativeRequest".
  void postFromPage(const std::string& requestText);
  /// Evaluates `script` and waits for its result.
  std::optional<JSON> evaluate(const std::string& script);

  LoopbackServer server;
  engine::Window window;
  std::shared_ptr<WebSDKWebView> view;
  std::shared_ptr<RecordingDelegate> delegate = std::make_shared<RecordingDelegate>();
  std::shared_ptr<RecordingListener> listener = std::make_shared<RecordingListener>();
  std::shared_ptr<PageReports> page = std::make_shared<PageReports>();
};

}  // namespace websdk::e2e
