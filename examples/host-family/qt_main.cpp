// host-family-qt: the app's own loyalty family behind a real Qt WebEngine
// view. The page asks for the balance, redeems a reward with the member's pin
// and hears the app's loyaltyPointsChanged event. Built against
// WebSDK::qtwebengine.
//
//   host-family-qt                    opens the window
//   host-family-qt --exit-when-done   quits with 0 once the page has all three
//   host-family-qt --record FILE      records the bridge's traffic, the pin masked

#include "Loyalty.hpp"
#include "LoyaltyPage.hpp"

#include <websdk/qtwebengine/Native.hpp>
#include <websdk/webview/WebSDKNavigationDelegate.hpp>
#include <websdk/webview/WebSDKWebView.hpp>

#include <QApplication>
#include <QMainWindow>

#include <chrono>
#include <iostream>

using namespace websdk;

int main(int argc, char** argv) {
  const auto options = example::parse("host-family-qt", argc, argv);
  if (!options) return 2;
  // Makes the QApplication (registering the app:// scheme of local pages);
  // as root it also turns Chromium's sandbox off.
  if (!qtwebengine::initialize(argc, argv)) {
    std::cerr << "host-family-qt: no display" << std::endl;
    return 1;
  }

  qtwebengine::QtWebEngineConfiguration engine;
  engine.localPages = {example::loyaltyPages()};
  auto view =
      WebSDKWebView::create(std::make_unique<qtwebengine::QtWebEngine>(engine), example::configuration(*options),
                            nullptr, nullptr, WebSDKTrustedHostsNavigationDelegate::shared());

  // The app's own family: refused (and logged) if it collided with an action
  // or family the view already routes.
  auto plugin = std::make_shared<loyalty::LoyaltyPlugin>(example::kPin, example::kStartingPoints);
  plugin->pushTo(view);
  if (const WebSDKRegistration registered = view->setPlugin<loyalty::LoyaltyFamily>(plugin); !registered) {
    std::cerr << "host-family-qt: " << registered.error << std::endl;
    return 1;
  }

  QMainWindow window;
  window.resize(480, 360);
  window.setCentralWidget(qtwebengine::widget(view->engine()));
  window.show();

  view->loadWebView(example::loyaltyPages().url(), {}, std::nullopt, 30 /* seconds */);
  QWebEnginePage* page = qtwebengine::page(view->engine());

  int status = 0;
  if (options->exitWhenDone) {
    const bool done =
        qtwebengine::runUntil([&] { return page->title().startsWith("done") || page->title().startsWith("failed"); },
                              std::chrono::seconds(30));
    std::cout << "host-family-qt: page title \"" << page->title().toStdString() << "\"" << std::endl;
    status = done && page->title().toStdString() == example::kDoneTitle ? 0 : 1;
  } else {
    status = QApplication::exec();
  }

  // Tear-down: detach the bridge, then let the view (and its recording) go;
  // the window gives the widget back first, for the engine owns it.
  view->resetWebView();
  view->removeWebSDKScriptHandler();
  window.takeCentralWidget();
  view.reset();
  return status;
}
