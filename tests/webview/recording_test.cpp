// The traffic recorder: what each line says, that nothing the models mark
// sensitive and none of the app's header values reach the file, in any form,
// and that the file stays within its cap and is its owner's alone.

#include "support/Decoding.hpp"
#include "tools/inspect/Catalogue.hpp"
#include "websdk/testing/Replay.hpp"
#include "websdk/webview/WebSDKTrafficRecorder.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

namespace websdk {
namespace {

namespace fs = std::filesystem;

fs::path freshFile(std::string_view name) {
  const fs::path path = fs::temp_directory_path() /
                        ("websdk-recording-" + std::to_string(::getpid()) + "-" + std::string(name) + ".jsonl");
  fs::remove(path);
  fs::remove(path.string() + ".1");
  return path;
}

std::string contents(const fs::path& path) {
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

std::vector<JSONObject> lines(const fs::path& path) {
  std::vector<JSONObject> out;
  std::ifstream in(path);
  for (std::string line; std::getline(in, line);) out.push_back(parseJSON(line).as_object());
  return out;
}

WebSDKConfig recordingTo(const fs::path& path, bool masked = true) {
  WebSDKConfig config{{"localhost"}};
  config.recording = WebSDKTrafficRecording{.path = path.string(), .masksSensitiveValues = masked};
  return config;
}

// A payload a page could send, from a model's schema: every key given a value
// its reading takes; texts and numbers unique, so each can be looked for in
// the file. The texts of the fields marked sensitive are gathered.
struct Sampler {
  int next = 0;
  std::vector<std::string> sensitive, plain;

  JSON value(const JSONObject& entry) {
    const std::string_view kind = entry.at("readings").as_array().at(0).as_string();
    if (const JSON* values = entry.if_contains("values")) return values->as_array().at(0);
    if (kind == "object") {
      const JSON* fields = entry.if_contains("fields");
      return fields ? JSON(object(fields->as_array())) : JSON(JSONObject{});
    }
    if (kind == "array") {
      const JSON* elements = entry.if_contains("elements");
      return elements ? JSON(JSONArray{value(elements->as_object())}) : JSON(JSONArray{});
    }
    if (kind == "stringMap") return JSONObject{{"k", "text" + std::to_string(++next) + "z"}};
    if (kind == "lenientBool" || kind == "strictBool") return true;
    if (kind == "number" || kind == "lenientDouble") return 7000.25 + ++next;
    if (kind == "integer" || kind == "lenientInt") return 9000 + ++next;
    return JSON("text" + std::to_string(++next) + "z");
  }

  JSONObject object(const JSONArray& fields) {
    JSONObject out;
    for (const auto& f : fields) {
      const JSONObject& entry = f.as_object();
      JSON v = value(entry);
      const std::string_view key = entry.at("key").as_string();
      if (v.is_string() || v.is_number()) {
        // A key marked sensitive in one model is masked in all of them.
        if (entry.contains("sensitive"))
          sensitive.push_back(serialize(v));
        else if (!WebSDKTrafficRecorder::isSensitiveKey(key))
          plain.push_back(serialize(v));
      }
      out.emplace(entry.at("key").as_string(), std::move(v));
    }
    return out;
  }
};

struct Sample {
  std::string action;
  JSONObject payload;
};

// One sample of each action that carries a model, from the contract's
// catalogue (the models' declarations, compiled once in the checker).
std::vector<Sample> everyActionSampled(Sampler& sampler) {
  std::vector<Sample> out;
  const JSON catalogue = inspect::catalogue();
  for (const auto& family : catalogue.at("families").as_array())
    for (const auto& action : family.at("actions").as_array()) {
      const auto& fields = action.at("fields").as_array();
      if (action.at("payload") == "never" || fields.empty()) continue;
      out.push_back({std::string(action.at("action").as_string()), sampler.object(fields)});
    }
  return out;
}

// Posts every sample to a host that answers each request with what it
// received, after the app's headers were loaded and given to the page.
std::string recordEverySample(const fs::path& path, bool masked, Sampler& sampler) {
  test::Harness harness(recordingTo(path, masked));
  auto& view = *harness.view;
  auto host = std::make_shared<testing::EveryFamilyHost>([&](const testing::EveryFamilyHost::Delivery& d) {
    view.sendWebSDKResponse(d.payload.as_object(), WebSDKResponseType::success, d.requestId);
  });
  testing::registerForEveryFamily(view, host);
  view.loadWebView("https://localhost/checkout", {{"authorization", "Bearer app-secret-1"}}, std::nullopt, 30);
  view.executeJSScript(WebSDKAppFunctions::nativeHeaders({{"session", "app-secret-2"}}));
  for (const auto& sample : everyActionSampled(sampler))
    harness.post(test::requestText(sample.action, serialize(sample.payload)));
  // An answer that carries the app's header values back to the page.
  harness.post(test::requestText("GET_DOVARA_HEADERS", std::nullopt));
  view.sendWebSDKResponse(JSONObject{{"authorization", "Bearer app-secret-1"}, {"session", "app-secret-2"}},
                          WebSDKResponseType::success, "r1");
  harness.engine->queue().drain();
  return contents(path);
}

TEST(TrafficRecorder, NoSensitiveValueOfAnyActionReachesTheFile) {
  Sampler sampler;
  const auto path = freshFile("masked");
  const std::string file = recordEverySample(path, true, sampler);
  ASSERT_FALSE(sampler.sensitive.empty());
  for (const auto& value : sampler.sensitive) EXPECT_EQ(file.find(value), std::string::npos) << value;
  for (const char* secret : {"app-secret-1", "app-secret-2"}) EXPECT_EQ(file.find(secret), std::string::npos);
  // Masking is by key, not wholesale: the other values are all there.
  for (const auto& value : sampler.plain) EXPECT_NE(file.find(value), std::string::npos) << value;

  // Every sample is on record with its answer (the plugin's or the bridge's:
  // a few models have rules their schema does not show, so not all decode);
  // most reached their plugins, whose descriptions were masked above.
  std::size_t requests = 0, delivered = 0, sent = 0;
  for (const auto& line : lines(path)) {
    requests += line.at("event") == "request";
    delivered += line.at("event") == "request" && line.at("outcome") == "delivered";
    sent += line.at("event") == "answer" && line.at("outcome") == "sent";
  }
  EXPECT_EQ(requests, everyActionSampled(sampler).size() + 1);
  EXPECT_EQ(sent, requests + 1);
  EXPECT_GT(delivered, requests * 9 / 10);
}

// The forms a header value takes on its way to a line: in a URL, in a form,
// escaped in JSON or script text.
std::vector<std::string> writtenForms(std::string_view value) {
  std::string upper, lower, form, escaped;
  for (const char c : value) {
    const auto b = static_cast<unsigned char>(c);
    const bool plain = std::isalnum(b) || c == '-' || c == '_' || c == '.' || c == '~';
    char hex[4];
    std::snprintf(hex, sizeof hex, "%%%02X", b);
    upper += plain ? std::string(1, c) : hex;
    std::snprintf(hex, sizeof hex, "%%%02x", b);
    lower += plain ? std::string(1, c) : hex;
    form += c == ' ' ? std::string("+") : plain ? std::string(1, c) : std::string(hex);
    escaped += c == '/' || c == '"' ? "\\" + std::string(1, c) : std::string(1, c);
  }
  std::vector<std::string> out{std::string(value), upper, lower, form, escaped};
  out.erase(std::unique(out.begin(), out.end()), out.end());
  return out;
}

// Every string of a line, keys included, as the file's reader gets it.
void collectStrings(const JSON& value, std::vector<std::string>& out) {
  if (const auto* o = value.if_object()) {
    for (const auto& member : *o) {
      out.emplace_back(member.key());
      collectStrings(member.value(), out);
    }
  } else if (const auto* a = value.if_array()) {
    for (const auto& element : *a) collectStrings(element, out);
  } else if (const auto* s = value.if_string()) {
    out.emplace_back(*s);
  }
}

TEST(TrafficRecorder, TheAppsHeaderValuesAreMaskedInEveryFormAndPlace) {
  const auto path = freshFile("forms");
  auto recorder =
      WebSDKTrafficRecorder::open(WebSDKTrafficRecording{.path = path.string()}, WebSDKConfig{{"localhost"}});
  ASSERT_NE(recorder, nullptr);
  // A bearer value, whose token is as secret on its own; a value with the
  // bytes that URLs, forms and JSON write otherwise; one a page may send as a
  // number.
  const std::string bearer = "Bearer tk-5f1e2d3c4b", token = "tk-5f1e2d3c4b";
  const std::string session = "s/e=s&s:i o+n\"7";
  const std::string digits = "86753091";
  recorder->addSecrets({{"authorization", bearer}, {"session", session}, {"user", digits}});

  std::vector<std::string> fed;
  for (const auto& secret : {bearer, token, session, digits})
    for (auto& form : writtenForms(secret)) fed.push_back(std::move(form));
  for (const auto& f : fed) {
    WebSDKRecordedRequest request;
    request.page = "https://localhost/checkout?s=" + f + "#" + f;
    request.requestId = "id-" + f;
    request.action = "ACTION_" + f;
    request.family = "cart";
    request.outcome = "delivered";
    request.message = "refused: " + f;
    request.payload = JSONObject{{f, "under a key"},
                                 {"text", "before " + f + " after"},
                                 {"opaque", JSONObject{{"deep", JSONArray{f, 86753091, 86753091.0}}}},
                                 {"plain", "plain-value"},
                                 {"count", 4711}};
    request.received = JSONObject{{"case", "getCart"}, {"model", JSONObject{{"id", f}, {"n", 86753091}}}};
    recorder->request(request);
    recorder->answer({"SUCCESS", 0, "message " + f, f, serialize(JSONObject{{f, f}, {"n", 86753091u}})}, request.page);
    recorder->answer({"FAILED", 1004, std::nullopt, "r2", "not JSON: " + f}, request.page,
                     WebSDKDropReason::pageNotWhitelisted);
    recorder->push("window.nativeHeaders({\"session\":\"" + f + "\"})", request.page);
  }
  // A page's megabyte of what a written secret can begin with costs a pass
  // over it, not one from each byte: this returns.
  for (const char c : {'\\', '%', 't'}) {
    WebSDKRecordedRequest flood;
    flood.message = std::string(1 << 20, c);
    recorder->request(flood);
  }
  recorder.reset();

  std::vector<std::string> needles;
  for (const auto& secret : {bearer, token, session, digits})
    for (auto& form : writtenForms(secret)) needles.push_back(std::move(form));
  const std::string file = contents(path);
  std::vector<std::string> strings;
  for (const auto& line : lines(path)) collectStrings(line, strings);
  for (const auto& needle : needles) {
    EXPECT_EQ(file.find(needle), std::string::npos) << needle;
    for (const auto& s : strings) EXPECT_EQ(s.find(needle), std::string::npos) << needle << " in " << s;
  }
  // Only they are masked: what is left of each line is there.
  EXPECT_EQ(lines(path).size(), 1 + 4 * fed.size() + 3);
  EXPECT_NE(file.find("plain-value"), std::string::npos);
  EXPECT_NE(file.find("4711"), std::string::npos);
  EXPECT_NE(file.find("before *** after"), std::string::npos);
}

// Card and credential data by name, however a page spells the name, in an
// object no model declares: a gateway's parameters, an answer.
TEST(TrafficRecorder, CardAndCredentialNamesAreMaskedInAnyObjectAndSpelling) {
  const auto path = freshFile("names");
  WebSDKTrafficRecording recording{.path = path.string()};
  recording.sensitiveKeys = {"loyaltyToken"};
  auto recorder = WebSDKTrafficRecorder::open(recording, WebSDKConfig{{"localhost"}});
  ASSERT_NE(recorder, nullptr);
  const std::string_view keys[] = {"card_number", "CardNumber", "CARD-NUMBER", "cardNumber",         "cvv",
                                   "CVV",         "upi_id",     "UpiId",       "card_security_code", "loyalty_token"};
  JSONObject params, answer;
  for (std::size_t i = 0; i < std::size(keys); ++i) {
    params.emplace(keys[i], "secret-" + std::to_string(i) + "z");
    // Negative: no time stamp in the line can hold one by chance.
    answer.emplace(keys[i], JSONArray{-731900 - static_cast<int>(i)});
  }
  params.emplace("orderId", "order-17");
  answer.emplace("points", 4711);
  WebSDKRecordedRequest request;
  request.page = "https://localhost/";
  request.requestId = "r1";
  request.action = "PROCESS_PAYMENT";
  request.payload = JSONObject{{"juspayParams", std::move(params)}};
  recorder->request(request);
  recorder->answer({"SUCCESS", 0, std::nullopt, "r1", serialize(answer)}, request.page);
  recorder.reset();

  const std::string file = contents(path);
  for (std::size_t i = 0; i < std::size(keys); ++i) {
    EXPECT_EQ(file.find("secret-" + std::to_string(i) + "z"), std::string::npos) << keys[i];
    EXPECT_EQ(file.find(std::to_string(-731900 - static_cast<int>(i))), std::string::npos) << keys[i];
    EXPECT_TRUE(WebSDKTrafficRecorder::isSensitiveKey(keys[i]) || keys[i] == "loyalty_token") << keys[i];
  }
  EXPECT_NE(file.find("order-17"), std::string::npos);
  EXPECT_NE(file.find("4711"), std::string::npos);
  EXPECT_FALSE(WebSDKTrafficRecorder::isSensitiveKey("orderId"));
  EXPECT_FALSE(WebSDKTrafficRecorder::isSensitiveKey("cardNumbers"));
}

TEST(TrafficRecorder, WithMaskingOffTheSameRunShowsEverything) {
  Sampler sampler;
  const std::string file = recordEverySample(freshFile("unmasked"), false, sampler);
  for (const auto& value : sampler.sensitive) EXPECT_NE(file.find(value), std::string::npos) << value;
  EXPECT_NE(file.find("app-secret-1"), std::string::npos);
}

TEST(Replay, EveryActionOfAMaskedRecordingMeetsTheSameFate) {
  for (const bool masked : {true, false}) {
    Sampler sampler;
    const auto path = freshFile(masked ? "replay-masked" : "replay-plain");
    recordEverySample(path, masked, sampler);
    std::ifstream in(path);
    std::ostringstream report;
    const auto result = testing::replayRecording(in, report);
    EXPECT_EQ(result.requests, everyActionSampled(sampler).size() + 1);
    EXPECT_EQ(result.differ, 0u) << report.str();
    EXPECT_EQ(result.unreadable, 0u);
  }
}

TEST(Replay, SaysWhichRequestNowMeetsAnotherFate) {
  const auto path = freshFile("replay-changed");
  {
    test::Harness harness(recordingTo(path));
    auto cart = std::make_shared<test::RecordingCart>();
    harness.view->setCartPlugin(cart);
    harness.post(test::requestText("CLEAR_LOCAL_CART", "{}"));
    harness.post(test::requestText("LOGOUT", "{}"));
  }
  // The replay serves every family: the logout that found no plugin then
  // reaches one now.
  std::ifstream in(path);
  std::ostringstream report;
  const auto result = testing::replayRecording(in, report);
  EXPECT_EQ(result.requests, 2u);
  EXPECT_EQ(result.differ, 1u);
  EXPECT_NE(report.str().find(R"(line 3 "LOGOUT" "r1": differs)"), std::string::npos) << report.str();

  // A host's own plugins take the replay's requests instead.
  std::ifstream again(path);
  std::ostringstream cartOnly;
  auto cart = std::make_shared<test::RecordingCart>();
  EXPECT_EQ(testing::replayRecording(again, cartOnly, [&](WebSDKWebView& view) { view.setCartPlugin(cart); }).differ,
            0u)
      << cartOnly.str();
  EXPECT_EQ(cart->received.size(), 1u);
}

// A recording larger than a recording's default cap: the replay's own
// record of it must not rotate away its first part.
TEST(Replay, ARecordingPastTheDefaultCapReplaysWhole) {
  const auto path = freshFile("replay-large");
  WebSDKConfig config = recordingTo(path);
  config.recording->maximumBytes = std::size_t{1} << 30;
  constexpr int kRequests = 40000;
  {
    test::Harness harness(config);
    const auto host = std::make_shared<testing::EveryFamilyHost>(nullptr);
    testing::registerForEveryFamily(*harness.view, host);
    for (int i = 0; i < kRequests; ++i) {
      const std::string id = "r" + std::to_string(i);
      harness.engine->postRequest(i % 2 == 0 ? R"({"type":"GET_LOCAL_CART","requestId":")" + id +
                                                   R"(","payload":{"tenant":{"marketplaceId":"m)" +
                                                   std::to_string(i % 97) + R"("}}})"
                                             : R"({"type":"NO_SUCH_ACTION","requestId":")" + id + R"("})");
      harness.engine->queue().drain();
    }
  }
  ASSERT_GT(fs::file_size(path), WebSDKTrafficRecording{}.maximumBytes);
  std::ifstream in(path);
  std::ostringstream report;
  const auto result = testing::replayRecording(in, report);
  EXPECT_EQ(result.requests, static_cast<std::size_t>(kRequests));
  EXPECT_EQ(result.differ, 0u) << report.str().substr(0, 2000);
  EXPECT_EQ(result.unreadable, 0u);
  fs::remove(path);
}

