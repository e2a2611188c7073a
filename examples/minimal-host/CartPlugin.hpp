#pragma once
// The host app's cart: it answers the page's cart requests. The WebSDK calls
// handleCartRequest on the UI thread; the answer goes back through the
// request's reply, from any thread.

#include <websdk/bridge/families/Cart.hpp>

#include <mutex>
#include <thread>
#include <vector>

class CartPlugin final : public websdk::DvCartWebViewCallBacks {
 public:
  ~CartPlugin() override { finish(); }

  void handleCartRequest(const websdk::WebSDKCartRequestModel& request,
                         const websdk::WebSDKCartRequestPayload& payload) override;

  /// Waits for answers still being worked out on other threads.
  void finish();

 private:
  std::mutex mutex_;
  std::vector<std::thread> workers_;
};
