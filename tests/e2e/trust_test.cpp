// Trust follows the document that sent the message, against the real engine: a load
// still pending lends its URL to nobody, answers never reach a later
// document, and hosts are read as WebKit reads them. Frames have a suite of
// their own (frames_test.cpp).

#include "E2E.hpp"

namespace websdk::e2e {
namespace {

class TrustTest : public E2ETest {
 protected:
  std::vector<JSON> responses() const { return page->of("nativeResponse"); }
  std::optional<JSON> responseTo(const std::string& id) const {
    for (const auto& r : responses())
      if (r.at("requestId") == JSON(id)) return r;
    return std::nullopt;
  }
  std::shared_ptr<IdRecordingCart> cart = std::make_shared<IdRecordingCart>();
};

// The app loads a trusted page while an untrusted one is still shown, and the
// server holds the new page's response: the old page keeps posting, and is
// judged (and answered) as what it is.
TEST_F(TrustTest, APageIsJudgedByItsOwnURLWhileTheNextLoadIsPending) {
  if (!engine::limits().navigationQuestions.empty()) GTEST_SKIP() << engine::limits().navigationQuestions;
  view->setCartPlugin(cart);
  server.page("/untrusted", testPage());
  server.hold("/trusted");
  ASSERT_TRUE(loadAndWait(server.url("/untrusted", "localhost")));
  view->loadWebView(server.url("/trusted"), {{"token", "t"}}, std::nullopt, 30);
  ASSERT_TRUE(waitFor([&] { return !server.requestsTo("/trusted").empty(); }));
  for (int i = 0; i < 5; ++i) postFromPage(cartRequest("old-" + std::to_string(i)));
  // The same page tries other ways in: a frame it makes now, and the
  // handler's method called by hand.
  const auto body = [](const std::string& id) { return serialize(JSON(JSONObject{{"message", cartRequest(id)}})); };
  const bool blankFrames = engine::limits().blankFrames.empty();
  if (!blankFrames) std::printf("no blank frame's post: %s\n", std::string(engine::limits().blankFrames).c_str());
  view->engine().evaluateJavaScript(
      std::string(blankFrames ? "const f = document.createElement('iframe'); document.body.appendChild(f);"
                                "f.contentWindow.webkit.messageHandlers.nativeRequest.postMessage(" +
                                    body("framed") + ");"
                              : "") +
          "const h = window.webkit.messageHandlers.nativeRequest;"
          "Object.getPrototypeOf(h).postMessage.call(h, " +
          body("by-hand") + ");",
      nullptr);
  // The frame's refusal is not told to the page, which is not trusted.
  const auto heardFramed = [&] { return std::ranges::count(listener->requests, cartRequest("framed")) == 1; };
  ASSERT_TRUE(waitFor([&] { return responses().size() >= 6u && (!blankFrames || heardFramed()); }));
  EXPECT_TRUE(cart->ids.empty()) << "no request of the untrusted page reached the plugin";
  EXPECT_EQ(responses().size(), 6u);
  for (const auto& r : responses()) {
    EXPECT_EQ(r.at("statusCode"), JSON(1005));
    EXPECT_EQ(r.at("statusMessage"), JSON(server.url("/untrusted", "localhost")));
  }
}

// An untrusted page that knows how pages reach the app on every engine tries
// the channel's own ways in: the events that carry a message, a frame's
// message it makes up with a trusted URL, a new document mark. None reaches
// the plugin; what is judged at all is judged by the page's own URL.
TEST_F(TrustTest, AnUntrustedPageCannotSpeakForATrustedOne) {
  view->setCartPlugin(cart);
  server.page("/untrusted", testPage());
  ASSERT_TRUE(loadAndWait(server.url("/untrusted", "localhost")));
  const std::string trusted = server.url("/", "127.0.0.1");
  const auto message = [](const std::string& id) { return serialize(JSON(cartRequest(id))); };
  view->engine().evaluateJavaScript(
      "window.dispatchEvent(new CustomEvent('websdk:hello', {detail: 'forged'}));"
      "try { Object.defineProperty(window, '__websdkDocument', {value: 'forged'}); } catch (e) {}"
      "window.dispatchEvent(new CustomEvent('websdk:post', {detail: ['nativeRequest', " +
          message("event") +
          ", true]}));"
          "window.postMessage({websdkFrame: ['post', 'forged', " +
          serialize(JSON(trusted)) + ", 'nativeRequest', " + message("frame") +
          ", 10, false]}, '*');"
          "window.webkit.messageHandlers.nativeRequest.postMessage({message: " +
          message("plain") + "});",
      nullptr);
  // The plain post is always judged; the others may be, and come before it.
  ASSERT_TRUE(waitFor([&] { return responseTo("plain").has_value(); }));
  waitFor([] { return false; }, std::chrono::milliseconds(300));
  EXPECT_TRUE(cart->ids.empty()) << "a forged message reached the plugin";
  for (const auto& r : responses()) {
    EXPECT_EQ(r.at("statusCode"), JSON(1005));
    EXPECT_EQ(r.at("statusMessage"), JSON(server.url("/untrusted", "localhost")));
  }
}

// A trusted page asks, the view moves on, the host answers late: the next
// document sees nothing, whoever it is, and the listener hears of the drop.
TEST_F(TrustTest, ALateAnswerNeverReachesTheNextDocument) {
  makeView({"127.0.0.1", "127.0.0.2"}, delegate);
  view->setCartPlugin(cart);
  server.page("/a", testPage());
  server.page("/b", testPage());
  const std::pair<const char*, bool> nextHosts[] = {{"127.0.0.1", true}, {"127.0.0.2", true}, {"127.0.0.3", false}};
  int round = 0;
  for (const auto& [host, trusted] : nextHosts) {
    SCOPED_TRACE(host);
    const std::string late = "late-" + std::to_string(round), probe = "probe-" + std::to_string(round++);
    ASSERT_TRUE(loadAndWait(server.url("/a")));
    postFromPage(cartRequest(late));
    ASSERT_TRUE(waitFor([&] { return !cart->ids.empty() && cart->ids.back() == late; }));
    const std::size_t reportsBefore = page->reports.size();
    ASSERT_TRUE(loadAndWait(server.url("/b", host)));
    ASSERT_TRUE(waitFor([&] { return page->reports.size() > reportsBefore; }));  // /b is ready

    const std::size_t drops = listener->dropped.size(), pushDrops = listener->droppedPushes.size();
    view->sendSuccess(late);
    view->executeJSFunction(WebSDKJSFunctionType::userStateChange(true));
    // The page's own request is answered (1004 or 1005): everything sent
    // before it has had its chance to arrive.
    postFromPage(R"({"type":"NO_SUCH_ACTION","requestId":")" + probe + "\"}");
    ASSERT_TRUE(waitFor([&] { return responseTo(probe).has_value(); }));
    EXPECT_EQ(responseTo(late), std::nullopt);
    ASSERT_TRUE(waitFor([&] { return listener->dropped.size() > drops; }));
    EXPECT_EQ(listener->dropped.back().first.requestId, late);
    EXPECT_EQ(listener->dropped.back().second, WebSDKDropReason::documentGone);
    // Pushes reach a trusted page only.
    const auto pushes = page->of("call");
    const bool pushed =
        std::ranges::any_of(pushes, [](const JSON& c) { return c.at("name") == "LOGIN_STATE_CHANGED"; });
    EXPECT_EQ(pushed, trusted);
    EXPECT_EQ(listener->droppedPushes.size() > pushDrops, !trusted);
    page->reports.clear();
  }
}

// Hosts as the engine reads them: the WebSDK's canonical form of each URL
// gives the host the page itself sees in `new URL(url).hostname`.
TEST_F(TrustTest, HostsAreReadAsThePageReadsThem) {
  if (!engine::limits().otherServers.empty()) GTEST_SKIP() << engine::limits().otherServers;
  server.page("/page", testPage());
  ASSERT_TRUE(loadAndWait(server.url("/page")));
  const char* urls[] = {
      "https://Shop.Example/",
      "https://shop.example./",
      "HTTP://SHOP.EXAMPLE/x",
      "https://0127.0.0.1/",
      "http://0x7f.1/",
      "http://127.1/",
      "http://2130706433/",
      "http://1.2.3.4.5/",
      "http://999.1.1.1/",
      "http://0x100000000/",
      "https://user:pw@shop.example:8443/x",
      "https://shop.example@evil.test/",
      "https://[::1]:8080/",
      "https://[0:0::1]/",
      "https://[::FFFF:127.0.0.1]/",
      "https://[::1/",
      "https://bücher.de/",
      "https://xn--bcher-kva.de/",
      "https://ÉXAMPLE.com/",
      "https://exa%6Dple.com/",
      "https://%41.example/",
      "https://exa mple.com/",
      "https://shop.example/?f={a:1}|b",
      "https://shop.example/sale/50%",
      "https://shop.example/a^b`c\\d",
      "https://shop.example/#{x}|^`",
      "https://shop.example/ space",
      "  https://shop.example/\t",
      "http:shop.example/x",
      "http:\\\\shop.example\\x",
      "https://shop.example:443/",
      "ws://shop.example/",
      "wss://Shop.example/",
      "ftp://files.example/",
      "data:text/html,<p>hi</p>",
      "about:blank",
      "about:srcdoc",
      "file:///etc/hosts",
      "file://server/share",
      "file://localhost/x",
      "blob:https://shop.example/0b3f",
      "javascript:alert(1)",
      "mailto:a@shop.example",
      "app://checkout/index.html",
      "app://CheckOut/",
      "foo://host:99/p",
      "not a url",
  };
  for (const char* url : urls) {
    SCOPED_TRACE(url);
    // A space marks no URL: no hostname holds one, and every engine hands a string back.
    const auto seen = evaluate("(function (u) { try { return new URL(u).hostname; } catch (e) { return ' '; } })(" +
                               serialize(JSON(url)) + ")");
    ASSERT_TRUE(seen.has_value());
    const auto canonical = view->webSDKConfig.canonicalizer(url);
    if (*seen == JSON(" ")) {
      EXPECT_EQ(canonical, std::nullopt) << "the page reads no URL here";
      continue;
    }
    // A host the page reads that no whitelist entry can name, empty or with an
    // escape left in it (Chromium 102 reads "exa mple.com" as "exa%20mple.com",
    // and "foo://host:99/p" as hostless): reading no URL there refuses what
    // would be refused anyway.
    if (!canonical && (seen->as_string().empty() || seen->as_string().find('%') != std::string::npos)) continue;
    ASSERT_TRUE(canonical.has_value());
    EXPECT_EQ(std::string(hostOf(*canonical).value_or("")), std::string(seen->as_string()));
  }
}

// Characters WebKit keeps raw in a canonical URL do not make a trusted page
// untrusted, in its path, query or fragment.
TEST_F(TrustTest, TrustedPagesWithRawCharactersInTheirURLAreServed) {
  if (!engine::limits().rawPaths.empty()) GTEST_SKIP() << engine::limits().rawPaths;
  view->setCartPlugin(cart);
  server.fallback(testPage());
  const char* paths[] = {"/sale/50%", "/q?f={a:1}|b^`\\", "/p{x}|^`\\/y", "/f#{x}|^`%"};
  int i = 0;
  for (const char* path : paths) {
    SCOPED_TRACE(path);
    ASSERT_TRUE(loadAndWait(server.url(path)));
    const std::string id = "raw-" + std::to_string(i++);
    postFromPage(cartRequest(id));
    ASSERT_TRUE(waitFor([&] { return !cart->ids.empty() && cart->ids.back() == id; }));
  }
}

}  // namespace
}  // namespace websdk::e2e
