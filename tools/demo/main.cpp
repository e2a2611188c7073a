// websdk-demo: a GTK host app that shows a checkout page in a WebSDKWebView.
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

#include "websdk/webkitgtk/Native.hpp"
#include "websdk/webview/WebSDKRequestHeaders.hpp"

#include <libsoup/soup.h>

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

/// Serves the checkout page on 127.0.0.1 and prints the WebSDK headers each
/// page request carried.
class PageServer {
 public:
  PageServer() : server_(soup_server_new(nullptr, nullptr)) {
    soup_server_add_handler(server_, nullptr, &PageServer::handle, this, nullptr);
    GError* error = nullptr;
    if (!soup_server_listen_local(server_, 0, SOUP_SERVER_LISTEN_IPV4_ONLY, &error)) {
      std::cerr << "websdk-demo: cannot listen on 127.0.0.1: " << error->message << std::endl;
      g_error_free(error);
      return;
    }
    GSList* uris = soup_server_get_uris(server_);
    port_ = g_uri_get_port(static_cast<GUri*>(uris->data));
    g_slist_free_full(uris, reinterpret_cast<GDestroyNotify>(g_uri_unref));
  }
  ~PageServer() {
    soup_server_disconnect(server_);
    g_object_unref(server_);
  }
  PageServer(const PageServer&) = delete;
  PageServer& operator=(const PageServer&) = delete;

  bool listening() const { return port_ != 0; }
  std::string url(std::string_view path = "/checkout") const {
    return "http://127.0.0.1:" + std::to_string(port_) + std::string(path);
  }

 private:
  static void handle(SoupServer*, SoupServerMessage* message, const char* path, GHashTable*, gpointer self) {
    // The partner link leaves the trusted hosts by a redirect: "localhost"
    // reaches this server too, but is not whitelisted.
    if (std::string_view(path) == "/partner") {
      const std::string offers =
          "http://localhost:" + std::to_string(static_cast<PageServer*>(self)->port_) + "/offers";
      std::cout << "server       GET /partner -> 302 " << offers << std::endl;
      soup_server_message_set_redirect(message, 302, offers.c_str());
      return;
    }
    if (std::string_view(path) != "/checkout") {
      soup_server_message_set_status(message, 404, nullptr);
      return;
    }
    SoupMessageHeaders* headers = soup_server_message_get_request_headers(message);
    std::cout << "server       GET " << path;
    for (const char* name : kShownHeaders)
      if (const char* value = soup_message_headers_get_one(headers, name)) std::cout << "  " << name << "=" << value;
    std::cout << std::endl;
    soup_server_message_set_status(message, 200, nullptr);
    soup_server_message_set_response(message, "text/html; charset=utf-8", SOUP_MEMORY_STATIC, kCheckoutPage.data(),
                                     kCheckoutPage.size());
  }

