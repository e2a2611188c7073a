// minimal-host-qt: the same cart plugin behind a real Qt WebEngine view. The
// app loads the shop's page with its own header fields; the page asks for its
// cart and shows the answer. Built against WebSDK::qtwebengine.
//
//   minimal-host-qt                       opens the window
//   minimal-host-qt --exit-when-answered  quits with 0 once the page has its
//                                         answer and the shop got the app's token

#include "CartPlugin.hpp"
#include "LocalShop.hpp"

#include <websdk/qtwebengine/Native.hpp>
#include <websdk/webview/WebSDKRequestHeaders.hpp>

#include <QApplication>
#include <QMainWindow>

#include <chrono>
#include <cstring>
#include <iostream>
#include <string>

using namespace websdk;

namespace {

// The app's session token: one of the header fields only trusted hosts get.
constexpr const char* kToken = "demo-token";

// The page: it posts to "nativeRequest" and gets its answer in nativeResponse,
// as it does under WebKit.
constexpr const char* kPage = R"(<!doctype html>
<html><head><meta charset="utf-8"><title>waiting</title></head>
<body><h1>Cart</h1><p id="cart">Asking the app&hellip;</p>
<script>
function nativeResponse(envelope) {
  const cart = JSON.parse(envelope.payload);
  document.getElementById("cart").textContent = cart.items.length + " item(s), total " + cart.total;
  document.title = "answered " + cart.total;
}
window.webkit.messageHandlers.nativeRequest.postMessage({ message: JSON.stringify({
  type: "GET_LOCAL_CART", requestId: "1", payload: { tenant: { marketplaceId: "meals" } } }) });
</script></body></html>)";

// Pages stay on the shop. Qt asks about a navigation and wants the answer
// at once: this delegate answers within the call, so nothing is issued again.
class NavigationPolicy final : public WebSDKNavigationDelegate {
 public:
  void didStartProvisionalNavigation(WebSDKWebView&, const WebSDKNavigation*) override {}
  void didFinish(WebSDKWebView&, const WebSDKNavigation* navigation) override {
    if (navigation) std::cout << "minimal-host-qt: loaded " << navigation->url << std::endl;
  }
  void didFailProvisionalNavigation(WebSDKWebView&, const WebSDKNavigation*, const WebSDKError& error) override {
    std::cerr << "minimal-host-qt: load failed: " << error.description << std::endl;
  }
  void decidePolicyFor(WebSDKWebView& webView, const WebSDKNavigationAction& action,
                       WebSDKNavigationActionDecision decisionHandler) override {
    const bool trusted = webView.webSDKConfig.isWhitelistedURL(action.url) || action.url == "about:blank";
    decisionHandler(trusted ? WebSDKNavigationActionPolicy::allow : WebSDKNavigationActionPolicy::cancel);
  }
  void didReceive(WebSDKWebView&, const WebSDKAuthenticationChallenge&,
                  WebSDKAuthChallengeCompletion completionHandler) override {
    completionHandler(WebSDKAuthChallengeDisposition::performDefaultHandling, std::nullopt);
  }
};

}  // namespace

int main(int argc, char** argv) {
  const bool exitWhenAnswered = argc > 1 && std::strcmp(argv[1], "--exit-when-answered") == 0;
  // Makes the QApplication; as root it also turns Chromium's sandbox off.
  if (!qtwebengine::initialize(argc, argv)) {
    std::cerr << "minimal-host-qt: no display" << std::endl;
    return 1;
  }

  // The shop's server; here a stand-in on this machine (LocalShop.hpp).
  LocalShop shop(kPage);

  auto navigation = std::make_shared<NavigationPolicy>();
  auto view =
      WebSDKWebView::create(std::make_unique<qtwebengine::QtWebEngine>(), {"127.0.0.1"}, nullptr, nullptr, navigation);
  auto cart = std::make_shared<CartPlugin>(view);
  view->setCartPlugin(cart);

  QMainWindow window;
  window.resize(420, 320);
  window.setCentralWidget(qtwebengine::widget(view->engine()));
  window.show();

  // The app's header fields go only to trusted hosts, also across redirects.
  using H = WebSDKRequestHeaders;
  view->loadWebView(shop.url(), {{std::string(H::platform), "linux"}, {std::string(H::token), kToken}}, std::nullopt,
                    30 /* seconds */);
  QWebEnginePage* page = qtwebengine::page(view->engine());

  int status = 0;
  if (exitWhenAnswered) {
    const bool answered =
        qtwebengine::runUntil([&] { return page->title().startsWith("answered"); }, std::chrono::seconds(20));
    std::cout << "minimal-host-qt: page title \"" << page->title().toStdString() << "\"" << std::endl;
    const std::string token = shop.header(std::string(H::token));
    std::cout << "minimal-host-qt: the shop got token \"" << token << "\"" << std::endl;
    status = answered && token == kToken ? 0 : 1;
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
