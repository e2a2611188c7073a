#pragma once
// One host object that serves the accounts, Zippa, restaurant empathy, set
// recipient info, menu list and chat conversation families at once, recording
// what reaches each operation, and a web view on a trusted page that routes to it.

#include "support/Harness.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace websdk::test {

template <class Request, class Payload>
using Deliveries = std::vector<std::pair<Request, Payload>>;

struct CommerceHost final : DvAccountsWebViewCallBacks,
                            DvZippaWebViewCallBacks,
                            DvWebViewRestaurantEmpathyCallsBacks,
                            DvWebViewSetRecipientInfoCallsBacks,
                            DvWebViewMenuListCallbacks,
                            DvWebViewChatConversationCallsBacks {
  std::tuple<Deliveries<WebSDKAccountsRequestModel, WebSDKAccountsRequestPayload>,
             Deliveries<WebSDKZippaRequestModel, WebSDKZippaRequestPayload>,
             Deliveries<WebSDKRestaurantEmpathyRequestModel, WebSDKRestaurantEmpathyRequestPayload>,
             Deliveries<WebSDKSetRecipientInfoRequestModel, WebSDKSetRecipientInfoRequestPayload>,
             Deliveries<WebSDKMenuListRequestModel, WebSDKMenuListPayload>,
             Deliveries<WebSDKChatConversationRequestModel, WebSDKChatConversationRequestPayload>>
      received;
  std::size_t calls = 0;

  template <class Request, class Payload>
  const Deliveries<Request, Payload>& of() const {
    return std::get<Deliveries<Request, Payload>>(received);
  }

  void handleAccountsRequest(const WebSDKAccountsRequestModel& r, const WebSDKAccountsRequestPayload& p) override {
    record(r, p);
  }
  void handleZippaRequest(const WebSDKZippaRequestModel& r, const WebSDKZippaRequestPayload& p) override {
    record(r, p);
  }
  void handleRestaurantEmpathyRequest(const WebSDKRestaurantEmpathyRequestModel& r,
                                      const WebSDKRestaurantEmpathyRequestPayload& p) override {
    record(r, p);
  }
  void handleSetRecipientInfoRequest(const WebSDKSetRecipientInfoRequestModel& r,
                                     const WebSDKSetRecipientInfoRequestPayload& p) override {
    record(r, p);
  }
  void handleMenuListRequest(const WebSDKMenuListRequestModel& r, const WebSDKMenuListPayload& p) override {
    record(r, p);
  }
  void handleChatConversationRequest(const WebSDKChatConversationRequestModel& r,
                                     const WebSDKChatConversationRequestPayload& p) override {
    record(r, p);
  }

 private:
  template <class Request, class Payload>
  void record(const Request& r, const Payload& p) {
    std::get<Deliveries<Request, Payload>>(received).emplace_back(r, p);
    ++calls;
  }
};

struct CommerceBridge {
  std::shared_ptr<CommerceHost> host = std::make_shared<CommerceHost>();
  Harness harness;

  /// With `subscribed`, `host` is registered for all six families.
  explicit CommerceBridge(bool subscribed = true)
      : harness({"localhost"}, false, "https://localhost/", {.setRecipientInfo = subscribed ? host : nullptr}) {
    if (!subscribed) return;
    harness.view->setAccountsPlugin(host);
    harness.view->setZippaPlugin(host);
    harness.view->setRestaurantEmpathyPlugin(host);
    harness.view->setMenuListPlugin(host);
    harness.view->setChatConversationPlugin(host);
  }
  std::vector<JSON> post(std::string_view text) { return harness.post(text); }
};

/// One request of a family and the payload its plugin should receive, or
/// nothing when the family must decline it.
template <class Payload>
struct DecodeRow {
  std::string_view action;
  std::optional<std::string_view> payload;
  std::optional<Payload> expected;
};

/// Posts each row through the bridge to a host that serves every family: a
/// decodable request reaches its own family's operation once and nothing
/// else; a declined one reaches no operation and is answered "not a valid
/// request".
template <class Request, class Payload>
void expectDecodes(const std::vector<DecodeRow<Payload>>& rows) {
  for (const auto& row : rows) {
    const std::string text = requestText(row.action, row.payload);
    SCOPED_TRACE(text);
    CommerceBridge bridge;
    const auto responses = bridge.post(text);
    const auto& delivered = bridge.host->of<Request, Payload>();
    if (!row.expected) {
      EXPECT_EQ(bridge.host->calls, 0u);
      ASSERT_EQ(responses.size(), 1u);
      EXPECT_EQ(responses[0].at("statusMessage"), "not a valid request");
      continue;
    }
    EXPECT_TRUE(responses.empty());
    EXPECT_EQ(bridge.host->calls, 1u) << "only the family's own operation is called";
    ASSERT_EQ(delivered.size(), 1u);
    EXPECT_EQ(rawValue(delivered[0].first.type), row.action);
    EXPECT_EQ(delivered[0].first.requestId, "r1");
    EXPECT_EQ(delivered[0].second, *row.expected);
  }
}

}  // namespace websdk::test
