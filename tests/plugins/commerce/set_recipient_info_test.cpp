#include "support/Decoding.hpp"

namespace websdk::set_recipient_info_test {
namespace {

using P = WebSDKSetRecipientInfoRequestPayload;
using Data = WebSDKRecipientInfoUserDataResponseModel;
constexpr auto kCase = WebSDKSetRecipientInfoRequestPayloadCase::SetRecipientInfo;

TEST(SetRecipientInfo, DecodesThroughTheBridgeWithFlowDataAlwaysBuilt) {
  test::expectDecodes<SetRecipientInfoFamily>({
      {"SET_RECIPIENT_INFO", R"({"flowType":"GIFT","flowData":{"recipientName":"A"}})",
       P::make<kCase>({"GIFT", Data{std::nullopt, "A", std::nullopt, std::nullopt}})},
      {"SET_RECIPIENT_INFO",
       R"({"flowType":"GIFT","flowData":{"messageId":"m","recipientName":"A","createdTs":"1","expiredTs":"2"}})",
       P::make<kCase>({"GIFT", Data{"m", "A", "1", "2"}})},
      {"SET_RECIPIENT_INFO", R"({"flowType":7,"flowData":{"createdTs":1700000000}})",
       P::make<kCase>({std::nullopt, Data{}})},
      {"SET_RECIPIENT_INFO", R"({"flowData":"not an object"})", P::make<kCase>({std::nullopt, Data{}})},
      {"SET_RECIPIENT_INFO", std::nullopt, P::make<kCase>({std::nullopt, Data{}})},
  });
}

}  // namespace
}  // namespace websdk::set_recipient_info_test
