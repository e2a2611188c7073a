// The engine core: what every engine does the same way, driven here on the
// testing engine's queue, whose clock moves only when a test advances it.

#include "websdk/testing/TestingEngine.hpp"
#include "websdk/webview/EngineCore.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace websdk {
namespace {

using namespace std::chrono_literals;

// Records what the core tells its client, as one line per event.
struct RecordingClient final : WebEngineClient {
  std::vector<std::string> events;
  std::function<void()> onFailure;  // runs inside didFailProvisionalNavigation
  bool pinchAnswer = false;

  static std::string of(const WebSDKNavigation* n) { return n ? std::to_string(n->id) + " " + n->url : "none"; }
  void didStartProvisionalNavigation(const WebSDKNavigation* n) override { events.push_back("start " + of(n)); }
  void didFinish(const WebSDKNavigation* n) override { events.push_back("finish " + of(n)); }
  void didFail(const WebSDKNavigation* n, const WebSDKError& e) override {
    events.push_back("fail " + of(n) + " " + e.description);
  }
  void didFailProvisionalNavigation(const WebSDKNavigation* n, const WebSDKError& e) override {
    events.push_back("failProvisional " + of(n) + " " + e.domain + " " + std::to_string(e.code) +
                     (e.isTimeout ? " timeout" : ""));
    if (onFailure) onFailure();
  }
  void decidePolicyFor(const WebSDKNavigationAction&, WebSDKNavigationActionDecision) override {}
  void decidePolicyFor(const WebSDKNavigationResponse&, WebSDKNavigationResponseDecision) override {}
  void didReceive(const WebSDKAuthenticationChallenge&, WebSDKAuthChallengeCompletion) override {}
  bool scrollViewWillBeginZooming() override {
    events.push_back("pinch");
    return pinchAnswer;
  }
};

struct Core {
  testing::TestingMainQueue queue;
  RecordingClient client;
  std::vector<std::string> stopped;  // the URLs of the loads the core had stopped
  bool showing = true;               // whether the engine still has a view to stop a load in
  std::shared_ptr<EngineCore> core =
      std::make_shared<EngineCore>(queue, "net", -7, [this](const WebSDKNavigation& navigation) {
        if (showing) stopped.push_back(navigation.url);
        return showing;
      });
  Core() { core->setClient(&client); }
};

// ---- The app's header fields ---------------------------------------------------

// The app's own fields are named in any case: a field is the app's (kept off
// untrusted hosts, handed to the engine as the app's) whatever the case of
// either name, and every field goes exactly one way to an untrusted host.
TEST(AppFields, NamesMatchWithoutRegardToCase) {
  struct Row {
    std::vector<std::string> confined;
    HeaderFields headers;
    HeaderFields confinedFields;
  };
  const Row rows[] = {
      {{"token"}, {{"token", "t"}, {"Accept", "a"}}, {{"token", "t"}}},
      {{"Token"}, {{"TOKEN", "t"}, {"accept", "a"}}, {{"TOKEN", "t"}}},
      {{"x-App-Id", "SID"}, {{"X-APP-ID", "i"}, {"sid", "s"}, {"x-app-idx", "no"}}, {{"X-APP-ID", "i"}, {"sid", "s"}}},
      {{"tøken"}, {{"TØKEN", "t"}}, {}},  // ASCII letters only: no other letter folds
      {{}, {{"token", "t"}}, {}},
      {{"token"}, {}, {}},
  };
  for (const auto& row : rows) {
    URLRequest request{"https://shop.example.com/",
                       row.headers,
                       60,
                       URLRequestCachePolicy::useProtocolCachePolicy,
                       row.confined,
                       WebSDKConfig{{"example.com"}, false}};
    const std::string at = row.headers.empty() ? "no fields" : row.headers.front().first;
    EXPECT_EQ(request.confinedFields(), row.confinedFields) << at;
    EXPECT_EQ(request.confinedFieldsFor("https://pay.example.com/"), row.confinedFields) << at;
    EXPECT_EQ(request.confinedFieldsFor("https://elsewhere.test/"), HeaderFields{}) << at;

    HeaderFields both = request.headersFor("https://elsewhere.test/");
    for (const auto& field : row.confinedFields) both.push_back(field);
    std::ranges::sort(both);
    HeaderFields all = row.headers;
    std::ranges::sort(all);
    EXPECT_EQ(both, all) << "each field is either anyone's or the app's: " << at;
  }
}

// ---- Documents -----------------------------------------------------------------

TEST(EngineCoreDocuments, CommitsNumberDocumentsAndAnEmptyURLIsNone) {
  Core c;
  EngineCore& core = *c.core;
  EXPECT_EQ(core.url(), std::nullopt);
  EXPECT_EQ(core.document(), 0u);
  EXPECT_FALSE(core.shows(0)) << "0 is no document, even before the first";

  const DocumentID first = core.commitDocument("https://a.test/");
  EXPECT_EQ(core.url(), "https://a.test/");
  EXPECT_TRUE(core.shows(first));
  core.commitURL("https://a.test/#moved");
  EXPECT_EQ(core.document(), first) << "a new URL alone is the same document";

  const DocumentID second = core.commitDocument("https://a.test/#moved");
  EXPECT_NE(second, first) << "a commit at the same URL is a new document";
  EXPECT_FALSE(core.shows(first));

  core.showDocument(77);  // numbered in the page's own process
  EXPECT_TRUE(core.shows(77));
  EXPECT_GT(core.commitDocument(""), second) << "numbering here goes on from its own last";
  EXPECT_EQ(core.url(), std::nullopt) << "an empty URL is no URL";

  core.showNothing();
  EXPECT_EQ(core.document(), 0u);
  EXPECT_EQ(core.url(), std::nullopt);
}

TEST(EngineCoreDocuments, ADroppedScriptsCompletionHearsItNeverRan) {
  std::optional<ScriptResult> heard;
  EngineCore::dropped([&](ScriptResult r) { heard = r; });
  ASSERT_TRUE(heard);
  EXPECT_TRUE(heard->dropped);
  EXPECT_FALSE(heard->value);
  EXPECT_FALSE(heard->error);
  EngineCore::dropped(nullptr);  // no completion: nothing to tell
}

// ---- Script-message handlers -----------------------------------------------------

struct Counting final : ScriptMessageHandler {
  int received = 0;
  void userContentController(const ScriptMessage&) override { ++received; }
};

TEST(EngineCoreHandlers, TheFirstHandlerOfANameKeepsItAndAGoneOneTakesNothing) {
  Core c;
  auto first = std::make_shared<Counting>();
  auto second = std::make_shared<Counting>();
  EXPECT_TRUE(c.core->addHandler(first, "nativeRequest"));
  EXPECT_FALSE(c.core->addHandler(second, "nativeRequest"));
  EXPECT_TRUE(c.core->addHandler(second, "other"));
  EXPECT_EQ(c.core->handlerNames(), (std::vector<std::string>{"nativeRequest", "other"}));

  EXPECT_TRUE(c.core->deliver(ScriptMessage{"nativeRequest", nullptr, {}}));
  EXPECT_FALSE(c.core->deliver(ScriptMessage{"unknown", nullptr, {}}));
  EXPECT_EQ(first->received, 1);
  EXPECT_EQ(second->received, 0);

  second.reset();
  EXPECT_FALSE(c.core->deliver(ScriptMessage{"other", nullptr, {}})) << "held weakly: a gone handler takes nothing";
  EXPECT_TRUE(c.core->hasHandler("other")) << "until its name is removed";
  EXPECT_TRUE(c.core->removeHandler("other"));
  EXPECT_FALSE(c.core->removeHandler("other"));
}

// ---- Navigations and the load's timeout ----------------------------------------

TEST(EngineCoreNavigation, EventsGoToTheClientWithTheNavigationLastStarted) {
  Core c;
  c.core->finished();
  c.core->startNavigation("https://a.test/");
  c.core->navigation()->url = "https://a.test/home";  // where it committed
  c.core->finished();
  c.core->startNavigation("https://b.test/");
  c.core->failed(true, WebSDKError{"net", 1, "gone", false});
  c.core->failed(false, WebSDKError{"net", 2, "refused", false});
  EXPECT_EQ(c.client.events,
            (std::vector<std::string>{"finish none", "start 1 https://a.test/", "finish 1 https://a.test/home",
                                      "start 2 https://b.test/", "fail 2 https://b.test/ gone",
                                      "failProvisional 2 https://b.test/ net 2"}));
}

// The time runs from the load's start, never from the request: a delegate's
// time to allow it is not the network's. Rows: seconds asked, milliseconds
// until it fires (none: never).
TEST(EngineCoreTimeout, RunsFromTheStartForWholeMillisecondsRoundedUp) {
  struct Row {
    double seconds;
    std::optional<int> firesAfter;
  };
  const Row rows[] = {{1.5, 1500},
                      {0.0001, 1},
                      {2.0005, 2001},
                      {0, std::nullopt},
                      {-3, std::nullopt},
                      {std::nan(""), std::nullopt},
                      {std::numeric_limits<double>::infinity(), std::nullopt}};
  for (const auto& row : rows) {
    Core c;
    c.core->expectLoad(row.seconds);
    c.queue.advance(1h);
    EXPECT_TRUE(c.stopped.empty()) << "not started yet: " << row.seconds;

    c.core->startNavigation("https://slow.test/");
    if (!row.firesAfter) {
      c.queue.advance(std::chrono::hours(24 * 365));
      EXPECT_TRUE(c.stopped.empty()) << row.seconds;
      continue;
    }
    c.queue.advance(std::chrono::milliseconds(*row.firesAfter - 1));
    EXPECT_TRUE(c.stopped.empty()) << "early: " << row.seconds;
    c.queue.advance(1ms);
    EXPECT_EQ(c.stopped, (std::vector<std::string>{"https://slow.test/"})) << row.seconds;
    EXPECT_EQ(c.client.events.back(), "failProvisional 1 https://slow.test/ net -7 timeout");
  }
}

TEST(EngineCoreTimeout, OnlyTheLoadItBelongsToTimesOut) {
  struct Row {
    const char* name;
    std::function<void(Core&)> between;  // after the start, before the time is up
    bool timesOut;
  };
  const Row rows[] = {
      {"committed", [](Core& c) { c.core->disarmTimeout(); }, false},
      {"another load asked for", [](Core& c) { c.core->expectLoad(60); }, false},
      {"closed", [](Core& c) { c.core->close(); }, false},
      {"a redirect's start, which has no timeout of its own",
       [](Core& c) { c.core->startNavigation("https://hop.test/"); }, true},
  };
  for (const auto& row : rows) {
    Core c;
    c.core->expectLoad(1);
    c.core->startNavigation("https://slow.test/");
    row.between(c);
    c.queue.advance(2s);
    EXPECT_EQ(!c.stopped.empty(), row.timesOut) << row.name;
  }

  Core refused;
  refused.core->expectLoad(1);
  refused.core->loadRefused();
  refused.core->startNavigation("https://other.test/");
  refused.queue.advance(2s);
  EXPECT_TRUE(refused.stopped.empty()) << "a refused load's timeout does not pass to the next navigation";
}

TEST(EngineCoreTimeout, AnEngineWithNothingShownSaysNothing) {
  Core c;
  c.showing = false;
  c.core->expectLoad(1);
  c.core->startNavigation("https://slow.test/");
  c.queue.advance(1s);
  EXPECT_EQ(c.client.events, (std::vector<std::string>{"start 1 https://slow.test/"}));
}

// A client may destroy the engine when told its load timed out: the core
// lives on to the end of the call, counting the event as under way.
TEST(EngineCoreTimeout, TheClientMayDestroyTheEngineWhenTold) {
  Core c;
  std::weak_ptr<EngineCore> weak = c.core;
  bool emittingWhenTold = false;
  c.client.onFailure = [&] {
    emittingWhenTold = c.core->emitting();
    c.core.reset();
  };
  c.core->expectLoad(1);
  c.core->startNavigation("https://slow.test/");
  c.queue.advance(1s);
  EXPECT_TRUE(emittingWhenTold);
  EXPECT_TRUE(weak.expired());
}

// ---- Pinch-zoom ------------------------------------------------------------------

TEST(EngineCorePinch, TheClientAnswersAtEachStartAndWithoutOneTheLastAnswerStands) {
  Core c;
  EXPECT_TRUE(c.core->pinchEnabled()) << "before any pinch";
  EXPECT_FALSE(c.core->pinchBegins());
  c.client.pinchAnswer = true;
  EXPECT_TRUE(c.core->pinchBegins());
  c.core->setClient(nullptr);
  c.client.pinchAnswer = false;
  EXPECT_TRUE(c.core->pinchBegins());
  EXPECT_EQ(c.client.events, (std::vector<std::string>{"pinch", "pinch"}));
}

}  // namespace
}  // namespace websdk
