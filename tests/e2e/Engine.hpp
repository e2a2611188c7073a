#pragma once
// What the real-engine suite needs of the engine it runs on, and nothing
// more: make a view's engine, show it, run the loop. The suite is built once
// per engine, each build with its engine's fixture (engines/*.cpp): GTK 3 and
// GTK 4 cannot share a process. Tests name no engine.

#include "websdk/webview/LocalPages.hpp"
#include "websdk/webview/WebEngine.hpp"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace websdk::e2e::engine {

/// The engine's name, as the suite's output and its CTest names show it.
std::string_view name();
/// Starts the engine's toolkit in this process; false without a display.
bool start();

/// A view's engine. Ephemeral, it has a web context (and network session) of
/// its own; else it shares the process's, and costs no new web processes.
std::unique_ptr<WebEngine> make(bool ephemeral = true, std::vector<LocalPages> localPages = {});

/// Runs the UI thread's loop until `done()` holds or `bound` has passed.
bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds bound);

/// A top-level window that shows one view at a time.
class Window {
 public:
  Window();
  ~Window();
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;
  /// Shows the engine's view in the window, in place of the one before.
  void show(WebEngine& engine);
  bool holdsAView() const;
  /// Destroys the window now, as a user closing it would.
  void destroy();

 private:
  struct Native;
  std::unique_ptr<Native> native_;
};

/// A two-finger pinch on the view: its begin, a step to `scale`, its end.
void pinch(WebEngine& engine, double scale);
/// Whether the engine can watch pinches, and whether it lets them go on.
bool hasPinchGesture(WebEngine& engine);
bool pinchEnabled(WebEngine& engine);

/// What an engine cannot do that another can, each with the reason a test
/// that needs it gives for skipping it; empty where it can.
struct Limits {
  /// The app's headers come from a module in the page's process that a host
  /// could leave out, and which takes its load mark off every request.
  std::string_view guardModule;
  /// A frame's first, blank document has the page's message handlers.
  std::string_view blankFrames;
  /// A local page's scripts fetch() its own pages, and read their status.
  std::string_view localFetch;
  /// The engine names the page that made a request for a local page's file,
  /// so that a frame of another origin in an app page is refused it.
  std::string_view localRequester;
  /// The heap in use of the host's process is the WebSDK's and the
  /// toolkit's, which a flood's second run leaves as it found it.
  std::string_view heapIsOurs;
  /// A page's frames, redirects and links may go to another server (host or
  /// port) than the one loaded, and its pages still reach the app.
  std::string_view otherServers;
  /// The engine asks the navigation delegate before each navigation, and a
  /// load can be cancelled, time out before it commits, or be challenged.
  std::string_view navigationQuestions;
  /// The engine serves local pages (app://).
  std::string_view localPages;
  /// The engine sees a pinch on its view.
  std::string_view pinch;
  /// The host's window holds the view, and lets it go when it is torn down.
  std::string_view ownWindow;
  /// The engine keeps navigator.serviceWorker from pages that may not have one.
  std::string_view serviceWorkers;
  /// A page whose path holds raw characters ("50%") loads as it is.
  std::string_view rawPaths;
};
const Limits& limits();
/// What a host does that leaves the view's next web process without the
/// guard module: it points the web context's module directory at `directory`
/// (holding no module) and ends the current web process.
void restartWithoutGuardModule(WebEngine& engine, const std::string& directory);
/// Ends what the engine started outside this process (a browser), as the
/// suite's process is about to end without its own teardown.
void finish();

}  // namespace websdk::e2e::engine
