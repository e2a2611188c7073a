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

namespace detail {
// Where among `Families` the family of `slot` is; past the end when none is.
template <class... Families>
constexpr std::size_t familyOfSlot(std::size_t slot) {
  constexpr std::size_t slots[] = {Families::slot...};
  std::size_t i = 0;
  while (i < sizeof...(Families) && slots[i] != slot) ++i;
  return i;
}
template <class Slots, class... Families>
struct InSlotOrder;
// The families ordered by the slot each row declares: a slot no row has (two
// rows on one slot leave one empty) names no family, and fails to compile.
template <std::size_t... Slot, class... Families>
struct InSlotOrder<std::index_sequence<Slot...>, Families...> {
  using type = std::tuple<std::tuple_element_t<familyOfSlot<Families...>(Slot), std::tuple<Families...>>...>;
};
}  // namespace detail

/// The families in trial order: each row's slot says its place, so that one
/// family's header alone knows where its plugin is held.
using BridgeFamilies =
    detail::InSlotOrder<std::make_index_sequence<kFamilyCount>, AccountsFamily, CartFamily, ChatConversationFamily,
                        GenericFamily, GiftingCartFamily, MenuListFamily, PXCartFamily, PaymentsFamily,
                        RestaurantEmpathyFamily, SetRecipientInfoFamily, VRCartFamily, ZippaFamily>::type;

/// Calls f(Family{}) for each family, in trial order.
template <class F>
constexpr void forEachFamily(F&& f) {
  std::apply([&](auto... family) { (f(family), ...); }, BridgeFamilies{});
}

}  // namespace websdk
