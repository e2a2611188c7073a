// The host catalogue the page package's typings test reads
// (page/test/host-catalogue.json) is what the C++ declarations of that host's
// family and events print: the page's strict type test then proves typings of
// the real thing, not of a hand-written stand-in.

#include "websdk/testing/Catalogue.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace websdk::host_catalogue_test {

enum class Currency { points, cash };
constexpr auto rawValues(Currency) {
  using enum Currency;
  return rawValueTable<Currency>({{points, "points"}, {cash, "cash"}});
}
enum class Tier { silver, gold };
constexpr auto rawValues(Tier) {
  using enum Tier;
  return rawValueTable<Tier>({{silver, "silver"}, {gold, "gold"}});
}

struct RedeemPoints {
  std::int64_t points = 0;
  std::optional<std::string> note;
  WEBSDK_MODEL(RedeemPoints, needsPayload, (points, integer, required), (note, strictString))
};
struct Balance {
  std::optional<Currency> currency;
  WEBSDK_MODEL(Balance, anyPayload, (currency, enumeration))
};
WEBSDK_ACTIONS(LoyaltyAction, LoyaltyPayload, (redeemPoints, "REDEEM_POINTS", redeemPoints, RedeemPoints),
               (getBalance, "GET_LOYALTY_BALANCE", getBalance, Balance),
               (transferPoints, "TRANSFER_POINTS", transferPoints, Refused))
WEBSDK_ACTIONS_COMPILED(LoyaltyPayload)
WEBSDK_HOST_FAMILY(LoyaltyFamily, "loyalty", "Loyalty plugin not subscribed", LoyaltyPlugin, handle, LoyaltyAction,
                   LoyaltyPayload)

struct Expiring {
  std::int64_t points = 0;
  std::optional<std::string> on;
  WEBSDK_MODEL(Expiring, anyPayload, (points, lenientInt, required), (on, lenientString))
};
struct PointsChanged {
  std::int64_t points = 0;
  std::optional<Tier> tier;
  std::optional<std::vector<Expiring>> expiring;
  WEBSDK_MODEL(PointsChanged, anyPayload, (points, integer, required), (tier, enumeration), (expiring, modelList))
};
struct Reset {
  WEBSDK_MODEL(Reset, anyPayload)
};

TEST(HostCatalogue, ThePageTypingsFixtureIsWhatTheDeclarationsPrint) {
  const JSON printed = testing::catalogue(
      {&familyType<LoyaltyFamily>()},
      {testing::declareEvent<PointsChanged>("loyaltyPointsChanged"), testing::declareEvent<Reset>("loyalty.reset")});
  std::ifstream in(WEBSDK_PAGE_TESTS "/host-catalogue.json");
  ASSERT_TRUE(in) << "no " WEBSDK_PAGE_TESTS "/host-catalogue.json";
  const JSON fixture = parseJSON(std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()));
  EXPECT_EQ(printed, fixture) << serializePretty(printed);
}

}  // namespace websdk::host_catalogue_test
