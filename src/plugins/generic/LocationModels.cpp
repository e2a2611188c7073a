#include "websdk/plugins/generic/LocationModels.hpp"

#include "websdk/json/Readings.hpp"

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

}  // namespace websdk
