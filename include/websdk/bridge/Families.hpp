#pragma once
// The twelve families of the bridge, in the order the bridge tries them, with
// the name tools use and the answer the page gets when no host object is set.

#include "websdk/Export.hpp"
#include "websdk/bridge/WebSDKScriptHandler.hpp"

#include <string_view>
#include <tuple>

namespace websdk {

template <class ActionT, class PayloadT, class PluginT, std::weak_ptr<PluginT> WebSDKScriptHandler::*Delegate,
          void (PluginT::*Operation)(const WebSDKBridgeRequest<ActionT>&, const PayloadT&)>
struct WEBSDK_EXPORT BridgeFamily {
  using Action = ActionT;
  using Request = WebSDKBridgeRequest<ActionT>;
  using Payload = PayloadT;
  using Plugin = PluginT;
  static constexpr auto delegate = Delegate;
  static constexpr auto operation = Operation;
};

#define WEBSDK_DETAIL_FAMILY(F, A, P, Plugin, field, op, familyName, message)       \
  struct F : BridgeFamily<A, P, Plugin, &WebSDKScriptHandler::field, &Plugin::op> { \
    static constexpr std::string_view name = familyName;                            \
    static constexpr std::string_view failureMessage = message;                     \
  };

WEBSDK_DETAIL_FAMILY(GenericFamily, WebSDKGenericAction, WebSDKGenericRequestPayload, DvWebViewGenericCallsBacks,
                     genericDelegate, handleGenericRequest, "generic",
                     "generic plugin not subscribed or not a valid request")
WEBSDK_DETAIL_FAMILY(PaymentsFamily, WebSDKPaymentsAction, WebSDKPaymentsRequestPayload, DvWebViewPaymentsCallsBacks,
                     paymentsDelegate, handlePaymentsRequest, "payments",
                     "payment plugin not subscribed or not a valid request")
WEBSDK_DETAIL_FAMILY(RestaurantEmpathyFamily, WebSDKRestaurantEmpathyAction, WebSDKRestaurantEmpathyRequestPayload,
                     DvWebViewRestaurantEmpathyCallsBacks, restaurantEmpathyDelegate, handleRestaurantEmpathyRequest,
                     "restaurantEmpathy", "restaurant empathy plugin not subscribed or not a valid request")
WEBSDK_DETAIL_FAMILY(ChatConversationFamily, WebSDKChatConversationAction, WebSDKChatConversationRequestPayload,
                     DvWebViewChatConversationCallsBacks, chatConversationDelegate, handleChatConversationRequest,
                     "chatConversation", "chat conversation plugin not subscribed or not a valid request")
WEBSDK_DETAIL_FAMILY(CartFamily, WebSDKCartAction, WebSDKCartRequestPayload, DvCartWebViewCallBacks, cartDelegate,
                     handleCartRequest, "cart", "Cart Plugin not subscribed or not a valid request")
WEBSDK_DETAIL_FAMILY(PXCartFamily, WebSDKPXCartAction, WebSDKPXCartRequestPayload, DvPXCartWebViewCallBacks,
                     pxCartDelegate, handlePXCartRequest, "pxCart",
                     "PX Cart Plugin not subscribed or not a valid request")
WEBSDK_DETAIL_FAMILY(VRCartFamily, WebSDKVRCartAction, WebSDKVRCartRequestPayload, DvVRCartWebViewCallBacks,
                     vrCartDelegate, handleVRCartRequest, "vrCart",
                     "VR Cart Plugin not subscribed or not a valid request")
WEBSDK_DETAIL_FAMILY(GiftingCartFamily, WebSDKGiftingCartAction, WebSDKGiftingCartRequestPayload,
                     DvGiftingCartWebViewCallBacks, giftingCartDelegate, handleGiftingCartRequest, "giftingCart",
                     "Gifting Cart Plugin not subscribed or not a valid request")
WEBSDK_DETAIL_FAMILY(ZippaFamily, WebSDKZippaAction, WebSDKZippaRequestPayload, DvZippaWebViewCallBacks, zippaDelegate,
                     handleZippaRequest, "zippa", "Zippa Plugin not subscribed or not a valid request")
WEBSDK_DETAIL_FAMILY(SetRecipientInfoFamily, WebSDKSetRecipientInfoAction, WebSDKSetRecipientInfoRequestPayload,
                     DvWebViewSetRecipientInfoCallsBacks, setRecipientInfoDelegate, handleSetRecipientInfoRequest,
                     "setRecipientInfo", "Gifting plugin not subscribed or not a valid request")
WEBSDK_DETAIL_FAMILY(AccountsFamily, WebSDKAccountsAction, WebSDKAccountsRequestPayload, DvAccountsWebViewCallBacks,
                     accountsDelegate, handleAccountsRequest, "accounts",
                     "Account plugin not subscribed or not a valid request")
WEBSDK_DETAIL_FAMILY(MenuListFamily, WebSDKMenuListAction, WebSDKMenuListPayload, DvWebViewMenuListCallbacks,
                     menuListDelegate, handleMenuListRequest, "menuList",
                     "Menu List plugin not subscribed or not a valid request")

#undef WEBSDK_DETAIL_FAMILY

/// The families in trial order.
using BridgeFamilies =
    std::tuple<GenericFamily, PaymentsFamily, RestaurantEmpathyFamily, ChatConversationFamily, CartFamily, PXCartFamily,
               VRCartFamily, GiftingCartFamily, ZippaFamily, SetRecipientInfoFamily, AccountsFamily, MenuListFamily>;

/// Calls f(Family{}) for each family, in trial order.
template <class F>
constexpr void forEachFamily(F&& f) {
  std::apply([&](auto... family) { (f(family), ...); }, BridgeFamilies{});
}

}  // namespace websdk
