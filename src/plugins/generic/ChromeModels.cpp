#include "websdk/plugins/generic/ChromeModels.hpp"

#include <utility>

namespace websdk {
namespace {

// The buttons of the array under "buttonLabels"; absent without an array. A
// malformed element is dropped rather than shown as a button the page did
// not describe.
std::optional<std::vector<ButtonMeta>> buttonsUnder(const Fields& p) {
  const JSON* labels = p["buttonLabels"];
  const JSONArray* array = labels ? labels->if_array() : nullptr;
  if (array == nullptr) return std::nullopt;
  std::vector<ButtonMeta> buttons;
  for (const JSON& element : *array)
    if (auto button = ButtonMeta::from(websdk::object(&element))) buttons.push_back(std::move(*button));
  return buttons;
}

}  // namespace

std::optional<ButtonMeta> ButtonMeta::from(const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  auto text = p.strictString("text");
  auto type = p.enumeration<ButtonType>("type");
  if (!text || !type) return std::nullopt;
  return ButtonMeta{p.strictString("id").value_or(""), std::move(*text), *type};
}

std::optional<WebSDKDialogAlertRequestModel> WebSDKDialogAlertRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  auto message = p.strictString("message");
  if (!message) return std::nullopt;
  return WebSDKDialogAlertRequestModel{std::move(*message), p.strictString("title").value_or(""),
                                       p.strictString("buttonName").value_or("ok")};
}

std::optional<WebSDKDialogConfirmRequestModel> WebSDKDialogConfirmRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  auto message = p.strictString("message");
  if (!message) return std::nullopt;
  return WebSDKDialogConfirmRequestModel{p.strictString("title").value_or(""), std::move(*message), buttonsUnder(p)};
}

std::optional<WebSDKShowHeaderTrailingDataModel> WebSDKShowHeaderTrailingDataModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKShowHeaderTrailingDataModel{p.strictString("iconToken"), p.strictString("iconImgId"),
                                           p.strictString("title"),     p.strictString("message"),
                                           p.strictString("url"),       buttonsUnder(p)};
}

std::optional<WebSDKShowHeaderModel> WebSDKShowHeaderModel::from(const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  std::optional<WebSDKDialogConfirmRequestModel> backAlert;
  if (auto alert = p.object("backAlert")) backAlert = WebSDKDialogConfirmRequestModel::from(alert);
  std::optional<WebSDKShowHeaderTrailingDataModel> trailingAlert;
  if (auto trailing = p.object("trailingAlert")) trailingAlert = WebSDKShowHeaderTrailingDataModel::from(trailing);
  return WebSDKShowHeaderModel{p.lenientBool("show"),
                               p.strictString("title"),
                               p.strictString("backURL"),
                               std::move(backAlert),
                               p.enumeration<Alignment>("titleAlignment"),
                               std::move(trailingAlert)};
}

std::optional<WebSDKWebStorageRequestModel> WebSDKWebStorageRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  auto type = p.enumeration<StorageMethodType>("type");
  auto data = p.object("data");
  if (!type || !data) return std::nullopt;
  return WebSDKWebStorageRequestModel{*type, std::move(*data)};
}

std::optional<WebSDKStatusBarChangeRequestModel> WebSDKStatusBarChangeRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKStatusBarChangeRequestModel{Fields(payload).strictString("style").value_or("")};
}

std::optional<WebSDKToggleBottomBarRequestModel> WebSDKToggleBottomBarRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKToggleBottomBarRequestModel{Fields(payload).lenientBool("show")};
}

std::optional<WebSDKIsWebBottomBarVisibleRequestModel> WebSDKIsWebBottomBarVisibleRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKIsWebBottomBarVisibleRequestModel{Fields(payload).lenientBool("visible")};
}

std::optional<WebSDKToggleBackSwipeRequestModel> WebSDKToggleBackSwipeRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKToggleBackSwipeRequestModel{Fields(payload).lenientBool("isEnabled")};
}

std::optional<WebSDKDisableNativeScrollRequestModel> WebSDKDisableNativeScrollRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKDisableNativeScrollRequestModel{Fields(payload).lenientBool("disable")};
}

std::optional<WebSDKToggleNativeSearchBarRequestModel> WebSDKToggleNativeSearchBarRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKToggleNativeSearchBarRequestModel{Fields(payload).lenientBool("canShow")};
}

std::optional<WebSDKUpdateNativeSearchBarRequestModel> WebSDKUpdateNativeSearchBarRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKUpdateNativeSearchBarRequestModel{p.lenientString("query"), p.lenientString("action")};
}

std::optional<WebSDKToggleQuicksHeaderTabRequestModel> WebSDKToggleQuicksHeaderTabRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKToggleQuicksHeaderTabRequestModel{Fields(payload).lenientBool("show")};
}

std::optional<WebSDKVoiceSearchRequestModel> WebSDKVoiceSearchRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKVoiceSearchRequestModel{Fields(payload).strictString("screenName").value_or("")};
}

std::optional<WebSDKScreenCapturingRequestModel> WebSDKScreenCapturingRequestModel::from(
    const std::optional<JSONObject>& payload) {
  auto disabled = Fields(payload).strictBool("screenCapturingDisabled");
  if (!disabled) return std::nullopt;
  return WebSDKScreenCapturingRequestModel{*disabled};
}

std::optional<WebSDKAppExtensionInBackgroundRequestModel> WebSDKAppExtensionInBackgroundRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKAppExtensionInBackgroundRequestModel{Fields(payload).strictBool("active").value_or(false)};
}

std::optional<WebSDKVibrateRequestModel> WebSDKVibrateRequestModel::from(const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKVibrateRequestModel{p.integer("duration").value_or(0), p.strictString("amplitude").value_or("")};
}

std::optional<WebSDKWhatsappShareRequestModel> WebSDKWhatsappShareRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKWhatsappShareRequestModel{p.strictString("text").value_or(""), p.strictString("fallback").value_or("")};
}

std::optional<WebSDKOpenShareSheetRequestModel> WebSDKOpenShareSheetRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKOpenShareSheetRequestModel{Fields(payload).strictString("text").value_or("")};
}

std::optional<WebSDKCopyTextToClipboardRequestModel> WebSDKCopyTextToClipboardRequestModel::from(
    const std::optional<JSONObject>& payload) {
  return WebSDKCopyTextToClipboardRequestModel{Fields(payload).strictString("text").value_or("")};
}

}  // namespace websdk
