// The real-engine suite's fixture for the browser engine: one headless
// chromium per process, launched with nothing but a URL (no remote control),
// waits on the first engine's idle page. Every engine of the process serves
// on that one port with one token, so when a view goes, its tab reconnects to
// the next engine's server and is taken to that engine's load.

#include "../Engine.hpp"
#include "websdk/browser/BrowserEngine.hpp"

#include <glib.h>
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace websdk::e2e::engine {

namespace {

struct Browser {
  unsigned short port = 0;
  std::string token = "e2e-" + std::to_string(::getpid());
  pid_t pid = 0;

  void launch(const std::string& url) {
    const char* chromium = std::getenv("CHROMIUM");
    const std::string program = chromium != nullptr ? chromium : "/usr/bin/chromium";
    const std::string profile = (std::filesystem::temp_directory_path() / ("websdk-e2e-" + token)).string();
    pid = ::fork();
    if (pid != 0) return;
    // The browser goes with the suite, however the suite ends.
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    // Nor does it keep the suite's sockets, the servers' ports among them.
    ::close_range(3, ~0U, 0);
    const std::string dataDir = "--user-data-dir=" + profile;
    std::vector<const char*> args{program.c_str(), "--headless=new", "--disable-gpu", "--no-first-run",
                                  "--no-default-browser-check", dataDir.c_str()};
    // Chromium's sandbox cannot start as root.
    if (::getuid() == 0) args.push_back("--no-sandbox");
    args.push_back(url.c_str());
    args.push_back(nullptr);
    ::execv(program.c_str(), const_cast<char* const*>(args.data()));
    ::_exit(127);
  }
};

Browser& browser() {
  static Browser b;
  return b;
}

}  // namespace

std::string_view name() { return "browser"; }

bool start() {
  const char* chromium = std::getenv("CHROMIUM");
  return ::access(chromium != nullptr ? chromium : "/usr/bin/chromium", X_OK) == 0;
}

std::unique_ptr<WebEngine> make(bool, std::vector<LocalPages>) {
  Browser& b = browser();
  auto engine = std::make_unique<browser::BrowserEngine>(
      browser::BrowserConfiguration{.port = b.port, .token = b.token, .followsLoads = true});
  if (b.pid == 0 && engine->listening()) {
    const std::string origin = engine->origin();
    b.port = static_cast<unsigned short>(std::stoi(origin.substr(origin.rfind(':') + 1)));
    b.launch(engine->idleURL());
  }
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
      "the browser makes its own requests: the app's fields go on the load's first request, from the engine's "
      "proxy, and there is no module in a page's process",
      "",
      "the browser engine serves no local pages (app://): a page developer's pages are a folder or a dev server",
      "the browser engine serves no local pages (app://)",
      "the browser is another process; the host's heap holds only the WebSDK and the server"};
  return limits;
}
void restartWithoutGuardModule(WebEngine&, const std::string&) {}

}  // namespace websdk::e2e::engine
