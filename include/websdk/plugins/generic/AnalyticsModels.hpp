#pragma once
/// @file
/// Analytics events, files, quiz progress, the live order activity, remote
/// configuration, installed apps, group orders and feedback.

#include "websdk/Export.hpp"
#include "websdk/json/JSON.hpp"
#include "websdk/json/Model.hpp"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace websdk {

/// An event for the app's own tracker. Fails without an "eventName"; a
/// non-string name is taken as its text. Parameters come from "eventParams".
struct WEBSDK_EXPORT WebSDKTrackEventRequestModel {
  /// The fields, read from the JSON keys of their names. `eventName` is required.
  ///@{
  std::string eventName;
  std::optional<JSONObject> eventParams;
  ///@}

  WEBSDK_MODEL(WebSDKTrackEventRequestModel, anyPayload, (eventName, lenientString, required), (eventParams, object))
};

/// A CleverTap event. Stricter than the tracker: fails unless "eventName" is a
/// JSON string. Parameters come from "params".
struct WEBSDK_EXPORT WebSDKSendClevertapEventRequestModel {
  /// The fields, read from the JSON keys of their names (`eventParams` from "params"). `eventName` is required.
  ///@{
  std::string eventName;
  std::optional<JSONObject> eventParams;
  ///@}

  WEBSDK_MODEL(WebSDKSendClevertapEventRequestModel, anyPayload, (eventName, strictString, required),
               (eventParams, object, "params"))
};

/// Whether an event is capped in frequency, and how.
struct WEBSDK_EXPORT FrequencyCapping {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::optional<bool> cappingEnabled;
  std::optional<std::string> cappingMode;
  ///@}

  WEBSDK_MODEL(FrequencyCapping, needsPayload, (cappingEnabled, lenientBool), (cappingMode, strictString))
};

/// Read from the object under "frequencyCappingInfo"; fails without one.
struct WEBSDK_EXPORT WebSDKSendFrequencyCappingEventRequestModel {
  /// The fields, read from the keys of their names in the object under "frequencyCappingInfo".
  ///@{
  std::optional<FrequencyCapping> frequencyCapping;
  std::optional<std::string> entityId;
  std::optional<std::string> entityType;
  std::optional<bool> isRealTime;
  ///@}

  WEBSDK_MODEL(WebSDKSendFrequencyCappingEventRequestModel, within("frequencyCappingInfo"),
               (frequencyCapping, model, "frequencyCappingInfo.frequencyCapping"),
               (entityId, strictString, "frequencyCappingInfo.entityId"),
               (entityType, strictString, "frequencyCappingInfo.entityType"),
               (isRealTime, lenientBool, "frequencyCappingInfo.isRealTime"))
};

/// Where media may be picked from and which kinds. Fails only without a
/// payload dictionary.
struct WEBSDK_EXPORT WebSDKMediaUploadRequestModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::optional<std::vector<std::string>> sources;
  std::optional<std::vector<std::string>> galleryMediaTypes;
  std::optional<std::vector<std::string>> fileTypes;
  ///@}

  WEBSDK_MODEL(WebSDKMediaUploadRequestModel, needsPayload, (sources, stringList), (galleryMediaTypes, stringList),
               (fileTypes, stringList))
};

/// A file to download. Fails only without a payload dictionary.
struct WEBSDK_EXPORT WebSDKMediaDownloadRequestModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::optional<std::string> url;
  std::optional<std::string> fileNameWithExtension;
  std::optional<bool> isSignedURL;
  ///@}

  WEBSDK_MODEL(WebSDKMediaDownloadRequestModel, needsPayload, (url, strictString),
               (fileNameWithExtension, strictString), (isSignedURL, strictBool))
};

/// Uploaded files to submit: `submitUrls` from "s3Links", `input` from the
/// object under "input". Fails only without a payload dictionary.
struct WEBSDK_EXPORT WebSDKSubmitUploadedFilesRequestModel {
  /// The fields, read from the JSON keys of their names (`submitUrls` from "s3Links").
  ///@{
  std::optional<std::vector<std::string>> submitUrls;
  std::map<std::string, std::string> input;
  ///@}

  WEBSDK_MODEL(WebSDKSubmitUploadedFilesRequestModel, needsPayload, (submitUrls, stringList, "s3Links"),
               (input, stringMap))
};

/// Quiz progress, read from the object under "params". Fails without that
/// object, or when either question count is not a whole decimal number
/// (5 and "5" both are).
struct WEBSDK_EXPORT WebSDKQuizProgressUpdateModel {
  /// The fields, read from the keys of their names in the object under "params". `totalQuestions` and
  /// `attemptedQuestions` are required.
  ///@{
  std::string quizName;
  std::int64_t totalQuestions = 0;
  std::int64_t attemptedQuestions = 0;
  std::optional<std::string> flowType;
  std::optional<bool> appNavigationEnabled;
  std::optional<JSON> metaData;
  ///@}

  WEBSDK_MODEL(WebSDKQuizProgressUpdateModel, within("params"), (quizName, lenientString, "params.quizName"),
               (totalQuestions, wholeNumberText, "params.totalQuestions", required),
               (attemptedQuestions, wholeNumberText, "params.attemptedQuestions", required),
               (flowType, strictString, "params.flowType"),
               (appNavigationEnabled, strictBool, "params.appNavigationEnabled"), (metaData, raw, "params.metaData"))
};

/// The order shown in the live activity. Fails only without a payload
/// dictionary; missing keys read as "".
struct WEBSDK_EXPORT WebSDKUpdateLiveActivityRequestModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::string orderId;
  std::string orderStatus;
  std::string eta;
  std::string progressPercentage;
  ///@}

  WEBSDK_MODEL(WebSDKUpdateLiveActivityRequestModel, needsPayload, (orderId, lenientString),
               (orderStatus, lenientString), (eta, lenientString), (progressPercentage, lenientString))
};

/// Remote configuration keys to look up. Fails only without a payload dictionary.
struct WEBSDK_EXPORT WebSDKGetConfigValueRequestModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::optional<std::vector<std::string>> xpKeyList;
  std::optional<std::vector<std::string>> wpKeyList;
  ///@}

  WEBSDK_MODEL(WebSDKGetConfigValueRequestModel, needsPayload, (xpKeyList, stringList), (wpKeyList, stringList))
};

/// Apps whose presence a page asks about. Fails only without a payload dictionary.
struct WEBSDK_EXPORT WebSDKInstalledAppsRequestModel {
  /// Read from the JSON key of its name.
  std::optional<std::vector<std::string>> apps;

  WEBSDK_MODEL(WebSDKInstalledAppsRequestModel, needsPayload, (apps, stringList))
};

/// The group cart an invite, delete or leave is about. Never fails.
struct WEBSDK_EXPORT WebSDKGroupOrderRequestModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::optional<std::string> groupCartId;
  std::optional<std::string> userId;
  ///@}

  WEBSDK_MODEL(WebSDKGroupOrderRequestModel, anyPayload, (groupCartId, strictString), (userId, strictString))
};

/// Never fails; missing or non-string keys read as "".
struct WEBSDK_EXPORT WebSDKSubmitFeedbackRequestModel {
  /// The fields, read from the JSON keys of their names.
  ///@{
  std::string originScreen;
  std::string link;
  ///@}

  WEBSDK_MODEL(WebSDKSubmitFeedbackRequestModel, anyPayload, (originScreen, strictString), (link, strictString))
};

}  // namespace websdk
