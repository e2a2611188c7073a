#include "websdk/plugins/generic/LocationModels.hpp"

#include "websdk/json/Readings.hpp"

#include <utility>

namespace websdk {
WebSDKDeviceDetailsResponseModel WebSDKDeviceDetailsResponseModel::make(std::string memory, std::string osversion,
                                                                        std::string battery, std::string networkType,
                                                                        std::string connectionQuality,
                                                                        std::string deviceModel) {
  return {std::move(memory),      std::move(osversion),         std::move(battery),
          std::move(networkType), std::move(connectionQuality), std::move(deviceModel)};
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
