#include "websdk/webview/ScriptBuffers.hpp"
#include "websdk/webview/WebSDKResponseModel.hpp"

#include <gtest/gtest.h>

#include <random>

namespace websdk {
namespace {

TEST(Envelope, WritesTheFieldsAndLeavesAbsentOptionalsOut) {
  EXPECT_EQ(nativeResponseScript({"SUCCESS", 0, std::nullopt, "r1", std::nullopt}),
            R"(nativeResponse({"type":"SUCCESS","statusCode":0,"requestId":"r1"}))");
  EXPECT_EQ(encodeEnvelope({"FAILED", 1005, "https://a.test/", "r2", ""}),
            R"({"type":"FAILED","statusCode":1005,"statusMessage":"https://a.test/","requestId":"r2","payload":""})");
  EXPECT_EQ(encodeEnvelope({"FAILED", -7, std::nullopt, "", std::nullopt}),
            R"({"type":"FAILED","statusCode":-7,"requestId":""})");
}

TEST(Envelope, AScriptsEnvelopeHoldsItsTextsBetweenSingleQuotes) {
  EXPECT_EQ(
      encodeEnvelopeForScript({"SUCCESS", 0, "it's", "r'1", R"({"a":"x\"y"})"}),
      R"({"type":'SUCCESS',"statusCode":0,"statusMessage":'it\'s',"requestId":'r\'1',"payload":'{"a":"x\\"y"}'})");
  EXPECT_EQ(encodeEnvelopeForScript({"FAILED", 1, std::nullopt, "2", std::string("\xFF")}), std::nullopt);
}

// The JSON envelope's text values moved between single quotes by hand: what a
// script's envelope must be (keys stay as they are: none holds a quote).
std::string withSingleQuotedValues(std::string_view json) {
  std::string out;
  for (std::size_t i = 0; i < json.size();) {
    if (json[i] != '"') {
      out += json[i++];
      continue;
    }
    std::size_t end = i + 1;
    while (json[end] != '"') end += json[end] == '\\' ? 2 : 1;
    if (json[end + 1] == ':') {
      out.append(json.substr(i, end + 1 - i));
    } else {
      out += '\'';
      for (std::size_t k = i + 1; k < end; ++k) {
        if (json[k] == '\\' && json[k + 1] == '"')
          out += json[++k];
        else if (json[k] == '\\')
          out.append(json.substr(k++, 2));
        else
          out += json[k] == '\'' ? std::string("\\'") : std::string(1, json[k]);
      }
      out += '\'';
    }
    i = end + 1;
  }
  return out;
}

TEST(Envelope, EscapesWhatJSONAndJavaScriptRequire) {
  const std::string payload = "{\n  \"a\" : \"x/y\\\\\"\t\x01\x1f \xE2\x80\xA8\xE2\x80\xA9 \xE2\x80\x94";
  const std::string text = encodeEnvelope({"SUCCESS", 0, std::nullopt, "id", payload}).value();
  EXPECT_EQ(text.find('\n'), std::string::npos);
  EXPECT_EQ(text.find("\xE2\x80\xA8"), std::string::npos);
  EXPECT_EQ(text.find("\xE2\x80\xA9"), std::string::npos);
  EXPECT_NE(text.find("\\u2028\\u2029 \xE2\x80\x94"), std::string::npos) << "other characters stay as they are";
  EXPECT_EQ(parseJSON(text).at("payload").as_string(), payload);
}

// Random fields of every byte pattern around the special characters, the
// sixteen-byte blocks and bytes that are not UTF-8: the envelope parses back to
// the same fields, or is nothing exactly when a field is not UTF-8; a script's
// envelope is the same text between single quotes.
TEST(Envelope, AnyFieldsParseBackOrAreRefusedWhenNotUTF8) {
  std::mt19937 rng(42);
  const std::string alphabet[] = {"a",
                                  "\"",
                                  "'",
                                  "\\",
                                  "\n",
                                  "\x01",
                                  "\x7f",
                                  "\xE2\x80\xA8",
                                  "\xE2\x80\xA9",
                                  "\xE2\x82\xAC",
                                  "/",
                                  "\xC3\xA9",
                                  " ",
                                  "\xF0\x9F\x98\x80",
                                  "abcdefghijklmno"};
  const std::string broken[] = {"\xFF", "\x80", "\xC3", "\xE2\x80", "\xED\xA0\x80", "\xC0\xAF", "\xF4\x90\x80\x80"};
  std::size_t refused = 0;
  for (int round = 0; round < 5000; ++round) {
    const auto field = [&](int most) {
      std::string text;
      const int n = static_cast<int>(rng() % most);
      for (int i = 0; i < n; ++i)
        text += rng() % 97 == 0 ? broken[rng() % std::size(broken)] : alphabet[rng() % std::size(alphabet)];
      return text;
    };
    const std::string payload = field(60), id = field(4);
    const WebSDKResponseModel model{"SUCCESS", 0, id, id, payload};
    const auto text = encodeEnvelope(model);
    ASSERT_EQ(text.has_value(), isValidUTF8(payload) && isValidUTF8(id)) << payload;
    const auto script = encodeEnvelopeForScript(model);
    ASSERT_EQ(script.has_value(), text.has_value()) << payload;
    if (!text) {
      ++refused;
      continue;
    }
    const JSON back = parseJSON(*text);
    ASSERT_TRUE(back.is_object()) << payload;
    EXPECT_EQ(back.at("payload").as_string(), payload);
    EXPECT_EQ(back.at("requestId").as_string(), id);
    EXPECT_EQ(back.at("statusMessage").as_string(), id);
    EXPECT_EQ(*script, withSingleQuotedValues(*text)) << payload;
  }
  EXPECT_GT(refused, 500u) << "the broken bytes must be drawn often enough to test anything";
}

TEST(StatusCodes, OnlyTheKnownCodesBuildAStatusCode) {
  for (std::int64_t raw : {0, 1, 1001, 1002, 1003, 1004, 1005})
    EXPECT_EQ(rawValue(statusCodeFromRawValue(raw).value()), raw);
  for (std::int64_t raw : {-1, 2, 1000, 1006, 200}) EXPECT_EQ(statusCodeFromRawValue(raw), std::nullopt);
  EXPECT_EQ(fromRawValue<WebSDKResponseType>("FAILED"), WebSDKResponseType::failure);
  EXPECT_EQ(fromRawValue<WebSDKResponseType>("failed"), std::nullopt);
}

TEST(UTF8, ValidationRejectsMalformedBytes) {
  EXPECT_TRUE(isValidUTF8("plain ascii text, long enough for blocks"));
  EXPECT_TRUE(isValidUTF8("\xC3\xA9\xE2\x80\xA8\xF0\x9F\x98\x80"));
  for (const char* bad : {"\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "abc\xFF", "\x80"})
    EXPECT_FALSE(isValidUTF8(bad)) << bad;
}

// A big answer's buffer, given back after sending, carries the next big
// answer: none of the old text may show through, and a buffer too large to
// keep is not kept.
TEST(Envelope, BigAnswersReuseAGivenBackBufferWholly) {
  const std::string first(300'000, 'a');
  std::string sent = nativeResponseScript({"SUCCESS", 0, std::nullopt, "1", first}).value();
  const char* memory = sent.data();
  scriptBuffers::give(std::move(sent));

  const std::string second(299'000, 'b');
  const std::string next = nativeResponseScript({"FAILED", 1, std::nullopt, "2", second}).value();
  EXPECT_EQ(next.data(), memory) << "the given-back buffer was not reused";
  EXPECT_EQ(next, "nativeResponse(" + encodeEnvelope({"FAILED", 1, std::nullopt, "2", second}).value() + ")");

  std::string huge = scriptBuffers::take(64u << 20);
  ASSERT_GE(huge.capacity(), 64u << 20);
  scriptBuffers::give(std::move(huge));
  EXPECT_LT(scriptBuffers::take(1u << 20).capacity(), 64u << 20) << "a 64 MB buffer was kept";
}

}  // namespace
}  // namespace websdk
