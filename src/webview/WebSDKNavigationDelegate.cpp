#include "websdk/webview/WebSDKNavigationDelegate.hpp"

#include "websdk/Log.hpp"
#include "websdk/webview/WebSDKWebView.hpp"

namespace websdk {

const std::shared_ptr<WebSDKTrustedHostsNavigationDelegate>& WebSDKTrustedHostsNavigationDelegate::shared() {
  // Never destroyed: a view torn down as the process ends may still ask it.
  static const auto* one = new std::shared_ptr(std::make_shared<WebSDKTrustedHostsNavigationDelegate>());
  return *one;
}

void WebSDKTrustedHostsNavigationDelegate::didStartProvisionalNavigation(WebSDKWebView&, const WebSDKNavigation*) {}

void WebSDKTrustedHostsNavigationDelegate::didFinish(WebSDKWebView&, const WebSDKNavigation*) {}

void WebSDKTrustedHostsNavigationDelegate::didFailProvisionalNavigation(WebSDKWebView& webView,
                                                                        const WebSDKNavigation* navigation,
                                                                        const WebSDKError& error) {
  log(LogLevel::warning, "navigation", webView.name(),
      "the load of " + (navigation ? navigation->url : std::string("a page")) + " failed: " + error.description);
}

void WebSDKTrustedHostsNavigationDelegate::decidePolicyFor(WebSDKWebView& webView, const WebSDKNavigationAction& action,
                                                           WebSDKNavigationActionDecision decisionHandler) {
  // Frames (a bank's 3-D Secure page, say) are the page's business: they get
  // neither the app's headers nor the bridge unless their host is trusted.
  const bool stays =
      !action.isMainFrame || action.url.starts_with("about:") || webView.webSDKConfig.isWhitelistedURL(action.url);
  if (!stays) refused(webView, action);
  decisionHandler(stays ? WebSDKNavigationActionPolicy::allow : WebSDKNavigationActionPolicy::cancel);
}

void WebSDKTrustedHostsNavigationDelegate::didReceive(WebSDKWebView&, const WebSDKAuthenticationChallenge&,
                                                      WebSDKAuthChallengeCompletion completionHandler) {
  completionHandler(WebSDKAuthChallengeDisposition::performDefaultHandling, std::nullopt);
}

void WebSDKTrustedHostsNavigationDelegate::refused(WebSDKWebView& webView, const WebSDKNavigationAction& action) {
  // A warning: a view refused its very first page shows nothing but a blank window.
  log(LogLevel::warning, "navigation", webView.name(),
      "the navigation to " + action.url +
          " was cancelled: its host is not on the view's whitelist (WebSDKTrustedHostsNavigationDelegate)");
}

}  // namespace websdk
