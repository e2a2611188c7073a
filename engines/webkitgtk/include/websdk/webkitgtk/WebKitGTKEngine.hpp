#pragma once
/// @file
/// The WebKitGTK engine behind WebSDKWebView. This header includes no GTK or
/// WebKit header: a host that needs the native widget includes
/// websdk/webkitgtk/Native.hpp and asks for it.
///
/// ~~~{.cpp}
///   websdk::webkitgtk::initialize(&argc, &argv);
///   auto engine = std::make_unique<websdk::webkitgtk::WebKitGTKEngine>();
///   auto view = websdk::WebSDKWebView::create(std::move(engine), {"example.com"}, ...);
///   gtk_container_add(GTK_CONTAINER(window), websdk::webkitgtk::widget(view->engine()));
/// ~~~
///
/// The same header serves both engines: websdk_webkitgtk (WebKitGTK 4.1, GTK 3)
/// and websdk_webkitgtk6 (WebKitGTK 6.0, GTK 4, where the last line is
/// gtk_window_set_child). A process links one of them.

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

/// The WebKitGTK engines (4.1 with GTK 3, 6.0 with GTK 4) and what a host needs
/// to start them.
namespace websdk::webkitgtk {

/// Starts GTK for this process on the calling thread, which becomes the UI
/// thread. False when there is no display to open.
WEBSDK_EXPORT bool initialize(int* argc = nullptr, char*** argv = nullptr);

/// Sends the WebSDK's log (websdk/Log.hpp) to GLib's structured log under the
/// "websdk" domain unless the host set a sink of its own. initialize() and
/// every engine do this; a host logging before either may call it first.
WEBSDK_EXPORT void logToGLib();

/// Runs the UI thread's GLib main loop until `done()` holds or `bound` has
/// passed; returns whether `done()` holds. For tools and tests that drive the
/// engine without a GTK main loop of their own.
WEBSDK_EXPORT bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds bound);

// The installed package (its CMake targets and its pkg-config file) defines
// WEBSDK_PACKAGE_WEB_EXTENSIONS_DIR for a host's build: where the engine's
// web-process module lies from the package's include directory, a plain
// relative path such as ../lib/websdk/web-extensions. The include directory is
// the one this header lies in, as the compiler found it, so no path with
// quotes passes through a shell and the package may lie anywhere. GCC's words
// predefined outside strict mode (linux, unix) are taken literally.
namespace detail {
#ifdef WEBSDK_PACKAGE_WEB_EXTENSIONS_DIR
#pragma push_macro("linux")
#pragma push_macro("unix")
#undef linux
#undef unix
#define WEBSDK_WEBKITGTK_TEXT_(...) #__VA_ARGS__
#define WEBSDK_WEBKITGTK_TEXT(...) WEBSDK_WEBKITGTK_TEXT_(__VA_ARGS__)
constexpr char kPackageWebExtensions[] = WEBSDK_WEBKITGTK_TEXT(WEBSDK_PACKAGE_WEB_EXTENSIONS_DIR);
#undef WEBSDK_WEBKITGTK_TEXT
#undef WEBSDK_WEBKITGTK_TEXT_
#pragma pop_macro("unix")
#pragma pop_macro("linux")
#else
constexpr char kPackageWebExtensions[] = "";
#endif

/// `relative` taken from the include directory holding `header`, which lies
/// in websdk/webkitgtk/ under it; empty when `relative` is.
inline std::string fromIncludeDirectory(std::string_view header, std::string_view relative) {
  if (relative.empty()) return {};
  for (int level = 0; level < 3; ++level) {
    const auto slash = header.rfind('/');
    header = header.substr(0, slash == std::string_view::npos ? 0 : slash);
  }
  return std::string(header.empty() ? "." : header) + "/" + std::string(relative);
}
}  // namespace detail

/// How the engine's web context is made.
struct WEBSDK_EXPORT WebKitGTKConfiguration {
  /// Keep no cache, cookies or storage beyond the engine's life.
  bool ephemeral = false;
  /// The directory holding the engine's web-process module, which keeps the
  /// app's headers from hosts they are not for. A host built against the
  /// installed package gets the package's own; empty, the engine looks where
  /// it was installed and built. WEBSDK_WEB_EXTENSIONS_DIR, when set, wins.
  std::string webExtensionsDirectory = detail::fromIncludeDirectory(__FILE__, detail::kPackageWebExtensions);
  /// The web inspector (right-click, Inspect Element) for page developers.
  /// WEBSDK_INSPECTOR=1 in the environment turns it on too.
  bool webInspector = false;
  /// Pages the view serves itself (app://checkout/...), each under its
  /// scheme and host. Other views on the same web context do not see them.
  std::vector<LocalPages> localPages;
};

/// The main queue on the GLib main context of the thread that made it. post()
/// may be called from any thread; a task that never runs (its context gone) is
/// still freed.
class WEBSDK_EXPORT GLibMainQueue final : public MainQueue {
 public:
  GLibMainQueue();
  ~GLibMainQueue() override;
  GLibMainQueue(const GLibMainQueue&) = delete;
  GLibMainQueue& operator=(const GLibMainQueue&) = delete;
  void post(std::function<void()> task) override;
  void postAfter(std::chrono::milliseconds delay, std::function<void()> task) override;
  /// Whether the calling thread is running this queue's context now.
  bool isCurrent() const;
  /// Whether the calling thread is the one that made the queue.
  bool isUIThread() const override;
  std::shared_ptr<void> holdTurns() override;  ///< See MainQueue::holdTurns.

 private:
  struct Tasks;
  std::shared_ptr<Tasks> tasks_;  // shared with the turn scheduled on the context
  std::thread::id thread_ = std::this_thread::get_id();
};

/// The engine on a WebKitWebView: the page's messages through its script
/// message handlers, the app's fields kept to trusted hosts by the web-process
/// module, and the navigation questions carried to the web view.
class WEBSDK_EXPORT WebKitGTKEngine final : public WebEngine {
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
  bool answersAsData() const override;
  void evaluateAnswer(DocumentID document, WebSDKResponseModel answer, ScriptCompletion completion) override;
  /// The URL of the committed top document (a load still pending does not count).
  std::optional<std::string_view> url() const override;
  DocumentID document() const override;
  /// WebKit's own URL parser.
  URLCanonicalizer urlCanonicalizer() const override;
  /// Media plays inline whatever the preferences.
  void setPreferences(const WebPreferences& preferences) override;
  MainQueue& mainQueue() override;

  /// Whether the engine watches pinches (and so can refuse them).
  bool hasPinchGestureRecognizer() const;
  /// Whether the last pinch was let go on (its client's answer at its start).
  bool pinchGestureRecognizerEnabled() const;

  struct State;

 private:
  friend void* nativeHandle(WebEngine& engine);
  std::shared_ptr<State> state_;
};

}  // namespace websdk::webkitgtk
