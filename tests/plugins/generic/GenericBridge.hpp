#pragma once
// A recording generic plugin behind a web view on a trusted page, and the
// table runner the generic tests share: each row is a request a page posts
// and the typed payload the plugin should receive, or nothing when the
// family must decline it.

#include "websdk/testing/TestingEngine.hpp"
#include "websdk/webview/WebSDKWebView.hpp"

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
  testing::TestingEngine* engine = nullptr;
  std::shared_ptr<WebSDKWebView> view;

  explicit GenericBridge(bool subscribed = true) {
    auto owned = std::make_unique<testing::TestingEngine>();
    engine = owned.get();
    engine->setURL("https://localhost/");
    view = WebSDKWebView::create(std::move(owned), {"localhost"}, subscribed ? plugin : nullptr);
  }

  /// Posts a request as the page would, runs the main queue, and returns the
  /// envelopes the page received.
  std::vector<JSON> post(std::string_view requestText) {
    engine->postRequest(requestText);
    engine->queue().drain();
    return engine->nativeResponses();
  }
};

/// {"type": action, "requestId": "r1", "payload": payload}; no "payload" key
/// when `payload` is nothing.
inline std::string genericRequest(std::string_view action, std::optional<std::string_view> payload) {
  std::string text = R"({"type":")" + std::string(action) + R"(","requestId":"r1")";
  if (payload) text += R"(,"payload":)" + std::string(*payload);
  return text + "}";
}

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
    const std::string text = genericRequest(row.action, row.payload);
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
