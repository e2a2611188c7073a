#include "websdk/plugins/generic/LocationModels.hpp"

#include "support/Decoding.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace websdk {
namespace {

using test::payloadOf;

// A model with a few members set, the rest as a reader leaves them.
template <class T, class Set>
T with(Set set) {
  T model{};
  set(model);
  return model;
}

TEST(LocationReaders, SetLocation) {
  using M = WebSDKSetLocationRequestModel;
  test::expectReads<M>({
      {"null", std::nullopt},
      {"{}", M{}},
      // "default" fills defaultAddress; a numeric string is a latitude, but a
      // number is no name and text is no integer.
      {R"({"default":1,"lat":"12.5","name":5})", with<M>([](M& m) {
         m.defaultAddress = 1;
         m.lat = 12.5;
       })},
      {R"({"default":"1","isDeleted":true,"reverseGeoCodeFailed":2.9})", with<M>([](M& m) {
         m.isDeleted = 1;
         m.reverseGeoCodeFailed = 2;
       })},
      {R"({"id":"a1","address":"12 Main St","flatNo":"4B","lng":77.25,"deliveryLocation":"gate","mainText":"Home"})",
       with<M>([](M& m) {
         m.id = "a1";
         m.address = "12 Main St";
         m.lng = 77.25;
         m.flatNo = "4B";
         m.deliveryLocation = "gate";
         m.mainText = "Home";
       })},
  });
}

TEST(LocationReaders, LocationIsZeroWithoutADictionary) {
  test::expectReads<Location>({
      {"null", Location{0, 0}},
      {R"({"latitude":"1.5","longitude":2})", Location{1.5, 2}},
      {R"({"lat":1,"lng":2})", Location{0, 0}},
  });
}

TEST(LocationReaders, Addresses) {
  test::expectReads<WebSDKAddAddressRequestModel>({
      {"null", std::nullopt},
      {"{}", WebSDKAddAddressRequestModel{}},
      {R"({"type":5,"storeId":"s1","userContext":"cart","disabledAnnotationTags":["HOME",3,true]})",
       WebSDKAddAddressRequestModel{"", "s1", "cart", std::vector<std::string>{"HOME", "3", "true"}}},
      {R"({"disabledAnnotationTags":"HOME"})", WebSDKAddAddressRequestModel{}},
  });
  using Edit = WebSDKEditAddressRequestModel;
  test::expectReads<Edit>({
      {"null", std::nullopt},
      {"{}", Edit{}},
      {R"({"address":{"id":7},"enabled":["name",1],"focused":"name","actionType":"ADD_RECEIVER_DETAILS_HALF_CARD_2"})",
       Edit{parseJSON(R"({"id":7})"), std::vector<std::string>{"name", "1"}, "name",
            ActionType::addReceiverDetailsHalfCard2}},
      {R"({"address":null,"actionType":"add_address_full_form"})", Edit{JSON(nullptr), {}, {}, ActionType::none}},
  });
  using Directions = WebSDKEditDirectionsRequestModel;
  test::expectReads<Directions>({
      {"null", std::nullopt},
      {"{}", Directions{}},
      {R"({"address":"gate 2","enable_voice_directions":"yes"})", Directions{JSON("gate 2"), true}},
      {R"({"enable_voice_directions":0})", Directions{{}, false}},
  });
}

TEST(LocationReaders, GPSLocation) {
  using M = WebSDKGetGPSLocationRequestModel;
  test::expectReads<M>({
      {"null", std::nullopt},
      {"{}", M{}},
      {R"({"permissionRequired":"true","accurateLocationRequired":1,"shouldShowSettings":"no","accuracyLevel":"3"})",
       M{true, true, false, 3}},
  });
}

TEST(LocationReaders, IRCTCReadsSnakeCaseAndEncodesCamelCase) {
  using M = WebSDKIRCTCResponseModel;
  test::expectReads<M>({
      {"null", std::nullopt},
      {R"({"encoded_payload":"x"})", std::nullopt},
      {R"({"irctc_data":"x"})", std::nullopt},
      {R"({"irctc_data":{"station_name":"NDLS"}})", with<M>([](M& m) { m.junction = "NDLS"; })},
  });
  const auto model = M::from(
      payloadOf(R"({"irctc_data":{"encoded_payload":"e","mobile_number":9876,"platform_number":"4","berth":"12",)"
                R"("coach":"S1","station_name":"NDLS"}})"));
  ASSERT_TRUE(model);
  EXPECT_EQ(serialize(toJSON(*model)),
            R"({"encodedIrctcData":"e","phoneNo":"9876","platformNo":"4","berth":"12","coach":"S1",)"
            R"("junction":"NDLS"})");
  EXPECT_FALSE(model->isEmptyModel());
  EXPECT_FALSE(with<M>([](M& m) { m.coach = "S1"; }).isEmptyModel());
  EXPECT_TRUE(M::from(payloadOf(R"({"irctc_data":{}})"))->isEmptyModel());
}

// ---- Response models -------------------------------------------------------

// One filled-in answer per response model, with its keys in order and the
// keys that remain when every optional member is absent.
template <class T>
struct Sample;

#define WEBSDK_SAMPLE(T, keysInOrder, requiredKeysInOrder, ...)           \
  template <>                                                             \
  struct Sample<T> {                                                      \
    static T full() { return __VA_ARGS__; }                               \
    static constexpr std::string_view keys = keysInOrder;                 \
    static constexpr std::string_view requiredKeys = requiredKeysInOrder; \
  };

const PinLocation kPin{12.5, 77.25};
const InternationalUser kInternational{"+971", "501234567", "50****567"};
const OrbisData kOrbis{"ACTIVE", "GOLD"};

WEBSDK_SAMPLE(WebSDKDeviceDetailsResponseModel, "memory osversion battery networkType connectionQuality deviceModel",
              "memory osversion battery networkType connectionQuality deviceModel",
              WebSDKDeviceDetailsResponseModel::make("4GB", "17.2", "80", "wifi", "good", "iPhone15,2"))
WEBSDK_SAMPLE(WebSDKGetLocationResponseModel, "latitude longitude", "latitude longitude", {12.5, 77.25})
WEBSDK_SAMPLE(WebSDKGetCurrentAddressResponseModel, "currentAddress", "currentAddress", {"12 Main St"})
WEBSDK_SAMPLE(AddressMetadataResponse, "addressId", "addressId", {"a1"})
WEBSDK_SAMPLE(WebSDKGetSortedAddressesResponseModel, "addresses enableCxAppAddressSorting",
              "addresses enableCxAppAddressSorting", {{{"a1"}, {"a2"}}, true})
WEBSDK_SAMPLE(WebSDKEditDirectionsResponseModel, "isDirectionsToReachChanged", "isDirectionsToReachChanged", {true})
WEBSDK_SAMPLE(WebSDKDialogConfirmResponseModel, "id", "id", {"ok"})
WEBSDK_SAMPLE(PinLocation, "lat long", "lat long", kPin)
WEBSDK_SAMPLE(WebSDKGetTnsSignalResponseModel,
              "location currentAppVersion ipAddress pinLocation deviceModel deviceMake isOTPAutoRead",
              "currentAppVersion", {"Bengaluru", "5.2.0", "10.0.0.1", kPin, "iPhone15,2", "Apple", false})
WEBSDK_SAMPLE(InternationalUser, "countryCode unmaskedNumber maskedNumber", "countryCode unmaskedNumber maskedNumber",
              kInternational)
WEBSDK_SAMPLE(OrbisData, "orbis_state orbis_type", "", kOrbis)
WEBSDK_SAMPLE(WebSDKGetUserInfoResponseModel, "customerId name mobile email isOrbisUser internationalUser orbisData",
              "customerId name mobile email isOrbisUser",
              {"c1", "Asha", "9876543210", "asha@example.com", true, kInternational, kOrbis})
WEBSDK_SAMPLE(WebSDKIRCTCResponseModel, "encodedIrctcData phoneNo platformNo berth coach junction",
              "encodedIrctcData phoneNo platformNo berth coach junction", {"e", "9876", "4", "12", "S1", "NDLS"})

std::string keysOf(const JSON& encoded) {
  std::string out;
  for (const auto& member : encoded.as_object()) out += (out.empty() ? "" : " ") + std::string(member.key());
  return out;
}

template <class M>
void clear(std::optional<M>& member) {
  member.reset();
}
template <class M>
void clear(M&) {}

template <class T>
T withoutOptionals(T record) {
  std::apply([&](const auto&... f) { (clear(record.*(f.member)), ...); }, T::fields());
  return record;
}

template <class T>
class ResponseEncoding : public ::testing::Test {};
using ResponseModels =
    ::testing::Types<WebSDKDeviceDetailsResponseModel, WebSDKGetLocationResponseModel,
                     WebSDKGetCurrentAddressResponseModel, AddressMetadataResponse,
                     WebSDKGetSortedAddressesResponseModel, WebSDKEditDirectionsResponseModel,
                     WebSDKDialogConfirmResponseModel, PinLocation, WebSDKGetTnsSignalResponseModel, InternationalUser,
                     OrbisData, WebSDKGetUserInfoResponseModel, WebSDKIRCTCResponseModel>;
TYPED_TEST_SUITE(ResponseEncoding, ResponseModels);

TYPED_TEST(ResponseEncoding, KeysInOrderAbsentOptionalsLeftOut) {
  EXPECT_EQ(keysOf(toJSON(Sample<TypeParam>::full())), Sample<TypeParam>::keys);
  EXPECT_EQ(keysOf(toJSON(withoutOptionals(Sample<TypeParam>::full()))), Sample<TypeParam>::requiredKeys);
}

TEST(ResponseEncoding, NestedValuesAsPagesReadThem) {
  EXPECT_EQ(WebSDKDeviceDetailsResponseModel::make("m", "o", "b", "n", "c", "d"),
            (WebSDKDeviceDetailsResponseModel{"m", "o", "b", "n", "c", "d"}));
  EXPECT_EQ(serialize(toJSON(Sample<WebSDKGetUserInfoResponseModel>::full())),
            R"({"customerId":"c1","name":"Asha","mobile":"9876543210","email":"asha@example.com","isOrbisUser":true,)"
            R"("internationalUser":{"countryCode":"+971","unmaskedNumber":"501234567","maskedNumber":"50****567"},)"
            R"("orbisData":{"orbis_state":"ACTIVE","orbis_type":"GOLD"}})");
  EXPECT_EQ(serialize(toJSON(Sample<WebSDKGetTnsSignalResponseModel>::full()).as_object().at("pinLocation")),
            R"({"lat":12.5,"long":77.25})");
  EXPECT_EQ(serialize(toJSON(Sample<WebSDKGetSortedAddressesResponseModel>::full())),
            R"({"addresses":[{"addressId":"a1"},{"addressId":"a2"}],"enableCxAppAddressSorting":true})");
}

}  // namespace
}  // namespace websdk
