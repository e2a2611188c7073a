#include "CartPlugin.hpp"

using namespace websdk;

void CartPlugin::handleCartRequest(const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload& payload) {
  // Bound to this request and the page that asked it: it answers once, and
  // if it is let go unanswered the page hears that the request failed.
  WebSDKReply reply = request.reply();
  using Case = WebSDKCartRequestPayloadCase;

  if (const auto* cart = payload.get<Case::getCart>()) {
    // A quick answer, straight from the UI thread.
    JSONObject answer{{"marketplaceId", cart->marketplaceId},
                      {"items", JSONArray{JSONObject{{"id", "paneer-tikka"}, {"quantity", 2}}}},
                      {"total", 498}};
    reply.sendWebSDKResponse(answer, WebSDKResponseType::success);
    return;
  }
  if (const auto* coupon = payload.get<Case::applyCoupon>()) {
    // Slow work (a network call, say) goes to another thread with the reply;
    // the answer is sent from there.
    std::lock_guard lock(mutex_);
    workers_.emplace_back([reply = std::move(reply), cartValue = coupon->cartValue]() mutable {
      JSONObject answer{{"coupon", "WELCOME50"}, {"discount", 50}, {"total", cartValue - 50}};
      reply.sendWebSDKResponse(answer, WebSDKResponseType::success);
    });
    return;
  }
  // Everything else this app does not do.
  reply.sendFailure(rawValue(WebSDKStatusCode::notHandled), std::string(payload.caseName()));
}

void CartPlugin::finish() {
  std::vector<std::thread> workers;
  {
    std::lock_guard lock(mutex_);
    workers.swap(workers_);
  }
  for (auto& worker : workers) worker.join();
}
