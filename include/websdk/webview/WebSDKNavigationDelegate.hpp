#pragma once
// The host's view of navigation: every event and policy question of the page's
// engine, forwarded unchanged. The defaults allow everything.

#include "websdk/webview/WebEngine.hpp"

namespace websdk {

class WebSDKWebView;

class WebSDKNavigationDelegate {
 public:
  virtual ~WebSDKNavigationDelegate() = default;

  virtual void didStartProvisionalNavigation(WebSDKWebView& webView, const WebSDKNavigation* navigation) = 0;
  virtual void didFinish(WebSDKWebView& webView, const WebSDKNavigation* navigation) = 0;
  /// Never called by the web view itself; available to the host.
  virtual void didFailLoadingWithError(WebSDKWebView& webView, const WebSDKError& error) {
    (void)webView, (void)error;
  }
  /// A committed navigation failed.
  virtual void didFail(WebSDKWebView& webView, const WebSDKNavigation* navigation, const WebSDKError& error) {
    (void)webView, (void)navigation, (void)error;
  }
  /// A navigation failed before it committed (host not found, timeout...).
  virtual void didFailProvisionalNavigation(WebSDKWebView& webView, const WebSDKNavigation* navigation,
                                            const WebSDKError& error) = 0;
  /// A navigation is about to start; answer through `decisionHandler`, now or
  /// later, from any thread.
  virtual void decidePolicyFor(WebSDKWebView& webView, const WebSDKNavigationAction& action,
                               WebSDKNavigationActionDecision decisionHandler) {
    (void)webView, (void)action;
    decisionHandler(WebSDKNavigationActionPolicy::allow);
  }
  /// A response arrived; answer through `decisionHandler`.
  virtual void decidePolicyFor(WebSDKWebView& webView, const WebSDKNavigationResponse& response,
                               WebSDKNavigationResponseDecision decisionHandler) {
    (void)webView, (void)response;
    decisionHandler(WebSDKNavigationResponsePolicy::allow);
  }
  /// The server asks for authentication.
  virtual void didReceive(WebSDKWebView& webView, const WebSDKAuthenticationChallenge& challenge,
                          WebSDKAuthChallengeCompletion completionHandler) = 0;
};

}  // namespace websdk
