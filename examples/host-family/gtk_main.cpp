// host-family-gtk: the app's own loyalty family behind a real WebKitGTK web
// view. The page asks for the balance, redeems a reward with the member's pin
// and hears the app's loyaltyPointsChanged event. One source for both
// engines: built against WebSDK::webkitgtk (GTK 3) it is host-family-gtk,
// against WebSDK::webkitgtk6 (GTK 4, which defines WEBSDK_WEBKITGTK6)
// host-family-gtk4.
//
//   host-family-gtk                    opens the window
//   host-family-gtk --exit-when-done   quits with 0 once the page has all three
//   host-family-gtk --record FILE      records the bridge's traffic, the pin masked

#include "Loyalty.hpp"
#include "LoyaltyPage.hpp"

#include <websdk/webkitgtk/Native.hpp>
#include <websdk/webview/WebSDKNavigationDelegate.hpp>
#include <websdk/webview/WebSDKWebView.hpp>

#include <chrono>
#include <iostream>

using namespace websdk;

#ifdef WEBSDK_WEBKITGTK6
constexpr const char* kProgram = "host-family-gtk4";
#else
constexpr const char* kProgram = "host-family-gtk";
#endif

int main(int argc, char** argv) {
  const auto options = example::parse(kProgram, argc, argv);
  if (!options) return 2;
  if (!webkitgtk::initialize(&argc, &argv)) {
    std::cerr << kProgram << ": no display" << std::endl;
    return 1;
  }

  webkitgtk::WebKitGTKConfiguration engine;
  engine.localPages = {example::loyaltyPages()};
  auto view =
      WebSDKWebView::create(std::make_unique<webkitgtk::WebKitGTKEngine>(engine), example::configuration(*options),
                            nullptr, nullptr, WebSDKTrustedHostsNavigationDelegate::shared());

  // The app's own family: refused (and logged) if it collided with an action
  // or family the view already routes.
  auto plugin = std::make_shared<loyalty::LoyaltyPlugin>(example::kPin, example::kStartingPoints);
  plugin->pushTo(view);
  if (const WebSDKRegistration registered = view->setPlugin<loyalty::LoyaltyFamily>(plugin); !registered) {
    std::cerr << kProgram << ": " << registered.error << std::endl;
    return 1;
  }

#ifdef WEBSDK_WEBKITGTK6
  GtkWidget* window = gtk_window_new();
  gtk_window_set_default_size(GTK_WINDOW(window), 480, 360);
  gtk_window_set_child(GTK_WINDOW(window), webkitgtk::widget(view->engine()));
  gtk_window_present(GTK_WINDOW(window));
#else
  GtkWidget* window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  gtk_window_set_default_size(GTK_WINDOW(window), 480, 360);
  gtk_container_add(GTK_CONTAINER(window), webkitgtk::widget(view->engine()));
  gtk_widget_show_all(window);
#endif

  view->loadWebView(example::loyaltyPages().url(), {}, std::nullopt, 30 /* seconds */);
  WebKitWebView* webView = webkitgtk::nativeWebView(view->engine());

  int status = 0;
  if (options->exitWhenDone) {
    const auto title = [&] {
      const char* t = webkit_web_view_get_title(webView);
      return std::string(t ? t : "");
    };
    const bool done = webkitgtk::runUntil([&] { return title().starts_with("done") || title().starts_with("failed"); },
                                          std::chrono::seconds(30));
    std::cout << kProgram << ": page title \"" << title() << "\"" << std::endl;
    status = done && title() == example::kDoneTitle ? 0 : 1;
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

  // Tear-down: detach the bridge, then let the view (and its recording) go
  // before GTK's window.
  view->resetWebView();
  view->removeWebSDKScriptHandler();
  view.reset();
#ifdef WEBSDK_WEBKITGTK6
  if (options->exitWhenDone) gtk_window_destroy(GTK_WINDOW(window));
#else
  if (options->exitWhenDone) gtk_widget_destroy(window);
#endif
  return status;
}
