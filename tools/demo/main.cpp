// websdk-demo (GTK 3, WebKitGTK 4.1), websdk-demo-gtk4 (GTK 4, WebKitGTK 6.0)
// and websdk-demo-qt (Qt 6 WebEngine), one source: a host app that shows a
// checkout page in a WebSDKWebView.
// The page is served by an in-process loopback HTTP server; the app's plugins
// answer its requests and every request and response is printed.
//
//   websdk-demo                      opens the window
//   websdk-demo --headless           runs a scripted checkout and exits (0 when
//                                    every step got its answer)
//   --screenshot FILE                writes the page as a PNG once it is done
//   --local-pages                    serves the checkout from the app itself, as
//                                    app://checkout/index.html (the loopback
//                                    server keeps only the partner site)

#include "DemoOptions.hpp"
#include "DemoPlugins.hpp"

#include "tools/common/LoopbackServer.hpp"
#include "websdk/webview/WebSDKRequestHeaders.hpp"

// The engine this demo is built with, and its window.
#ifdef WEBSDK_DEMO_QT
#include "tools/common/QtWindow.hpp"
namespace websdk::demo {
namespace engine = qtwebengine;
namespace host = qthost;
using Engine = qtwebengine::QtWebEngine;
using Configuration = qtwebengine::QtWebEngineConfiguration;
}  // namespace websdk::demo
#else
#include "tools/common/GtkWindow.hpp"
namespace websdk::demo {
namespace engine = webkitgtk;
namespace host = gtkhost;
using Engine = webkitgtk::WebKitGTKEngine;
using Configuration = webkitgtk::WebKitGTKConfiguration;
}  // namespace websdk::demo
#endif

#include <chrono>
#include <cstring>
#include <iostream>
#include <string_view>

namespace websdk::demo {

extern const std::string_view kCheckoutPage;

namespace {

using namespace std::chrono_literals;

// The WebSDK headers printed for each page request, when it carries them.
constexpr const char* kShownHeaders[] = {"x-websdk", "platform", "app-version", "token", "cityId"};

/// The loopback server with the checkout page, printing the WebSDK headers
/// each page request carried. Its partner link leaves the trusted hosts by a
/// redirect: "localhost" reaches this server too, but is not whitelisted.
class PageServer {
 public:
  PageServer() {
    if (!server_.listening()) {
      std::cerr << "websdk-demo: " << server_.error() << std::endl;
      return;
    }
    server_.page("/checkout", std::string(kCheckoutPage));
    const std::string offers = server_.url("/offers", "localhost");
    server_.redirect("/partner", offers);
    server_.observe([offers](const LoopbackServer::Request& request) {
      if (request.path == "/partner") {
        std::cout << "server       GET /partner -> 302 " << offers << std::endl;
      } else if (request.path == "/checkout") {
        std::cout << "server       GET " << request.path;
        for (const char* name : kShownHeaders)
          if (const auto value = request.header(name)) std::cout << "  " << name << "=" << *value;
        std::cout << std::endl;
      }
    });
  }
  bool listening() const { return server_.listening(); }
  std::string url(const std::string& path = "/checkout") const { return server_.url(path); }

