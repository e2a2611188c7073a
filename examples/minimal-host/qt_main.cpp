// minimal-host-qt: the same cart plugin behind a real Qt WebEngine view. The
// app loads the shop's page with its own header fields; the page asks for its
// cart and shows the answer. Built against WebSDK::qtwebengine.
//
//   minimal-host-qt                       opens the window
//   minimal-host-qt --exit-when-answered  quits with 0 once the page has its
//                                         answer and the shop got the app's token

#include "CartPlugin.hpp"
#include "LocalShop.hpp"
#include "ShopPage.hpp"

#include <websdk/qtwebengine/Native.hpp>
#include <websdk/webview/WebSDKRequestHeaders.hpp>
#include <websdk/webview/WebSDKWebView.hpp>

#include <QApplication>
#include <QMainWindow>

#include <chrono>
#include <cstring>
#include <iostream>
#include <string>

using namespace websdk;

int main(int argc, char** argv) {
  const bool exitWhenAnswered = argc > 1 && std::strcmp(argv[1], "--exit-when-answered") == 0;
  // Makes the QApplication; as root it also turns Chromium's sandbox off.
  if (!qtwebengine::initialize(argc, argv)) {
    std::cerr << "minimal-host-qt: no display" << std::endl;
    return 1;
  }

  // The shop's server; here a stand-in on this machine (LocalShop.hpp).
  LocalShop shop(example::kPage);

  auto navigation = std::make_shared<example::NavigationPolicy>("minimal-host-qt");
  auto view =
      WebSDKWebView::create(std::make_unique<qtwebengine::QtWebEngine>(), {"127.0.0.1"}, nullptr, nullptr, navigation);
  auto cart = std::make_shared<CartPlugin>();
  view->setCartPlugin(cart);

  QMainWindow window;
  window.resize(420, 320);
  window.setCentralWidget(qtwebengine::widget(view->engine()));
  window.show();

  // The app's header fields go only to trusted hosts, also across redirects.
  using H = WebSDKRequestHeaders;
  view->loadWebView(shop.url(), {{std::string(H::platform), "linux"}, {std::string(H::token), example::kToken}},
                    std::nullopt, 30 /* seconds */);
  QWebEnginePage* page = qtwebengine::page(view->engine());

  int status = 0;
  if (exitWhenAnswered) {
    const bool answered =
        qtwebengine::runUntil([&] { return page->title().startsWith("answered"); }, std::chrono::seconds(20));
    std::cout << "minimal-host-qt: page title \"" << page->title().toStdString() << "\"" << std::endl;
    const std::string token = shop.header(std::string(H::token));
    std::cout << "minimal-host-qt: the shop got token \"" << token << "\"" << std::endl;
    status = answered && token == example::kToken ? 0 : 1;
  } else {
    status = QApplication::exec();
  }

  // Tear-down: detach the bridge, then let the view go; the window gives it
  // back first, for the engine owns it.
  view->resetWebView();
  view->removeWebSDKScriptHandler();
  cart->finish();
  window.takeCentralWidget();
  view.reset();
  return status;
}
