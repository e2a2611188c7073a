#pragma once
/// @file
/// The generic family: its 74 actions, the small requests they carry, and the
/// typed payload a page's request decodes to.

#include "websdk/Export.hpp"
#include "websdk/bridge/RequestModel.hpp"
#include "websdk/json/ActionTable.hpp"
#include "websdk/plugins/generic/AnalyticsModels.hpp"
#include "websdk/plugins/generic/ChromeModels.hpp"
#include "websdk/plugins/generic/LocationModels.hpp"
#include "websdk/plugins/generic/ScreenModels.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace websdk {

// ---- Small requests -------------------------------------------------------------
// Each never fails; a missing key gives 0, "" or no value.

/// `accuracyLevel`: "accuracyLevel" read as a lenient integer ("3" gives 3).
struct WEBSDK_EXPORT WebSDKGetLocationRequestModel {
  /// Read from the JSON key of its name.
  std::int64_t accuracyLevel = 0;

  WEBSDK_MODEL(WebSDKGetLocationRequestModel, anyPayload, (accuracyLevel, lenientInt))
};

/// `sourceLocation`: the point under "source_location" (0, 0 without one).
struct WEBSDK_EXPORT WebSDKGetSortedAddressesRequestModel {
  /// Read from the JSON key "source_location".
  std::optional<Location> sourceLocation;

  WEBSDK_MODEL(WebSDKGetSortedAddressesRequestModel, anyPayload, (sourceLocation, model, "source_location"))
};

/// `currentStep`: the string under "currentStep" only.
struct WEBSDK_EXPORT WebSDKGetNextStepRequestModel {
  /// Read from the JSON key of its name.
  std::string currentStep;

  WEBSDK_MODEL(WebSDKGetNextStepRequestModel, anyPayload, (currentStep, strictString))
};

/// `funcName`: "func_name" read leniently.
struct WEBSDK_EXPORT WebSDKPhoneContactRequestModel {
  /// Read from the JSON key "func_name".
  std::string funcName;

  WEBSDK_MODEL(WebSDKPhoneContactRequestModel, anyPayload, (funcName, lenientString, "func_name"))
};

/// `reloadUrl`: "reloadUrl" read leniently, and no value (not "") without it.
struct WEBSDK_EXPORT WebSDKLoginRequestModel {
  /// Read from the JSON key of its name.
  std::optional<std::string> reloadUrl;

  WEBSDK_MODEL(WebSDKLoginRequestModel, anyPayload, (reloadUrl, lenientString))
};

