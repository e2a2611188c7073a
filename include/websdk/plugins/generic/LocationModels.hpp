#pragma once
/// @file
/// Locations, addresses and device data: what a page sends about a place, and
/// how the host answers questions about location, address, user and device.

#include "websdk/Export.hpp"
#include "websdk/json/Enum.hpp"
#include "websdk/json/JSON.hpp"
#include "websdk/json/Model.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace websdk {

// ---- Request models --------------------------------------------------------

/// The address a page picked. Fails only without a payload dictionary; every
/// string is taken only when it is a JSON string, and `defaultAddress` comes
/// from "default".
struct WEBSDK_EXPORT WebSDKSetLocationRequestModel {
  /// The fields, read from the JSON keys of their names (`defaultAddress` from "default"). `mobile`, `address`,
  /// `landmark`, `area`, `lat`, `lng` and `flatNo` are the user's own, masked in recordings.
  ///@{
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
  ///@}

  WEBSDK_MODEL(WebSDKSetLocationRequestModel, needsPayload, (id, strictString), (defaultAddress, integer, "default"),
               (name, strictString), (mobile, strictString, sensitive), (address, strictString, sensitive),
               (landmark, strictString, sensitive), (area, strictString, sensitive), (lat, lenientDouble, sensitive),
               (lng, lenientDouble, sensitive), (isDeleted, integer), (annotation, strictString),
               (flatNo, strictString, sensitive), (city, strictString), (reverseGeoCodeFailed, integer),
               (deliveryLocation, strictString), (mainText, strictString))
};

/// A point read from "latitude" and "longitude". Never fails: with no
/// dictionary it is 0, 0.
struct WEBSDK_EXPORT Location {
  /// The fields, read from the JSON keys of their names (`lat` from "latitude", `lng` from "longitude"). `lat` and
  /// `lng` are the user's own, masked in recordings.
  ///@{
  double lat = 0;
  double lng = 0;
  ///@}

  WEBSDK_MODEL(Location, anyPayload, (lat, lenientDouble, "latitude", sensitive),
               (lng, lenientDouble, "longitude", sensitive))
};

/// The address form a page opens. Fails only without a payload dictionary;
/// `type` and `storeId` are empty unless given as JSON strings.
struct WEBSDK_EXPORT WebSDKAddAddressRequestModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::string type;
  std::string storeId;
  std::optional<std::string> userContext;
  std::optional<std::vector<std::string>> disabledAnnotationTags;
  ///@}

  WEBSDK_MODEL(WebSDKAddAddressRequestModel, needsPayload, (type, strictString), (storeId, strictString),
               (userContext, strictString), (disabledAnnotationTags, stringList))
};

/// Which address screen an edit opens. Anything the app does not know is `none`.
enum class ActionType {
  addAddressFullForm,
  editReceiverDetailsHalfCard,
  addReceiverDetailsHalfCard1,
  addReceiverDetailsHalfCard2,
  none
};
constexpr auto rawValues(ActionType) {
  using enum ActionType;
  return rawValueTable<ActionType>({{addAddressFullForm, "ADD_ADDRESS_FULL_FORM"},
                                    {editReceiverDetailsHalfCard, "EDIT_RECEIVER_DETAILS_HALF_CARD"},
                                    {addReceiverDetailsHalfCard1, "ADD_RECEIVER_DETAILS_HALF_CARD_1"},
                                    {addReceiverDetailsHalfCard2, "ADD_RECEIVER_DETAILS_HALF_CARD_2"},
                                    {none, "none"}});
}

/// An address to edit, kept unparsed under `data` (from "address"). Fails
/// only without a payload dictionary.
struct WEBSDK_EXPORT WebSDKEditAddressRequestModel {
  /// The fields, read from the JSON keys of their names (`data` from "address").
  ///@{
  std::optional<JSON> data;
  std::optional<std::vector<std::string>> enabled;
  std::optional<std::string> focused;
  ActionType actionType = ActionType::none;
  ///@}

  WEBSDK_MODEL(WebSDKEditAddressRequestModel, needsPayload, (data, raw, "address"), (enabled, stringList),
               (focused, strictString), (actionType, enumeration))
};

