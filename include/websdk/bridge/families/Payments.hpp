#pragma once
/// @file
/// The payments family's row and its plugin protocol,
/// DvWebViewPaymentsCallsBacks: a host that serves the family implements
/// handlePaymentsRequest and includes this header, which brings the family's
/// actions and models and no other family's.

#include "websdk/bridge/Family.hpp"
#include "websdk/plugins/payments/PaymentsCatalogue.hpp"

namespace websdk {

WEBSDK_FAMILY(PaymentsFamily, 1, "payments", "payment plugin not subscribed or not a valid request",
              DvWebViewPaymentsCallsBacks, handlePaymentsRequest, WebSDKPaymentsAction, WebSDKPaymentsRequestPayload)

}  // namespace websdk
