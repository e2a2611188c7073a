// The generic family's decoding and description, compiled once.
#include "websdk/plugins/generic/GenericCatalogue.hpp"

namespace websdk {
WEBSDK_ACTIONS_COMPILED(WebSDKGenericRequestPayload)
}  // namespace websdk
