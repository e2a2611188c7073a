// hello-world: one page, one plugin, the real engine. The page asks for its
// cart; the app answers; the page shows it. `hello-world --once` quits when
// the page has its answer (for CI).
#include <websdk/bridge/families/Cart.hpp>
#include <websdk/webkitgtk/Native.hpp>
#include <websdk/webview/LocalPages.hpp>
#include <websdk/webview/WebSDKNavigationDelegate.hpp>
#include <websdk/webview/WebSDKWebView.hpp>

using namespace websdk;

constexpr const char* kPage = R"(<!doctype html><title>asking</title><script>
window.nativeResponse = (answer) => { document.title = "cart: " + JSON.parse(answer.payload).items; };
window.webkit.messageHandlers.nativeRequest.postMessage({ message: JSON.stringify(
  { type: "GET_LOCAL_CART", requestId: "1", payload: { tenant: { marketplaceId: "meals" } } }) });
</script>)";

struct Cart final : DvCartWebViewCallBacks {
  void handleCartRequest(const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload&) override {
    // The request's reply answers it, and only it, once: no view to hold.
    request.reply().sendWebSDKResponse(JSONObject{{"items", 2}}, WebSDKResponseType::success);
  }
};

int main(int argc, char** argv) {
  if (!webkitgtk::initialize(&argc, &argv)) return 1;
  webkitgtk::WebKitGTKConfiguration engine;  // the page is served from memory as app://hello/
  engine.localPages.push_back({.host = "hello", .resources = {{"index.html", {kPage}}}});
  auto view = WebSDKWebView::create(std::make_unique<webkitgtk::WebKitGTKEngine>(engine), {"app://hello"}, nullptr,
                                    nullptr, WebSDKTrustedHostsNavigationDelegate::shared());
  auto cart = std::make_shared<Cart>();
  view->setCartPlugin(cart);

  GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  gtk_container_add(GTK_CONTAINER(window), webkitgtk::widget(view->engine()));
  gtk_widget_show_all(window);
  view->loadWebView("app://hello/index.html", {{"token", "app-secret"}}, std::nullopt, 30);

  if (argc > 1 && std::string_view(argv[1]) == "--once") {
    WebKitWebView* page = webkitgtk::nativeWebView(view->engine());
    const auto answered = [&] { return g_strcmp0(webkit_web_view_get_title(page), "cart: 2") == 0; };
    return webkitgtk::runUntil(answered, std::chrono::seconds(30)) ? 0 : 1;
  }
  g_signal_connect(window, "destroy", G_CALLBACK(gtk_main_quit), nullptr);
  gtk_main();
}
