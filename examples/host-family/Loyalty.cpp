#include "Loyalty.hpp"

#include <websdk/webview/WebSDKEvents.hpp>

#include <iostream>

namespace loyalty {

// The one place the app's loyalty models are decoded from.
WEBSDK_ACTIONS_COMPILED(LoyaltyPayload)

std::optional<std::int64_t> rewardCost(std::string_view rewardId) {
  if (rewardId == "coffee") return 50;
  if (rewardId == "dessert") return 80;
  return std::nullopt;
}

void LoyaltyPlugin::handleLoyaltyRequest(const websdk::WebSDKBridgeRequest<LoyaltyAction>& request,
                                         const LoyaltyPayload& payload) {
  using websdk::JSONObject;
  using websdk::WebSDKResponseType;
  websdk::WebSDKReply reply = request.reply();
  std::lock_guard lock(mutex_);

  if (payload.kind() == LoyaltyPayloadCase::balance) {
    reply.sendWebSDKResponse(JSONObject{{"points", points_}}, WebSDKResponseType::success);
    return;
  }
  const RedeemRequest* redeem = payload.get<LoyaltyPayloadCase::redeem>();
  if (redeem == nullptr) return;  // no other case: the reply, let go, fails the request
  // The page learns why a redeem failed; the pin itself is never echoed.
  if (redeem->pin != pin_) {
    reply.sendFailure(1, "the pin is not the member's");
    return;
  }
  const auto cost = rewardCost(redeem->rewardId);
  if (!cost) {
    reply.sendFailure(1, "no such reward: " + redeem->rewardId);
    return;
  }
  if (*cost > points_) {
    reply.sendFailure(1, "not enough points");
    return;
  }
  points_ -= *cost;
  reply.sendWebSDKResponse(JSONObject{{"rewardId", redeem->rewardId}, {"points", points_}},
                           WebSDKResponseType::success);

  // The page also hears of it as an event, the push a change made elsewhere
  // (a purchase at the till) would be; its data is written from its model,
  // the same declaration the app's catalogue gives the page's typings.
  const PointsChanged changed{points_, -*cost, "redeem:" + redeem->rewardId};
  if (const auto view = view_.lock(); view && !websdk::emitEvent(*view, kPointsChanged, changed))
    std::cerr << "loyalty: the view refused the event " << kPointsChanged << std::endl;
}

}  // namespace loyalty