// "GET_DEVICE_DETAILS" is never decoded, on purpose: pages that ask for
// device details through the bridge are answered "not a valid request", and
// they rely on that. The live order-status activity answers to
// "UPDATE_ORDER_EVENT"; journey data that does not read still reaches the host
// as "UPDATE_LOCAL_IRCTC_PAYLOAD" without a model.
WEBSDK_ACTIONS(
    WebSDKGenericAction, WebSDKGenericRequestPayload,
    (getLocation, "GET_LOCATION", getLocation, WebSDKGetLocationRequestModel),
    (setLocation, "SET_LOCATION", setLocation, WebSDKSetLocationRequestModel),
    (deviceDetails, "GET_DEVICE_DETAILS", deviceDetails, Refused),
    (dialogAlert, "DIALOG_ALERT", dialogAlert, WebSDKDialogAlertRequestModel),
    (dialogConfirm, "DIALOG_CONFIRM", dialogConfirm, WebSDKDialogConfirmRequestModel),
    (getUserInfo, "GET_USER_INFO", getUserInfo),
    (closeWebview, "CLOSE_WEBVIEW", closeWebview, WebSDKCloseWebviewWithParamsModel),
    (navigateToScreen, "NAVIGATE_TO_SCREEN", navigateToScreen, WebSDKNavigationToScreenRequestModel),
    (getDovaraHeaders, "GET_DOVARA_HEADERS", getDovaraHeaders),
    (webNavigate, "WEB_NAVIGATE", webNavigate, WebSDKWebNavigateRequestModel),
    (showHeader, "SHOW_HEADER", showHeader, WebSDKShowHeaderModel),
    (storage, "STORAGE", storage, WebSDKWebStorageRequestModel),
    (extendAppActiveInBackground, "SET_APP_ACTIVE_IN_IDLE_STATE", extendAppActiveInBackground,
     WebSDKAppExtensionInBackgroundRequestModel),
    (toggleBottomBar, "TOGGLE_NATIVE_BOTTOM_BAR", toggleBottomBar, WebSDKToggleBottomBarRequestModel),
    (login, "LOGIN", login, WebSDKLoginRequestModel),
    (openOrbisV2, "OPEN_ORBIS_V2", openOrbisV2, WebSDKOpenOrbisV2RequestModel),
    (openOrbisV3, "OPEN_ORBIS_V3", openOrbisV3, WebSDKOpenOrbisV3RequestModel),
    (statusBarChange, "STATUS_BAR_CHANGE", statusBarChange, WebSDKStatusBarChangeRequestModel),
    (vibrate, "VIBRATE", vibrate, WebSDKVibrateRequestModel),
    (whatsappShare, "WHATSAPP_SHARE", whatsappShare, WebSDKWhatsappShareRequestModel),
    (openShareSheet, "OPEN_SHARE_SHEET", openShareSheet, WebSDKOpenShareSheetRequestModel),
    (copyTextToClipboard, "COPY_TEXT_TO_CLIPBOARD", copyTextToClipboard, WebSDKCopyTextToClipboardRequestModel),
    (disableNativeScroll, "DISABLE_NATIVE_SCROLL", disableNativeScroll, WebSDKDisableNativeScrollRequestModel),
    (addNewAddress, "ADD_NEW_ADDRESS", addNewAddress, WebSDKAddAddressRequestModel),
    (sendCleverTapEvent, "SEND_CLEVERTAP_EVENT", sendCleverTapEvent, WebSDKSendClevertapEventRequestModel),
    (enableBackSwipe, "ENABLE_BACK_SWIPE", toggleBackSwipe, WebSDKToggleBackSwipeRequestModel),
    (showLoader, "SHOW_LOADER", showLoader), (hideLoader, "HIDE_LOADER", hideLoader),
    (editAddress, "EDIT_ADDRESS", editAddress, WebSDKEditAddressRequestModel),
    (getNextStepDetails, "GET_NEXT_STEP_DETAILS", getNextStepDetails, WebSDKGetNextStepRequestModel),
    (getCurrentAddress, "GET_CURRENT_ADDRESS", getCurrentAddress),
    (phoneContact, "PHONE_CONTACT", phoneContact, WebSDKPhoneContactRequestModel),
    (editDirections, "EDIT_DIRECTIONS_TO_REACH", editDirections, WebSDKEditDirectionsRequestModel),
    (checkCameraPermission, "IOS_CHECK_CAMERA_PERMISSION", checkCameraPermission),
    (submitFeedback, "SUBMIT_FEEDBACK", submitFeedback, WebSDKSubmitFeedbackRequestModel),
    (voiceSearch, "OPEN_NATIVE_VOICE_SEARCH", voiceSearch, WebSDKVoiceSearchRequestModel),
    (getSelectedLocation, "GET_SELECTED_LOCATION", getSelectedLocation),
    (openSearchLocation, "OPEN_LOCATION_SEARCH", openSearchLocation),
    (setLocationWithDeeplink, "SET_LOCATION_WITH_DEEP_LINK", setLocationWithDeeplink,
     WebSDKSetLocationWithDeeplinkRequestModel),
    (bottomBarTabSwitch, "SWITCH_BOTTOM_BAR_TAB", switchBottomBarTab, WebSDKSwitchBottomBarModel),
    (isLocationEnabled, "IS_LOCATION_ENABLED", isLocationEnabled), (getTnsSignal, "GET_TNS_SIGNAL", getTnsSignal),
    (screenCapturing, "SCREEN_CAPTURING", screenCapturing, WebSDKScreenCapturingRequestModel),
    (toggleNativeSearchBar, "TOGGLE_NATIVE_SEARCH_BAR", toggleNativeSearchBar, WebSDKToggleNativeSearchBarRequestModel),
    (updateNativeSearchBar, "UPDATE_NATIVE_SEARCH_BAR", updateNativeSearchBar, WebSDKUpdateNativeSearchBarRequestModel),
    (launchBrowser, "LAUNCH_BROWSER", launchBrowser, WebSDKLaunchBrowserRequestModel),
    (getConfigValue, "GET_CONFIG_VALUE", getConfigValue, WebSDKGetConfigValueRequestModel),
    (updateLiveActivity, "UPDATE_ORDER_EVENT", updateLiveActivity, WebSDKUpdateLiveActivityRequestModel),
    (updateAccessToken, "UPDATE_ACCESS_TOKEN", updateAccessToken),
    (getNotificationPermissionStatus, "GET_NOTIFICATION_PERMISSION_STATUS", getNotificationPermissionStatus),
    (getSortedAddresses, "GET_SORTED_ADDRESSES", getSortedAddresses, WebSDKGetSortedAddressesRequestModel),
    (quizProgressUpdate, "QUIZ_PROGRESS_UPDATE", quizProgressUpdate, WebSDKQuizProgressUpdateModel),
    (isWebBottomBarVisible, "IS_WEB_BOTTOM_BAR_VISIBLE", isWebBottomBarVisible,
     WebSDKIsWebBottomBarVisibleRequestModel),
    (toggleQuicksHeaderTab, "TOGGLE_QUICKS_HEADER_TAB", toggleQuicksHeaderTab, WebSDKToggleQuicksHeaderTabRequestModel),
    (getLocalIRCTCPayload, "GET_LOCAL_IRCTC_PAYLOAD", getLocalIRCTCPayload),
    (getAsyncIRCTCPayload, "GET_ASYNC_IRCTC_PAYLOAD", getAsyncIRCTCPayload),
    (updateLocalIRCTCPayload, "UPDATE_LOCAL_IRCTC_PAYLOAD", updateLocalIRCTCPayload,
     std::optional<WebSDKIRCTCResponseModel>),
    (getInstalledApps, "GET_INSTALLED_APPS", getInstalledApps, WebSDKInstalledAppsRequestModel),
    (mediaUpload, "iOS_MEDIA_UPLOAD", mediaUpload, WebSDKMediaUploadRequestModel),
    (trackEvent, "TRACK_EVENT", trackEvent, WebSDKTrackEventRequestModel),
    (refreshParentScreen, "REFRESH_PARENT_SCREEN", refreshParentScreen),
    (sendFrequencyCappingEvent, "SEND_FREQUENCY_CAPPING_EVENT", sendFrequencyCappingEvent,
     WebSDKSendFrequencyCappingEventRequestModel),
    (initPXWeb, "INIT_PX_WEB", initPXWeb),
    (groupOrderInvite, "INVITE_MORE_GROUPCART", groupOrderInvite, WebSDKGroupOrderRequestModel),
    (groupOrderDelete, "DELETE_GROUPCART", groupOrderDelete, WebSDKGroupOrderRequestModel),
    (groupOrderLeave, "LEAVE_GROUPCART", groupOrderLeave, WebSDKGroupOrderRequestModel),
    (refreshScreen, "REFRESH_SCREEN", refreshScreen, WebSDKRefreshScreenRequestModel),
    (submitUploadedFiles, "SUBMIT_UPLOADED_FILES", submitUploadedFiles, WebSDKSubmitUploadedFilesRequestModel),
    (getGPSLocation, "GET_GPS_LOCATION", getGPSLocation),
    (getGPSLocationV2, "GET_GPS_LOCATION_V2", getGPSLocationV2, WebSDKGetGPSLocationRequestModel),
    (downloadFile, "DOWNLOAD_FILE", downloadFile, WebSDKMediaDownloadRequestModel),
    (openWebViewAndSyncData, "WEBVIEW_OPEN_AND_SYNC_BRIDGE", openWebViewAndSyncData,
     WebSDKOpenWebViewAndSyncDataRequestModel),
    (closeWebViewAndSyncData, "CLOSE_WEBVIEW_AND_SYNC_DATA", closeWebViewAndSyncData,
     WebSDKCloseWebViewAndSyncDataRequestModel),
    (getHalfCardHeight, "GET_WEBVIEW_HALFCARD_HEIGHT", getHalfCardHeight,
     std::shared_ptr<const WebSDKGetHalfCardHeightRequestModel>))

/// A request of the generic family: its action, the page's request id and the raw payload.
using WebSDKGenericRequestModel = WebSDKBridgeRequest<WebSDKGenericAction>;

}  // namespace websdk
