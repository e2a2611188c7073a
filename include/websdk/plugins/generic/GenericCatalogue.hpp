#pragma once
// The generic family: its 74 actions, the small requests read inline, and the
// typed payload a page's request decodes to.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/Payload.hpp"
#include "websdk/plugins/generic/AnalyticsModels.hpp"
#include "websdk/plugins/generic/ChromeModels.hpp"
#include "websdk/plugins/generic/LocationModels.hpp"
#include "websdk/plugins/generic/ScreenModels.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace websdk {

// ---- Actions ---------------------------------------------------------------

enum class WebSDKGenericAction {
  getLocation,
  setLocation,
  deviceDetails,
  dialogAlert,
  dialogConfirm,
  getUserInfo,
  closeWebview,
  navigateToScreen,
  getDovaraHeaders,
  webNavigate,
  showHeader,
  storage,
  extendAppActiveInBackground,
  toggleBottomBar,
  login,
  openOrbisV2,
  openOrbisV3,
  statusBarChange,
  vibrate,
  whatsappShare,
  openShareSheet,
  copyTextToClipboard,
  disableNativeScroll,
  addNewAddress,
  sendCleverTapEvent,
  enableBackSwipe,
  showLoader,
  hideLoader,
  editAddress,
  getNextStepDetails,
  getCurrentAddress,
  phoneContact,
  editDirections,
  checkCameraPermission,
  submitFeedback,
  voiceSearch,
  getSelectedLocation,
  openSearchLocation,
  setLocationWithDeeplink,
  bottomBarTabSwitch,
  isLocationEnabled,
  getTnsSignal,
  screenCapturing,
  toggleNativeSearchBar,
  updateNativeSearchBar,
  launchBrowser,
  getConfigValue,
  updateLiveActivity,
  updateAccessToken,
  getNotificationPermissionStatus,
  getSortedAddresses,
  quizProgressUpdate,
  isWebBottomBarVisible,
  toggleQuicksHeaderTab,
  getLocalIRCTCPayload,
  getAsyncIRCTCPayload,
  updateLocalIRCTCPayload,
  getInstalledApps,
  mediaUpload,
  trackEvent,
  refreshParentScreen,
  sendFrequencyCappingEvent,
  initPXWeb,
  groupOrderInvite,
  groupOrderDelete,
  groupOrderLeave,
  refreshScreen,
  submitUploadedFiles,
  getGPSLocation,
  getGPSLocationV2,
  downloadFile,
  openWebViewAndSyncData,
  closeWebViewAndSyncData,
  getHalfCardHeight
};
constexpr auto rawValues(WebSDKGenericAction) {
  using enum WebSDKGenericAction;
  return rawValueTable<WebSDKGenericAction>({{getLocation, "GET_LOCATION"},
                                             {setLocation, "SET_LOCATION"},
                                             {deviceDetails, "GET_DEVICE_DETAILS"},
                                             {dialogAlert, "DIALOG_ALERT"},
                                             {dialogConfirm, "DIALOG_CONFIRM"},
                                             {getUserInfo, "GET_USER_INFO"},
                                             {closeWebview, "CLOSE_WEBVIEW"},
                                             {navigateToScreen, "NAVIGATE_TO_SCREEN"},
                                             {getDovaraHeaders, "GET_DOVARA_HEADERS"},
                                             {webNavigate, "WEB_NAVIGATE"},
                                             {showHeader, "SHOW_HEADER"},
                                             {storage, "STORAGE"},
                                             {extendAppActiveInBackground, "SET_APP_ACTIVE_IN_IDLE_STATE"},
                                             {toggleBottomBar, "TOGGLE_NATIVE_BOTTOM_BAR"},
                                             {login, "LOGIN"},
                                             {openOrbisV2, "OPEN_ORBIS_V2"},
                                             {openOrbisV3, "OPEN_ORBIS_V3"},
                                             {statusBarChange, "STATUS_BAR_CHANGE"},
                                             {vibrate, "VIBRATE"},
                                             {whatsappShare, "WHATSAPP_SHARE"},
                                             {openShareSheet, "OPEN_SHARE_SHEET"},
                                             {copyTextToClipboard, "COPY_TEXT_TO_CLIPBOARD"},
                                             {disableNativeScroll, "DISABLE_NATIVE_SCROLL"},
                                             {addNewAddress, "ADD_NEW_ADDRESS"},
                                             {sendCleverTapEvent, "SEND_CLEVERTAP_EVENT"},
                                             {enableBackSwipe, "ENABLE_BACK_SWIPE"},
                                             {showLoader, "SHOW_LOADER"},
                                             {hideLoader, "HIDE_LOADER"},
                                             {editAddress, "EDIT_ADDRESS"},
                                             {getNextStepDetails, "GET_NEXT_STEP_DETAILS"},
                                             {getCurrentAddress, "GET_CURRENT_ADDRESS"},
                                             {phoneContact, "PHONE_CONTACT"},
                                             {editDirections, "EDIT_DIRECTIONS_TO_REACH"},
                                             {checkCameraPermission, "IOS_CHECK_CAMERA_PERMISSION"},
                                             {submitFeedback, "SUBMIT_FEEDBACK"},
                                             {voiceSearch, "OPEN_NATIVE_VOICE_SEARCH"},
                                             {getSelectedLocation, "GET_SELECTED_LOCATION"},
                                             {openSearchLocation, "OPEN_LOCATION_SEARCH"},
                                             {setLocationWithDeeplink, "SET_LOCATION_WITH_DEEP_LINK"},
                                             {bottomBarTabSwitch, "SWITCH_BOTTOM_BAR_TAB"},
                                             {isLocationEnabled, "IS_LOCATION_ENABLED"},
                                             {getTnsSignal, "GET_TNS_SIGNAL"},
                                             {screenCapturing, "SCREEN_CAPTURING"},
                                             {toggleNativeSearchBar, "TOGGLE_NATIVE_SEARCH_BAR"},
                                             {updateNativeSearchBar, "UPDATE_NATIVE_SEARCH_BAR"},
                                             {launchBrowser, "LAUNCH_BROWSER"},
                                             {getConfigValue, "GET_CONFIG_VALUE"},
                                             // The live order-status activity answers to the order-event action.
                                             {updateLiveActivity, "UPDATE_ORDER_EVENT"},
                                             {updateAccessToken, "UPDATE_ACCESS_TOKEN"},
                                             {getNotificationPermissionStatus, "GET_NOTIFICATION_PERMISSION_STATUS"},
                                             {getSortedAddresses, "GET_SORTED_ADDRESSES"},
                                             {quizProgressUpdate, "QUIZ_PROGRESS_UPDATE"},
                                             {isWebBottomBarVisible, "IS_WEB_BOTTOM_BAR_VISIBLE"},
                                             {toggleQuicksHeaderTab, "TOGGLE_QUICKS_HEADER_TAB"},
                                             {getLocalIRCTCPayload, "GET_LOCAL_IRCTC_PAYLOAD"},
                                             {getAsyncIRCTCPayload, "GET_ASYNC_IRCTC_PAYLOAD"},
                                             {updateLocalIRCTCPayload, "UPDATE_LOCAL_IRCTC_PAYLOAD"},
                                             {getInstalledApps, "GET_INSTALLED_APPS"},
                                             {mediaUpload, "iOS_MEDIA_UPLOAD"},
                                             {trackEvent, "TRACK_EVENT"},
                                             {refreshParentScreen, "REFRESH_PARENT_SCREEN"},
                                             {sendFrequencyCappingEvent, "SEND_FREQUENCY_CAPPING_EVENT"},
                                             {initPXWeb, "INIT_PX_WEB"},
                                             {groupOrderInvite, "INVITE_MORE_GROUPCART"},
                                             {groupOrderDelete, "DELETE_GROUPCART"},
                                             {groupOrderLeave, "LEAVE_GROUPCART"},
                                             {refreshScreen, "REFRESH_SCREEN"},
                                             {submitUploadedFiles, "SUBMIT_UPLOADED_FILES"},
                                             {getGPSLocation, "GET_GPS_LOCATION"},
                                             {getGPSLocationV2, "GET_GPS_LOCATION_V2"},
                                             {downloadFile, "DOWNLOAD_FILE"},
                                             {openWebViewAndSyncData, "WEBVIEW_OPEN_AND_SYNC_BRIDGE"},
                                             {closeWebViewAndSyncData, "CLOSE_WEBVIEW_AND_SYNC_DATA"},
                                             {getHalfCardHeight, "GET_WEBVIEW_HALFCARD_HEIGHT"}});
}

