#pragma once
// The host app's cart: it answers the page's cart requests. The WebSDK calls
// handleCartRequest on the UI thread; the answer may go back from any thread.

#include <websdk/bridge/families/Cart.hpp>
#include <websdk/webview/WebSDKWebView.hpp>

#include <memory>
#include <mutex>
#include <thread>
#include <vector>

class CartPlugin final : public websdk::DvCartWebViewCallBacks {
 public:
  explicit CartPlugin(std::weak_ptr<websdk::WebSDKWebView> view) : view_(std::move(view)) {}
  ~CartPlugin() override { finish(); }

  void handleCartRequest(const websdk::WebSDKCartRequestModel& request,
                         const websdk::WebSDKCartRequestPayload& payload) override;

  /// Waits for answers still being worked out on other threads.
  void finish();

 private:
  std::weak_ptr<websdk::WebSDKWebView> view_;
  std::mutex mutex_;
  std::vector<std::thread> workers_;
};
