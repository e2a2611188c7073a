#pragma once
/// @file
/// Requests with which a page drives the native chrome around it: dialogs, the
/// native header, status bar, bottom bar, back-swipe, scrolling, the search
/// bar, vibration, sharing, the clipboard, key-value storage and screen-capture
/// protection.

#include "websdk/Export.hpp"
#include "websdk/json/Enum.hpp"
#include "websdk/json/JSON.hpp"
#include "websdk/json/Model.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace websdk {

// ---- Dialogs ---------------------------------------------------------------

/// A dialog button's style.
enum class ButtonType { primary, secondary };
constexpr auto rawValues(ButtonType) {
  using enum ButtonType;
  return rawValueTable<ButtonType>({{primary, "primary"}, {secondary, "secondary"}});
}

/// One button of a dialog; `id` is what the page gets back when it is tapped.
/// Fails without a string "text" or without a known "type"; `id` defaults to "".
struct WEBSDK_EXPORT ButtonMeta {
  /// The fields, read from the JSON keys of their names. `text` and `type` are required.
  ///@{
  std::string id;
  std::string text;
  ButtonType type{};
  ///@}

  WEBSDK_MODEL(ButtonMeta, anyPayload, (id, strictString), (text, strictString, required),
               (type, enumeration, required))
};

/// Fails without a string "message"; the button is labelled "ok" unless named.
struct WEBSDK_EXPORT WebSDKDialogAlertRequestModel {
  /// The fields, read from the JSON keys of their names. `message` is required.
  ///@{
  std::string message;
  std::string title;
  std::string buttonName = "ok";
  ///@}

  WEBSDK_MODEL(WebSDKDialogAlertRequestModel, anyPayload, (message, strictString, required), (title, strictString),
               (buttonName, strictString))
};

/// Fails without a string "message". `buttons` come from the "buttonLabels"
/// array; elements that are not valid buttons are left out.
struct WEBSDK_EXPORT WebSDKDialogConfirmRequestModel {
  /// The fields, read from the JSON keys of their names (`buttons` from "buttonLabels"). `message` is required.
  ///@{
  std::string title;
  std::string message;
  std::optional<std::vector<ButtonMeta>> buttons;
  ///@}

  WEBSDK_MODEL(WebSDKDialogConfirmRequestModel, anyPayload, (title, strictString), (message, strictString, required),
               (buttons, modelsThatDecode, "buttonLabels"))
};

// ---- Native header -----------------------------------------------------------

/// Where the native header's title sits.
enum class Alignment { left, right, center };
constexpr auto rawValues(Alignment) {
  using enum Alignment;
  return rawValueTable<Alignment>({{left, "LEFT"}, {right, "RIGHT"}, {center, "CENTER"}});
}

/// The header's trailing icon and the alert it opens. Never fails.
struct WEBSDK_EXPORT WebSDKShowHeaderTrailingDataModel {
  /// The fields, read from the JSON keys of their names (`buttons` from "buttonLabels").
  ///@{
  std::optional<std::string> iconToken;
  std::optional<std::string> iconImgId;
  std::optional<std::string> title;
  std::optional<std::string> message;
  std::optional<std::string> url;
  std::optional<std::vector<ButtonMeta>> buttons;
  ///@}

  WEBSDK_MODEL(WebSDKShowHeaderTrailingDataModel, anyPayload, (iconToken, strictString), (iconImgId, strictString),
               (title, strictString), (message, strictString), (url, strictString),
               (buttons, modelsThatDecode, "buttonLabels"))
};

/// Never fails: `show` defaults to false, and a back alert, alignment or
/// trailing alert that does not read is left out.
struct WEBSDK_EXPORT WebSDKShowHeaderModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  bool show = false;
  std::optional<std::string> title;
  std::optional<std::string> backURL;
  std::optional<WebSDKDialogConfirmRequestModel> backAlert;
  std::optional<Alignment> titleAlignment;
  std::optional<WebSDKShowHeaderTrailingDataModel> trailingAlert;
  ///@}

  WEBSDK_MODEL(WebSDKShowHeaderModel, anyPayload, (show, lenientBool), (title, strictString), (backURL, strictString),
               (backAlert, model), (titleAlignment, enumeration), (trailingAlert, model, ifObject))
};

// ---- Storage -----------------------------------------------------------------

/// What a storage request does: read, save or delete an entry, or clear them
/// all ("delete" is a C++ keyword, so that case is `delete_`).
enum class StorageMethodType { get, save, delete_, clean };
constexpr auto rawValues(StorageMethodType) {
  using enum StorageMethodType;
  return rawValueTable<StorageMethodType>({{get, "get"}, {save, "save"}, {delete_, "delete"}, {clean, "clean"}});
}

/// Fails unless "type" names a storage method and "data" is an object.
struct WEBSDK_EXPORT WebSDKWebStorageRequestModel {
  /// The fields, read from the JSON keys of their names. `type` and `data` are required.
  ///@{
  StorageMethodType type{};
  JSONObject data;
  ///@}

  WEBSDK_MODEL(WebSDKWebStorageRequestModel, anyPayload, (type, enumeration, required), (data, object, required))
};

// ---- Small chrome requests ---------------------------------------------------
// Each never fails unless said otherwise; a missing key gives "", false or 0.

