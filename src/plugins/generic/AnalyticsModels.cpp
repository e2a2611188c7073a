#include "websdk/plugins/generic/AnalyticsModels.hpp"

#include "websdk/json/Readings.hpp"

#include <charconv>
#include <string_view>
#include <system_error>
#include <utility>

namespace websdk {
namespace {

// Whole decimal text: an optional sign, then digits only; out of range is no number.
std::optional<std::int64_t> decimalInteger(std::string_view text) {
  if (!text.empty() && text.front() == '+') {
    text.remove_prefix(1);
    if (text.empty() || text.front() < '0' || text.front() > '9') return std::nullopt;  // "+-5", "+"
  }
  std::int64_t value = 0;
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (ec != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

// The lenient boolean of `key`, absent without the key.
std::optional<bool> presentBool(const Fields& fields, std::string_view key) {
  if (!fields.has(key)) return std::nullopt;
  return fields.lenientBool(key);
}

}  // namespace

std::optional<WebSDKTrackEventRequestModel> WebSDKTrackEventRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  if (!p.has("eventName")) return std::nullopt;
  return WebSDKTrackEventRequestModel{p.lenientString("eventName"), p.object("eventParams")};
}

std::optional<WebSDKSendClevertapEventRequestModel> WebSDKSendClevertapEventRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  auto eventName = p.strictString("eventName");
  if (!eventName) return std::nullopt;
  return WebSDKSendClevertapEventRequestModel{std::move(*eventName), p.object("params")};
}

std::optional<WebSDKSendFrequencyCappingEventRequestModel> WebSDKSendFrequencyCappingEventRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields info = Fields(payload).nested("frequencyCappingInfo");
  if (info.absent()) return std::nullopt;
  std::optional<FrequencyCapping> capping;
  if (const Fields c = info.nested("frequencyCapping"); !c.absent())
    capping = FrequencyCapping{presentBool(c, "cappingEnabled"), c.strictString("cappingMode")};
  return WebSDKSendFrequencyCappingEventRequestModel{std::move(capping), info.strictString("entityId"),
                                                     info.strictString("entityType"), presentBool(info, "isRealTime")};
}

std::optional<WebSDKMediaUploadRequestModel> WebSDKMediaUploadRequestModel::from(
    const std::optional<JSONObject>& payload) {
  if (!payload) return std::nullopt;
  const Fields p(payload);
  return WebSDKMediaUploadRequestModel{p.stringList("sources"), p.stringList("galleryMediaTypes"),
                                       p.stringList("fileTypes")};
}

std::optional<WebSDKMediaDownloadRequestModel> WebSDKMediaDownloadRequestModel::from(
    const std::optional<JSONObject>& payload) {
  if (!payload) return std::nullopt;
  const Fields p(payload);
  return WebSDKMediaDownloadRequestModel{p.strictString("url"), p.strictString("fileNameWithExtension"),
                                         p.strictBool("isSignedURL")};
}

std::optional<WebSDKSubmitUploadedFilesRequestModel> WebSDKSubmitUploadedFilesRequestModel::from(
    const std::optional<JSONObject>& payload) {
  if (!payload) return std::nullopt;
  const Fields p(payload);
  auto input = p.stringMap("input");
  return WebSDKSubmitUploadedFilesRequestModel{p.stringList("s3Links"),
                                               input ? std::move(*input) : decltype(input)::value_type()};
}

std::optional<WebSDKQuizProgressUpdateModel> WebSDKQuizProgressUpdateModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields params = Fields(payload).nested("params");
  if (params.absent()) return std::nullopt;
  // Pages send the counts as numbers or as text; both go through their text.
  const auto total = decimalInteger(params.lenientString("totalQuestions"));
  const auto attempted = decimalInteger(params.lenientString("attemptedQuestions"));
  if (!total || !attempted) return std::nullopt;
  return WebSDKQuizProgressUpdateModel{params.lenientString("quizName"),
                                       *total,
                                       *attempted,
                                       params.strictString("flowType"),
                                       params.strictBool("appNavigationEnabled"),
                                       params.raw("metaData")};
}

std::optional<WebSDKUpdateLiveActivityRequestModel> WebSDKUpdateLiveActivityRequestModel::from(
    const std::optional<JSONObject>& payload) {
  if (!payload) return std::nullopt;
  const Fields p(payload);
  return WebSDKUpdateLiveActivityRequestModel{p.lenientString("orderId"), p.lenientString("orderStatus"),
                                              p.lenientString("eta"), p.lenientString("progressPercentage")};
}

std::optional<WebSDKGetConfigValueRequestModel> WebSDKGetConfigValueRequestModel::from(
    const std::optional<JSONObject>& payload) {
  if (!payload) return std::nullopt;
  const Fields p(payload);
  return WebSDKGetConfigValueRequestModel{p.stringList("xpKeyList"), p.stringList("wpKeyList")};
}

std::optional<WebSDKInstalledAppsRequestModel> WebSDKInstalledAppsRequestModel::from(
    const std::optional<JSONObject>& payload) {
  if (!payload) return std::nullopt;
  return WebSDKInstalledAppsRequestModel{Fields(payload).stringList("apps")};
}

std::optional<WebSDKGroupOrderRequestModel> WebSDKGroupOrderRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKGroupOrderRequestModel{p.strictString("groupCartId"), p.strictString("userId")};
}

std::optional<WebSDKSubmitFeedbackRequestModel> WebSDKSubmitFeedbackRequestModel::from(
    const std::optional<JSONObject>& payload) {
  const Fields p(payload);
  return WebSDKSubmitFeedbackRequestModel{p.strictString("originScreen").value_or(""),
                                          p.strictString("link").value_or("")};
}

// Field lists are checked where they are declared, not first at a caller's encode.
static_assert(checkRecord<WebSDKTrackEventRequestModel>() && checkRecord<WebSDKSendClevertapEventRequestModel>() &&
              checkRecord<FrequencyCapping>() && checkRecord<WebSDKSendFrequencyCappingEventRequestModel>() &&
              checkRecord<WebSDKMediaUploadRequestModel>() && checkRecord<WebSDKMediaDownloadRequestModel>() &&
              checkRecord<WebSDKSubmitUploadedFilesRequestModel>() && checkRecord<WebSDKQuizProgressUpdateModel>() &&
              checkRecord<WebSDKUpdateLiveActivityRequestModel>() && checkRecord<WebSDKGetConfigValueRequestModel>() &&
              checkRecord<WebSDKInstalledAppsRequestModel>() && checkRecord<WebSDKGroupOrderRequestModel>() &&
              checkRecord<WebSDKSubmitFeedbackRequestModel>());

}  // namespace websdk
