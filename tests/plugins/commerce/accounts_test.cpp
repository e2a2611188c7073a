#include "support/Decoding.hpp"

namespace websdk::accounts_test {
namespace {

using P = WebSDKAccountsRequestPayload;
using enum WebSDKAccountsRequestPayloadCase;

TEST(Accounts, EveryActionDecodesThroughTheBridge) {
  test::expectDecodes<AccountsFamily>({
      {"UPDATE_PROFILE_INFO", std::nullopt, P::make<updateProfileInfo>()},
      {"UPDATE_PROFILE_INFO", R"({"anything":[1,2]})", P::make<updateProfileInfo>()},
      {"VERIFY_MOBILE_NUMBER", R"({"number":"9876543210"})", P::make<verifyMobileNo>({"9876543210"})},
      {"VERIFY_MOBILE_NUMBER", R"({"number":9876543210})", P::make<verifyMobileNo>({""})},
      {"VERIFY_MOBILE_NUMBER", std::nullopt, P::make<verifyMobileNo>({""})},
      {"LOGOUT", R"({"tid":"t-1","sid":"s-1"})", P::make<logout>({"t-1", "s-1"})},
      {"LOGOUT", R"({"tid":true,"sid":"s-1"})", P::make<logout>({"", "s-1"})},
      {"LOGOUT", std::nullopt, P::make<logout>({"", ""})},
      {"logout", std::nullopt, std::nullopt},  // action strings match case-sensitively
  });
}

}  // namespace
}  // namespace websdk::accounts_test
