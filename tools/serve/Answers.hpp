#pragma once
// Where websdk-serve's answers come from when the host's own plugins do not
// answer: a JSON answers file (an action to a payload or a status) or a
// traffic recording (each action's answers in the order they were sent).

#include "websdk/json/JSON.hpp"
#include "websdk/webview/WebSDKResponseModel.hpp"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace websdk::serve {

/// One answer to give a request.
struct Answer {
  WebSDKResponseType type = WebSDKResponseType::success;
  std::optional<std::int64_t> statusCode;
  std::optional<std::string> statusMessage;
  std::optional<JSON> payload;  ///< An object goes as the app's objects do; anything else as its text.
  bool operator==(const Answer&) const = default;
};

/// The answers, by action: the nth request of an action gets its nth answer,
/// and its last answer again after that.
class AnswerBook {
 public:
  /// {"ACTION": ANSWER or [ANSWER, ...]}, where ANSWER is an object of
  /// "payload" (any JSON), "status" (an integer; not 0: a failure) and
  /// "message" (a string). Nothing, and `error` set, when it is not that.
  static std::optional<AnswerBook> fromAnswersFile(std::istream& in, std::string& error);
  /// The answers a traffic recording (WebSDKConfig::recording) says were sent
  /// to the requests plugins received, by their request's action.
  static std::optional<AnswerBook> fromRecording(std::istream& in, std::string& error);

  /// The next answer to `action`, or nothing when the book has none for it.
  std::optional<Answer> next(std::string_view action);
  /// The actions the book answers.
  std::size_t actions() const { return answers_.size(); }

 private:
  std::map<std::string, std::vector<Answer>, std::less<>> answers_;
  std::map<std::string, std::size_t, std::less<>> given_;
};

}  // namespace websdk::serve
