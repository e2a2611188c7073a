#pragma once
/// @file
/// The restaurant empathy family's row and its plugin protocol,
/// DvWebViewRestaurantEmpathyCallsBacks: a host that serves the family
/// implements handleRestaurantEmpathyRequest and includes this header, which
/// brings the family's actions and models and no other family's.

#include "websdk/bridge/Family.hpp"
#include "websdk/plugins/commerce/RestaurantEmpathy.hpp"

namespace websdk {

WEBSDK_FAMILY(RestaurantEmpathyFamily, 2, "restaurantEmpathy",
              "restaurant empathy plugin not subscribed or not a valid request", DvWebViewRestaurantEmpathyCallsBacks,
              handleRestaurantEmpathyRequest, WebSDKRestaurantEmpathyAction, WebSDKRestaurantEmpathyRequestPayload)

}  // namespace websdk
