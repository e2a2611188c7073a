#pragma once
// Requests with which a page drives the native chrome around it: dialogs, the
// native header, status bar, bottom bar, back-swipe, scrolling, the search
// bar, vibration, sharing, the clipboard, key-value storage and screen-capture
// protection.

#include "websdk/Export.hpp"
#include "websdk/json/Enum.hpp"
#include "websdk/json/JSON.hpp"
#include "websdk/json/Readings.hpp"
#include "websdk/json/Record.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace websdk {

// ---- Dialogs ---------------------------------------------------------------

enum class ButtonType { primary, secondary };
constexpr auto rawValues(ButtonType) {
  using enum ButtonType;
  return rawValueTable<ButtonType>({{primary, "primary"}, {secondary, "secondary"}});
}

/// One button of a dialog; `id` is what the page gets back when it is tapped.
/// Fails without a string "text" or without a known "type"; `id` defaults to "".
struct WEBSDK_EXPORT ButtonMeta {
  std::string id;
  std::string text;
  ButtonType type{};

  static std::optional<ButtonMeta> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(ButtonMeta, id, text, type)
};

/// Fails without a string "message"; the button is labelled "ok" unless named.
struct WEBSDK_EXPORT WebSDKDialogAlertRequestModel {
  std::string message;
  std::string title;
  std::string buttonName;

  static std::optional<WebSDKDialogAlertRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKDialogAlertRequestModel, message, title, buttonName)
};

/// Fails without a string "message". `buttons` come from the "buttonLabels"
/// array; elements that are not valid buttons are left out.
struct WEBSDK_EXPORT WebSDKDialogConfirmRequestModel {
  std::string title;
  std::string message;
  std::optional<std::vector<ButtonMeta>> buttons;

  static std::optional<WebSDKDialogConfirmRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKDialogConfirmRequestModel, title, message, buttons)
};

// ---- Native header -----------------------------------------------------------

enum class Alignment { left, right, center };
constexpr auto rawValues(Alignment) {
  using enum Alignment;
  return rawValueTable<Alignment>({{left, "LEFT"}, {right, "RIGHT"}, {center, "CENTER"}});
}

/// The header's trailing icon and the alert it opens. Never fails.
struct WEBSDK_EXPORT WebSDKShowHeaderTrailingDataModel {
  std::optional<std::string> iconToken;
  std::optional<std::string> iconImgId;
  std::optional<std::string> title;
  std::optional<std::string> message;
  std::optional<std::string> url;
  std::optional<std::vector<ButtonMeta>> buttons;

  static std::optional<WebSDKShowHeaderTrailingDataModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKShowHeaderTrailingDataModel, iconToken, iconImgId, title, message, url, buttons)
};

/// Never fails: `show` defaults to false, and a back alert, alignment or
/// trailing alert that does not read is left out.
struct WEBSDK_EXPORT WebSDKShowHeaderModel {
  bool show = false;
  std::optional<std::string> title;
  std::optional<std::string> backURL;
  std::optional<WebSDKDialogConfirmRequestModel> backAlert;
  std::optional<Alignment> titleAlignment;
  std::optional<WebSDKShowHeaderTrailingDataModel> trailingAlert;

  static std::optional<WebSDKShowHeaderModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKShowHeaderModel, show, title, backURL, backAlert, titleAlignment, trailingAlert)
};

// ---- Storage -----------------------------------------------------------------

enum class StorageMethodType { get, save, delete_, clean };
constexpr auto rawValues(StorageMethodType) {
  using enum StorageMethodType;
  return rawValueTable<StorageMethodType>({{get, "get"}, {save, "save"}, {delete_, "delete"}, {clean, "clean"}});
}

/// Fails unless "type" names a storage method and "data" is an object.
struct WEBSDK_EXPORT WebSDKWebStorageRequestModel {
  StorageMethodType type{};
  JSONObject data;

  static std::optional<WebSDKWebStorageRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKWebStorageRequestModel, type, data)
};

// ---- Small chrome requests ---------------------------------------------------
// Each never fails unless said otherwise; a missing key gives "", false or 0.

/// `style`: the string under "style" only.
struct WEBSDK_EXPORT WebSDKStatusBarChangeRequestModel {
  std::string style;

  static std::optional<WebSDKStatusBarChangeRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKStatusBarChangeRequestModel, style)
};

/// `show`: "show" read leniently ("true", "yes", 1 ... count).
struct WEBSDK_EXPORT WebSDKToggleBottomBarRequestModel {
  bool show = false;

  static std::optional<WebSDKToggleBottomBarRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKToggleBottomBarRequestModel, show)
};

/// `isVisible`: "visible" read leniently.
struct WEBSDK_EXPORT WebSDKIsWebBottomBarVisibleRequestModel {
  bool isVisible = false;

  static std::optional<WebSDKIsWebBottomBarVisibleRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKIsWebBottomBarVisibleRequestModel, isVisible)
};

/// `isEnabled`: "isEnabled" read leniently.
struct WEBSDK_EXPORT WebSDKToggleBackSwipeRequestModel {
  bool isEnabled = false;

  static std::optional<WebSDKToggleBackSwipeRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKToggleBackSwipeRequestModel, isEnabled)
};

/// `disable`: "disable" read leniently.
struct WEBSDK_EXPORT WebSDKDisableNativeScrollRequestModel {
  bool disable = false;

  static std::optional<WebSDKDisableNativeScrollRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKDisableNativeScrollRequestModel, disable)
};

/// `canShow`: "canShow" read leniently.
struct WEBSDK_EXPORT WebSDKToggleNativeSearchBarRequestModel {
  bool canShow = false;

  static std::optional<WebSDKToggleNativeSearchBarRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKToggleNativeSearchBarRequestModel, canShow)
};

/// `query` and `action` read leniently (a number gives its text).
struct WEBSDK_EXPORT WebSDKUpdateNativeSearchBarRequestModel {
  std::string query;
  std::string action;

  static std::optional<WebSDKUpdateNativeSearchBarRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKUpdateNativeSearchBarRequestModel, query, action)
};

/// `show`: "show" read leniently.
struct WEBSDK_EXPORT WebSDKToggleQuicksHeaderTabRequestModel {
  bool show = false;

  static std::optional<WebSDKToggleQuicksHeaderTabRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKToggleQuicksHeaderTabRequestModel, show)
};

/// `screenName`: the string under "screenName" only.
struct WEBSDK_EXPORT WebSDKVoiceSearchRequestModel {
  std::string screenName;

  static std::optional<WebSDKVoiceSearchRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKVoiceSearchRequestModel, screenName)
};

/// Fails unless "screenCapturingDisabled" is a JSON bool: turning capture
/// protection on or off is never guessed from other values.
struct WEBSDK_EXPORT WebSDKScreenCapturingRequestModel {
  bool isScreenCapturingDisabled = false;

  static std::optional<WebSDKScreenCapturingRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKScreenCapturingRequestModel, isScreenCapturingDisabled)
};

/// `active`: true only for a JSON true under "active".
struct WEBSDK_EXPORT WebSDKAppExtensionInBackgroundRequestModel {
  bool active = false;

  static std::optional<WebSDKAppExtensionInBackgroundRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKAppExtensionInBackgroundRequestModel, active)
};

/// `duration` from the number under "duration" (0 otherwise); `amplitude`
/// the string under "amplitude".
struct WEBSDK_EXPORT WebSDKVibrateRequestModel {
  std::int64_t duration = 0;
  std::string amplitude;

  static std::optional<WebSDKVibrateRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKVibrateRequestModel, duration, amplitude)
};

/// `text` and `fallback`: the strings under their keys only.
struct WEBSDK_EXPORT WebSDKWhatsappShareRequestModel {
  std::string text;
  std::string fallback;

  static std::optional<WebSDKWhatsappShareRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKWhatsappShareRequestModel, text, fallback)
};

/// `text`: the string under "text" only.
struct WEBSDK_EXPORT WebSDKOpenShareSheetRequestModel {
  std::string text;

  static std::optional<WebSDKOpenShareSheetRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKOpenShareSheetRequestModel, text)
};

/// `text`: the string under "text" only.
struct WEBSDK_EXPORT WebSDKCopyTextToClipboardRequestModel {
  std::string text;

  static std::optional<WebSDKCopyTextToClipboardRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKCopyTextToClipboardRequestModel, text)
};

}  // namespace websdk