/// Directions to reach an address. `xpVal` comes from "enable_voice_directions"
/// and is absent without that key. Fails only without a payload dictionary.
struct WEBSDK_EXPORT WebSDKEditDirectionsRequestModel {
  /// The fields, read from the JSON keys of their names (`data` from "address", `xpVal` from
  /// "enable_voice_directions").
  ///@{
  std::optional<JSON> data;
  std::optional<bool> xpVal;
  ///@}

  WEBSDK_MODEL(WebSDKEditDirectionsRequestModel, needsPayload, (data, raw, "address"),
               (xpVal, lenientBool, "enable_voice_directions"))
};

/// How a GPS fix is wanted; missing keys read as false or 0. Fails only
/// without a payload dictionary.
struct WEBSDK_EXPORT WebSDKGetGPSLocationRequestModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  bool permissionRequired = false;
  bool accurateLocationRequired = false;
  bool shouldShowSettings = false;
  std::int64_t accuracyLevel = 0;
  ///@}

  WEBSDK_MODEL(WebSDKGetGPSLocationRequestModel, needsPayload, (permissionRequired, lenientBool),
               (accurateLocationRequired, lenientBool), (shouldShowSettings, lenientBool), (accuracyLevel, lenientInt))
};

// ---- Response models -------------------------------------------------------

/// The device's details: memory, OS version, battery, network and model.
struct WEBSDK_EXPORT WebSDKDeviceDetailsResponseModel {
  /// The fields, written under JSON keys of their names.
  ///@{
  std::string memory;
  std::string osversion;
  std::string battery;
  std::string networkType;
  std::string connectionQuality;
  std::string deviceModel;
  ///@}

  /// The model of these values, in field order.
  static WebSDKDeviceDetailsResponseModel make(std::string memory, std::string osversion, std::string battery,
                                               std::string networkType, std::string connectionQuality,
                                               std::string deviceModel);
  WEBSDK_RECORD(WebSDKDeviceDetailsResponseModel, memory, osversion, battery, networkType, connectionQuality,
                deviceModel)
};

/// The answer to "GET_LOCATION": the device's position.
struct WEBSDK_EXPORT WebSDKGetLocationResponseModel {
  /// The fields, written under JSON keys of their names.
  ///@{
  double latitude = 0;
  double longitude = 0;
  ///@}

  WEBSDK_RECORD(WebSDKGetLocationResponseModel, latitude, longitude)
};

/// The answer to "GET_CURRENT_ADDRESS": the delivery address as text.
struct WEBSDK_EXPORT WebSDKGetCurrentAddressResponseModel {
  /// Written under the JSON key of its name.
  std::string currentAddress;

  WEBSDK_RECORD(WebSDKGetCurrentAddressResponseModel, currentAddress)
};

/// One address of a sorted list, by its id.
struct WEBSDK_EXPORT AddressMetadataResponse {
  /// Written under the JSON key of its name.
  std::string addressId;

  WEBSDK_RECORD(AddressMetadataResponse, addressId)
};

/// The answer to "GET_SORTED_ADDRESSES": the user's addresses in order.
struct WEBSDK_EXPORT WebSDKGetSortedAddressesResponseModel {
  /// The fields, written under JSON keys of their names.
  ///@{
  std::vector<AddressMetadataResponse> addresses;
  bool enableCxAppAddressSorting = false;
  ///@}

  WEBSDK_RECORD(WebSDKGetSortedAddressesResponseModel, addresses, enableCxAppAddressSorting)
};

/// The answer to "EDIT_DIRECTIONS_TO_REACH": whether the directions changed.
struct WEBSDK_EXPORT WebSDKEditDirectionsResponseModel {
  /// Written under the JSON key of its name.
  bool isDirectionsToReachChanged = false;

  WEBSDK_RECORD(WebSDKEditDirectionsResponseModel, isDirectionsToReachChanged)
};

/// The answer to a confirm dialog: the id of the button the user chose.
struct WEBSDK_EXPORT WebSDKDialogConfirmResponseModel {
  /// Written under the JSON key of its name.
  std::string id;

  WEBSDK_RECORD(WebSDKDialogConfirmResponseModel, id)
};

