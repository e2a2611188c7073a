#include "CartPlugin.hpp"

using namespace websdk;

void CartPlugin::handleCartRequest(const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload& payload) {
  auto view = view_.lock();
  if (!view) return;  // the screen is gone: nobody to answer
  using Case = WebSDKCartRequestPayloadCase;

  if (const auto* cart = payload.get<Case::getCart>()) {
    // A quick answer, straight from the UI thread.
    JSONObject answer{{"marketplaceId", cart->marketplaceId},
                      {"items", JSONArray{JSONObject{{"id", "paneer-tikka"}, {"quantity", 2}}}},
                      {"total", 498}};
    view->sendWebSDKResponse(answer, WebSDKResponseType::success, request.requestId);
    return;
  }
  if (const auto* coupon = payload.get<Case::applyCoupon>()) {
    // Slow work (a network call, say) goes to another thread; the answer is
    // sent from there.
    std::lock_guard lock(mutex_);
    workers_.emplace_back([weak = view_, requestId = request.requestId, cartValue = coupon->cartValue] {
      if (auto view = weak.lock()) {
        JSONObject answer{{"coupon", "WELCOME50"}, {"discount", 50}, {"total", cartValue - 50}};
        view->sendWebSDKResponse(answer, WebSDKResponseType::success, requestId);
      }
    });
    return;
  }
  // Everything else this app does not do.
  view->sendFailure(request.requestId, rawValue(WebSDKStatusCode::notHandled), std::string(payload.caseName()));
}

void CartPlugin::finish() {
  std::vector<std::thread> workers;
  {
    std::lock_guard lock(mutex_);
    workers.swap(workers_);
  }
  for (auto& worker : workers) worker.join();
}
