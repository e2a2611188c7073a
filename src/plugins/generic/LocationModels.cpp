#include "websdk/plugins/generic/LocationModels.hpp"

#include "websdk/json/Readings.hpp"

#include <utility>

namespace websdk {
std::optional<WebSDKSetLocationRequestModel> WebSDKSetLocationRequestModel::from(
    const std::optional<JSONObject>& payload) {
  if (!payload) return std::nullopt;
  const Fields p(payload);
  return WebSDKSetLocationRequestModel{
      .id = p.strictString("id"),
      .defaultAddress = p.integer("default"),
      .name = p.strictString("name"),
      .mobile = p.strictString("mobile"),
      .address = p.strictString("address"),
      .landmark = p.strictString("landmark"),
      .area = p.strictString("area"),
      .lat = p.lenientDouble("lat"),
      .lng = p.lenientDouble("lng"),
      .isDeleted = p.integer("isDeleted"),
      .annotation = p.strictString("annotation"),
      .flatNo = p.strictString("flatNo"),
      .city = p.strictString("city"),
      .reverseGeoCodeFailed = p.integer("reverseGeoCodeFailed"),
      .deliveryLocation = p.strictString("deliveryLocation"),
      .mainText = p.strictString("mainText"),
  };
}

std::optional<Location> Location::from(const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return Location{p.lenientDouble("latitude"), p.lenientDouble("longitude")};
}

std::optional<WebSDKAddAddressRequestModel> WebSDKAddAddressRequestModel::from(
    const std::optional<JSONObject>& payload) {
  if (!payload) return std::nullopt;
  const Fields p(payload);
  return WebSDKAddAddressRequestModel{p.strictString("type").value_or(""), p.strictString("storeId").value_or(""),
                                      p.strictString("userContext"), p.stringList("disabledAnnotationTags")};
}

std::optional<WebSDKEditAddressRequestModel> WebSDKEditAddressRequestModel::from(
    const std::optional<JSONObject>& payload) {
  if (!payload) return std::nullopt;
  const Fields p(payload);
  return WebSDKEditAddressRequestModel{p.raw("address"), p.stringList("enabled"), p.strictString("focused"),
                                       p.enumeration<ActionType>("actionType").value_or(ActionType::none)};
}

std::optional<WebSDKEditDirectionsRequestModel> WebSDKEditDirectionsRequestModel::from(
    const std::optional<JSONObject>& payload) {
  if (!payload) return std::nullopt;
  const Fields p(payload);
  std::optional<bool> xpVal;
  if (p.has("enable_voice_directions")) xpVal = p.lenientBool("enable_voice_directions");
  return WebSDKEditDirectionsRequestModel{p.raw("address"), xpVal};
}

std::optional<WebSDKGetGPSLocationRequestModel> WebSDKGetGPSLocationRequestModel::from(
    const std::optional<JSONObject>& payload) {
  if (!payload) return std::nullopt;
  const Fields p(payload);
  return WebSDKGetGPSLocationRequestModel{p.lenientBool("permissionRequired"),
                                          p.lenientBool("accurateLocationRequired"),
                                          p.lenientBool("shouldShowSettings"), p.lenientInt("accuracyLevel")};
}

WebSDKDeviceDetailsResponseModel WebSDKDeviceDetailsResponseModel::make(std::string memory, std::string osversion,
                                                                        std::string battery, std::string networkType,
                                                                        std::string connectionQuality,
                                                                        std::string deviceModel) {
  return {std::move(memory),      std::move(osversion),         std::move(battery),
          std::move(networkType), std::move(connectionQuality), std::move(deviceModel)};
}

std::optional<WebSDKIRCTCResponseModel> WebSDKIRCTCResponseModel::from(const std::optional<JSONObject>& payload) {
  const Fields data = Fields(payload).nested("irctc_data");
  if (data.absent()) return std::nullopt;
  return WebSDKIRCTCResponseModel{data.lenientString("encoded_payload"), data.lenientString("mobile_number"),
                                  data.lenientString("platform_number"), data.lenientString("berth"),
                                  data.lenientString("coach"),           data.lenientString("station_name")};
}

bool WebSDKIRCTCResponseModel::isEmptyModel() const {
  return encodedIrctcData.empty() && phoneNo.empty() && platformNo.empty() && berth.empty() && coach.empty() &&
         junction.empty();
}

// Field lists are checked where they are declared, not first at a caller's encode.
static_assert(checkRecord<WebSDKSetLocationRequestModel>() && checkRecord<Location>() &&
              checkRecord<WebSDKAddAddressRequestModel>() && checkRecord<WebSDKEditAddressRequestModel>() &&
              checkRecord<WebSDKEditDirectionsRequestModel>() && checkRecord<WebSDKGetGPSLocationRequestModel>() &&
              checkRecord<WebSDKDeviceDetailsResponseModel>() && checkRecord<WebSDKGetLocationResponseModel>() &&
              checkRecord<WebSDKGetCurrentAddressResponseModel>() && checkRecord<AddressMetadataResponse>() &&
              checkRecord<WebSDKGetSortedAddressesResponseModel>() &&
              checkRecord<WebSDKEditDirectionsResponseModel>() && checkRecord<WebSDKDialogConfirmResponseModel>() &&
              checkRecord<PinLocation>() && checkRecord<WebSDKGetTnsSignalResponseModel>() &&
              checkRecord<InternationalUser>() && checkRecord<OrbisData>() &&
              checkRecord<WebSDKGetUserInfoResponseModel>() && checkRecord<WebSDKIRCTCResponseModel>());

}  // namespace websdk
