#pragma once
// Locations, addresses and device data: what a page sends about a place, and
// how the host answers questions about location, address, user and device.

#include "websdk/json/Enum.hpp"
#include "websdk/json/JSON.hpp"
#include "websdk/json/Record.hpp"

#include <cstdint>
#include <optional>
#include <string>

namespace websdk {

// ---- Request models --------------------------------------------------------

/// The address a page picked. Fails only without a payload dictionary; every
/// string is taken only when it is a JSON string, and `defaultAddress` comes
/// from "default".
struct WebSDKSetLocationRequestModel {
  std::optional<std::string> id;
  std::optional<std::int64_t> defaultAddress;
  std::optional<std::string> name;
  std::optional<std::string> mobile;
  std::optional<std::string> address;
  std::optional<std::string> landmark;
  std::optional<std::string> area;
  double lat = 0;
  double lng = 0;
  std::optional<std::int64_t> isDeleted;
  std::optional<std::string> annotation;
  std::optional<std::string> flatNo;
  std::optional<std::string> city;
  std::optional<std::int64_t> reverseGeoCodeFailed;
  std::optional<std::string> deliveryLocation;
  std::optional<std::string> mainText;

  static std::optional<WebSDKSetLocationRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKSetLocationRequestModel, id, defaultAddress, name, mobile, address, landmark, area, lat, lng,
                isDeleted, annotation, flatNo, city, reverseGeoCodeFailed, deliveryLocation, mainText)
};

/// A point read from "latitude" and "longitude". Never fails: with no
/// dictionary it is 0, 0.
struct Location {
  double lat = 0;
  double lng = 0;

  static std::optional<Location> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(Location, lat, lng)
};

}  // namespace websdk
