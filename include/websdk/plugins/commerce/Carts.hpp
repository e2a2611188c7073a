#pragma once
/// @file
/// The four cart families at once. A host that implements one of them includes
/// only that family's header.

#include "websdk/plugins/commerce/Cart.hpp"
#include "websdk/plugins/commerce/GiftingCart.hpp"
#include "websdk/plugins/commerce/PXCart.hpp"
#include "websdk/plugins/commerce/VRCart.hpp"
