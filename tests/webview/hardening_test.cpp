#include "support/Harness.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>

namespace websdk {
namespace {

using test::Harness;

// Only visible under UndefinedBehaviorSanitizer: the envelope without the
// script's prefix used to copy zero bytes from a null pointer.
TEST(Envelope, AnEnvelopeWithoutPrefixCopiesNothingFromANullPointer) {
  EXPECT_EQ(encodeEnvelope({"", 0, std::nullopt, "", std::nullopt}), R"({"type":"","statusCode":0,"requestId":""})");
}

struct BadBytesRow {
  const char* name;
  std::function<void(WebSDKWebView&)> send;
  std::optional<JSON> expected;  // nothing: the answer must not reach the page at all
};

// Answers used to go out with bytes that are not UTF-8, which no page can
// read. Now an envelope that would carry them is dropped, and a rendered or
// ready-encoded payload that holds them is left out of its answer.
TEST(Sending, AnswersWithBytesThatAreNotUTF8NeverReachThePageBroken) {
  const BadBytesRow rows[] = {
      {"request id", [](WebSDKWebView& v) { v.sendSuccess("r\xFF"); }, std::nullopt},
      {"message", [](WebSDKWebView& v) { v.sendFailure("r", std::nullopt, "overlong \xC0\xAF"); }, std::nullopt},
      {"string payload",
       [](WebSDKWebView& v) { v.sendWebSDKResponse(std::string("\xED\xA0\x80"), WebSDKResponseType::success, "r"); },
       std::nullopt},
      {"dictionary payload",
       [](WebSDKWebView& v) {
         v.sendWebSDKResponse(JSONObject{{"k", "cut \xE2\x82"}}, WebSDKResponseType::success, "r");
       },
       parseJSON(R"({"type":"SUCCESS","statusCode":0,"requestId":"r"})")},
      {"string map payload",
       [](WebSDKWebView& v) {
         v.sendWebSDKResponse(std::map<std::string, std::string>{{"k\xFE", "v"}}, WebSDKResponseType::failure, "r",
                              1003);
       },
       parseJSON(R"({"type":"FAILED","statusCode":1003,"requestId":"r"})")},
      {"ready-encoded, request id",
       [](WebSDKWebView& v) {
         v.sendWebSDKResponse(WebSDKResponseType::success, "r\x80", std::optional<std::string>("{}"));
       },
       std::nullopt},
  };
  for (const auto& row : rows) {
    Harness h;
    row.send(*h.view);
    h.engine->queue().drain();
    const auto evaluations = h.engine->evaluations();
    if (!row.expected) {
      EXPECT_TRUE(evaluations.empty()) << row.name;
      EXPECT_TRUE(h.listener->responses.empty()) << row.name;
    } else {
      ASSERT_EQ(h.pageResponses().size(), 1u) << row.name;
      EXPECT_EQ(h.pageResponses()[0], *row.expected) << row.name;
      EXPECT_EQ(h.listener->responses.size(), 1u) << row.name;
    }
    h.view->sendSuccess("next");
    h.engine->queue().drain();
    ASSERT_FALSE(h.pageResponses().empty()) << row.name;
    EXPECT_EQ(h.pageResponses().back().at("requestId"), "next") << row.name << ": the view goes on answering";
  }
}

// Counts notices into memory that outlives the listener itself.
struct CountingListener final : WebSDKJSCommunicationProtocol {
  std::atomic<int>& notices;
  explicit CountingListener(std::atomic<int>& n) : notices(n) {}
  void didSendResponse(const WebSDKResponseModel&) override { ++notices; }
  void didReceiveRequest(std::string_view) override {}
};

TEST(Threads, AListenerReleasedOnAnotherThreadWhileAnswersAreSentMissesOnlyLaterNotices) {
  constexpr int kThreads = 4, kAnswers = 5000;
  std::atomic<int> notices{0};
  auto queue = std::make_shared<testing::TestingMainQueue>();
  auto owned = std::make_unique<testing::TestingEngine>(queue);
  auto* engine = owned.get();
  engine->setURL("https://localhost/");
  auto listener = std::make_shared<CountingListener>(notices);
  auto view = WebSDKWebView::create(std::move(owned), {"localhost"}, nullptr, nullptr, nullptr, listener);

  std::atomic<int> running{kThreads};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([&, t] {
      for (int i = 0; i < kAnswers; ++i) view->sendSuccess(std::to_string(t) + ":" + std::to_string(i));
      --running;
    });
  // The host drops the listener while the answers are under way.
  threads.emplace_back([&notices, listener = std::move(listener)]() mutable {
    while (notices < 100) std::this_thread::yield();
    listener.reset();
  });
  while (running > 0) queue->drain();
  for (auto& t : threads) t.join();
  queue->drain();

  EXPECT_EQ(engine->evaluations().size(), static_cast<std::size_t>(kThreads * kAnswers)) << "every answer still sent";
  EXPECT_GE(notices, 100);
  EXPECT_LE(notices, kThreads * kAnswers);
  const int before = notices;
  view->sendSuccess("after");
  EXPECT_EQ(notices, before) << "no notice once the listener is gone";
}

// Other threads answer through the view only while they can lock it; the host
// drops its view meanwhile, so the view may be destroyed on any of them.
// Answers queued by then do nothing, and nothing touches the destroyed view.
TEST(Lifetimes, AViewReleasedWhileOtherThreadsAnswerThroughItLeavesTheirQueuedAnswersUndone) {
  constexpr int kThreads = 4, kAnswers = 3000;
  std::atomic<int> notices{0};
  auto queue = std::make_shared<testing::TestingMainQueue>();
  auto listener = std::make_shared<CountingListener>(notices);
  auto view = WebSDKWebView::create(std::make_unique<testing::TestingEngine>(queue), {"localhost"}, nullptr, nullptr,
                                    nullptr, listener);
  const std::weak_ptr<WebSDKWebView> weak = view;

  std::atomic<int> sent{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([&, t] {
      for (int i = 0; i < kAnswers; ++i) {
        const auto strong = weak.lock();
        if (!strong) return;
        strong->sendSuccess(std::to_string(t) + ":" + std::to_string(i));
        ++sent;
      }
    });
  // Thousands of answers pile up before the view goes; none has run yet.
  while (sent < 2000) std::this_thread::yield();
  view.reset();
  for (auto& t : threads) t.join();

  EXPECT_TRUE(weak.expired());
  EXPECT_GE(sent, 2000);
  EXPECT_EQ(notices, sent) << "every answer sent before the view went was told";
  // Each queued answer runs once and does nothing.
  EXPECT_EQ(queue->drain(), static_cast<std::size_t>(sent.load()));
}

}  // namespace
}  // namespace websdk
