// Answers bound to their request, against the real engine: a page that reuses
// its ids, a page that leaves before its answers come, a request the app lets
// go, and a reply answered from a worker.

#include "E2E.hpp"

#include <thread>

namespace websdk::e2e {
namespace {

// Keeps each request's reply for the test to answer.
class HoldingCart final : public DvCartWebViewCallBacks {
 public:
  std::vector<WebSDKReply> replies;
  void handleCartRequest(const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload&) override {
    replies.push_back(request.reply());
  }
};

std::string clearCart(const std::string& id) { return R"({"type":"CLEAR_LOCAL_CART","requestId":")" + id + "\"}"; }

class RepliesTest : public E2ETest {
 protected:
  void SetUp() override {
    E2ETest::SetUp();
    server.page("/page", testPage());
    view->setCartPlugin(cart);
  }
  std::vector<JSON> responses() const { return page->of("nativeResponse"); }
  /// Loads `url` as a new document that hears only its own answers from now on.
  void newDocument(const std::string& url) {
    ASSERT_TRUE(loadAndWait(url));
    page->reports.clear();
  }
  /// Waits until `n` more answers than `before` were dropped (the listener
  /// hears of each), all for the document gone.
  bool waitForDrops(std::size_t before, std::size_t n) {
    const bool all = waitFor([&] { return listener->dropped.size() >= before + n; });
    for (std::size_t i = before; i < listener->dropped.size(); ++i)
      EXPECT_EQ(listener->dropped[i].second, WebSDKDropReason::documentGone) << listener->dropped[i].first.requestId;
    return all;
  }
  std::shared_ptr<HoldingCart> cart = std::make_shared<HoldingCart>();
};

// A page that counts its ids from 1 on every load: the reloaded page gets its
// own answer, and the first page's late answer reaches nobody, whether the
// app answers through replies or by id.
TEST_F(RepliesTest, APageThatReusesItsIdsGetsOnlyItsOwnAnswers) {
  for (const bool byId : {false, true}) {
    SCOPED_TRACE(byId ? "by id" : "through replies");
    cart->replies.clear();
    newDocument(server.url("/page"));
    postFromPage(clearCart("1"));
    ASSERT_TRUE(waitFor([&] { return cart->replies.size() == 1; }));
    newDocument(server.url("/page"));  // the same URL, a new document
    postFromPage(clearCart("1"));
    ASSERT_TRUE(waitFor([&] { return cart->replies.size() == 2; }));
    const std::size_t dropped = listener->dropped.size();
    if (byId) {
      view->sendWebSDKResponse(std::string("new"), WebSDKResponseType::success, "1");
      view->sendWebSDKResponse(std::string("old"), WebSDKResponseType::success, "1");
      cart->replies.clear();  // (their abandonment finds both answered)
    } else {
      cart->replies[1].sendWebSDKResponse(std::string("new"), WebSDKResponseType::success);
      cart->replies[0].sendWebSDKResponse(std::string("old"), WebSDKResponseType::success);
    }
    ASSERT_TRUE(waitForDrops(dropped, 1));
    ASSERT_TRUE(waitFor([&] { return !responses().empty(); }));
    ASSERT_EQ(responses().size(), 1u);
    EXPECT_EQ(responses()[0].at("payload"), JSON("new"));
    EXPECT_EQ(listener->dropped.back().first.payload, "old");
  }
}

// Page A asks and goes to another trusted host; the app's duplicate answer,
// or its answer after the deadline failed the request in A, reaches no later
// document.
TEST_F(RepliesTest, DuplicateAndLateAnswersOfAGoneDocumentReachNoLaterOne) {
  for (const bool afterDeadline : {false, true}) {
    SCOPED_TRACE(afterDeadline ? "after the deadline" : "a duplicate");
    cart->replies.clear();
    WebSDKConfig config{{"127.0.0.1", "localhost"}};
    if (afterDeadline) config.answerDeadlines = {{"cart", std::chrono::milliseconds(300)}};
    config.failsOverdueRequests = true;
    makeView(config, delegate);
    view->setCartPlugin(cart);
    newDocument(server.url("/page"));
    postFromPage(clearCart("n1"));
    ASSERT_TRUE(waitFor([&] { return cart->replies.size() == 1; }));
    if (afterDeadline) {
      ASSERT_TRUE(waitFor([&] { return responses().size() == 1; }));  // failed in A
    }
    newDocument(server.url("/page", "localhost"));
    const std::size_t dropped = listener->dropped.size();
    if (!afterDeadline) view->sendSuccess("n1");
    view->sendSuccess("n1");
    cart->replies[0].sendSuccess();
    EXPECT_TRUE(waitForDrops(dropped, afterDeadline ? 2 : 3));
    // One more answer, to an id the new page asked: it arrives, and after
    // everything before it.
    postFromPage(clearCart("n2"));
    ASSERT_TRUE(waitFor([&] { return cart->replies.size() == 2; }));
    cart->replies[1].sendSuccess();
    ASSERT_TRUE(waitFor([&] { return !responses().empty(); }));
    ASSERT_EQ(responses().size(), 1u);
    EXPECT_EQ(responses()[0].at("requestId"), JSON("n2"));
    EXPECT_EQ(view->answerCounts().unasked, 0u);
  }
}

// A request the app lets go unanswered settles the page's promise as FAILED.
TEST_F(RepliesTest, AnAbandonedReplyReachesThePageAsFailed) {
  newDocument(server.url("/page"));
  postFromPage(clearCart("dropped"));
  ASSERT_TRUE(waitFor([&] { return cart->replies.size() == 1; }));
  cart->replies.clear();
  ASSERT_TRUE(waitFor([&] { return responses().size() == 1; }));
  EXPECT_EQ(responses()[0],
            parseJSON(R"({"type":"FAILED","statusCode":1,"statusMessage":"the app gave no answer to this request",)"
                      R"("requestId":"dropped"})"));
}

// A reply carried to a worker and answered there (twice: the second is
// refused) arrives exactly once.
TEST_F(RepliesTest, AReplyAnsweredFromAWorkerArrivesExactlyOnce) {
  newDocument(server.url("/page"));
  postFromPage(clearCart("w"));
  ASSERT_TRUE(waitFor([&] { return cart->replies.size() == 1; }));
  std::thread worker([reply = std::move(cart->replies[0])]() mutable {
    reply.sendWebSDKResponse(JSONObject{{"from", "worker"}}, WebSDKResponseType::success);
    reply.sendFailure();
  });
  worker.join();
  ASSERT_TRUE(waitFor([&] { return !responses().empty() && view->answerCounts().repeated == 1; }));
  ASSERT_EQ(responses().size(), 1u);
  EXPECT_EQ(responses()[0].at("type"), JSON("SUCCESS"));
  EXPECT_EQ(parseJSON(responses()[0].at("payload").as_string()), parseJSON(R"({"from":"worker"})"));
}

}  // namespace
}  // namespace websdk::e2e