 private:
  LoopbackServer server_;
};

/// The checkout as the app's own pages, app://checkout/index.html, printing
/// the WebSDK headers each request carried. Its partner link goes to the
/// loopback server, off the trusted pages.
LocalPages localCheckout(const PageServer& server) {
  std::string page(kCheckoutPage);
  const std::string_view link = "href=\"/partner\"";
  if (const auto at = page.find(link); at != std::string::npos)
    page.replace(at, link.size(), "href=\"" + server.url("/partner") + "\"");
  LocalPages pages{.host = "checkout"};
  pages.respond = [page = std::move(page)](std::string_view path,
                                           const LocalRequest& request) -> std::optional<LocalResource> {
    std::cout << "app          " << request.method << " " << request.url;
    for (const char* name : kShownHeaders)
      for (const auto& [field, value] : request.headers)
        if (sameFieldName(field, name)) std::cout << "  " << name << "=" << value;
    std::cout << std::endl;
    if (path == "index.html") return LocalResource{page, ""};
    return std::nullopt;
  };
  return pages;
}

WebSDKHeaders appHeaders() {
  using H = WebSDKRequestHeaders;
  return {{std::string(H::platform), "linux"},
          {std::string(H::versionCode), "412"},
          {std::string(H::appVersion), "4.12.0"},
          {std::string(H::webSDKVersion), "0.1.0"},
          {std::string(H::isWebSDKEnabled), "true"},
          {std::string(H::token), "demo-token-7f3a"},
          {std::string(H::cityId), "1"},
          {std::string(H::deviceId), "demo-device"}};
}

/// Evaluates `script` and waits for its value.
std::optional<JSON> evaluate(WebSDKWebView& view, const std::string& script) {
  auto result = std::make_shared<std::optional<ScriptResult>>();
  view.engine().evaluateJavaScript(script, [result](ScriptResult r) { *result = std::move(r); });
  if (!engine::runUntil([&] { return result->has_value(); }, 10s)) return std::nullopt;
  return (*result)->value;
}

/// Waits until the page has run every answer sent so far: answers are queued
/// on the main queue, then evaluated in order, so a marker posted behind them
/// and an evaluation issued after it come last.
bool settle(WebSDKWebView& view) {
  auto drained = std::make_shared<bool>(false);
  view.engine().mainQueue().post([drained] { *drained = true; });
  if (!engine::runUntil([&] { return *drained; }, 10s)) return false;
  return evaluate(view, "true").has_value();
}

struct Step {
  std::string name;
  std::function<void()> act;
  std::vector<std::string> answersFor;               // actions whose request must be answered
  std::function<bool()> done = [] { return true; };  // and what else must have happened
};

/// Runs the steps in order; a step passes when a new request of each of its
/// actions has been answered within the bound.
bool runCheckout(WebSDKWebView& view, const TrafficPrinter& traffic, const std::vector<Step>& steps) {
  bool allAnswered = true;
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const Step& step = steps[i];
    std::map<std::string, std::size_t> before;
    for (const auto& action : step.answersFor) before[action] = traffic.requestsFor(action).size();
    std::cout << "\n== step " << i + 1 << "/" << steps.size() << ": " << step.name << std::endl;
    const auto start = std::chrono::steady_clock::now();
    step.act();
    const bool answered = engine::runUntil(
        [&] {
          for (const auto& action : step.answersFor) {
            const auto ids = traffic.requestsFor(action);
            if (ids.size() <= before[action] || !traffic.answered(ids[before[action]])) return false;
          }
          return step.done();
        },
        10s);
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    std::cout << "== step " << i + 1 << " " << (answered ? "answered" : "NOT ANSWERED") << " in " << ms.count() << " ms"
              << std::endl;
    allAnswered = allAnswered && answered && settle(view);
    if (!allAnswered) break;
  }
  return allAnswered;
}

int run(int argc, char** argv) {
  std::string error;
  const auto options = parseDemoArguments(std::vector<std::string>(argv + 1, argv + argc), error);
  if (!options) {
    std::cerr << "websdk-demo: " << error << "\n" << kDemoUsage;
    return 2;
  }
  if (options->help) {
    std::cout << kDemoUsage;
    return 0;
  }
  const bool headless = options->headless;
  const bool localPages = options->localPages;
  const std::string screenshot = options->screenshot;
  if (!host::start(argc, argv)) {
    std::cerr << "websdk-demo: no display (headless runs go under xvfb-run -a)" << std::endl;
    return 2;
  }

  PageServer server;
  if (!server.listening()) return 2;

  host::Window window("WebSDK demo: checkout", 420, 820);

  auto navigation = std::make_shared<NavigationPrinter>(std::cout);
  auto traffic = std::make_shared<TrafficPrinter>(std::cout);
  auto generic = std::make_shared<GenericPlugin>();
  auto payments = std::make_shared<PaymentsPlugin>();
  auto cart = std::make_shared<CartPlugin>();

  // The checkout from the loopback server, or as the app's own pages: then
  // the whitelist names their scheme and host, and nothing else.
  Configuration configuration;
  std::vector<std::string> whitelist{"127.0.0.1"};
  std::string checkoutURL = server.url();
  if (localPages) {
    configuration.localPages = {localCheckout(server)};
    whitelist = {configuration.localPages[0].origin()};
    checkoutURL = configuration.localPages[0].url();
  }
  auto view =
      WebSDKWebView::create(std::make_unique<Engine>(configuration), whitelist, generic, payments, navigation, traffic);
  view->setCartPlugin(cart);

  const WebSDKHeaders headers = appHeaders();
  view->executeJSScript(WebSDKAppFunctions::nativeHeaders(headers));

  window.show(view->engine());

  const auto load = [&] { view->loadWebView(checkoutURL, headers, std::nullopt, 15); };
  const auto click = [&](const std::string& step) {
    return [&view, step] {
      view->engine().evaluateJavaScript("document.querySelector('[data-step=\"" + step + "\"]').click()", nullptr);
    };
  };

  const Step open{
      "open the checkout", load, {"GET_USER_INFO", "GET_LOCAL_CART", "GET_CURRENT_ADDRESS", "GET_LOCATION"}};
  int status = 0;
  if (headless) {
    const std::vector<Step> steps = {
        open,
        {"add a garlic naan", click("add-garlic-naan"), {"UPDATE_LOCAL_CART"}},
        {"apply the best coupon", click("coupon"), {"APPLY_COUPON"}},
        {"the app picks another address",
         [&] { view->executeJSFunction(WebSDKJSFunctionType::updateLocationHeader()); },
         {"GET_CURRENT_ADDRESS"}},
        // The navigation delegate keeps the view on trusted hosts: the page
        // stays, and the payment below still runs on it.
        {localPages ? "a partner link leaves the trusted pages" : "a partner link redirects off the trusted hosts",
         click("partner"),
         {},
         [&] { return navigation->refusals > 0; }},
        // A careless page puts the app's token where a recording looks: its
        // URL, a request id and a payload the models do not declare. The
        // recording must hold it nowhere (the checkout test looks).
        {"the page echoes the app's token",
         [&] {
           view->engine().evaluateJavaScript(
               "const t = JSON.parse(window.__native_headers__.getDovaraHeaders()).token;"
               "history.replaceState(null, '', location.pathname + '?session=' + encodeURIComponent(t));"
               "window.webkit.messageHandlers.nativeRequest.postMessage({message: JSON.stringify({type: "
               "'GET_LOCATION', requestId: 'echo-' + t, payload: {opaque: {note: 'Bearer ' + t, path: '/' + t}}})})",
               nullptr);
         },
         {"GET_LOCATION"}},
        {"pay with the simulated provider", click("pay"), {"PAY_USING_AMAZON_PAY", "ORDER_CONFIRMED_EVENT"}},
    };
    const bool answered = runCheckout(*view, *traffic, steps);
    const auto state = evaluate(*view, "document.body.dataset.state");
    std::cout << "\npage state: " << (state ? serialize(*state) : "(none)") << std::endl;
    if (!answered || state != JSON("paid")) status = 1;
  } else {
    // With a screenshot to take, the page is shown once it has its answers.
    if (screenshot.empty())
      load();
    else
      runCheckout(*view, *traffic, {open});
  }

  if (!screenshot.empty()) {
    std::string why;
    if (host::writeSnapshot(view->engine(), screenshot, why)) {
      std::cout << "screenshot   " << screenshot << std::endl;
    } else {
      std::cerr << "websdk-demo: could not write " << screenshot << ": " << why << std::endl;
      status = status == 0 ? 1 : status;
    }
  }
  if (!headless) window.runUntilClosed();

  // The provider's threads finish before the view goes, so the view is
  // never released off the UI thread.
  payments.reset();
  view.reset();
  if (!headless) return status;
  window.destroy();
  std::cout << (status == 0 ? "checkout complete: every step got its answer" : "checkout FAILED") << std::endl;
  return status;
}

}  // namespace
}  // namespace websdk::demo

int main(int argc, char** argv) { return websdk::demo::run(argc, argv); }
