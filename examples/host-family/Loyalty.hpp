#pragma once
// The app's loyalty scheme, which the WebSDK knows nothing of: the actions its
// pages send (LOYALTY_BALANCE, LOYALTY_REDEEM) and their models, the family
// that routes them to the app, the event the app pushes when the balance
// changes, and the plugin that serves them. The windowed hosts and the tool
// share it, so the pages, the recordings and the catalogue all read the same
// declarations.

#include <websdk/bridge/Family.hpp>
#include <websdk/json/ActionTable.hpp>
#include <websdk/json/Model.hpp>
#include <websdk/webview/WebSDKWebView.hpp>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace loyalty {

// LOYALTY_REDEEM's payload: which reward, and the member's pin. The pin is the
// member's secret: `sensitive` has recordings write it as "***".
struct RedeemRequest {
  std::string rewardId;
  std::string pin;
  WEBSDK_MODEL(RedeemRequest, needsPayload, (rewardId, strictString, required),
               (pin, strictString, required, sensitive))
};

// The data of the event the app pushes when the member's balance changes.
struct PointsChanged {
  std::int64_t points = 0;  // the balance now
  std::int64_t change = 0;  // what the change added (negative: spent)
  std::string reason;       // "redeem:coffee"
  WEBSDK_MODEL(PointsChanged, anyPayload, (points, integer, required), (change, integer, required),
               (reason, strictString))
};

// The event's name, as the page's nativeEvent gets it.
inline constexpr const char* kPointsChanged = "loyaltyPointsChanged";

// LOYALTY_BALANCE carries nothing; LOYALTY_REDEEM a RedeemRequest. Loyalty.cpp
// compiles the decoding (WEBSDK_ACTIONS_COMPILED), once for the whole app.
WEBSDK_ACTIONS(LoyaltyAction, LoyaltyPayload, (balance, "LOYALTY_BALANCE", balance),
               (redeem, "LOYALTY_REDEEM", redeem, RedeemRequest))

// The family: the name tools and logs use, what the page is told while no
// plugin is registered, and the protocol the plugin implements.
WEBSDK_HOST_FAMILY(LoyaltyFamily, "loyalty", "Loyalty is not available right now", LoyaltyProtocol,
                   handleLoyaltyRequest, LoyaltyAction, LoyaltyPayload)

// The member's account, served to the page: the balance, and redeeming a
// reward with the member's pin. A redeem is answered through its reply, and
// the new balance is then pushed to the page as a loyaltyPointsChanged event.
class LoyaltyPlugin final : public LoyaltyProtocol {
 public:
  LoyaltyPlugin(std::string pin, std::int64_t points) : pin_(std::move(pin)), points_(points) {}

  // The view its events go to. Held weakly, as the view holds the plugin: the
  // bridge hands a plugin the request, not the view.
  void pushTo(std::weak_ptr<websdk::WebSDKWebView> view) { view_ = std::move(view); }

  void handleLoyaltyRequest(const websdk::WebSDKBridgeRequest<LoyaltyAction>& request,
                            const LoyaltyPayload& payload) override;

 private:
  std::string pin_;
  std::mutex mutex_;
  std::int64_t points_;
  std::weak_ptr<websdk::WebSDKWebView> view_;
};

// What a reward costs, in points; nothing for a reward the scheme has not.
std::optional<std::int64_t> rewardCost(std::string_view rewardId);

}  // namespace loyalty
