// Frames against the real engine: a message reaches a plugin only when its
// top document is trusted (and, judging frames by their own host, its frame
// too), whatever the frames between them; an answer never reaches an
// untrusted document; and the top page's scripts neither read nor stop a
// frame's messages on their way to the app.

#include "E2E.hpp"

namespace websdk::e2e {
namespace {

// A script that posts the cart request `id` to the bridge from its own document.
std::string postScript(const std::string& id) {
  return "window.webkit.messageHandlers.nativeRequest.postMessage(" +
         serialize(JSON(JSONObject{{"message", cartRequest(id)}})) + ");";
}

// How the frame that posts is made inside its parent.
enum class Child { page, srcdoc, data, blob, blank };

// A parent page's body that makes a child of `kind` posting `id`; `url` is
// the child's address when it is a page of its own.
std::string childOf(Child kind, const std::string& id, const std::string& url) {
  if (kind == Child::page) return "<iframe src='" + url + "'></iframe>";
  // A string of the parent's script: "</" would end that script early.
  std::string markup = serialize(JSON("<!doctype html><script>" + postScript(id) + "</script>"));
  for (std::size_t at = 0; (at = markup.find("</", at)) != std::string::npos; at += 3) markup.replace(at, 2, "<\\/");
  std::string make = "const f = document.createElement('iframe');";
  switch (kind) {
    case Child::srcdoc: make += "f.srcdoc = " + markup + "; document.body.appendChild(f);"; break;
    case Child::data:
      make += "f.src = 'data:text/html,' + encodeURIComponent(" + markup + "); document.body.appendChild(f);";
      break;
    case Child::blob:
      make +=
          "f.src = URL.createObjectURL(new Blob([" + markup + "], {type: 'text/html'})); document.body.appendChild(f);";
      break;
    case Child::blank: make += "document.body.appendChild(f); f.contentWindow." + postScript(id); break;
    case Child::page: break;
  }
  return "<script>addEventListener('load', () => {" + make + "});</script>";
}

class FramesTest : public E2ETest {
 protected:
  static constexpr const char* kTrusted = "127.0.0.1";
  static constexpr const char* kUntrusted = "127.0.0.3";

