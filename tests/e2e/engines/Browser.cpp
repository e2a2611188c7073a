// The real-engine suite's fixture for the browser engine: each view's engine
// gets a headless chromium of its own, launched with nothing but the URL of
// the engine's idle page (no remote control); the engine takes that tab to
// each load. A test that sends the tab to a page the engine does not serve
// loses it for that view only.

#include "../Engine.hpp"
#include "websdk/browser/BrowserEngine.hpp"

#include <fcntl.h>
#include <glib.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace websdk::e2e::engine {

namespace {

std::string chromium() {
  const char* given = std::getenv("CHROMIUM");
  return given != nullptr ? given : "/usr/bin/chromium";
}

class Browser {
 public:
  ~Browser() { stop(); }
  void launch(const std::string& url) {
    stop();
    std::string dir = (std::filesystem::temp_directory_path() / "websdk-e2e-XXXXXX").string();
    if (::mkdtemp(dir.data()) == nullptr) return;
    profile_ = dir;
    const std::string program = chromium();
    pid_ = ::fork();
    if (pid_ < 0) {
      pid_ = 0;  // no browser: the test waits for a page that never comes, and says so
      return;
    }
    if (pid_ != 0) {
      // Set here too: a stop() right after the launch must find the group
      // made, whether or not the child has run yet.
      ::setpgid(pid_, pid_);
      return;
    }
    // The browser goes with the suite, however the suite ends, and keeps
    // none of its sockets (the servers' ports among them).
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    // /usr/bin/chromium is a script that starts the browser as its child:
    // the whole group goes at stop().
    ::setpgid(0, 0);
    // Nor the suite's output: a helper process of the browser's that outlives
    // it would hold CTest waiting for the end of the test's output.
    if (const int null = ::open("/dev/null", O_RDWR); null >= 0) {
      ::dup2(null, STDIN_FILENO);
      ::dup2(null, STDOUT_FILENO);
      ::dup2(null, STDERR_FILENO);
    }
    ::close_range(3, ~0U, 0);
    const std::string dataDir = "--user-data-dir=" + dir;
    std::vector<const char*> args{
        program.c_str(), "--headless=new", "--disable-gpu", "--no-first-run", "--no-default-browser-check",
        dataDir.c_str()};
    // Chromium's sandbox cannot start as root.
    if (::getuid() == 0) args.push_back("--no-sandbox");
    args.push_back(url.c_str());
    args.push_back(nullptr);
    ::execv(program.c_str(), const_cast<char* const*>(args.data()));
    ::_exit(127);
  }
  void stop() {
    if (pid_ > 0) {
      ::kill(-pid_, SIGKILL);
      ::kill(pid_, SIGKILL);  // the launcher itself, had it left the group
      ::waitpid(pid_, nullptr, 0);
    }
    pid_ = 0;
    std::error_code ignored;
    if (!profile_.empty()) std::filesystem::remove_all(profile_, ignored);
    profile_.clear();
  }

 private:
  pid_t pid_ = 0;
  std::string profile_;
};

Browser& browser() {
  static Browser b;
  return b;
}

}  // namespace

std::string_view name() { return "browser"; }

bool start() {
  // This thread runs the engines' loop: the UI thread.
  browser::runUntil([] { return true; }, std::chrono::milliseconds(0));
  return ::access(chromium().c_str(), X_OK) == 0;
}

std::unique_ptr<WebEngine> make(bool, std::vector<LocalPages>) {
  auto engine = std::make_unique<browser::BrowserEngine>(browser::BrowserConfiguration{.followsLoads = true});
  if (engine->listening()) browser().launch(engine->idleURL());
  return engine;
}

// The loopback server the tests load from is libsoup's, on GLib's loop.
bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds bound) {
  const auto end = std::chrono::steady_clock::now() + bound;
  while (!done()) {
    if (std::chrono::steady_clock::now() >= end) return false;
    browser::runUntil(done, std::chrono::milliseconds(2));
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
  }
  return true;
}

// The page is the browser's own window.
struct Window::Native {
  bool holds = false;
};
Window::Window() : native_(std::make_unique<Native>()) {}
Window::~Window() = default;
void Window::show(WebEngine&) { native_->holds = true; }
bool Window::holdsAView() const { return native_->holds; }
void Window::destroy() { native_->holds = false; }

void pinch(WebEngine&, double) {}
bool hasPinchGesture(WebEngine&) { return false; }
bool pinchEnabled(WebEngine&) { return true; }

const Limits& limits() {
  static const Limits limits{
      .guardModule =
          "the browser makes its own requests: the app's fields go on the load's first request, from "
          "the engine's proxy, and there is no module in a page's process",
      .blankFrames = "",
      .localFetch = "the browser engine serves no local pages (app://)",
      .localRequester = "the browser engine serves no local pages (app://)",
      .heapIsOurs = "the page runs in another process, the browser's",
      .otherServers =
          "the browser engine serves the one server loaded, under its own origin: a frame, a redirect or "
          "a link to another host or port is the browser's own request, and its page has no page side",
      .navigationQuestions =
          "the browser navigates by itself: the navigation delegate is told of each page that "
          "opens, never asked, and a load is neither cancelled, timed out nor challenged",
      .localPages =
          "the browser engine serves no local pages (app://): a page developer's pages are a folder or a "
          "dev server",
      .pinch = "a pinch in the browser is its user's: the engine sees none",
      .ownWindow = "the page is in the browser's own window, which no view of the host's holds",
      .serviceWorkers =
          "the browser engine leaves navigator.serviceWorker to the browser: a page developer's "
          "service worker is theirs to try",
      .rawPaths =
          "not yet: a path with a raw '%' does not reach the loaded server through the engine's proxy as "
          "it stands"};
  return limits;
}
void finish() { browser().stop(); }

void restartWithoutGuardModule(WebEngine&, const std::string&) {}

}  // namespace websdk::e2e::engine
