#pragma once
/// @file
/// The Qt WebEngine engine behind WebSDKWebView (Qt 6 Widgets). This header
/// includes no Qt header: a host that places the view in its own window
/// includes websdk/qtwebengine/Native.hpp and asks for the widget.
///
/// ~~~{.cpp}
///   websdk::qtwebengine::initialize(argc, argv);   // before any other Qt object
///   auto engine = std::make_unique<websdk::qtwebengine::QtWebEngine>();
///   auto view = websdk::WebSDKWebView::create(std::move(engine), {"example.com"}, ...);
///   layout->addWidget(websdk::qtwebengine::widget(view->engine()));
/// ~~~
///
/// Pages do not change: they post to `window.webkit.messageHandlers.<name>` and
/// receive `nativeResponse(...)` as they do under WebKit.

#include "websdk/Export.hpp"
#include "websdk/webview/LocalPages.hpp"
#include "websdk/webview/WebEngine.hpp"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

/// The Qt WebEngine engine and what a host needs to start it.
namespace websdk::qtwebengine {

/// Makes the process's QApplication (unless the host made one already) on the
/// calling thread, which becomes the UI thread. False when there is no display
/// to open. Run as root, Chromium's sandbox cannot start: the engine turns it
/// off for the process (QTWEBENGINE_CHROMIUM_FLAGS gets --no-sandbox) and says so.
/// A host that makes its own QApplication calls prepare() before it.
WEBSDK_EXPORT bool initialize(int& argc, char** argv);
/// The same, without the process's command line.
WEBSDK_EXPORT bool initialize();

/// What Qt WebEngine needs before the QApplication exists: shared GL contexts,
/// the schemes of local pages, and the sandbox switch for root. initialize()
/// calls it; a host that makes its own QApplication calls it first.
WEBSDK_EXPORT void prepare(const std::vector<std::string>& localSchemes = {"app"});

/// Sends the WebSDK's log (websdk/Log.hpp) to Qt's message handler under the
/// "websdk" category unless the host set a sink of its own.
WEBSDK_EXPORT void logToQt();

/// Runs the UI thread's event loop until `done()` holds or `bound` has passed;
/// returns whether `done()` holds. For tools and tests without a loop of their own.
WEBSDK_EXPORT bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds bound);

/// How the engine's profile is made.
struct WEBSDK_EXPORT QtWebEngineConfiguration {
  /// Keep no cache, cookies or storage beyond the engine's life (a profile of
  /// its own); else the views share the process's default profile.
  bool ephemeral = false;
  /// Chromium's developer tools for page developers (a remote debugging port
  /// from QTWEBENGINE_REMOTE_DEBUGGING); WEBSDK_INSPECTOR=1 does the same.
  bool webInspector = false;
  /// Pages the view serves itself (app://checkout/...). Their schemes must be
  /// among those prepare() registered ("app" by default).
  std::vector<LocalPages> localPages{};
};

/// The main queue on the Qt event loop of the UI thread (the first to make
/// one). post() may be called from any thread; tasks run in the order posted,
/// also after the queue that took them is gone.
class WEBSDK_EXPORT QtMainQueue final : public MainQueue {
 public:
  QtMainQueue();
  ~QtMainQueue() override;
  QtMainQueue(const QtMainQueue&) = delete;
  QtMainQueue& operator=(const QtMainQueue&) = delete;
  void post(std::function<void()> task) override;
  void postAfter(std::chrono::milliseconds delay, std::function<void()> task) override;
  bool isUIThread() const override;
  std::shared_ptr<void> holdTurns() override;  ///< See MainQueue::holdTurns.

 private:
  struct Context;
  std::shared_ptr<Context> context_;
  std::thread::id thread_ = std::this_thread::get_id();
};

/// The engine on a QWebEngineView: the channel for the page's messages in an
/// isolated world, the app's fields added to trusted requests only, and the
/// navigation questions carried to the web view.
class WEBSDK_EXPORT QtWebEngine final : public WebEngine {
 public:
  /// A new QWebEngineView. Must be made on the UI thread, after initialize().
  explicit QtWebEngine(const QtWebEngineConfiguration& configuration = {});
  /// Leaves held navigation decisions unanswered for good and destroys the view.
  ~QtWebEngine() override;
  QtWebEngine(const QtWebEngine&) = delete;
  QtWebEngine& operator=(const QtWebEngine&) = delete;

  void setClient(WebEngineClient* client) override;
  /// Loads `request`. The app's fields are added by the engine to each request
  /// of the load, the first and every redirect, whose host is trusted; they
  /// are never on the request otherwise. A load that has not committed within
  /// `timeoutInterval` seconds of starting is stopped and reported as timed out.
  void load(const URLRequest& request) override;
  void evaluateJavaScript(std::string script, ScriptCompletion completion) override;
  void evaluateInDocument(DocumentID document, std::string script, ScriptCompletion completion) override;
  /// Answers go as calls of a function the document holds, with its mark:
  /// the page checks the mark in the call itself, with no script around it.
  bool answersAsData() const override { return true; }
  void evaluateAnswer(DocumentID document, WebSDKResponseModel answer, ScriptCompletion completion) override;
  /// Installed at document creation in the page's main world, main frame only.
  void addUserScript(const UserScript& script) override;
  void addScriptMessageHandler(std::weak_ptr<ScriptMessageHandler> handler, std::string name) override;
  void removeScriptMessageHandler(std::string_view name) override;
  std::optional<std::string_view> url() const override;
  DocumentID document() const override;
  /// URLs as Chromium reads them (international and IPv6 hosts included).
  URLCanonicalizer urlCanonicalizer() const override;
  void setPreferences(const WebPreferences& preferences) override;
  MainQueue& mainQueue() override;

  /// Whether the engine watches pinches (and so can refuse them).
  bool hasPinchGestureRecognizer() const;
  /// Whether the current or last pinch is let through (its client's answer
  /// at its start).
  bool pinchGestureRecognizerEnabled() const;

  struct State;

 private:
  friend void* nativeHandle(WebEngine& engine);
  std::shared_ptr<State> state_;
};

}  // namespace websdk::qtwebengine