TEST(TrafficRecorder, KeysTheAppMarksAreMaskedInItsAnswers) {
  const auto path = freshFile("app-keys");
  WebSDKConfig config = recordingTo(path);
  config.recording->sensitiveKeys = {"loyaltyToken"};
  test::Harness harness(config);
  harness.view->setCartPlugin(std::make_shared<test::RecordingCart>());
  harness.post(test::requestText("CLEAR_LOCAL_CART", "{}"));
  harness.view->sendWebSDKResponse(JSONObject{{"points", 4711}, {"card", JSONObject{{"loyaltyToken", "lt-93817"}}}},
                                   WebSDKResponseType::success, "r1");
  harness.engine->queue().drain();
  const std::string file = contents(path);
  EXPECT_EQ(file.find("lt-93817"), std::string::npos);
  EXPECT_NE(file.find("4711"), std::string::npos);
}

TEST(TrafficRecorder, EachOutcomeIsOneLine) {
  const auto path = freshFile("outcomes");
  WebSDKConfig config = recordingTo(path);
  config.dropsUnaskedAnswers = true;
  test::Harness harness(config);
  auto cart = std::make_shared<test::RecordingCart>();
  harness.view->setCartPlugin(cart);
  harness.post(test::requestText("CLEAR_LOCAL_CART", "{}"));
  harness.post(test::requestText("APPLY_COUPON", "{}"));
  harness.post(test::requestText("LOGOUT", "{}"));
  harness.post(test::requestText("NO_SUCH_ACTION", std::nullopt));
  harness.view->sendSuccess("never-asked");
  harness.engine->queue().drain();
  harness.engine->setURL("https://elsewhere.test/");
  harness.post(test::requestText("CLEAR_LOCAL_CART", "{}"));
  harness.engine->queue().drain();

  struct Expected {
    std::string_view event, action, family, outcome;
    std::int64_t status;  // 0: none
  };
  const Expected rows[] = {
      {"view", "", "", "", 0},
      {"request", "CLEAR_LOCAL_CART", "cart", "delivered", 0},
      {"request", "APPLY_COUPON", "cart", "refused", 1004},
      {"answer", "", "", "sent", 0},
      {"request", "LOGOUT", "accounts", "refused", 1004},
      {"answer", "", "", "sent", 0},
      {"request", "NO_SUCH_ACTION", "", "refused", 1004},
      {"answer", "", "", "sent", 0},
      {"answer", "", "", "dropped", 0},
      {"request", "CLEAR_LOCAL_CART", "", "refused", 1005},
      {"answer", "", "", "sent", 0},
  };
  const auto recorded = lines(path);
  ASSERT_EQ(recorded.size(), std::size(rows));
  for (std::size_t i = 0; i < recorded.size(); ++i) {
    SCOPED_TRACE(serialize(recorded[i]));
    const auto& line = recorded[i];
    const auto& row = rows[i];
    EXPECT_TRUE(line.at("time").is_int64());
    EXPECT_EQ(line.at("event").as_string(), row.event);
    if (row.event == "view") {
      EXPECT_EQ(line.at("whitelist"), parseJSON(R"(["localhost"])"));
      continue;
    }
    EXPECT_EQ(line.at("outcome").as_string(), row.outcome);
    if (row.event != "request") continue;
    EXPECT_EQ(line.at("action").as_string(), row.action);
    EXPECT_EQ(line.at("family").as_string(), row.family);
    EXPECT_EQ(line.at("requestId"), "r1");
    if (row.status)
      EXPECT_EQ(line.at("status"), row.status);
    else
      EXPECT_FALSE(line.contains("status"));
  }
  EXPECT_EQ(recorded[1].at("page"), "https://localhost/checkout");
  EXPECT_EQ(recorded[1].at("received"), parseJSON(R"({"case":"clearCart"})"));
  EXPECT_EQ(recorded[8].at("why"), "notAsked");
  EXPECT_EQ(recorded[8].at("requestId"), "never-asked");
}

