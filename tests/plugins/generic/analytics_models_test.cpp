#include "websdk/plugins/generic/AnalyticsModels.hpp"

#include "support/Decoding.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace websdk {
namespace {

using test::payloadOf;

JSONObject objectOf(std::string_view text) { return payloadOf(text).value(); }

using Strings = std::vector<std::string>;

TEST(AnalyticsReaders, TrackerAndCleverTapDifferOnPurpose) {
  using Track = WebSDKTrackEventRequestModel;
  test::expectReads<Track>({
      {"null", std::nullopt},
      {"{}", std::nullopt},
      {R"({"eventName":12})", Track{"12", {}}},
      {R"({"eventName":"open","eventParams":{"a":1}})", Track{"open", objectOf(R"({"a":1})")}},
      {R"({"eventName":"open","params":{"a":1}})", Track{"open", {}}},
      {R"({"eventName":"open","eventParams":[1]})", Track{"open", {}}},
  });
  using CleverTap = WebSDKSendClevertapEventRequestModel;
  test::expectReads<CleverTap>({
      {"null", std::nullopt},
      {R"({"params":{"a":1}})", std::nullopt},
      {R"({"eventName":12})", std::nullopt},
      {R"({"eventName":"open","params":{"a":1}})", CleverTap{"open", objectOf(R"({"a":1})")}},
      {R"({"eventName":"open","eventParams":{"a":1}})", CleverTap{"open", {}}},
  });
}

TEST(AnalyticsReaders, FrequencyCappingIsReadInsideItsInfoObject) {
  using M = WebSDKSendFrequencyCappingEventRequestModel;
  test::expectReads<M>({
      {"null", std::nullopt},
      {R"({"entityId":"e1"})", std::nullopt},
      {R"({"frequencyCappingInfo":"e1"})", std::nullopt},
      {R"({"frequencyCappingInfo":{}})", M{}},
      {R"({"frequencyCappingInfo":{"entityId":"e1","isRealTime":"yes"}})", M{{}, "e1", {}, true}},
      {R"({"frequencyCappingInfo":{"frequencyCapping":{"cappingEnabled":1,"cappingMode":5},"entityId":7,)"
       R"("entityType":"banner","isRealTime":false}})",
       M{FrequencyCapping{true, {}}, {}, "banner", false}},
      {R"({"frequencyCappingInfo":{"frequencyCapping":{"cappingMode":"DAILY"}}})",
       M{FrequencyCapping{{}, "DAILY"}, {}, {}, {}}},
  });
}

TEST(AnalyticsReaders, Files) {
  test::expectReads<WebSDKMediaUploadRequestModel>({
      {"null", std::nullopt},
      {"{}", WebSDKMediaUploadRequestModel{}},
      {R"({"sources":["camera",1],"galleryMediaTypes":[],"fileTypes":"pdf"})",
       WebSDKMediaUploadRequestModel{Strings{"camera", "1"}, Strings{}, {}}},
  });
  test::expectReads<WebSDKMediaDownloadRequestModel>({
      {"null", std::nullopt},
      {R"({"url":"https://x.test/a.pdf","fileNameWithExtension":3,"isSignedURL":"true"})",
       WebSDKMediaDownloadRequestModel{"https://x.test/a.pdf", {}, {}}},
      {R"({"isSignedURL":false})", WebSDKMediaDownloadRequestModel{{}, {}, false}},
  });
  using Submit = WebSDKSubmitUploadedFilesRequestModel;
  test::expectReads<Submit>({
      {"null", std::nullopt},
      {R"({"s3Links":["s3://b/a.jpg"],"input":{}})", Submit{Strings{"s3://b/a.jpg"}, {}}},
      {R"({"submitUrls":["s3://b/a.jpg"],"s3Links":"s3://b/a.jpg","input":{"orderId":42}})",
       Submit{{}, {{"orderId", "42"}}}},
  });
}

TEST(AnalyticsReaders, QuizCountsAreWholeDecimalNumbers) {
  using M = WebSDKQuizProgressUpdateModel;
  const auto quiz = [](std::int64_t total, std::int64_t attempted) { return M{"", total, attempted, {}, {}, {}}; };
  test::expectReads<M>({
      {"null", std::nullopt},
      {R"({"totalQuestions":10,"attemptedQuestions":3})", std::nullopt},
      {R"({"params":{"totalQuestions":"10","attemptedQuestions":3}})", quiz(10, 3)},
      {R"({"params":{"totalQuestions":"+7","attemptedQuestions":"-1"}})", quiz(7, -1)},
      {R"({"params":{"totalQuestions":10}})", std::nullopt},
      {R"({"params":{"totalQuestions":"3.5","attemptedQuestions":1}})", std::nullopt},
      {R"({"params":{"totalQuestions":"+-5","attemptedQuestions":1}})", std::nullopt},
      {R"({"params":{"totalQuestions":" 5","attemptedQuestions":1}})", std::nullopt},
      {R"({"params":{"totalQuestions":"99999999999999999999","attemptedQuestions":1}})", std::nullopt},
      {R"({"params":{"quizName":"trivia","totalQuestions":5,"attemptedQuestions":5,"flowType":"daily",)"
       R"("appNavigationEnabled":true,"metaData":{"round":2}}})",
       M{"trivia", 5, 5, "daily", true, parseJSON(R"({"round":2})")}},
  });
}

TEST(AnalyticsReaders, OrderActivityConfigAppsGroupOrdersFeedback) {
  test::expectReads<WebSDKUpdateLiveActivityRequestModel>({
      {"null", std::nullopt},
      {R"({"orderId":123,"eta":"5 min"})", WebSDKUpdateLiveActivityRequestModel{"123", "", "5 min", ""}},
  });
  test::expectReads<WebSDKGetConfigValueRequestModel>({
      {"null", std::nullopt},
      {R"({"xpKeyList":["search_v2"],"wpKeyList":null})", WebSDKGetConfigValueRequestModel{Strings{"search_v2"}, {}}},
  });
  test::expectReads<WebSDKInstalledAppsRequestModel>({
      {"null", std::nullopt},
      {R"({"apps":["gpay","phonepe"]})", WebSDKInstalledAppsRequestModel{Strings{"gpay", "phonepe"}}},
  });
  test::expectReads<WebSDKGroupOrderRequestModel>({
      {"null", WebSDKGroupOrderRequestModel{}},
      {R"({"groupCartId":"g1","userId":42})", WebSDKGroupOrderRequestModel{"g1", {}}},
  });
  test::expectReads<WebSDKSubmitFeedbackRequestModel>({
      {"null", WebSDKSubmitFeedbackRequestModel{}},
      {R"({"originScreen":"cart","link":5})", WebSDKSubmitFeedbackRequestModel{"cart", ""}},
  });
}

}  // namespace
}  // namespace websdk
