#pragma once
// The WebKitGTK engine behind WebSDKWebView. This header includes no GTK or
// WebKit header: a host that needs the native widget includes
// websdk/webkitgtk/Native.hpp and asks for it.
//
//   websdk::webkitgtk::initialize(&argc, &argv);
//   auto engine = std::make_unique<websdk::webkitgtk::WebKitGTKEngine>();
//   auto view = websdk::WebSDKWebView::create(std::move(engine), {"example.com"}, ...);
//   gtk_container_add(GTK_CONTAINER(window), websdk::webkitgtk::widget(view->engine()));

#include "websdk/webview/WebEngine.hpp"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace websdk::webkitgtk {

/// Starts GTK for this process on the calling thread, which becomes the UI
/// thread. False when there is no display to open.
bool initialize(int* argc = nullptr, char*** argv = nullptr);

/// Runs the UI thread's GLib main loop until `done()` holds or `bound` has
/// passed; returns whether `done()` holds. For tools and tests that drive the
/// engine without a GTK main loop of their own.
bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds bound);

/// How the engine's web context is made.
struct WebKitGTKConfiguration {
  /// Keep no cache, cookies or storage beyond the engine's life.
  bool ephemeral = false;
};

/// The main queue on the GLib main context of the thread that made it. post()
/// may be called from any thread; a task that never runs (its context gone) is
/// still freed.
class GLibMainQueue final : public MainQueue {
 public:
  GLibMainQueue();
  ~GLibMainQueue() override;
  GLibMainQueue(const GLibMainQueue&) = delete;
  GLibMainQueue& operator=(const GLibMainQueue&) = delete;
  void post(std::function<void()> task) override;
  /// Whether the calling thread is running this queue's context now.
  bool isCurrent() const;
  /// Whether the calling thread is the one that made the queue.
  bool isUIThread() const override;

 private:
  void* context_;  // GMainContext*, referenced
  std::thread::id thread_ = std::this_thread::get_id();
};

class WebKitGTKEngine final : public WebEngine {
 public:
  /// A new WebKitWebView. Must be made on the UI thread, after initialize().
  explicit WebKitGTKEngine(const WebKitGTKConfiguration& configuration = {});
  /// Disconnects every signal, leaves held navigation decisions unanswered
  /// for good (ignored), and destroys the widget.
  ~WebKitGTKEngine() override;
  WebKitGTKEngine(const WebKitGTKEngine&) = delete;
  WebKitGTKEngine& operator=(const WebKitGTKEngine&) = delete;

  void setClient(WebEngineClient* client) override;
  /// Loads `request` with its header fields in order. A load that has not
  /// committed within `timeoutInterval` seconds of starting (once allowed) is
  /// stopped and reported to the client as a failed provisional navigation
  /// whose error isTimeout.
  void load(const URLRequest& request) override;
  void evaluateJavaScript(std::string script, ScriptCompletion completion) override;
  void addUserScript(const UserScript& script) override;
  void addScriptMessageHandler(std::weak_ptr<ScriptMessageHandler> handler, std::string name) override;
  void removeScriptMessageHandler(std::string_view name) override;
  /// Runs `script` only if `document` is still the top document; with the
  /// module in the page's process, that is decided there.
  void evaluateInDocument(DocumentID document, std::string script, ScriptCompletion completion) override;
  /// The URL of the committed top document (a load still pending does not count).
  std::optional<std::string_view> url() const override;
  DocumentID document() const override;
  /// WebKit's own URL parser.
  URLCanonicalizer urlCanonicalizer() const override;
  void setPreferences(const WebPreferences& preferences) override;
  /// WebKitGTK has no incremental-rendering switch: the value is only kept.
  void setSuppressesIncrementalRendering(bool suppress) override;
  void setAllowsInlineMediaPlayback(bool allow) override;
  bool hasPinchGestureRecognizer() const override;
  void setPinchGestureRecognizerEnabled(bool enabled) override;
  MainQueue& mainQueue() override;

  /// The value last given to setSuppressesIncrementalRendering.
  bool suppressesIncrementalRendering() const;
  /// Whether pinch-zoom may proceed once it has begun.
  bool pinchGestureRecognizerEnabled() const;

  struct State;

 private:
  friend void* nativeHandle(WebEngine& engine);
  std::shared_ptr<State> state_;
};

}  // namespace websdk::webkitgtk
