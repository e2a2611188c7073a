#include "FamilyRequests.hpp"
#include "support/Harness.hpp"
#include "websdk/testing/EveryFamilyHost.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace websdk {
namespace {

using testing::EveryFamilyHost;
using test::Harness;

// The page URL is named in the refusal; one that is not UTF-8 used to go out
// inside an envelope no page can read.
TEST(Intake, ARefusalForAPageWhoseURLIsNotUTF8IsDroppedRatherThanSentBroken) {
  Harness h({"example.com"}, false, "https://evil.test/\xFF");
  h.post(R"({"type":"GET_LOCAL_CART","requestId":"7","payload":{"tenant":{}}})");
  EXPECT_EQ(h.listener->requests.size(), 1u);
  EXPECT_TRUE(h.engine->evaluations().empty());
  EXPECT_TRUE(h.listener->responses.empty());

  h.engine->setURL("https://evil.test/");
  h.post(R"({"type":"GET_LOCAL_CART","requestId":"8"})");
  ASSERT_EQ(h.pageResponses().size(), 1u);
  EXPECT_EQ(h.pageResponses()[0].at("statusMessage"), "https://evil.test/");
}

// The host holds its plugin object on another thread and drops it while
// requests of every family keep arriving on the main thread. Each request is
// delivered while the object lives, answered with its family's failure once it
// is gone, or (only in the instant between the bridge's two looks) dropped;
// never delivered to a destroyed object.
TEST(Lifetimes, HostObjectsReleasedOnAnotherThreadWhileTheirRequestsArrive) {
  const auto requests = test::oneRequestPerFamily();
  ASSERT_EQ(requests.size(), std::tuple_size_v<BridgeFamilies>);
  Harness h;
  for (int round = 0; round < 100; ++round) {
    SCOPED_TRACE(round);
    std::size_t delivered = 0;
    auto host = std::make_shared<EveryFamilyHost>([&](const EveryFamilyHost::Delivery& d) {
      EXPECT_EQ(d.family, requests[delivered % requests.size()].family);
      ++delivered;
    });
    testing::registerForEveryFamily(*h.view, host);
    const std::size_t answeredBefore = h.listener->responses.size();

    std::atomic<bool> go{false};
    std::thread releaser([&go, host = std::move(host)]() mutable {
      while (!go) std::this_thread::yield();
      host.reset();
    });
    go = true;
    std::size_t posted = 0;
    while (h.listener->responses.size() == answeredBefore) {
      h.engine->postRequest(requests[posted % requests.size()].text);
      ++posted;
    }
    releaser.join();

    ASSERT_EQ(h.listener->responses.size(), answeredBefore + 1);
    const auto& failure = h.listener->responses.back();
    EXPECT_EQ(failure.statusCode, 1004);
    EXPECT_EQ(failure.statusMessage, requests[(posted - 1) % requests.size()].failureMessage);
    EXPECT_LE(posted - delivered - 1, 1u);
  }
  h.engine->queue().drain();
}

// A host object that lets its last owner go while its own operation runs.
struct ReleasedDuringCall final : DvCartWebViewCallBacks {
  std::atomic<bool>& inCall;
  std::atomic<bool>& released;
  std::atomic<bool>& destroyed;
  std::vector<std::string> seen;
  ReleasedDuringCall(std::atomic<bool>& i, std::atomic<bool>& r, std::atomic<bool>& d)
      : inCall(i), released(r), destroyed(d) {}
  ~ReleasedDuringCall() override { destroyed = true; }
  void handleCartRequest(const WebSDKCartRequestModel& r, const WebSDKCartRequestPayload&) override {
    inCall = true;
    while (!released) std::this_thread::yield();
    seen.push_back(r.requestId);  // touches the object after its owner let go
    EXPECT_FALSE(destroyed);
  }
};

TEST(Lifetimes, AHostObjectReleasedOnAnotherThreadDuringItsCallLivesUntilTheCallEnds) {
  Harness h;
  std::atomic<bool> inCall{false}, released{false}, destroyed{false};
  auto cart = std::make_shared<ReleasedDuringCall>(inCall, released, destroyed);
  h.view->setCartPlugin(cart);
  std::thread host([&, cart = std::move(cart)]() mutable {
    while (!inCall) std::this_thread::yield();
    cart.reset();
    released = true;
  });
  h.post(R"({"type":"CLEAR_LOCAL_CART","requestId":"1"})");
  host.join();
  EXPECT_TRUE(destroyed) << "the bridge's own reference was the last";
  EXPECT_TRUE(h.pageResponses().empty());

  h.post(R"({"type":"CLEAR_LOCAL_CART","requestId":"2"})");
  ASSERT_EQ(h.pageResponses().size(), 1u);
  EXPECT_EQ(h.pageResponses()[0].at("statusMessage"), "Cart Plugin not subscribed or not a valid request");
}

}  // namespace
}  // namespace websdk
