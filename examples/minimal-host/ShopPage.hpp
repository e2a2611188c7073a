#pragma once
// What both windowed hosts share: the shop's page, the app's token, and the
// app's say on navigation. The page posts to "nativeRequest" and gets its
// answer in nativeResponse, whichever engine shows it.

#include <websdk/webview/WebSDKNavigationDelegate.hpp>
#include <websdk/webview/WebSDKWebView.hpp>

#include <iostream>
#include <string>

namespace example {

// The app's session token: one of the header fields only trusted hosts get.
inline constexpr const char* kToken = "demo-token";

// The page asks for its cart; its title says when the answer came.
inline constexpr const char* kPage = R"(<!doctype html>
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

// The app's say on navigation: pages stay on the shop; anything else would go
// to the system browser. With a real engine every navigation waits for this
// answer, so a view that loads pages needs a navigation delegate. It answers
// within the call, as Qt WebEngine needs to hear it.
class NavigationPolicy final : public websdk::WebSDKNavigationDelegate {
 public:
  explicit NavigationPolicy(std::string name) : name_(std::move(name)) {}
  void didStartProvisionalNavigation(websdk::WebSDKWebView&, const websdk::WebSDKNavigation*) override {}
  void didFinish(websdk::WebSDKWebView&, const websdk::WebSDKNavigation* navigation) override {
    if (navigation) std::cout << name_ << ": loaded " << navigation->url << std::endl;
  }
  void didFailProvisionalNavigation(websdk::WebSDKWebView&, const websdk::WebSDKNavigation*,
                                    const websdk::WebSDKError& error) override {
    std::cerr << name_ << ": load failed: " << error.description << std::endl;
  }
  void decidePolicyFor(websdk::WebSDKWebView& webView, const websdk::WebSDKNavigationAction& action,
                       websdk::WebSDKNavigationActionDecision decisionHandler) override {
    const bool trusted = webView.webSDKConfig.isWhitelistedURL(action.url) || action.url == "about:blank";
    decisionHandler(trusted ? websdk::WebSDKNavigationActionPolicy::allow
                            : websdk::WebSDKNavigationActionPolicy::cancel);
  }
  void didReceive(websdk::WebSDKWebView&, const websdk::WebSDKAuthenticationChallenge&,
                  websdk::WebSDKAuthChallengeCompletion completionHandler) override {
    completionHandler(websdk::WebSDKAuthChallengeDisposition::performDefaultHandling, std::nullopt);
  }

 private:
  std::string name_;
};

}  // namespace example
