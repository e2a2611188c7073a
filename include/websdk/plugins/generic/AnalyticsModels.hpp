#pragma once
// Analytics events, files, quiz progress, the live order activity, remote
// configuration, installed apps, group orders and feedback.

#include "websdk/Export.hpp"
#include "websdk/json/JSON.hpp"
#include "websdk/json/Record.hpp"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace websdk {

/// An event for the app's own tracker. Fails without an "eventName"; a
/// non-string name is taken as its text. Parameters come from "eventParams".
struct WEBSDK_EXPORT WebSDKTrackEventRequestModel {
  std::string eventName;
  std::optional<JSONObject> eventParams;

  static std::optional<WebSDKTrackEventRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKTrackEventRequestModel, eventName, eventParams)
};

/// A CleverTap event. Stricter than the tracker: fails unless "eventName" is a
/// JSON string. Parameters come from "params".
struct WEBSDK_EXPORT WebSDKSendClevertapEventRequestModel {
  std::string eventName;
  std::optional<JSONObject> eventParams;

  static std::optional<WebSDKSendClevertapEventRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKSendClevertapEventRequestModel, eventName, eventParams)
};

struct WEBSDK_EXPORT FrequencyCapping {
  std::optional<bool> cappingEnabled;
  std::optional<std::string> cappingMode;

  WEBSDK_RECORD(FrequencyCapping, cappingEnabled, cappingMode)
};

/// Read from the object under "frequencyCappingInfo"; fails without one.
struct WEBSDK_EXPORT WebSDKSendFrequencyCappingEventRequestModel {
  std::optional<FrequencyCapping> frequencyCapping;
  std::optional<std::string> entityId;
  std::optional<std::string> entityType;
  std::optional<bool> isRealTime;

  static std::optional<WebSDKSendFrequencyCappingEventRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKSendFrequencyCappingEventRequestModel, frequencyCapping, entityId, entityType, isRealTime)
};

/// Where media may be picked from and which kinds. Fails only without a
/// payload dictionary.
struct WEBSDK_EXPORT WebSDKMediaUploadRequestModel {
  std::optional<std::vector<std::string>> sources;
  std::optional<std::vector<std::string>> galleryMediaTypes;
  std::optional<std::vector<std::string>> fileTypes;

  static std::optional<WebSDKMediaUploadRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKMediaUploadRequestModel, sources, galleryMediaTypes, fileTypes)
};

/// A file to download. Fails only without a payload dictionary.
struct WEBSDK_EXPORT WebSDKMediaDownloadRequestModel {
  std::optional<std::string> url;
  std::optional<std::string> fileNameWithExtension;
  std::optional<bool> isSignedURL;

  static std::optional<WebSDKMediaDownloadRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKMediaDownloadRequestModel, url, fileNameWithExtension, isSignedURL)
};

/// Uploaded files to submit: `submitUrls` from "s3Links", `input` from the
/// object under "input". Fails only without a payload dictionary.
struct WEBSDK_EXPORT WebSDKSubmitUploadedFilesRequestModel {
  std::optional<std::vector<std::string>> submitUrls;
  std::map<std::string, std::string> input;

  static std::optional<WebSDKSubmitUploadedFilesRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKSubmitUploadedFilesRequestModel, submitUrls, input)
};

/// Quiz progress, read from the object under "params". Fails without that
/// object, or when either question count is not a whole decimal number
/// (5 and "5" both are).
struct WEBSDK_EXPORT WebSDKQuizProgressUpdateModel {
  std::string quizName;
  std::int64_t totalQuestions = 0;
  std::int64_t attemptedQuestions = 0;
  std::optional<std::string> flowType;
  std::optional<bool> appNavigationEnabled;
  std::optional<JSON> metaData;

  static std::optional<WebSDKQuizProgressUpdateModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKQuizProgressUpdateModel, quizName, totalQuestions, attemptedQuestions, flowType,
                appNavigationEnabled, metaData)
};

/// The order shown in the live activity. Fails only without a payload
/// dictionary; missing keys read as "".
struct WEBSDK_EXPORT WebSDKUpdateLiveActivityRequestModel {
  std::string orderId;
  std::string orderStatus;
  std::string eta;
  std::string progressPercentage;

  static std::optional<WebSDKUpdateLiveActivityRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKUpdateLiveActivityRequestModel, orderId, orderStatus, eta, progressPercentage)
};

/// Remote configuration keys to look up. Fails only without a payload dictionary.
struct WEBSDK_EXPORT WebSDKGetConfigValueRequestModel {
  std::optional<std::vector<std::string>> xpKeyList;
  std::optional<std::vector<std::string>> wpKeyList;

  static std::optional<WebSDKGetConfigValueRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKGetConfigValueRequestModel, xpKeyList, wpKeyList)
};

/// Apps whose presence a page asks about. Fails only without a payload dictionary.
struct WEBSDK_EXPORT WebSDKInstalledAppsRequestModel {
  std::optional<std::vector<std::string>> apps;

  static std::optional<WebSDKInstalledAppsRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKInstalledAppsRequestModel, apps)
};

/// The group cart an invite, delete or leave is about. Never fails.
struct WEBSDK_EXPORT WebSDKGroupOrderRequestModel {
  std::optional<std::string> groupCartId;
  std::optional<std::string> userId;

  static std::optional<WebSDKGroupOrderRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKGroupOrderRequestModel, groupCartId, userId)
};

/// Never fails; missing or non-string keys read as "".
struct WEBSDK_EXPORT WebSDKSubmitFeedbackRequestModel {
  std::string originScreen;
  std::string link;

  static std::optional<WebSDKSubmitFeedbackRequestModel> from(const std::optional<JSONObject>& payload);
  WEBSDK_RECORD(WebSDKSubmitFeedbackRequestModel, originScreen, link)
};

}  // namespace websdk
