#pragma once
// A request of each family that its decoding accepts, in trial order.

#include "websdk/bridge/Families.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace websdk::test {

struct FamilyRequest {
  std::string_view family;
  std::string_view failureMessage;
  std::string text;  // its request id is "r"
};

inline std::vector<FamilyRequest> oneRequestPerFamily() {
  std::vector<FamilyRequest> out;
  forEachFamily([&]<class F>(F) {
    for (const auto& entry : enumTable<typename F::Action>) {
      for (const char* payload : {"{}", R"({"tenant":{},"restaurantId":"1","orderId":"1","juspayParams":{}})"}) {
        typename F::Request request{entry.value, "r", parseJSON(payload).as_object()};
        if (!F::Payload::validateRequest(request)) continue;
        out.push_back({F::name, F::failureMessage,
                       R"({"type":")" + std::string(entry.raw) + R"(","requestId":"r","payload":)" + payload + "}"});
        return;
      }
    }
  });
  return out;
}

}  // namespace websdk::test
