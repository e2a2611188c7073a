// Replies: an answer bound to the request it answers, given once, only to the
// document that asked; and the by-id answers' rules for reused and gone ids.

#include "support/Harness.hpp"
#include "websdk/Log.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

namespace websdk {
namespace {

using test::Harness;

// Takes each request's reply and keeps it for the test to answer.
struct ReplyingCart final : DvCartWebViewCallBacks {
  std::vector<WebSDKReply> replies;
  std::function<void(WebSDKReply&)> onRequest;  // answers at once, when set
  void handleCartRequest(const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload&) override {
    replies.push_back(request.reply());
    if (onRequest) onRequest(replies.back());
  }
};

struct Logged {
  std::vector<std::string> lines;
  LogSink before = setLogSink([this](const LogRecord& r) { lines.emplace_back(r.message); });
  ~Logged() { setLogSink(before); }
  bool has(std::string_view words) const {
    return std::ranges::any_of(lines, [&](const std::string& l) { return l.find(words) != std::string::npos; });
  }
};

struct AbandonListener final : WebSDKJSCommunicationProtocol {
  std::vector<std::string> abandoned;
  void didSendResponse(const WebSDKResponseModel&) override {}
  void didReceiveRequest(std::string_view) override {}
  void didAbandonRequest(const WebSDKPendingRequest& r) override {
    abandoned.push_back(r.requestId + " " + std::string(r.family) + " " + std::string(r.action));
  }
};

constexpr std::string_view kClear = R"({"type":"CLEAR_LOCAL_CART","requestId":"1"})";

// Each form of answer makes, through a reply, the very script the by-id form makes.
TEST(Replies, EachFormMakesTheSameEnvelopeAsTheByIdForm) {
  struct Row {
    const char* name;
    std::function<void(WebSDKReply&)> reply;
    std::function<void(WebSDKWebView&)> byId;
  };
  const JSONObject object{{"items", 2}, {"note", "a/b"}};
  const std::map<std::string, std::string> dictionary{{"k", "v"}};
  const Row rows[] = {
      {"object", [&](WebSDKReply& r) { r.sendWebSDKResponse(object, WebSDKResponseType::success); },
       [&](WebSDKWebView& v) { v.sendWebSDKResponse(object, WebSDKResponseType::success, "1"); }},
      {"model",
       [&](WebSDKReply& r) {
         r.sendWebSDKResponse(WebSDKResponseProtocol(dictionary), WebSDKResponseType::failure, 1003, "m");
       },
       [&](WebSDKWebView& v) {
         v.sendWebSDKResponse(WebSDKResponseProtocol(dictionary), WebSDKResponseType::failure, "1", 1003, "m");
       }},
      {"text", [](WebSDKReply& r) { r.sendWebSDKResponse(std::string("{\"a\":1}"), WebSDKResponseType::success); },
       [](WebSDKWebView& v) { v.sendWebSDKResponse(std::string("{\"a\":1}"), WebSDKResponseType::success, "1"); }},
      {"success", [](WebSDKReply& r) { r.sendSuccess(); }, [](WebSDKWebView& v) { v.sendSuccess("1"); }},
      {"failure", [](WebSDKReply& r) { r.sendFailure(1005, "no"); },
       [](WebSDKWebView& v) { v.sendFailure("1", 1005, "no"); }},
      {"encoded", [](WebSDKReply& r) { r.sendWebSDKResponse(WebSDKResponseType::success, std::string("[1]")); },
       [](WebSDKWebView& v) { v.sendWebSDKResponse(WebSDKResponseType::success, "1", std::string("[1]")); }},
      {"encoded, not UTF-8",
       [](WebSDKReply& r) { r.sendWebSDKResponse(WebSDKResponseType::failure, std::string("\xFF")); },
       [](WebSDKWebView& v) { v.sendWebSDKResponse(WebSDKResponseType::failure, "1", std::string("\xFF")); }},
  };
  for (const auto& row : rows) {
    Harness byReply, byId;
    auto cart = std::make_shared<ReplyingCart>();
    cart->onRequest = row.reply;
    byReply.view->setCartPlugin(cart);
    byReply.post(kClear);
    auto quiet = std::make_shared<test::RecordingCart>();
    byId.view->setCartPlugin(quiet);
    byId.post(kClear);
    row.byId(*byId.view);
    byId.engine->queue().drain();
    ASSERT_EQ(byReply.engine->evaluations().size(), 1u) << row.name;
    ASSERT_EQ(byId.engine->evaluations().size(), 1u) << row.name;
    EXPECT_EQ(byReply.engine->evaluations()[0].script, byId.engine->evaluations()[0].script) << row.name;
    EXPECT_EQ(byReply.view->answerCounts(), byId.view->answerCounts()) << row.name;
  }
}

// A page that counts its ids from 1 on every load: each document gets its own
// answer, whichever is answered first and however the host answers.
TEST(Replies, APageThatReusesItsIdsGetsOnlyItsOwnAnswers) {
  for (const bool firstAnsweredFirst : {false, true}) {
    Harness h;
    auto cart = std::make_shared<ReplyingCart>();
    h.view->setCartPlugin(cart);
    h.post(kClear);
    h.engine->navigate("https://localhost/checkout");  // a reload: a new document
    h.post(kClear);
    ASSERT_EQ(cart->replies.size(), 2u);
    auto& first = cart->replies[0];
    auto& second = cart->replies[1];
    if (firstAnsweredFirst) first.sendWebSDKResponse(std::string("old"), WebSDKResponseType::success);
    second.sendWebSDKResponse(std::string("new"), WebSDKResponseType::success);
    if (!firstAnsweredFirst) first.sendWebSDKResponse(std::string("old"), WebSDKResponseType::success);
    h.engine->queue().drain();
    ASSERT_EQ(h.pageResponses().size(), 1u) << firstAnsweredFirst;
    EXPECT_EQ(h.pageResponses()[0].at("payload"), "new") << firstAnsweredFirst;
    EXPECT_EQ(h.engine->droppedScripts.size(), 1u);
  }
}

// By id, the same reuse resolves in favour of the document shown, then the oldest.
TEST(Replies, ByIdAReusedIdGoesToTheDocumentShownFirst) {
  Harness h;
  const auto cart = std::make_shared<test::RecordingCart>();
  h.view->setCartPlugin(cart);
  h.post(kClear);
  h.engine->navigate("https://localhost/checkout");
  h.post(kClear);
  h.view->sendWebSDKResponse(std::string("new"), WebSDKResponseType::success, "1");
  h.view->sendWebSDKResponse(std::string("old"), WebSDKResponseType::success, "1");
  h.engine->queue().drain();
  ASSERT_EQ(h.pageResponses().size(), 1u);
  EXPECT_EQ(h.pageResponses()[0].at("payload"), "new");
  EXPECT_EQ(h.view->answerCounts(), (WebSDKAnswerCounts{2, 0}));
}

// What a gone document asked stays its own: a duplicate, or a plugin's answer
// after the deadline failed the request, never reaches the next document.
TEST(Replies, DuplicateAndLateAnswersOfAGoneDocumentReachNoLaterOne) {
  using namespace std::chrono_literals;
  enum class Way { duplicate, afterDeadline, replyAfterDeadline };
  for (const Way way : {Way::duplicate, Way::afterDeadline, Way::replyAfterDeadline}) {
    WebSDKConfig config{{"localhost"}};
    config.answerDeadlines = {{"cart", 100ms}};
    config.failsOverdueRequests = true;
    Harness h(config);
    auto cart = std::make_shared<ReplyingCart>();
    h.view->setCartPlugin(cart);
    h.post(R"({"type":"CLEAR_LOCAL_CART","requestId":"n1"})");
    if (way != Way::duplicate) h.engine->queue().advance(100ms);  // failed in the document that asked
    const auto before = h.pageResponses().size();
    h.engine->navigate("https://pay.localhost/");
    if (way == Way::replyAfterDeadline) {
      cart->replies[0].sendSuccess();
    } else {
      h.view->sendSuccess("n1");
      h.view->sendSuccess("n1");
    }
    h.engine->queue().drain();
    EXPECT_EQ(h.pageResponses().size(), before) << int(way);
    for (const auto& [id, why] : h.listener->dropped) EXPECT_EQ(why, WebSDKDropReason::documentGone) << int(way);
    EXPECT_EQ(h.view->answerCounts().unasked, 0u) << int(way);
    EXPECT_GE(h.view->answerCounts().late, 1u) << int(way);
    cart->replies.clear();
  }
}

// Exactly once: a second answer is refused and counted; a reply let go
// unanswered fails the request for the page, and the listener hears of it.
TEST(Replies, AReplyAnswersOnceAndAnAbandonedOneFailsTheRequest) {
  Logged logged;
  Harness h;
  auto listener = std::make_shared<AbandonListener>();
  h.view->webJSCommunicatorDelegate = listener;
  auto cart = std::make_shared<ReplyingCart>();
  h.view->setCartPlugin(cart);
  h.post(R"({"type":"CLEAR_LOCAL_CART","requestId":"a"})");
  h.post(R"({"type":"CLEAR_LOCAL_CART","requestId":"b"})");
  WebSDKReply a = std::move(cart->replies[0]);
  EXPECT_FALSE(cart->replies[0]);
  EXPECT_TRUE(a);
  a.sendSuccess();
  EXPECT_FALSE(a);
  a.sendFailure();
  cart->replies.clear();  // "b" let go
  h.engine->queue().drain();

  const auto responses = h.pageResponses();
  ASSERT_EQ(responses.size(), 2u);
  EXPECT_EQ(responses[0], parseJSON(R"({"type":"SUCCESS","statusCode":0,"requestId":"a"})"));
  EXPECT_EQ(responses[1],
            parseJSON(R"({"type":"FAILED","statusCode":1,"statusMessage":"the app gave no answer to this request",)"
                      R"("requestId":"b"})"));
  EXPECT_EQ(listener->abandoned, std::vector<std::string>{"b cart CLEAR_LOCAL_CART"});
  EXPECT_EQ(h.view->answerCounts(), (WebSDKAnswerCounts{.expected = 2, .repeated = 1, .abandoned = 1}));
  EXPECT_TRUE(h.view->pendingRequests().empty());
  EXPECT_TRUE(logged.has("was answered through its reply already"));
  EXPECT_TRUE(logged.has("was let go without an answer"));
}

// A reply is the plugin's to take during its call, once; other takes answer
// nothing and say why.
TEST(Replies, TakingAReplyOutsideTheCallOrTwiceGivesAnEmptyOneAndSaysSo) {
  Logged logged;
  Harness h;
  WebSDKCartRequestModel kept;
  struct Twice final : DvCartWebViewCallBacks {
    WebSDKCartRequestModel& kept;
    std::vector<WebSDKReply> replies;
    explicit Twice(WebSDKCartRequestModel& k) : kept(k) {}
    void handleCartRequest(const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload&) override {
      kept = request;
      replies.push_back(request.reply());
      replies.push_back(WebSDKCartRequestModel(request).reply());  // a copy's is the same request's
    }
  };
  auto cart = std::make_shared<Twice>(kept);
  h.view->setCartPlugin(cart);
  h.post(kClear);
  EXPECT_TRUE(cart->replies[0]);
  EXPECT_FALSE(cart->replies[1]);
  EXPECT_TRUE(logged.has("was taken already in this call"));
  WebSDKReply late = kept.reply();
  EXPECT_FALSE(late);
  EXPECT_TRUE(logged.has("outside the plugin's call"));
  late.sendSuccess();
  EXPECT_TRUE(logged.has("through an empty reply"));
  h.engine->queue().drain();
  EXPECT_TRUE(h.pageResponses().empty());
}

// Replies answered and let go on workers while the UI thread tears the view
// down: each request hears at most once, nothing touches a view that is gone
// (run under ThreadSanitizer by scripts/harden).
TEST(Replies, WorkersAnswerAndDropRepliesWhileTheViewIsTornDown) {
  for (int round = 0; round < 20; ++round) {
    auto queue = std::make_shared<testing::TestingMainQueue>();
    auto owned = std::make_unique<testing::TestingEngine>(queue);
    auto* engine = owned.get();
    engine->setURL("https://localhost/checkout");
    auto view = WebSDKWebView::create(std::move(owned), {"localhost"});
    auto cart = std::make_shared<ReplyingCart>();
    view->setCartPlugin(cart);
    for (int i = 0; i < 40; ++i)
      engine->postRequest(R"({"type":"CLEAR_LOCAL_CART","requestId":")" + std::to_string(i) + "\"}");
    queue->drain();
    std::vector<WebSDKReply> replies = std::move(cart->replies);
    std::atomic<bool> go{false};
    std::vector<std::thread> workers;
    for (int t = 0; t < 2; ++t) {
      std::vector<WebSDKReply> mine;
      for (std::size_t i = t; i < replies.size(); i += 2) mine.push_back(std::move(replies[i]));
      workers.emplace_back([&go, mine = std::move(mine)]() mutable {
        while (!go) std::this_thread::yield();
        for (std::size_t i = 0; i < mine.size(); ++i) {
          if (i % 2 == 0) mine[i].sendSuccess();
          mine[i] = WebSDKReply();  // the odd ones are let go unanswered
        }
      });
    }
    go = true;
    queue->drain();
    view.reset();
    for (auto& w : workers) w.join();
    queue->drain();
  }
}

}  // namespace
}  // namespace websdk
