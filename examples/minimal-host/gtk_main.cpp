// minimal-host-gtk: the same cart plugin behind a real WebKitGTK web view. The
// app loads the shop's page with its own header fields; the page asks for its
// cart and shows the answer. One source for both engines: built against
// WebSDK::webkitgtk (GTK 3) it is minimal-host-gtk, against WebSDK::webkitgtk6
// (GTK 4, which defines WEBSDK_WEBKITGTK6) minimal-host-gtk4. Only the
// window differs.
//
//   minimal-host-gtk                       opens the window
//   minimal-host-gtk --exit-when-answered  quits with 0 once the page has its
//                                          answer and the shop got the app's token

#include "CartPlugin.hpp"
#include "LocalShop.hpp"
#include "ShopPage.hpp"

#include <websdk/webkitgtk/Native.hpp>
#include <websdk/webview/WebSDKRequestHeaders.hpp>
#include <websdk/webview/WebSDKWebView.hpp>

#include <chrono>
#include <cstring>
#include <iostream>
#include <string>

using namespace websdk;

int main(int argc, char** argv) {
  const bool exitWhenAnswered = argc > 1 && std::strcmp(argv[1], "--exit-when-answered") == 0;
  if (!webkitgtk::initialize(&argc, &argv)) {
    std::cerr << "minimal-host-gtk: no display" << std::endl;
    return 1;
  }

  // The shop's server; here a stand-in on this machine (LocalShop.hpp).
  LocalShop shop(example::kPage);

  // The shop's host is trusted with the bridge and with the app's headers.
  auto navigation = std::make_shared<example::NavigationPolicy>("minimal-host-gtk");
  auto view = WebSDKWebView::create(std::make_unique<webkitgtk::WebKitGTKEngine>(), {"127.0.0.1"}, nullptr, nullptr,
                                    navigation);
  auto cart = std::make_shared<CartPlugin>();
  view->setCartPlugin(cart);

#ifdef WEBSDK_WEBKITGTK6
  GtkWidget* window = gtk_window_new();
  gtk_window_set_default_size(GTK_WINDOW(window), 420, 320);
  gtk_window_set_child(GTK_WINDOW(window), webkitgtk::widget(view->engine()));
  gtk_window_present(GTK_WINDOW(window));
#else
  GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  gtk_window_set_default_size(GTK_WINDOW(window), 420, 320);
  gtk_container_add(GTK_CONTAINER(window), webkitgtk::widget(view->engine()));
  gtk_widget_show_all(window);
#endif

  // The app's header fields go only to trusted hosts, also across redirects.
  using H = WebSDKRequestHeaders;
  view->loadWebView(shop.url(), {{std::string(H::platform), "linux"}, {std::string(H::token), example::kToken}},
                    std::nullopt, 30 /* seconds */);
  WebKitWebView* webView = webkitgtk::nativeWebView(view->engine());

  int status = 0;
  if (exitWhenAnswered) {
    const bool answered = webkitgtk::runUntil(
        [&] {
          const char* title = webkit_web_view_get_title(webView);
          return title != nullptr && std::strncmp(title, "answered", 8) == 0;
        },
        std::chrono::seconds(20));
    const char* title = webkit_web_view_get_title(webView);
    std::cout << "minimal-host-gtk: page title \"" << (title ? title : "") << "\"" << std::endl;
    const std::string token = shop.header(std::string(H::token));
    std::cout << "minimal-host-gtk: the shop got token \"" << token << "\"" << std::endl;
    status = answered && token == example::kToken ? 0 : 1;
  } else {
#ifdef WEBSDK_WEBKITGTK6
    // GTK 4 has no gtk_main(): the app runs the loop until its window goes.
    bool open = true;
    g_signal_connect_swapped(window, "destroy", G_CALLBACK(+[](bool* flag) { *flag = false; }), &open);
    while (open) g_main_context_iteration(nullptr, TRUE);
#else
    g_signal_connect(window, "destroy", G_CALLBACK(gtk_main_quit), nullptr);
    gtk_main();
#endif
  }

  // Tear-down: detach the bridge, then let the view go before GTK's window.
  view->resetWebView();
  view->removeWebSDKScriptHandler();
  cart->finish();
  view.reset();
#ifdef WEBSDK_WEBKITGTK6
  if (exitWhenAnswered) gtk_window_destroy(GTK_WINDOW(window));
#else
  if (exitWhenAnswered) gtk_widget_destroy(window);
#endif
  return status;
}
