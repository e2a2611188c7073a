#include "Answers.hpp"

#include <istream>
#include <iterator>

namespace websdk::serve {
namespace {

std::optional<Answer> readAnswer(const std::string& action, const JSON& value, std::string& error) {
  const JSONObject* o = value.if_object();
  if (o == nullptr) {
    error = action + ": an answer is an object of \"payload\", \"status\" and \"message\", not " + serialize(value);
    return std::nullopt;
  }
  Answer answer;
  for (const auto& [key, v] : *o) {
    if (key == "payload") {
      answer.payload = v;
    } else if (key == "status" && (v.is_int64() || v.is_uint64())) {
      answer.statusCode = v.to_number<std::int64_t>();
    } else if (key == "message" && v.is_string()) {
      answer.statusMessage = std::string(v.get_string());
    } else {
      error = action + ": \"" + std::string(key) + "\" " + serialize(v) +
              " is not one of \"payload\" (any JSON), \"status\" (an integer) or \"message\" (a string)";
      return std::nullopt;
    }
  }
  if (answer.statusCode.value_or(0) != 0) answer.type = WebSDKResponseType::failure;
  return answer;
}

}  // namespace

std::optional<AnswerBook> AnswerBook::fromAnswersFile(std::istream& in, std::string& error) {
  const std::string text{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  const JSON file = parseJSON(text);
  const JSONObject* actions = file.if_object();
  if (actions == nullptr) {
    error = "the answers file is not a JSON object of actions";
    return std::nullopt;
  }
  AnswerBook book;
  for (const auto& [key, value] : *actions) {
    const std::string action(key);
    std::vector<Answer>& answers = book.answers_[action];
    const JSONArray* list = value.if_array();
    for (const JSON& one : list ? *list : JSONArray{value}) {
      auto answer = readAnswer(action, one, error);
      if (!answer) return std::nullopt;
      answers.push_back(std::move(*answer));
    }
    if (answers.empty()) {
      error = action + ": no answer in its list";
      return std::nullopt;
    }
  }
  return book;
}

std::optional<AnswerBook> AnswerBook::fromRecording(std::istream& in, std::string& error) {
  // An answer given within its plugin's call is written before its request,
  // which is written once handled: the actions are known from every line first.
  std::vector<JSONObject> answers;
  std::map<std::string, std::string, std::less<>> actionOf;  // request id -> action, of delivered requests
  std::size_t number = 0;
  for (std::string line; std::getline(in, line);) {
    ++number;
    if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
    JSON parsed = parseJSON(line);
    JSONObject* event = parsed.if_object();
    if (event == nullptr) {
      error = "line " + std::to_string(number) + " of the recording is not a JSON object";
      return std::nullopt;
    }
    const auto text = [&](std::string_view key) {
      const JSON* v = event->if_contains(key);
      return v != nullptr && v->is_string() ? std::string(v->get_string()) : std::string();
    };
    if (text("event") == "request" && text("outcome") == "delivered") actionOf[text("requestId")] = text("action");
    if (text("event") == "answer" && text("outcome") == "sent") answers.push_back(std::move(*event));
  }
  AnswerBook book;
  for (const JSONObject& event : answers) {
    const auto action = actionOf.find(event.at("requestId").get_string());
    const JSONObject* response = event.contains("response") ? event.at("response").if_object() : nullptr;
    if (action == actionOf.end() || response == nullptr) continue;
    Answer answer;
    if (const JSON* type = response->if_contains("type"); type && *type == "FAILED")
      answer.type = WebSDKResponseType::failure;
    if (const JSON* code = response->if_contains("statusCode"); code && (code->is_int64() || code->is_uint64()))
      answer.statusCode = code->to_number<std::int64_t>();
    if (const JSON* message = response->if_contains("statusMessage"); message && message->is_string())
      answer.statusMessage = std::string(message->get_string());
    if (const JSON* payload = response->if_contains("payload")) answer.payload = *payload;
    book.answers_[action->second].push_back(std::move(answer));
  }
  if (book.answers_.empty()) {
    error = "the recording holds no answer to a request a plugin received";
    return std::nullopt;
  }
  return book;
}

std::optional<Answer> AnswerBook::next(std::string_view action) {
  const auto it = answers_.find(action);
  if (it == answers_.end()) return std::nullopt;
  std::size_t& given = given_[std::string(action)];
  const Answer& answer = it->second[std::min(given, it->second.size() - 1)];
  ++given;
  return answer;
}

}  // namespace websdk::serve
