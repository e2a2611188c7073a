#pragma once
// The demo host app's side of the bridge: a cart that keeps a cart, a generic
// plugin that knows the user and where they are, a payments plugin that plays a
// payment provider, and a listener that prints all traffic.

#include "websdk/bridge/families/Cart.hpp"
#include "websdk/bridge/families/Generic.hpp"
#include "websdk/bridge/families/Payments.hpp"
#include "websdk/webview/WebSDKNavigationDelegate.hpp"
#include "websdk/webview/WebSDKWebView.hpp"

#include <map>
#include <memory>
#include <mutex>
#include <ostream>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace websdk::demo {

/// Prints every request and response and remembers which request ids were
/// answered. Called from any thread.
class TrafficPrinter final : public WebSDKJSCommunicationProtocol {
 public:
  explicit TrafficPrinter(std::ostream& out) : out_(out) {}
  void didReceiveRequest(std::string_view request) override;
  void didSendResponse(const WebSDKResponseModel& response) override;

  /// The action of every request seen so far, by request id.
  std::map<std::string, std::string> actionsById() const;
  /// Whether a response went out for `requestId`.
  bool answered(const std::string& requestId) const;
  /// The request ids whose action is `action`, in arrival order.
  std::vector<std::string> requestsFor(const std::string& action) const;

 private:
  std::ostream& out_;
  mutable std::mutex mutex_;
  std::vector<std::pair<std::string, std::string>> requests_;  // id, action
  std::set<std::string> answered_;
};

/// Keeps the cart: items, quantities, a coupon, totals.
class CartPlugin final : public DvCartWebViewCallBacks {
 public:
  CartPlugin();
  void handleCartRequest(const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload& payload) override;

 private:
  struct Item {
    std::string id, name;
    double price;
    std::int64_t quantity;
  };
  JSONObject cart() const;
  double subtotal() const;

  std::vector<Item> items_;
  std::optional<std::string> coupon_;
  double discount_ = 0;
};

/// The user, their location and their address.
class GenericPlugin final : public DvWebViewGenericCallsBacks {
 public:
  void handleGenericRequest(const WebSDKGenericRequestModel& request,
                            const WebSDKGenericRequestPayload& payload) override;

 private:
};

/// A simulated payment provider: a payment is approved a moment later, on the
/// provider's own thread, as a real SDK would answer.
class PaymentsPlugin final : public DvWebViewPaymentsCallsBacks {
 public:
  ~PaymentsPlugin() override;
  void handlePaymentsRequest(const WebSDKPaymentsRequestModel& request,
                             const WebSDKPaymentsRequestPayload& payload) override;

 private:
  std::vector<std::thread> provider_;
  int orders_ = 0;
};

/// Keeps the page on trusted hosts (the ready-made rule) and prints
/// navigation events and each decision.
class NavigationPrinter final : public WebSDKTrustedHostsNavigationDelegate {
 public:
  explicit NavigationPrinter(std::ostream& out) : out_(out) {}
  void didStartProvisionalNavigation(WebSDKWebView& webView, const WebSDKNavigation* navigation) override;
  void didFinish(WebSDKWebView& webView, const WebSDKNavigation* navigation) override;
  void didFail(WebSDKWebView& webView, const WebSDKNavigation* navigation, const WebSDKError& error) override;
  void didFailProvisionalNavigation(WebSDKWebView& webView, const WebSDKNavigation* navigation,
                                    const WebSDKError& error) override;
  using WebSDKTrustedHostsNavigationDelegate::decidePolicyFor;
  void decidePolicyFor(WebSDKWebView& webView, const WebSDKNavigationAction& action,
                       WebSDKNavigationActionDecision decisionHandler) override;
  void refused(WebSDKWebView& webView, const WebSDKNavigationAction& action) override;

  int finished = 0;
  int failed = 0;
  int refusals = 0;

 private:
  std::ostream& out_;
};

}  // namespace websdk::demo
