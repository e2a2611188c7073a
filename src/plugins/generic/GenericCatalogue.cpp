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
    case A::getLocation: return P::whenDecoded<getLocation>(WebSDKGetLocationRequestModel::from(payload));
    case A::setLocation: return P::whenDecoded<setLocation>(WebSDKSetLocationRequestModel::from(payload));
    // Never decoded, on purpose: pages that ask for device details through the
    // bridge are answered "not a valid request", and they rely on that.
    case A::deviceDetails: return std::nullopt;
    case A::dialogAlert: return P::whenDecoded<dialogAlert>(WebSDKDialogAlertRequestModel::from(payload));
    case A::dialogConfirm: return P::whenDecoded<dialogConfirm>(WebSDKDialogConfirmRequestModel::from(payload));
    case A::getUserInfo: return P::make<getUserInfo>();
    case A::closeWebview: return P::whenDecoded<closeWebview>(WebSDKCloseWebviewWithParamsModel::from(payload));
    case A::navigateToScreen:
      return P::whenDecoded<navigateToScreen>(WebSDKNavigationToScreenRequestModel::from(payload));
    case A::getDovaraHeaders: return P::make<getDovaraHeaders>();
    case A::webNavigate: return P::whenDecoded<webNavigate>(WebSDKWebNavigateRequestModel::from(payload));
    case A::showHeader: return P::whenDecoded<showHeader>(WebSDKShowHeaderModel::from(payload));
    case A::storage: return P::whenDecoded<storage>(WebSDKWebStorageRequestModel::from(payload));
    case A::extendAppActiveInBackground:
      return P::whenDecoded<extendAppActiveInBackground>(WebSDKAppExtensionInBackgroundRequestModel::from(payload));
    case A::toggleBottomBar: return P::whenDecoded<toggleBottomBar>(WebSDKToggleBottomBarRequestModel::from(payload));
    case A::login: return P::whenDecoded<login>(WebSDKLoginRequestModel::from(payload));
    case A::openOrbisV2: return P::whenDecoded<openOrbisV2>(WebSDKOpenOrbisV2RequestModel::from(payload));
    case A::openOrbisV3: return P::whenDecoded<openOrbisV3>(WebSDKOpenOrbisV3RequestModel::from(payload));
    case A::statusBarChange: return P::whenDecoded<statusBarChange>(WebSDKStatusBarChangeRequestModel::from(payload));
    case A::vibrate: return P::whenDecoded<vibrate>(WebSDKVibrateRequestModel::from(payload));
    case A::whatsappShare: return P::whenDecoded<whatsappShare>(WebSDKWhatsappShareRequestModel::from(payload));
    case A::openShareSheet: return P::whenDecoded<openShareSheet>(WebSDKOpenShareSheetRequestModel::from(payload));
    case A::copyTextToClipboard:
      return P::whenDecoded<copyTextToClipboard>(WebSDKCopyTextToClipboardRequestModel::from(payload));
    case A::disableNativeScroll:
      return P::whenDecoded<disableNativeScroll>(WebSDKDisableNativeScrollRequestModel::from(payload));
    case A::addNewAddress: return P::whenDecoded<addNewAddress>(WebSDKAddAddressRequestModel::from(payload));
    case A::sendCleverTapEvent:
      return P::whenDecoded<sendCleverTapEvent>(WebSDKSendClevertapEventRequestModel::from(payload));
    case A::enableBackSwipe: return P::whenDecoded<toggleBackSwipe>(WebSDKToggleBackSwipeRequestModel::from(payload));
    case A::showLoader: return P::make<showLoader>();
    case A::hideLoader: return P::make<hideLoader>();
    case A::editAddress: return P::whenDecoded<editAddress>(WebSDKEditAddressRequestModel::from(payload));
    case A::getNextStepDetails: return P::whenDecoded<getNextStepDetails>(WebSDKGetNextStepRequestModel::from(payload));
    case A::getCurrentAddress: return P::make<getCurrentAddress>();
    case A::phoneContact: return P::whenDecoded<phoneContact>(WebSDKPhoneContactRequestModel::from(payload));
    case A::editDirections: return P::whenDecoded<editDirections>(WebSDKEditDirectionsRequestModel::from(payload));
    case A::checkCameraPermission: return P::make<checkCameraPermission>();
    case A::submitFeedback: return P::whenDecoded<submitFeedback>(WebSDKSubmitFeedbackRequestModel::from(payload));
    case A::voiceSearch: return P::whenDecoded<voiceSearch>(WebSDKVoiceSearchRequestModel::from(payload));
    case A::getSelectedLocation: return P::make<getSelectedLocation>();
    case A::openSearchLocation: return P::make<openSearchLocation>();
    case A::setLocationWithDeeplink:
      return P::whenDecoded<setLocationWithDeeplink>(WebSDKSetLocationWithDeeplinkRequestModel::from(payload));
    case A::bottomBarTabSwitch: return P::whenDecoded<switchBottomBarTab>(WebSDKSwitchBottomBarModel::from(payload));
    case A::isLocationEnabled: return P::make<isLocationEnabled>();
    case A::getTnsSignal: return P::make<getTnsSignal>();
    case A::screenCapturing: return P::whenDecoded<screenCapturing>(WebSDKScreenCapturingRequestModel::from(payload));
    case A::toggleNativeSearchBar:
      return P::whenDecoded<toggleNativeSearchBar>(WebSDKToggleNativeSearchBarRequestModel::from(payload));
    case A::updateNativeSearchBar:
      return P::whenDecoded<updateNativeSearchBar>(WebSDKUpdateNativeSearchBarRequestModel::from(payload));
    case A::launchBrowser: return P::whenDecoded<launchBrowser>(WebSDKLaunchBrowserRequestModel::from(payload));
    case A::getConfigValue: return P::whenDecoded<getConfigValue>(WebSDKGetConfigValueRequestModel::from(payload));
    case A::updateLiveActivity:
      return P::whenDecoded<updateLiveActivity>(WebSDKUpdateLiveActivityRequestModel::from(payload));
    case A::updateAccessToken: return P::make<updateAccessToken>();
    case A::getNotificationPermissionStatus: return P::make<getNotificationPermissionStatus>();
    case A::getSortedAddresses:
      return P::whenDecoded<getSortedAddresses>(WebSDKGetSortedAddressesRequestModel::from(payload));
    case A::quizProgressUpdate: return P::whenDecoded<quizProgressUpdate>(WebSDKQuizProgressUpdateModel::from(payload));
    case A::isWebBottomBarVisible:
      return P::whenDecoded<isWebBottomBarVisible>(WebSDKIsWebBottomBarVisibleRequestModel::from(payload));
    case A::toggleQuicksHeaderTab:
      return P::whenDecoded<toggleQuicksHeaderTab>(WebSDKToggleQuicksHeaderTabRequestModel::from(payload));
    case A::getLocalIRCTCPayload: return P::make<getLocalIRCTCPayload>();
    case A::getAsyncIRCTCPayload: return P::make<getAsyncIRCTCPayload>();
    // Journey data that does not read still reaches the host, as the case
    // without a model.
    case A::updateLocalIRCTCPayload: return P::make<updateLocalIRCTCPayload>(WebSDKIRCTCResponseModel::from(payload));
    case A::getInstalledApps: return P::whenDecoded<getInstalledApps>(WebSDKInstalledAppsRequestModel::from(payload));
    case A::mediaUpload: return P::whenDecoded<mediaUpload>(WebSDKMediaUploadRequestModel::from(payload));
    case A::trackEvent: return P::whenDecoded<trackEvent>(WebSDKTrackEventRequestModel::from(payload));
    case A::refreshParentScreen: return P::make<refreshParentScreen>();
    case A::sendFrequencyCappingEvent:
      return P::whenDecoded<sendFrequencyCappingEvent>(WebSDKSendFrequencyCappingEventRequestModel::from(payload));
    case A::initPXWeb: return P::make<initPXWeb>();
    case A::groupOrderInvite: return P::whenDecoded<groupOrderInvite>(WebSDKGroupOrderRequestModel::from(payload));
    case A::groupOrderDelete: return P::whenDecoded<groupOrderDelete>(WebSDKGroupOrderRequestModel::from(payload));
    case A::groupOrderLeave: return P::whenDecoded<groupOrderLeave>(WebSDKGroupOrderRequestModel::from(payload));
    case A::refreshScreen: return P::whenDecoded<refreshScreen>(WebSDKRefreshScreenRequestModel::from(payload));
    case A::submitUploadedFiles:
      return P::whenDecoded<submitUploadedFiles>(WebSDKSubmitUploadedFilesRequestModel::from(payload));
    case A::getGPSLocation: return P::make<getGPSLocation>();
    case A::getGPSLocationV2: return P::whenDecoded<getGPSLocationV2>(WebSDKGetGPSLocationRequestModel::from(payload));
    case A::downloadFile: return P::whenDecoded<downloadFile>(WebSDKMediaDownloadRequestModel::from(payload));
    case A::openWebViewAndSyncData:
      return P::whenDecoded<openWebViewAndSyncData>(WebSDKOpenWebViewAndSyncDataRequestModel::from(payload));
    case A::closeWebViewAndSyncData:
      return P::whenDecoded<closeWebViewAndSyncData>(WebSDKCloseWebViewAndSyncDataRequestModel::from(payload));
    case A::getHalfCardHeight: {
      auto model = WebSDKGetHalfCardHeightRequestModel::from(payload);
      if (!model) return std::nullopt;
      return P::make<getHalfCardHeight>(std::make_shared<const WebSDKGetHalfCardHeightRequestModel>(std::move(*model)));
    }
  }
  return std::nullopt;
}

}  // namespace websdk