/// A pinned point. The longitude is sent as "long", which C++ reserves, so
/// the member is `long_`.
struct WEBSDK_EXPORT PinLocation {
  /// The fields, written under the JSON keys `lat` as "lat", `long_` as "long".
  ///@{
  double lat = 0;
  double long_ = 0;
  ///@}

  WEBSDK_KEYED_RECORD(PinLocation, (lat, "lat"), (long_, "long"))
};

/// The answer to "GET_TNS_SIGNAL": where the device is, the app's version, the
/// IP address, the pinned point and the device's make and model.
struct WEBSDK_EXPORT WebSDKGetTnsSignalResponseModel {
  /// The fields, written under JSON keys of their names; an empty optional is left out.
  ///@{
  std::optional<std::string> location;
  std::string currentAppVersion;
  std::optional<std::string> ipAddress;
  std::optional<PinLocation> pinLocation;
  std::optional<std::string> deviceModel;
  std::optional<std::string> deviceMake;
  std::optional<bool> isOTPAutoRead;
  ///@}

  WEBSDK_RECORD(WebSDKGetTnsSignalResponseModel, location, currentAppVersion, ipAddress, pinLocation, deviceModel,
                deviceMake, isOTPAutoRead)
};

/// A user's international phone number: its country code, and the number in
/// full and masked.
struct WEBSDK_EXPORT InternationalUser {
  /// The fields, written under JSON keys of their names.
  ///@{
  std::string countryCode;
  std::string unmaskedNumber;
  std::string maskedNumber;
  ///@}

  WEBSDK_RECORD(InternationalUser, countryCode, unmaskedNumber, maskedNumber)
};

/// Pages read these two keys in snake case.
struct WEBSDK_EXPORT OrbisData {
  /// The fields, written under the JSON keys `orbisState` as "orbis_state", `orbisType` as "orbis_type"; an empty
  /// optional is left out.
  ///@{
  std::optional<std::string> orbisState;
  std::optional<std::string> orbisType;
  ///@}

  WEBSDK_KEYED_RECORD(OrbisData, (orbisState, "orbis_state"), (orbisType, "orbis_type"))
};

/// The answer to "GET_USER_INFO": who the user is.
struct WEBSDK_EXPORT WebSDKGetUserInfoResponseModel {
  /// The fields, written under JSON keys of their names; an empty optional is left out.
  ///@{
  std::string customerId;
  std::string name;
  std::string mobile;
  std::string email;
  bool isOrbisUser = false;
  std::optional<InternationalUser> internationalUser;
  std::optional<OrbisData> orbisData;
  ///@}

  WEBSDK_RECORD(WebSDKGetUserInfoResponseModel, customerId, name, mobile, email, isOrbisUser, internationalUser,
                orbisData)
};

/// The train journey of an IRCTC order. Pages write it in snake case under
/// "irctc_data" and read it back with these field names.
struct WEBSDK_EXPORT WebSDKIRCTCResponseModel {
  /// The fields, read from the JSON keys of their names (`encodedIrctcData` from "irctc_data.encoded_payload",
  /// `phoneNo` from "irctc_data.mobile_number", `platformNo` from "irctc_data.platform_number", `berth` from
  /// "irctc_data.berth", `coach` from "irctc_data.coach", `junction` from "irctc_data.station_name"). `phoneNo` is the
  /// user's own, masked in recordings.
  ///@{
  std::string encodedIrctcData;
  std::string phoneNo;
  std::string platformNo;
  std::string berth;
  std::string coach;
  std::string junction;
  ///@}

  /// True when all six strings are empty.
  bool isEmptyModel() const;
  /// Fails when the payload has no "irctc_data" object; missing keys inside
  /// it read as "".
  WEBSDK_MODEL(WebSDKIRCTCResponseModel, within("irctc_data"),
               (encodedIrctcData, lenientString, "irctc_data.encoded_payload"),
               (phoneNo, lenientString, "irctc_data.mobile_number", sensitive),
               (platformNo, lenientString, "irctc_data.platform_number"), (berth, lenientString, "irctc_data.berth"),
               (coach, lenientString, "irctc_data.coach"), (junction, lenientString, "irctc_data.station_name"))
};

}  // namespace websdk
