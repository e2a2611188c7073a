#include "websdk/plugins/generic/GenericCatalogue.hpp"

#include <utility>

namespace websdk {

std::optional<WebSDKGetLocationRequestModel> WebSDKGetLocationRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKGetLocationRequestModel{Fields(payload).lenientInt("accuracyLevel")};
}

std::optional<WebSDKGetSortedAddressesRequestModel> WebSDKGetSortedAddressesRequestModel::from(
    const std::optional<JSONObject>& payload) {
  // Without a source point the location reader still runs, on nothing.
  return WebSDKGetSortedAddressesRequestModel{Location::from(Fields(payload).object("source_location"))};
}

std::optional<WebSDKGetNextStepRequestModel> WebSDKGetNextStepRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKGetNextStepRequestModel{Fields(payload).strictString("currentStep").value_or("")};
}

std::optional<WebSDKPhoneContactRequestModel> WebSDKPhoneContactRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKPhoneContactRequestModel{Fields(payload).lenientString("func_name")};
}

std::optional<WebSDKLoginRequestModel> WebSDKLoginRequestModel::from(const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  if (!p.has("reloadUrl")) return WebSDKLoginRequestModel{};
  return WebSDKLoginRequestModel{p.lenientString("reloadUrl")};
}

std::optional<WebSDKGenericRequestPayload> WebSDKGenericRequestPayload::validateRequest(
    const WebSDKGenericRequestModel& request) {
  using P = WebSDKGenericRequestPayload;
  using A = WebSDKGenericAction;
  using enum WebSDKGenericRequestPayloadCase;
  const auto& payload = request.payload;
  switch (request.type) {
    case A::getLocation: return P::decode<getLocation>(payload);
    case A::setLocation: return P::decode<setLocation>(payload);
    // Never decoded, on purpose: pages that ask for device details through the
    // bridge are answered "not a valid request", and they rely on that.
    case A::deviceDetails: return std::nullopt;
    case A::dialogAlert: return P::decode<dialogAlert>(payload);
    case A::dialogConfirm: return P::decode<dialogConfirm>(payload);
    case A::getUserInfo: return P::make<getUserInfo>();
    case A::closeWebview: return P::decode<closeWebview>(payload);
    case A::navigateToScreen: return P::decode<navigateToScreen>(payload);
    case A::getDovaraHeaders: return P::make<getDovaraHeaders>();
    case A::webNavigate: return P::decode<webNavigate>(payload);
    case A::showHeader: return P::decode<showHeader>(payload);
    case A::storage: return P::decode<storage>(payload);
    case A::extendAppActiveInBackground: return P::decode<extendAppActiveInBackground>(payload);
    case A::toggleBottomBar: return P::decode<toggleBottomBar>(payload);
    case A::login: return P::decode<login>(payload);
    case A::openOrbisV2: return P::decode<openOrbisV2>(payload);
    case A::openOrbisV3: return P::decode<openOrbisV3>(payload);
    case A::statusBarChange: return P::decode<statusBarChange>(payload);
    case A::vibrate: return P::decode<vibrate>(payload);
    case A::whatsappShare: return P::decode<whatsappShare>(payload);
    case A::openShareSheet: return P::decode<openShareSheet>(payload);
    case A::copyTextToClipboard: return P::decode<copyTextToClipboard>(payload);
    case A::disableNativeScroll: return P::decode<disableNativeScroll>(payload);
    case A::addNewAddress: return P::decode<addNewAddress>(payload);
    case A::sendCleverTapEvent: return P::decode<sendCleverTapEvent>(payload);
    case A::enableBackSwipe: return P::decode<toggleBackSwipe>(payload);
    case A::showLoader: return P::make<showLoader>();
    case A::hideLoader: return P::make<hideLoader>();
    case A::editAddress: return P::decode<editAddress>(payload);
    case A::getNextStepDetails: return P::decode<getNextStepDetails>(payload);
    case A::getCurrentAddress: return P::make<getCurrentAddress>();
    case A::phoneContact: return P::decode<phoneContact>(payload);
    case A::editDirections: return P::decode<editDirections>(payload);
    case A::checkCameraPermission: return P::make<checkCameraPermission>();
    case A::submitFeedback: return P::decode<submitFeedback>(payload);
    case A::voiceSearch: return P::decode<voiceSearch>(payload);
    case A::getSelectedLocation: return P::make<getSelectedLocation>();
    case A::openSearchLocation: return P::make<openSearchLocation>();
    case A::setLocationWithDeeplink: return P::decode<setLocationWithDeeplink>(payload);
    case A::bottomBarTabSwitch: return P::decode<switchBottomBarTab>(payload);
    case A::isLocationEnabled: return P::make<isLocationEnabled>();
    case A::getTnsSignal: return P::make<getTnsSignal>();
    case A::screenCapturing: return P::decode<screenCapturing>(payload);
    case A::toggleNativeSearchBar: return P::decode<toggleNativeSearchBar>(payload);
    case A::updateNativeSearchBar: return P::decode<updateNativeSearchBar>(payload);
    case A::launchBrowser: return P::decode<launchBrowser>(payload);
    case A::getConfigValue: return P::decode<getConfigValue>(payload);
    case A::updateLiveActivity: return P::decode<updateLiveActivity>(payload);
    case A::updateAccessToken: return P::make<updateAccessToken>();
    case A::getNotificationPermissionStatus: return P::make<getNotificationPermissionStatus>();
    case A::getSortedAddresses: return P::decode<getSortedAddresses>(payload);
    case A::quizProgressUpdate: return P::decode<quizProgressUpdate>(payload);
    case A::isWebBottomBarVisible: return P::decode<isWebBottomBarVisible>(payload);
    case A::toggleQuicksHeaderTab: return P::decode<toggleQuicksHeaderTab>(payload);
    case A::getLocalIRCTCPayload: return P::make<getLocalIRCTCPayload>();
    case A::getAsyncIRCTCPayload: return P::make<getAsyncIRCTCPayload>();
    // Journey data that does not read still reaches the host, as the case
    // without a model.
    case A::updateLocalIRCTCPayload: return P::make<updateLocalIRCTCPayload>(WebSDKIRCTCResponseModel::from(payload));
    case A::getInstalledApps: return P::decode<getInstalledApps>(payload);
    case A::mediaUpload: return P::decode<mediaUpload>(payload);
    case A::trackEvent: return P::decode<trackEvent>(payload);
    case A::refreshParentScreen: return P::make<refreshParentScreen>();
    case A::sendFrequencyCappingEvent: return P::decode<sendFrequencyCappingEvent>(payload);
    case A::initPXWeb: return P::make<initPXWeb>();
    case A::groupOrderInvite: return P::decode<groupOrderInvite>(payload);
    case A::groupOrderDelete: return P::decode<groupOrderDelete>(payload);
    case A::groupOrderLeave: return P::decode<groupOrderLeave>(payload);
    case A::refreshScreen: return P::decode<refreshScreen>(payload);
    case A::submitUploadedFiles: return P::decode<submitUploadedFiles>(payload);
    case A::getGPSLocation: return P::make<getGPSLocation>();
    case A::getGPSLocationV2: return P::decode<getGPSLocationV2>(payload);
    case A::downloadFile: return P::decode<downloadFile>(payload);
    case A::openWebViewAndSyncData: return P::decode<openWebViewAndSyncData>(payload);
    case A::closeWebViewAndSyncData: return P::decode<closeWebViewAndSyncData>(payload);
    case A::getHalfCardHeight: {
      auto model = WebSDKGetHalfCardHeightRequestModel::from(payload);
      if (!model) return std::nullopt;
      return P::make<getHalfCardHeight>(std::make_shared<const WebSDKGetHalfCardHeightRequestModel>(std::move(*model)));
    }
  }
  return std::nullopt;
}

}  // namespace websdk