  SoupServer* server_;
  guint port_ = 0;
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

bool writeScreenshot(WebSDKWebView& view, const std::string& file) {
  struct Shot {
    bool done = false;
    bool ok = false;
    std::string file;
  };
  auto* shot = new Shot{false, false, file};
  webkit_web_view_get_snapshot(
      webkitgtk::nativeWebView(view.engine()), WEBKIT_SNAPSHOT_REGION_FULL_DOCUMENT, WEBKIT_SNAPSHOT_OPTIONS_NONE,
      nullptr,
      [](GObject* source, GAsyncResult* result, gpointer data) {
        auto* s = static_cast<Shot*>(data);
        GError* error = nullptr;
        cairo_surface_t* surface = webkit_web_view_get_snapshot_finish(WEBKIT_WEB_VIEW(source), result, &error);
        if (surface) {
          s->ok = cairo_surface_write_to_png(surface, s->file.c_str()) == CAIRO_STATUS_SUCCESS;
          cairo_surface_destroy(surface);
        } else {
          std::cerr << "websdk-demo: snapshot failed: " << error->message << std::endl;
          g_error_free(error);
        }
        s->done = true;
      },
      shot);
  const bool finished = webkitgtk::runUntil([&] { return shot->done; }, 10s);
  const bool ok = finished && shot->ok;
  if (finished) delete shot;  // else the late callback still owns it
  return ok;
}

/// Evaluates `script` and waits for its value.
std::optional<JSON> evaluate(WebSDKWebView& view, const std::string& script) {
  auto result = std::make_shared<std::optional<ScriptResult>>();
  view.engine().evaluateJavaScript(script, [result](ScriptResult r) { *result = std::move(r); });
  if (!webkitgtk::runUntil([&] { return result->has_value(); }, 10s)) return std::nullopt;
  return (*result)->value;
}

/// Waits until the page has run every answer sent so far: answers are queued
/// on the main queue, then evaluated in order, so a marker posted behind them
/// and an evaluation issued after it come last.
bool settle(WebSDKWebView& view) {
  auto drained = std::make_shared<bool>(false);
  view.engine().mainQueue().post([drained] { *drained = true; });
  if (!webkitgtk::runUntil([&] { return *drained; }, 10s)) return false;
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
    const bool answered = webkitgtk::runUntil(
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
  if (!webkitgtk::initialize(&argc, &argv)) {
    std::cerr << "websdk-demo: no display (headless runs go under xvfb-run -a)" << std::endl;
    return 2;
  }

  PageServer server;
  if (!server.listening()) return 2;

  GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  gtk_window_set_title(GTK_WINDOW(window), "WebSDK demo: checkout");
  gtk_window_set_default_size(GTK_WINDOW(window), 420, 820);

  auto navigation = std::make_shared<NavigationPrinter>(std::cout);
  auto traffic = std::make_shared<TrafficPrinter>(std::cout);
  auto generic = std::make_shared<GenericPlugin>();
  auto payments = std::make_shared<PaymentsPlugin>();
  auto cart = std::make_shared<CartPlugin>();

  // The checkout from the loopback server, or as the app's own pages: then
  // the whitelist names their scheme and host, and nothing else.
  webkitgtk::WebKitGTKConfiguration configuration;
  std::vector<std::string> whitelist{"127.0.0.1"};
  std::string checkoutURL = server.url();
  if (localPages) {
    configuration.localPages = {localCheckout(server)};
    whitelist = {configuration.localPages[0].origin()};
    checkoutURL = configuration.localPages[0].url();
  }
  auto view = WebSDKWebView::create(std::make_unique<webkitgtk::WebKitGTKEngine>(configuration), whitelist, generic,
                                    payments, navigation, traffic);
  generic->attach(view);
  payments->attach(view);
  cart->attach(view);
  view->setCartPlugin(cart);

  const WebSDKHeaders headers = appHeaders();
  view->executeJSScript(WebSDKAppFunctions::nativeHeaders(headers));

  gtk_container_add(GTK_CONTAINER(window), webkitgtk::widget(view->engine()));
  gtk_widget_show_all(window);

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
        {"pay with the simulated provider", click("pay"), {"PAY_USING_AMAZON_PAY", "ORDER_CONFIRMED_EVENT"}},
    };
    const bool answered = runCheckout(*view, *traffic, steps);
    const auto state = evaluate(*view, "document.body.dataset.state");
    std::cout << "\npage state: " << (state ? serialize(*state) : "(none)") << std::endl;
    if (!answered || state != JSON("paid")) status = 1;
  } else {
    g_signal_connect(window, "destroy", G_CALLBACK(gtk_main_quit), nullptr);
    // With a screenshot to take, the page is shown once it has its answers.
    if (screenshot.empty())
      load();
    else
      runCheckout(*view, *traffic, {open});
  }

  if (!screenshot.empty()) {
    if (writeScreenshot(*view, screenshot)) {
      std::cout << "screenshot   " << screenshot << std::endl;
    } else {
      std::cerr << "websdk-demo: could not write " << screenshot << std::endl;
      status = status == 0 ? 1 : status;
    }
  }
  if (!headless) gtk_main();

  // The provider's threads finish before the view goes, so the view is
  // never released off the UI thread.
  payments.reset();
  view.reset();
  if (!headless) return status;
  gtk_widget_destroy(window);
  std::cout << (status == 0 ? "checkout complete: every step got its answer" : "checkout FAILED") << std::endl;
  return status;
}

}  // namespace
}  // namespace websdk::demo

int main(int argc, char** argv) { return websdk::demo::run(argc, argv); }