using WebSDKGenericRequestModel = WebSDKBridgeRequest<WebSDKGenericAction>;

// ---- Small requests read inline ----------------------------------------------
// Each never fails; a missing key gives 0, "" or no value.

/// `accuracyLevel`: "accuracyLevel" read as a lenient integer ("3" gives 3).
struct WEBSDK_EXPORT WebSDKGetLocationRequestModel {
  std::int64_t accuracyLevel = 0;

  static std::optional<WebSDKGetLocationRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKGetLocationRequestModel, accuracyLevel)
};

/// `sourceLocation`: the point under "source_location" (0, 0 without one).
struct WEBSDK_EXPORT WebSDKGetSortedAddressesRequestModel {
  std::optional<Location> sourceLocation;

  static std::optional<WebSDKGetSortedAddressesRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKGetSortedAddressesRequestModel, sourceLocation)
};

/// `currentStep`: the string under "currentStep" only.
struct WEBSDK_EXPORT WebSDKGetNextStepRequestModel {
  std::string currentStep;

  static std::optional<WebSDKGetNextStepRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKGetNextStepRequestModel, currentStep)
};

/// `funcName`: "func_name" read leniently.
struct WEBSDK_EXPORT WebSDKPhoneContactRequestModel {
  std::string funcName;

  static std::optional<WebSDKPhoneContactRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKPhoneContactRequestModel, funcName)
};

