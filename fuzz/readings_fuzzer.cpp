// Every family's decoding, reached directly rather than through the routing:
// the input is a payload's JSON text, handed with each action of each family
// to the family's validateRequest. A decoded payload is also described and
// written out, as the inspector and logs do. Nothing may throw, crash or read
// out of bounds, whatever the payload holds.

#include "websdk/bridge/Families.hpp"

#include <cstdint>
#include <optional>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace websdk;
  const JSON parsed = parseJSON(std::string_view(reinterpret_cast<const char*>(data), size));
  std::optional<JSONObject> payload;
  if (const auto* object = parsed.if_object()) payload = *object;

  forEachFamily([&]<class F>(F) {
    typename F::Request request{{}, "r", payload};  // one copy of the payload per family
    for (const auto& entry : enumTable<typename F::Action>) {
      request.type = entry.value;
      if (const auto typed = F::Payload::validateRequest(request)) {
        const std::string text = serialize(typed->describe());
        if (text.empty()) __builtin_trap();
      }
    }
  });
  return 0;
}
