#pragma once
// What every real-engine test stands on: a loopback HTTP server that records
// what reaches it, a web view in a window, and recorders for the page's
// reports, navigation events and bridge traffic. Tests wait by running the
// GLib main loop until the event they expect, with a bound; they never sleep.

#include "websdk/webkitgtk/Native.hpp"
#include "websdk/webview/WebSDKWebView.hpp"

#include <gtest/gtest.h>
#include <libsoup/soup.h>

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

inline constexpr auto kBound = 15s;

inline bool waitFor(const std::function<bool()>& done, std::chrono::milliseconds bound = kBound) {
  return webkitgtk::runUntil(done, bound);
}

/// An HTTP server on 127.0.0.1 serving fixed pages and recording every request.
class LoopbackServer {
 public:
  struct Request {
    std::string path;
    std::multimap<std::string, std::string> headers;  // names in lower case
    std::optional<std::string> header(const std::string& name) const {
      const auto it = headers.find(name);
      return it == headers.end() ? std::nullopt : std::optional(it->second);
    }
  };

  LoopbackServer() {
    server_ = soup_server_new(nullptr, nullptr);
    soup_server_add_handler(server_, nullptr, &LoopbackServer::handle, this, nullptr);
    GError* error = nullptr;
    if (!soup_server_listen_local(server_, 0, SOUP_SERVER_LISTEN_IPV4_ONLY, &error)) {
      ADD_FAILURE() << "loopback server: " << error->message;
      g_error_free(error);
      return;
    }
    GSList* uris = soup_server_get_uris(server_);
    port_ = g_uri_get_port(static_cast<GUri*>(uris->data));
    g_slist_free_full(uris, reinterpret_cast<GDestroyNotify>(g_uri_unref));
    // Further loopback addresses on the same port: hosts that differ for
    // trust decisions but reach this server.
    for (const char* address : {"127.0.0.2", "127.0.0.3"}) {
      GSocketAddress* socket = g_inet_socket_address_new_from_string(address, port_);
      if (!soup_server_listen(server_, socket, SoupServerListenOptions{}, &error)) {
        ADD_FAILURE() << "loopback server on " << address << ": " << error->message;
        g_clear_error(&error);
      }
      g_object_unref(socket);
    }
  }
  ~LoopbackServer() {
    soup_server_disconnect(server_);
    g_object_unref(server_);
  }
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  void page(const std::string& path, std::string html) { pages_[path] = std::move(html); }
  /// Served for every path without a page of its own.
  void fallback(std::string html) { fallback_ = std::move(html); }
  /// Requests to `path` are answered `status` with `location`.
  void redirect(const std::string& path, std::string location, int status = 302) {
    redirects_[path] = {status, std::move(location)};
  }
  /// Requests to `path` are taken and never answered.
  void hold(const std::string& path) { held_.insert(path); }
  /// Requests to `path` need HTTP basic credentials `user`/`password`.
  void protect(const std::string& path, std::string user, std::string password) {
    credentials_ = {std::move(user), std::move(password)};
    SoupAuthDomain* domain = soup_auth_domain_basic_new("realm", "websdk-e2e", nullptr);
    soup_auth_domain_add_path(domain, path.c_str());
    soup_auth_domain_basic_set_auth_callback(
        domain,
        +[](SoupAuthDomain*, SoupServerMessage*, const char* user, const char* password, gpointer self) -> gboolean {
          const auto& expected = static_cast<LoopbackServer*>(self)->credentials_;
          return user == expected.first && password == expected.second;
        },
        this, nullptr);
    soup_server_add_auth_domain(server_, domain);
    g_object_unref(domain);
  }

  /// "http://<host>:<port><path>"; "127.0.0.1" and "localhost" reach the same server.
  std::string url(const std::string& path, const std::string& host = "127.0.0.1") const {
    return "http://" + host + ":" + std::to_string(port_) + path;
  }

  const std::vector<Request>& requests() const { return requests_; }
  std::vector<Request> requestsTo(const std::string& path) const {
    std::vector<Request> out;
    for (const auto& r : requests_)
      if (r.path == path) out.push_back(r);
    return out;
  }

 private:
  static void handle(SoupServer*, SoupServerMessage* message, const char* path, GHashTable*, gpointer data) {
    auto& self = *static_cast<LoopbackServer*>(data);
    Request request{path, {}};
    soup_message_headers_foreach(
        soup_server_message_get_request_headers(message),
        +[](const char* name, const char* value, gpointer headers) {
          gchar* lower = g_ascii_strdown(name, -1);
          static_cast<std::multimap<std::string, std::string>*>(headers)->emplace(lower, value);
          g_free(lower);
        },
        &request.headers);
    self.requests_.push_back(std::move(request));
    if (self.held_.contains(path)) {
      soup_server_message_pause(message);
      return;
    }
    if (const auto r = self.redirects_.find(path); r != self.redirects_.end()) {
      soup_server_message_set_redirect(message, r->second.first, r->second.second.c_str());
      return;
    }
    const auto it = self.pages_.find(path);
    if (it == self.pages_.end() && !self.fallback_) {
      soup_server_message_set_status(message, 404, nullptr);
      return;
    }
    const std::string& html = it == self.pages_.end() ? *self.fallback_ : it->second;
    soup_server_message_set_status(message, 200, nullptr);
    soup_server_message_set_response(message, "text/html; charset=utf-8", SOUP_MEMORY_COPY, html.data(), html.size());
  }

  SoupServer* server_ = nullptr;
  guint port_ = 0;
  std::map<std::string, std::string> pages_;
  std::optional<std::string> fallback_;
  std::set<std::string> held_;
  std::map<std::string, std::pair<int, std::string>> redirects_;
  std::pair<std::string, std::string> credentials_;
  std::vector<Request> requests_;
};

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
  void didReceiveRequest(std::string_view request) override { requests.emplace_back(request); }
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
  GtkWidget* window = nullptr;
  std::shared_ptr<WebSDKWebView> view;
  std::shared_ptr<RecordingDelegate> delegate = std::make_shared<RecordingDelegate>();
  std::shared_ptr<RecordingListener> listener = std::make_shared<RecordingListener>();
  std::shared_ptr<PageReports> page = std::make_shared<PageReports>();
};

}  // namespace websdk::e2e
