// Where websdk-serve's answers come from: an answers file and a recording,
// each read into answers by action and order.
#include "Answers.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace websdk::serve {
namespace {

std::optional<AnswerBook> fromFile(const std::string& text, std::string& error) {
  std::istringstream in(text);
  return AnswerBook::fromAnswersFile(in, error);
}

TEST(AnswersFileTest, AnActionGetsItsAnswersInTurnThenItsLastAgain) {
  std::string error;
  auto book = fromFile(R"({"APPLY_COUPON": [{"payload": {"discount": 120}},
                                             {"status": 1003, "message": "applied already"}],
                           "LOGOUT": {}})",
                       error);
  ASSERT_TRUE(book) << error;
  EXPECT_EQ(book->next("APPLY_COUPON"),
            (Answer{WebSDKResponseType::success, std::nullopt, std::nullopt, JSON(JSONObject{{"discount", 120}})}));
  const Answer failed{WebSDKResponseType::failure, 1003, "applied already", std::nullopt};
  EXPECT_EQ(book->next("APPLY_COUPON"), failed);
  EXPECT_EQ(book->next("APPLY_COUPON"), failed);
  EXPECT_EQ(book->next("LOGOUT"), Answer());
  EXPECT_EQ(book->next("GET_LOCATION"), std::nullopt);
}

TEST(AnswersFileTest, AStatusOfZeroIsASuccess) {
  std::string error;
  auto book = fromFile(R"({"LOGOUT": {"status": 0, "payload": "bye"}})", error);
  ASSERT_TRUE(book) << error;
  EXPECT_EQ(book->next("LOGOUT"), (Answer{WebSDKResponseType::success, 0, std::nullopt, JSON("bye")}));
}

TEST(AnswersFileTest, AFileOfAnotherShapeIsRefusedWithTheActionNamed) {
  const struct {
    const char* file;
    const char* error;
  } rows[] = {
      {R"(["LOGOUT"])", "the answers file is not a JSON object of actions"},
      {"{", "the answers file is not a JSON object of actions"},
      {R"({"LOGOUT": 3})", R"(LOGOUT: an answer is an object of "payload", "status" and "message", not 3)"},
      {R"({"LOGOUT": {"code": 3}})",
       R"(LOGOUT: "code" 3 is not one of "payload" (any JSON), "status" (an integer) or "message" (a string))"},
      {R"({"LOGOUT": {"status": "1003"}})",
       R"(LOGOUT: "status" "1003" is not one of "payload" (any JSON), "status" (an integer) or "message" (a string))"},
      {R"({"LOGOUT": []})", "LOGOUT: no answer in its list"},
  };
  for (const auto& row : rows) {
    std::string error;
    EXPECT_FALSE(fromFile(row.file, error)) << row.file;
    EXPECT_EQ(error, row.error) << row.file;
  }
}

// An answer given inside its plugin's call is written before its request;
// answers the bridge gave itself (to requests no plugin received) are not
// the app's, and are left out.
TEST(RecordingTest, AnswersGoToTheirRequestsActionsInTheOrderSent) {
  std::istringstream in(
      R"j({"event":"answer","requestId":"1","outcome":"sent","response":{"type":"SUCCESS","statusCode":0,"payload":{"items":1}}}
{"event":"request","requestId":"1","action":"GET_LOCAL_CART","family":"cart","outcome":"delivered"}
{"event":"request","requestId":"2","action":"GET_LOCAL_CART","family":"cart","outcome":"delivered"}
{"event":"request","requestId":"3","action":"APPLY_COUPON","family":"","outcome":"refused","status":1004}
{"event":"answer","requestId":"3","outcome":"sent","response":{"type":"FAILED","statusCode":1004,"statusMessage":"not a valid request"}}
{"event":"answer","requestId":"2","outcome":"sent","response":{"type":"FAILED","statusCode":1003,"statusMessage":"busy"}}
{"event":"answer","requestId":"2","outcome":"dropped","why":"answeredTwice","response":{"type":"SUCCESS","statusCode":0}}
{"event":"push","outcome":"sent","script":"BUILD_PX_CART()"}
)j");
  std::string error;
  auto book = AnswerBook::fromRecording(in, error);
  ASSERT_TRUE(book) << error;
  EXPECT_EQ(book->actions(), 1u);
  EXPECT_EQ(book->next("GET_LOCAL_CART"),
            (Answer{WebSDKResponseType::success, 0, std::nullopt, parseJSON(R"({"items":1})")}));
  EXPECT_EQ(book->next("GET_LOCAL_CART"), (Answer{WebSDKResponseType::failure, 1003, "busy", std::nullopt}));
  EXPECT_EQ(book->next("APPLY_COUPON"), std::nullopt);
}

TEST(RecordingTest, ARecordingWithNoAnswerOfTheAppsIsRefused) {
  std::string error;
  std::istringstream empty(R"j({"event":"push","outcome":"sent","script":"BUILD_PX_CART()"})j");
  EXPECT_FALSE(AnswerBook::fromRecording(empty, error));
  EXPECT_EQ(error, "the recording holds no answer to a request a plugin received");
  std::istringstream broken("{\"event\":\"push\"}\nnot json\n");
  EXPECT_FALSE(AnswerBook::fromRecording(broken, error));
  EXPECT_EQ(error, "line 2 of the recording is not a JSON object");
}

}  // namespace
}  // namespace websdk::serve