/// `reloadUrl`: "reloadUrl" read leniently, and no value (not "") without it.
struct WEBSDK_EXPORT WebSDKLoginRequestModel {
  std::optional<std::string> reloadUrl;

  static std::optional<WebSDKLoginRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKLoginRequestModel, reloadUrl)
};

// ---- Typed payload -------------------------------------------------------------

WEBSDK_NAMED_CASES(WebSDKGenericRequestPayloadCase,
                   // Cases that carry a request model.
                   getLocation, setLocation, dialogAlert, dialogConfirm, closeWebview, navigateToScreen, webNavigate,
                   showHeader, storage, extendAppActiveInBackground, toggleBottomBar, login, openOrbisV2, openOrbisV3,
                   statusBarChange, vibrate, whatsappShare, openShareSheet, copyTextToClipboard, disableNativeScroll,
                   addNewAddress, sendCleverTapEvent, toggleBackSwipe, editAddress, getNextStepDetails, phoneContact,
                   editDirections, submitFeedback, voiceSearch, setLocationWithDeeplink, switchBottomBarTab,
                   screenCapturing, toggleNativeSearchBar, updateNativeSearchBar, launchBrowser, getConfigValue,
                   updateLiveActivity, getSortedAddresses, quizProgressUpdate, isWebBottomBarVisible,
                   toggleQuicksHeaderTab, updateLocalIRCTCPayload, getInstalledApps, mediaUpload, trackEvent,
                   sendFrequencyCappingEvent, groupOrderInvite, groupOrderLeave, groupOrderDelete, refreshScreen,
                   submitUploadedFiles, downloadFile, openWebViewAndSyncData, closeWebViewAndSyncData,
                   getHalfCardHeight, getGPSLocationV2,
                   // Cases that carry nothing.
                   deviceDetails, getUserInfo, getDovaraHeaders, showLoader, hideLoader, getCurrentAddress,
                   checkCameraPermission, openSearchLocation, getSelectedLocation, isLocationEnabled, getTnsSignal,
                   updateAccessToken, getNotificationPermissionStatus, getLocalIRCTCPayload, getAsyncIRCTCPayload,
                   refreshParentScreen, initPXWeb, getGPSLocation)

namespace detail {
using GenericCase = WebSDKGenericRequestPayloadCase;
}  // namespace detail

