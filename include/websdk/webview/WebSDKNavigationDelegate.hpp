#pragma once
/// @file
/// The host's view of navigation: every event and policy question of the page's
/// engine, forwarded unchanged. The defaults allow everything.

#include "websdk/Export.hpp"
#include "websdk/webview/WebEngine.hpp"

#include <memory>

namespace websdk {

class WebSDKWebView;

/// What a host hears of its view's navigation, and how it answers the
/// engine's questions. A view holds its delegate weakly; without one, the
/// engine's questions stay unanswered and pages do not load.
class WEBSDK_EXPORT WebSDKNavigationDelegate {
 public:
  virtual ~WebSDKNavigationDelegate() = default;

  /// A navigation started.
  virtual void didStartProvisionalNavigation(WebSDKWebView& webView, const WebSDKNavigation* navigation) = 0;
  /// A navigation finished loading.
  virtual void didFinish(WebSDKWebView& webView, const WebSDKNavigation* navigation) = 0;
  /// Never called by the web view itself; available to the host.
  virtual void didFailLoadingWithError(WebSDKWebView& webView, const WebSDKError& error) { (void)webView, (void)error; }
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

/// A ready-made delegate that keeps the view on the hosts it trusts: a
/// main-frame navigation to a host off the whitelist is cancelled and handed
/// to `refused` (which logs it); frames, about: pages and trusted hosts go
/// ahead. Responses are allowed, a challenge gets the engine's default
/// handling, and a failed load is logged. Derive from it to add to it.
/// WebKitGTK does not tell a frame's navigation from the main frame's, so
/// there a frame off the whitelist is refused too.
class WEBSDK_EXPORT WebSDKTrustedHostsNavigationDelegate : public WebSDKNavigationDelegate {
 public:
  /// One for every view, alive as long as the process: a view holds its
  /// delegate weakly, and this one needs no owner.
  static const std::shared_ptr<WebSDKTrustedHostsNavigationDelegate>& shared();
  using WebSDKNavigationDelegate::decidePolicyFor;
  void didStartProvisionalNavigation(WebSDKWebView& webView, const WebSDKNavigation* navigation) override;
  void didFinish(WebSDKWebView& webView, const WebSDKNavigation* navigation) override;
  void didFailProvisionalNavigation(WebSDKWebView& webView, const WebSDKNavigation* navigation,
                                    const WebSDKError& error) override;
  void decidePolicyFor(WebSDKWebView& webView, const WebSDKNavigationAction& action,
                       WebSDKNavigationActionDecision decisionHandler) override;
  void didReceive(WebSDKWebView& webView, const WebSDKAuthenticationChallenge& challenge,
                  WebSDKAuthChallengeCompletion completionHandler) override;
  /// A navigation this delegate cancelled; open it elsewhere (the system
  /// browser, say) by overriding this.
  virtual void refused(WebSDKWebView& webView, const WebSDKNavigationAction& action);
};

}  // namespace websdk