TEST(TrafficRecorder, TheFileStaysWithinItsCapAndKeepsOneOlderFile) {
  const auto path = freshFile("capped");
  WebSDKConfig config = recordingTo(path);
  config.recording->maximumBytes = 2000;
  test::Harness harness(config);
  for (int i = 0; i < 100; ++i) harness.post(test::requestText("NO_SUCH_ACTION", std::nullopt));
  EXPECT_LE(fs::file_size(path), 2000u);
  EXPECT_LE(fs::file_size(path.string() + ".1"), 2000u);
  EXPECT_GT(fs::file_size(path.string() + ".1"), 1000u);
  for (const auto& line : lines(path)) EXPECT_TRUE(line.contains("event"));
}

TEST(TrafficRecorder, TheFileAndItsOlderOneAreTheOwnersAlone) {
  const auto path = freshFile("private");
  // An app's file from before, which anyone could read, is made private too.
  std::ofstream(path) << "";
  fs::permissions(path,
                  fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read | fs::perms::others_read);
  const mode_t was = ::umask(022);  // what most processes run with
  WebSDKConfig config = recordingTo(path);
  config.recording->maximumBytes = 2000;
  {
    test::Harness harness(config);
    for (int i = 0; i < 20; ++i) harness.post(test::requestText("NO_SUCH_ACTION", std::nullopt));
  }
  ::umask(was);
  for (const auto& file : {path, fs::path(path.string() + ".1")}) {
    struct stat status {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0) << file;
    EXPECT_EQ(status.st_mode & 0777, 0600u) << file;
  }
}

TEST(TrafficRecorder, AnAppThatCannotBeRebuiltRecordsThroughTheEnvironment) {
  const auto path = freshFile("environment");
  ::setenv("WEBSDK_RECORD", path.c_str(), 1);
  {
    test::Harness harness;
    harness.post(test::requestText("NO_SUCH_ACTION", std::nullopt));
  }
  ::unsetenv("WEBSDK_RECORD");
  EXPECT_EQ(lines(path).size(), 3u);  // the view, the request, its answer
}

TEST(TrafficRecorder, AFileThatCannotBeOpenedRecordsNothingAndBreaksNothing) {
  WebSDKConfig config{{"localhost"}};
  config.recording = WebSDKTrafficRecording{.path = "/nonexistent-dir/recording.jsonl"};
  test::Harness harness(config);
  const auto responses = harness.post(test::requestText("NO_SUCH_ACTION", std::nullopt));
  EXPECT_EQ(responses.size(), 1u);
}

}  // namespace
}  // namespace websdk
