#pragma once
/// @file
/// What a plugin family is, once for all twelve: its row (name, failure
/// message, slot), its action enumeration and typed payload, and its protocol,
/// the one operation through which the bridge hands it an accepted request.
/// A family's header (websdk/bridge/families/) is one WEBSDK_FAMILY row; a host
/// that serves one family includes only that header.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"

#include <cstddef>
#include <string_view>

namespace websdk {

/// How many families the bridge knows; each row's slot is below this.
inline constexpr std::size_t kFamilyCount = 12;

/// What every family's row has: its slot, its action enumeration, its request,
/// its typed payload and its plugin protocol.
template <std::size_t SlotN, class ActionT, class PayloadT, class PluginT>
struct BridgeFamily {
  static_assert(SlotN < kFamilyCount, "a family's slot is its place in the trial order, below kFamilyCount");
  /// Where the family's plugin is held, and its place in the trial order.
  static constexpr std::size_t slot = SlotN;
  using Action = ActionT;                        ///< The family's action enumeration.
  using Request = WebSDKBridgeRequest<ActionT>;  ///< A request of the family.
  using Payload = PayloadT;                      ///< The family's typed payload.
  using Plugin = PluginT;                        ///< The family's plugin protocol.
};

}  // namespace websdk

/// One family: its protocol `Protocol`, whose one operation `operation` gets
/// the request and its typed payload, and its row `Family` (slot, the name
/// tools use, the answer the page gets when no plugin is set). The row also
/// carries `Family::call` (the bridge's way in) and `Family::Serving<Host>`, a
/// protocol implementation that hands each request to
/// `host.template serve<Family>(request, payload)`, for objects that serve
/// families generically.
#define WEBSDK_FAMILY(Family, slotN, familyName, message, Protocol, operation, ActionT, PayloadT)     \
  class WEBSDK_EXPORT Protocol {                                                                      \
   public:                                                                                            \
    virtual ~Protocol() = default;                                                                    \
    virtual void operation(const WebSDKBridgeRequest<ActionT>& request, const PayloadT& payload) = 0; \
  };                                                                                                  \
  struct Family : BridgeFamily<slotN, ActionT, PayloadT, Protocol> {                                  \
    static constexpr std::string_view name = familyName;                                              \
    static constexpr std::string_view failureMessage = message;                                       \
    static void call(Protocol& plugin, const Request& request, const Payload& payload) {              \
      plugin.operation(request, payload);                                                             \
    }                                                                                                 \
    template <class Host>                                                                             \
    class Serving : public Protocol {                                                                 \
     public:                                                                                          \
      void operation(const Request& request, const Payload& payload) override {                       \
        static_cast<Host&>(*this).template serve<Family>(request, payload);                           \
      }                                                                                               \
    };                                                                                                \
  };