  void makeFramedView(bool byFrame) {
    WebSDKConfig config;
    config.whitelistedHosts = {kTrusted};
    config.judgesFramesByTheirOwnHost = byFrame;
    makeView(config, delegate);
    cart = std::make_shared<IdRecordingCart>();
    view->setCartPlugin(cart);
  }
  // Whether the bridge has heard the request `id`, whatever it made of it.
  bool heard(const std::string& id) const {
    return std::ranges::any_of(listener->requests, [&](const std::string& r) { return r == cartRequest(id); });
  }
  std::optional<WebSDKResponseModel> answered(const std::string& id) const {
    for (const auto& r : listener->responses)
      if (r.requestId == id) return r;
    return std::nullopt;
  }
  std::vector<JSON> topResponsesTo(const std::string& id) const {
    std::vector<JSON> out;
    for (const auto& r : page->of("nativeResponse"))
      if (r.at("requestId") == JSON(id)) out.push_back(r);
    return out;
  }
  std::shared_ptr<IdRecordingCart> cart;
};

// Every row under both frame settings: a top page, the frames down to the
// one that posts, and whether that frame's own host is trusted.
TEST_F(FramesTest, AMessageIsServedOnlyWhenItsTopDocumentIsTrusted) {
  if (!engine::limits().otherServers.empty()) GTEST_SKIP() << engine::limits().otherServers;
  struct Row {
    const char* name;
    bool topTrusted;
    std::vector<const char*> between;  // the hosts of the frame pages between the top and the sender
    Child sender;
    const char* senderHost;  // for a sender that is a page of its own
    bool senderTrusted;
  };
  const Row rows[] = {
      {"untrusted frame in a trusted top", true, {}, Child::page, kUntrusted, false},
      {"trusted frame in an untrusted top", false, {}, Child::page, kTrusted, true},
      {"trusted frame under an untrusted frame, trusted top", true, {kUntrusted}, Child::page, kTrusted, true},
      {"trusted frame under a trusted frame, untrusted top", false, {kTrusted}, Child::page, kTrusted, true},
      {"untrusted frame under a trusted frame, trusted top", true, {kTrusted}, Child::page, kUntrusted, false},
      {"srcdoc child of a trusted frame, trusted top", true, {kTrusted}, Child::srcdoc, nullptr, false},
      {"srcdoc child of a trusted frame, untrusted top", false, {kTrusted}, Child::srcdoc, nullptr, false},
      {"data: child of a trusted frame, trusted top", true, {kTrusted}, Child::data, nullptr, false},
      {"data: child of a trusted frame, untrusted top", false, {kTrusted}, Child::data, nullptr, false},
      {"blob: child of a trusted frame, trusted top", true, {kTrusted}, Child::blob, nullptr, false},
      {"blob: child of a trusted frame, untrusted top", false, {kTrusted}, Child::blob, nullptr, false},
      {"blank child of a trusted frame, trusted top", true, {kTrusted}, Child::blank, nullptr, false},
      {"blank child of a trusted frame, untrusted top", false, {kTrusted}, Child::blank, nullptr, false},
  };
  const bool blankFrames = engine::limits().blankFrames.empty();
  if (!blankFrames) std::printf("no blank frame's rows: %s\n", std::string(engine::limits().blankFrames).c_str());
  int n = 0;
  for (const bool byFrame : {false, true}) {
    makeFramedView(byFrame);
    for (const auto& row : rows) {
      SCOPED_TRACE(std::string(row.name) + (byFrame ? ", frames by their own host" : ", frames by the top page"));
      if (row.sender == Child::blank && !blankFrames) continue;
      const std::string id = "f" + std::to_string(n++), at = "/" + id;
      // Built from the sender up: each page frames the next.
      std::string senderURL;
      if (row.sender == Child::page) {
        senderURL = server.url(at + "/sender", row.senderHost);
        server.page(at + "/sender", "<!doctype html><script>" + postScript(id) + "</script>");
      }
      std::string body = childOf(row.sender, id, senderURL);
      for (std::size_t i = row.between.size(); i-- > 0;) {
        const std::string path = at + "/between" + std::to_string(i);
        server.page(path, "<!doctype html><body>" + body + "</body>");
        body = childOf(Child::page, id, server.url(path, row.between[i]));
      }
      server.page(at + "/top", testPage(body));
      ASSERT_TRUE(loadAndWait(server.url(at + "/top", row.topTrusted ? kTrusted : kUntrusted)));
      ASSERT_TRUE(waitFor([&] { return heard(id); })) << "the sender's message never reached the bridge";

      const bool delivered = row.topTrusted && (!byFrame || row.senderTrusted);
      EXPECT_EQ(std::ranges::count(cart->ids, id), delivered ? 1 : 0);
      if (delivered) {
        view->sendWebSDKResponse(JSONObject{{"items", 2}}, WebSDKResponseType::success, id);
        ASSERT_TRUE(waitFor([&] { return !topResponsesTo(id).empty(); }));
        EXPECT_EQ(topResponsesTo(id)[0].at("statusCode"), JSON(0));
        continue;
      }
      // A trusted top hears why; an untrusted one hears nothing of the frame's request.
      const auto refusal = answered(id);
      EXPECT_EQ(refusal.has_value(), row.topTrusted);
      if (refusal) {
        EXPECT_EQ(refusal->statusCode, 1005);
        ASSERT_TRUE(waitFor([&] { return !topResponsesTo(id).empty(); }));
        continue;
      }
      // An answer the host sends all the same reaches no untrusted page.
      const std::size_t drops = listener->dropped.size();
      view->sendWebSDKResponse(JSONObject{{"card", "4111"}}, WebSDKResponseType::success, id);
      ASSERT_TRUE(waitFor([&] { return listener->dropped.size() > drops; }));
      EXPECT_EQ(listener->dropped.back().first.requestId, id);
      EXPECT_TRUE(topResponsesTo(id).empty());
    }
  }
}

// The top page listens first for every message event on its window, and
// stops each; its trusted frame's messages still reach the app, and the page
// reads none of them, under either frame setting and whether the page is
// trusted or not.
TEST_F(FramesTest, ATopPageNeitherReadsNorStopsItsFramesMessages) {
  if (!engine::limits().otherServers.empty()) GTEST_SKIP() << engine::limits().otherServers;
  const std::string spy = R"(<script>
const seen = e => { try { return JSON.stringify(e.data) || String(e.data); } catch (x) { return String(e.data); } };
for (const capture of [true, false])
  window.addEventListener('message', e => {
    e.stopImmediatePropagation();
    e.stopPropagation();
    report('seen', {data: seen(e), ports: e.ports.length});
    for (const p of e.ports) { p.onmessage = m => report('seen', {port: seen(m)}); }
  }, capture);
window.onmessage = e => report('seen', {onmessage: seen(e)});
</script>)";
  int n = 0;
  for (const bool byFrame : {false, true})
    for (const bool topTrusted : {true, false}) {
      SCOPED_TRACE(std::string(topTrusted ? "trusted" : "untrusted") + " top, " +
                   (byFrame ? "frames by their own host" : "frames by the top page"));
      makeFramedView(byFrame);
      const std::string first = "p" + std::to_string(n++), second = "p" + std::to_string(n++);
      const std::string at = "/" + first;
      server.page(at + "/frame", "<!doctype html><script>" + postScript(first) + "setTimeout(() => {" +
                                     postScript(second) + "}, 50);</script>");
      server.page(at + "/top", testPage(spy + "<iframe src='" + server.url(at + "/frame", kTrusted) + "'></iframe>"));
      ASSERT_TRUE(loadAndWait(server.url(at + "/top", topTrusted ? kTrusted : kUntrusted)));
      ASSERT_TRUE(waitFor([&] { return heard(first) && heard(second); }));
      EXPECT_EQ(cart->ids.size(), topTrusted ? 2u : 0u);
      // Anything the page saw was reported before the messages arrived.
      ASSERT_TRUE(evaluate("1").has_value());
      const auto seen = page->of("seen");
      EXPECT_TRUE(seen.empty()) << "the page saw " << serialize(JSON(JSONArray(seen.begin(), seen.end())));
    }
}

}  // namespace
}  // namespace websdk::e2e