class WEBSDK_EXPORT WebSDKGenericRequestPayload
    : public TaggedPayload<
          WebSDKGenericRequestPayload, WebSDKGenericRequestPayloadCase,
          Carries<detail::GenericCase::getLocation, WebSDKGetLocationRequestModel>,
          Carries<detail::GenericCase::setLocation, WebSDKSetLocationRequestModel>,
          Carries<detail::GenericCase::dialogAlert, WebSDKDialogAlertRequestModel>,
          Carries<detail::GenericCase::dialogConfirm, WebSDKDialogConfirmRequestModel>,
          Carries<detail::GenericCase::closeWebview, WebSDKCloseWebviewWithParamsModel>,
          Carries<detail::GenericCase::navigateToScreen, WebSDKNavigationToScreenRequestModel>,
          Carries<detail::GenericCase::webNavigate, WebSDKWebNavigateRequestModel>,
          Carries<detail::GenericCase::showHeader, WebSDKShowHeaderModel>,
          Carries<detail::GenericCase::storage, WebSDKWebStorageRequestModel>,
          Carries<detail::GenericCase::extendAppActiveInBackground, WebSDKAppExtensionInBackgroundRequestModel>,
          Carries<detail::GenericCase::toggleBottomBar, WebSDKToggleBottomBarRequestModel>,
          Carries<detail::GenericCase::login, WebSDKLoginRequestModel>,
          Carries<detail::GenericCase::openOrbisV2, WebSDKOpenOrbisV2RequestModel>,
          Carries<detail::GenericCase::openOrbisV3, WebSDKOpenOrbisV3RequestModel>,
          Carries<detail::GenericCase::statusBarChange, WebSDKStatusBarChangeRequestModel>,
          Carries<detail::GenericCase::vibrate, WebSDKVibrateRequestModel>,
          Carries<detail::GenericCase::whatsappShare, WebSDKWhatsappShareRequestModel>,
          Carries<detail::GenericCase::openShareSheet, WebSDKOpenShareSheetRequestModel>,
          Carries<detail::GenericCase::copyTextToClipboard, WebSDKCopyTextToClipboardRequestModel>,
          Carries<detail::GenericCase::disableNativeScroll, WebSDKDisableNativeScrollRequestModel>,
          Carries<detail::GenericCase::addNewAddress, WebSDKAddAddressRequestModel>,
          Carries<detail::GenericCase::sendCleverTapEvent, WebSDKSendClevertapEventRequestModel>,
          Carries<detail::GenericCase::toggleBackSwipe, WebSDKToggleBackSwipeRequestModel>,
          Carries<detail::GenericCase::editAddress, WebSDKEditAddressRequestModel>,
          Carries<detail::GenericCase::getNextStepDetails, WebSDKGetNextStepRequestModel>,
          Carries<detail::GenericCase::phoneContact, WebSDKPhoneContactRequestModel>,
          Carries<detail::GenericCase::editDirections, WebSDKEditDirectionsRequestModel>,
          Carries<detail::GenericCase::submitFeedback, WebSDKSubmitFeedbackRequestModel>,
          Carries<detail::GenericCase::voiceSearch, WebSDKVoiceSearchRequestModel>,
          Carries<detail::GenericCase::setLocationWithDeeplink, WebSDKSetLocationWithDeeplinkRequestModel>,
          Carries<detail::GenericCase::switchBottomBarTab, WebSDKSwitchBottomBarModel>,
          Carries<detail::GenericCase::screenCapturing, WebSDKScreenCapturingRequestModel>,
          Carries<detail::GenericCase::toggleNativeSearchBar, WebSDKToggleNativeSearchBarRequestModel>,
          Carries<detail::GenericCase::updateNativeSearchBar, WebSDKUpdateNativeSearchBarRequestModel>,
          Carries<detail::GenericCase::launchBrowser, WebSDKLaunchBrowserRequestModel>,
          Carries<detail::GenericCase::getConfigValue, WebSDKGetConfigValueRequestModel>,
          Carries<detail::GenericCase::updateLiveActivity, WebSDKUpdateLiveActivityRequestModel>,
          Carries<detail::GenericCase::getSortedAddresses, WebSDKGetSortedAddressesRequestModel>,
          Carries<detail::GenericCase::quizProgressUpdate, WebSDKQuizProgressUpdateModel>,
          Carries<detail::GenericCase::isWebBottomBarVisible, WebSDKIsWebBottomBarVisibleRequestModel>,
          Carries<detail::GenericCase::toggleQuicksHeaderTab, WebSDKToggleQuicksHeaderTabRequestModel>,
          // The journey data may be missing: the case is produced without it.
          Carries<detail::GenericCase::updateLocalIRCTCPayload, std::optional<WebSDKIRCTCResponseModel>>,
          Carries<detail::GenericCase::getInstalledApps, WebSDKInstalledAppsRequestModel>,
          Carries<detail::GenericCase::mediaUpload, WebSDKMediaUploadRequestModel>,
          Carries<detail::GenericCase::trackEvent, WebSDKTrackEventRequestModel>,
          Carries<detail::GenericCase::sendFrequencyCappingEvent, WebSDKSendFrequencyCappingEventRequestModel>,
          Carries<detail::GenericCase::groupOrderInvite, WebSDKGroupOrderRequestModel>,
          Carries<detail::GenericCase::groupOrderLeave, WebSDKGroupOrderRequestModel>,
          Carries<detail::GenericCase::groupOrderDelete, WebSDKGroupOrderRequestModel>,
          Carries<detail::GenericCase::refreshScreen, WebSDKRefreshScreenRequestModel>,
          Carries<detail::GenericCase::submitUploadedFiles, WebSDKSubmitUploadedFilesRequestModel>,
          Carries<detail::GenericCase::downloadFile, WebSDKMediaDownloadRequestModel>,
          Carries<detail::GenericCase::openWebViewAndSyncData, WebSDKOpenWebViewAndSyncDataRequestModel>,
          Carries<detail::GenericCase::closeWebViewAndSyncData, WebSDKCloseWebViewAndSyncDataRequestModel>,
          Carries<detail::GenericCase::getHalfCardHeight, std::shared_ptr<const WebSDKGetHalfCardHeightRequestModel>>,
          Carries<detail::GenericCase::getGPSLocationV2, WebSDKGetGPSLocationRequestModel>> {
 public:
  /// The typed payload of `request`, or nothing when its payload does not
  /// decode. "GET_DEVICE_DETAILS" never decodes.
  static std::optional<WebSDKGenericRequestPayload> validateRequest(const WebSDKGenericRequestModel& request);
};

}  // namespace websdk
