#pragma once
/// @file
/// All twelve families of the bridge, in the order the bridge tries them. Code
/// that walks every family (the bridge's routing, tools, tests) includes this;
/// a host that serves one family includes only that family's header.

#include "websdk/bridge/families/Accounts.hpp"
#include "websdk/bridge/families/Cart.hpp"
#include "websdk/bridge/families/ChatConversation.hpp"
#include "websdk/bridge/families/Generic.hpp"
#include "websdk/bridge/families/GiftingCart.hpp"
#include "websdk/bridge/families/MenuList.hpp"
#include "websdk/bridge/families/PXCart.hpp"
#include "websdk/bridge/families/Payments.hpp"
#include "websdk/bridge/families/RestaurantEmpathy.hpp"
#include "websdk/bridge/families/SetRecipientInfo.hpp"
#include "websdk/bridge/families/VRCart.hpp"
#include "websdk/bridge/families/Zippa.hpp"

#include <cstddef>
#include <tuple>
#include <utility>

namespace websdk {

/// The families in trial order.
using BridgeFamilies =
    std::tuple<GenericFamily, PaymentsFamily, RestaurantEmpathyFamily, ChatConversationFamily, CartFamily, PXCartFamily,
               VRCartFamily, GiftingCartFamily, ZippaFamily, SetRecipientInfoFamily, AccountsFamily, MenuListFamily>;

// Each row's slot is its place here, so that one family's header alone knows
// where its plugin is held.
static_assert(std::tuple_size_v<BridgeFamilies> == kFamilyCount);
static_assert([]<std::size_t... I>(std::index_sequence<I...>) {
  return ((std::tuple_element_t<I, BridgeFamilies>::slot == I) && ...);
}(std::make_index_sequence<kFamilyCount>{}));

/// Calls f(Family{}) for each family, in trial order.
template <class F>
constexpr void forEachFamily(F&& f) {
  std::apply([&](auto... family) { (f(family), ...); }, BridgeFamilies{});
}

}  // namespace websdk
