#pragma once
// A recording generic plugin behind a web view on a trusted page, and the
// table runner the generic tests share: each row is a request a page posts
// and the typed payload the plugin should receive, or nothing when the
// family must decline it.

#include "support/Harness.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace websdk::test {

struct RecordingGenericPlugin final : DvWebViewGenericCallsBacks {
  std::vector<std::pair<WebSDKGenericRequestModel, WebSDKGenericRequestPayload>> received;
  void handleGenericRequest(const WebSDKGenericRequestModel& r, const WebSDKGenericRequestPayload& p) override {
    received.emplace_back(r, p);
  }
};

struct GenericBridge {
  std::shared_ptr<RecordingGenericPlugin> plugin = std::make_shared<RecordingGenericPlugin>();
  Harness harness;

  explicit GenericBridge(bool subscribed = true)
      : harness({"localhost"}, false, "https://localhost/", {.generic = subscribed ? plugin : nullptr}) {}
  std::vector<JSON> post(std::string_view text) { return harness.post(text); }
};

struct GenericRow {
  std::string_view action;
  std::optional<std::string_view> payload;
  std::optional<WebSDKGenericRequestPayload> expected;
};

/// A decodable request reaches the plugin once, with its action, id and
/// payload, and the page gets no answer from the bridge; a declined one
/// reaches no plugin and is answered "not a valid request".
inline void expectGenericDecodes(const std::vector<GenericRow>& rows) {
  for (const auto& row : rows) {
    const std::string text = requestText(row.action, row.payload);
    SCOPED_TRACE(text);
    GenericBridge bridge;
    const auto responses = bridge.post(text);
    const auto& received = bridge.plugin->received;
    if (!row.expected) {
      EXPECT_TRUE(received.empty());
      ASSERT_EQ(responses.size(), 1u);
      EXPECT_EQ(responses[0].at("statusCode"), 1004);
      EXPECT_EQ(responses[0].at("statusMessage"), "not a valid request");
      continue;
    }
    EXPECT_TRUE(responses.empty());
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(rawValue(received[0].first.type), row.action);
    EXPECT_EQ(received[0].first.requestId, "r1");
    EXPECT_EQ(received[0].second, *row.expected);
  }
}

}  // namespace websdk::test