/// `style`: the string under "style" only.
struct WEBSDK_EXPORT WebSDKStatusBarChangeRequestModel {
  /// Read from the JSON key of its name.
  std::string style;

  WEBSDK_MODEL(WebSDKStatusBarChangeRequestModel, anyPayload, (style, strictString))
};

/// `show`: "show" read leniently ("true", "yes", 1 ... count).
struct WEBSDK_EXPORT WebSDKToggleBottomBarRequestModel {
  /// Read from the JSON key of its name.
  bool show = false;

  WEBSDK_MODEL(WebSDKToggleBottomBarRequestModel, anyPayload, (show, lenientBool))
};

/// `isVisible`: "visible" read leniently.
struct WEBSDK_EXPORT WebSDKIsWebBottomBarVisibleRequestModel {
  /// Read from the JSON key "visible".
  bool isVisible = false;

  WEBSDK_MODEL(WebSDKIsWebBottomBarVisibleRequestModel, anyPayload, (isVisible, lenientBool, "visible"))
};

/// `isEnabled`: "isEnabled" read leniently.
struct WEBSDK_EXPORT WebSDKToggleBackSwipeRequestModel {
  /// Read from the JSON key of its name.
  bool isEnabled = false;

  WEBSDK_MODEL(WebSDKToggleBackSwipeRequestModel, anyPayload, (isEnabled, lenientBool))
};

/// `disable`: "disable" read leniently.
struct WEBSDK_EXPORT WebSDKDisableNativeScrollRequestModel {
  /// Read from the JSON key of its name.
  bool disable = false;

  WEBSDK_MODEL(WebSDKDisableNativeScrollRequestModel, anyPayload, (disable, lenientBool))
};

/// `canShow`: "canShow" read leniently.
struct WEBSDK_EXPORT WebSDKToggleNativeSearchBarRequestModel {
  /// Read from the JSON key of its name.
  bool canShow = false;

  WEBSDK_MODEL(WebSDKToggleNativeSearchBarRequestModel, anyPayload, (canShow, lenientBool))
};

/// `query` and `action` read leniently (a number gives its text).
struct WEBSDK_EXPORT WebSDKUpdateNativeSearchBarRequestModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::string query;
  std::string action;
  ///@}

  WEBSDK_MODEL(WebSDKUpdateNativeSearchBarRequestModel, anyPayload, (query, lenientString), (action, lenientString))
};

/// `show`: "show" read leniently.
struct WEBSDK_EXPORT WebSDKToggleQuicksHeaderTabRequestModel {
  /// Read from the JSON key of its name.
  bool show = false;

  WEBSDK_MODEL(WebSDKToggleQuicksHeaderTabRequestModel, anyPayload, (show, lenientBool))
};

/// `screenName`: the string under "screenName" only.
struct WEBSDK_EXPORT WebSDKVoiceSearchRequestModel {
  /// Read from the JSON key of its name.
  std::string screenName;

  WEBSDK_MODEL(WebSDKVoiceSearchRequestModel, anyPayload, (screenName, strictString))
};

/// Fails unless "screenCapturingDisabled" is a JSON bool: turning capture
/// protection on or off is never guessed from other values.
struct WEBSDK_EXPORT WebSDKScreenCapturingRequestModel {
  /// Read from the JSON key "screenCapturingDisabled"; required.
  bool isScreenCapturingDisabled = false;

  WEBSDK_MODEL(WebSDKScreenCapturingRequestModel, anyPayload,
               (isScreenCapturingDisabled, strictBool, "screenCapturingDisabled", required))
};

/// `active`: true only for a JSON true under "active".
struct WEBSDK_EXPORT WebSDKAppExtensionInBackgroundRequestModel {
  /// Read from the JSON key of its name.
  bool active = false;

  WEBSDK_MODEL(WebSDKAppExtensionInBackgroundRequestModel, anyPayload, (active, strictBool))
};

/// `duration` from the number under "duration" (0 otherwise); `amplitude`
/// the string under "amplitude".
struct WEBSDK_EXPORT WebSDKVibrateRequestModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::int64_t duration = 0;
  std::string amplitude;
  ///@}

  WEBSDK_MODEL(WebSDKVibrateRequestModel, anyPayload, (duration, integer), (amplitude, strictString))
};

/// `text` and `fallback`: the strings under their keys only.
struct WEBSDK_EXPORT WebSDKWhatsappShareRequestModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::string text;
  std::string fallback;
  ///@}

  WEBSDK_MODEL(WebSDKWhatsappShareRequestModel, anyPayload, (text, strictString), (fallback, strictString))
};

/// `text`: the string under "text" only.
struct WEBSDK_EXPORT WebSDKOpenShareSheetRequestModel {
  /// Read from the JSON key of its name.
  std::string text;

  WEBSDK_MODEL(WebSDKOpenShareSheetRequestModel, anyPayload, (text, strictString))
};

/// `text`: the string under "text" only.
struct WEBSDK_EXPORT WebSDKCopyTextToClipboardRequestModel {
  /// Read from the JSON key of its name.
  std::string text;

  WEBSDK_MODEL(WebSDKCopyTextToClipboardRequestModel, anyPayload, (text, strictString))
};

}  // namespace websdk
