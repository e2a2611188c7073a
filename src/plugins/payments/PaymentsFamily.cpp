// The payments family's decoding and description, compiled once.
#include "websdk/plugins/payments/PaymentsCatalogue.hpp"

namespace websdk {
WEBSDK_ACTIONS_COMPILED(WebSDKPaymentsRequestPayload)
}  // namespace websdk
