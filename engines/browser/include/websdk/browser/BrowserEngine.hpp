#pragma once
/// @file
/// A desktop browser's tab as the engine behind WebSDKWebView, for page
/// developers: a loopback server serves the page (from a folder, or from the
/// page's own dev server) with the bridge's page side put in, and the tab
/// talks to the real bridge in this process over a WebSocket. The page sees
/// what a real engine gives it: `window.webkit.messageHandlers.nativeRequest`,
/// the user scripts (the header object) and `nativeResponse(...)` calls.
///
/// ~~~{.cpp}
///   websdk::browser::BrowserConfiguration configuration{.root = "./my-page"};
///   auto engine = std::make_unique<websdk::browser::BrowserEngine>(configuration);
///   const std::string url = engine->pageURL("/");   // open it in any browser
///   auto view = websdk::WebSDKWebView::create(std::move(engine), {"127.0.0.1"}, ...);
///   websdk::browser::runUntil([] { return false; }, std::chrono::hours(8));
/// ~~~
///
/// Only a page of the origin served, holding this run's token, may open the
/// socket: the server binds 127.0.0.1 unless told otherwise, refuses requests
/// for another host name and WebSockets from another origin.

#include "websdk/Export.hpp"
#include "websdk/webview/WebEngine.hpp"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// The browser engine: any desktop browser's tab as the page.
namespace websdk::browser {

/// Where the pages come from and where the server listens.
struct WEBSDK_EXPORT BrowserConfiguration {
  /// The address to listen on. Anything but a loopback address lets other
  /// machines load the pages (and their token): the engine warns.
  std::string address = "127.0.0.1";
  /// The port; 0 takes any free one.
  unsigned short port = 0;
  /// A folder of pages, served as they are (index.html for a folder).
  std::optional<std::string> root{};
  /// A page dev server ("http://127.0.0.1:5173"), proxied instead of a folder.
  std::optional<std::string> upstream{};
  /// The page side's token; empty: a random one for this run.
  std::string token{};
  /// Serves each load's own server instead of a folder, proxied under this
  /// origin; the page's URLs read as that server's. A browser that waits on
  /// idleURL() (or on a page of an earlier engine on this port) is taken to
  /// each load.
  bool followsLoads = false;
};

/// Runs the UI thread's loop (the server's and the bridge's) until `done()`
/// holds or `bound` has passed; returns whether `done()` holds.
WEBSDK_EXPORT bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds bound);

/// The UI thread's queue: the server's event loop. post() may be called from
/// any thread.
class WEBSDK_EXPORT BrowserMainQueue final : public MainQueue {
 public:
  void post(std::function<void()> task) override;
  void postAfter(std::chrono::milliseconds delay, std::function<void()> task) override;
  bool isUIThread() const override;
};

/// A tab of a desktop browser as the page. Made, used and destroyed on the
/// UI thread (the one that runs runUntil()).
class WEBSDK_EXPORT BrowserEngine final : public WebEngine {
 public:
  /// Starts serving; see listening() for whether it could.
  explicit BrowserEngine(BrowserConfiguration configuration = {});
  ~BrowserEngine() override;
  BrowserEngine(const BrowserEngine&) = delete;
  BrowserEngine& operator=(const BrowserEngine&) = delete;

  /// Whether the server listens; error() says why not.
  bool listening() const;
  /// Why the server does not listen.
  const std::string& error() const;
  /// The origin served: "http://127.0.0.1:<port>".
  std::string origin() const;
  /// The URL of `path` on the server, to open in a browser.
  std::string pageURL(std::string_view path = "/") const;
  /// Where a browser waits for a load (followsLoads).
  std::string idleURL() const;
  /// This run's token, which the page side carries.
  const std::string& token() const;
  /// How many documents have their socket open now (frames included).
  std::size_t connectedDocuments() const;
  /// Called with a sentence each time the server refuses someone (a
  /// WebSocket from another origin, a request for another host name).
  void onRefusal(std::function<void(const std::string& why)> listener);

  // ---- WebEngine -------------------------------------------------------------
  void setClient(WebEngineClient* client) override;
  void load(const URLRequest& request) override;
  void evaluateJavaScript(std::string script, ScriptCompletion completion) override;
  void evaluateInDocument(DocumentID document, std::string script, ScriptCompletion completion) override;
  void addUserScript(const UserScript& script) override;
  void addScriptMessageHandler(std::weak_ptr<ScriptMessageHandler> handler, std::string name) override;
  void removeScriptMessageHandler(std::string_view name) override;
  std::optional<std::string_view> url() const override;
  DocumentID document() const override;
  void setPreferences(const WebPreferences& preferences) override;
  MainQueue& mainQueue() override;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace websdk::browser
