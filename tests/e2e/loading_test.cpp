// Loading, headers, the header script and navigation, against the real engine and a
// loopback server.

#include "E2E.hpp"

namespace websdk::e2e {
namespace {

TEST_F(E2ETest, AppHeadersReachOnlyWhitelistedHostsAndExternalHeadersWin) {
  const WebSDKHeaders app{{"token", "a"}, {"platform", "linux"}};
  const WebSDKHeaders external{{"token", "b"}, {"x-extra", "1"}};
  using Expected = std::map<std::string, std::optional<std::string>>;
  struct Row {
    std::string host;
    std::optional<WebSDKHeaders> external;
    Expected expected;
  };
  // "localhost" reaches the same server but does not contain "127.0.0.1".
  const Row rows[] = {
      {"127.0.0.1", external, {{"token", "b"}, {"platform", "linux"}, {"x-extra", "1"}}},
      {"127.0.0.1", std::nullopt, {{"token", "a"}, {"platform", "linux"}, {"x-extra", std::nullopt}}},
      {"localhost", external, {{"token", "b"}, {"platform", std::nullopt}, {"x-extra", "1"}}},
      {"localhost", std::nullopt, {{"token", std::nullopt}, {"platform", std::nullopt}, {"x-extra", std::nullopt}}},
  };
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    const auto& row = rows[i];
    const std::string path = "/headers" + std::to_string(i);
    server.page(path, testPage());
    ASSERT_TRUE(loadAndWait(server.url(path, row.host), app, row.external)) << path;
    const auto seen = server.requestsTo(path);
    ASSERT_EQ(seen.size(), 1u) << path;
    for (const auto& [name, value] : row.expected) EXPECT_EQ(seen[0].header(name), value) << row.host << " " << name;
  }
}

TEST_F(E2ETest, RedirectsCarryTheAppsHeadersOnlyToWhitelistedHosts) {
  if (!engine::limits().otherServers.empty()) GTEST_SKIP() << engine::limits().otherServers;
  const WebSDKHeaders app{{"token", "a"}, {"platform", "linux"}};
  const WebSDKHeaders external{{"x-extra", "1"}, {"Platform", "page"}};
  using Expected = std::map<std::string, std::optional<std::string>>;
  const Expected appOnly{{"token", "a"}, {"platform", "linux"}, {"x-extra", std::nullopt}};
  const Expected none{{"token", std::nullopt}, {"platform", std::nullopt}, {"x-extra", std::nullopt}};
  const Expected externalOnly{{"token", std::nullopt}, {"platform", "page"}, {"x-extra", "1"}};
  struct Row {
    std::vector<std::string> hops;  // hosts the load passes through, the page last
    int status;
    std::optional<WebSDKHeaders> external;
    Expected atPage;
  };
  // "localhost" reaches the same server but is not whitelisted.
  const Row rows[] = {
      {{"127.0.0.1", "localhost"}, 302, std::nullopt, none},
      {{"127.0.0.1", "localhost"}, 307, std::nullopt, none},
      {{"127.0.0.1", "127.0.0.1"}, 302, std::nullopt, appOnly},
      {{"127.0.0.1", "127.0.0.1", "localhost"}, 301, std::nullopt, none},
      // Once off the trusted hosts, a load does not get the app's headers back.
      {{"127.0.0.1", "localhost", "127.0.0.1"}, 302, std::nullopt, none},
      {{"localhost", "127.0.0.1"}, 302, std::nullopt, none},
      {{"127.0.0.1", "localhost"}, 302, external, externalOnly},
  };
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    const auto& row = rows[i];
    const std::string base = "/redirect" + std::to_string(i) + "/";
    const std::size_t last = row.hops.size() - 1;
    for (std::size_t hop = 0; hop < last; ++hop)
      server.redirect(base + std::to_string(hop), server.url(base + std::to_string(hop + 1), row.hops[hop + 1]),
                      row.status);
    server.page(base + std::to_string(last), testPage());
    ASSERT_TRUE(loadAndWait(server.url(base + "0", row.hops[0]), app, row.external)) << base;
    for (std::size_t hop = 0; hop <= last; ++hop) {
      const auto seen = server.requestsTo(base + std::to_string(hop));
      ASSERT_EQ(seen.size(), 1u) << base << hop;
      // The mark the module reads a load's first request by never leaves.
      EXPECT_EQ(seen[0].header("x-websdk-load"), std::nullopt) << base << hop;
      if (row.hops[hop] != "127.0.0.1") {
        EXPECT_EQ(seen[0].header("token"), std::nullopt) << base << hop;
        EXPECT_EQ(seen[0].header("x-websdk-confined"), std::nullopt) << base << hop;
      }
    }
    const auto atPage = server.requestsTo(base + std::to_string(last));
    for (const auto& [name, value] : row.atPage) EXPECT_EQ(atPage[0].header(name), value) << base << " " << name;
  }
}

TEST_F(E2ETest, AnInvalidURLLoadsNothing) {
  if (!engine::limits().navigationQuestions.empty()) GTEST_SKIP() << engine::limits().navigationQuestions;
  server.page("/after", testPage());
  view->loadWebView("http://exa mple.com/", {{"token", "a"}}, std::nullopt, 30);
  ASSERT_TRUE(loadAndWait(server.url("/after")));
  EXPECT_EQ(delegate->actions, std::vector<std::string>{server.url("/after")});
  EXPECT_EQ(delegate->started.size(), 1u);
}

TEST_F(E2ETest, HeaderObjectIsThereFromDocumentStartAndTheLastScriptWins) {
  view->executeJSScript(WebSDKAppFunctions::nativeHeaders(R"({"token":"first"})"));
  view->executeJSScript(WebSDKAppFunctions::nativeHeaders(R"({"token":"second","cityId":"7"})"));
  server.page("/page", testPage());
  ASSERT_TRUE(loadAndWait(server.url("/page")));
  ASSERT_TRUE(waitFor([&] { return !page->of("ready").empty(); }));
  // Read by the page's first script, before anything of its own ran.
  EXPECT_EQ(page->of("ready")[0], parseJSON(R"({"headersAtStart":"{\"token\":\"second\",\"cityId\":\"7\"}"})"));
  EXPECT_EQ(evaluate("window.__native_headers__.getDovaraHeaders()"), JSON(R"({"token":"second","cityId":"7"})"));
}

TEST_F(E2ETest, JavaScriptCanBeSwitchedOffAndOnAgain) {
  server.page("/page", testPage());
  view->setJavaScriptEnabled(false);
  ASSERT_TRUE(loadAndWait(server.url("/page")));
  view->setJavaScriptEnabled(true);
  ASSERT_TRUE(loadAndWait(server.url("/page")));
  ASSERT_TRUE(waitFor([&] { return !page->of("ready").empty(); }));
  // Only the second load ran the page's script.
  EXPECT_EQ(page->of("ready").size(), 1u);
}

TEST_F(E2ETest, ADelegateThatCancelsStopsTheNavigation) {
  if (!engine::limits().navigationQuestions.empty()) GTEST_SKIP() << engine::limits().navigationQuestions;
  delegate->actionPolicy = [](const WebSDKNavigationAction& action) {
    return action.url.ends_with("/blocked") ? WebSDKNavigationActionPolicy::cancel
                                            : WebSDKNavigationActionPolicy::allow;
  };
  server.page("/blocked", testPage());
  server.page("/after", testPage());
  view->loadWebView(server.url("/blocked"), {}, std::nullopt, 0.3);
  ASSERT_TRUE(waitFor([&] { return !delegate->actions.empty(); }));
  // Refused, not slow: its short timeout reports nothing.
  EXPECT_FALSE(waitFor([&] { return !delegate->provisionalFailures.empty(); }, 600ms));
  // A later load shows the cancelled one never went out.
  ASSERT_TRUE(loadAndWait(server.url("/after")));
  EXPECT_TRUE(server.requestsTo("/blocked").empty());
  EXPECT_EQ(delegate->started, std::vector<std::string>{server.url("/after")});
}

TEST_F(E2ETest, WithoutADelegateTheNavigationNeverProceeds) {
  if (!engine::limits().navigationQuestions.empty()) GTEST_SKIP() << engine::limits().navigationQuestions;
  makeView({"127.0.0.1"}, nullptr);
  server.page("/page", testPage());
  view->loadWebView(server.url("/page"), {}, std::nullopt, 30);
  // The question is held unanswered: nothing reaches the server.
  EXPECT_FALSE(waitFor([&] { return !server.requests().empty() || !page->reports.empty(); }, 1500ms));
}

TEST_F(E2ETest, ALoadThatDoesNotCommitInTimeIsReportedAsTimedOut) {
  if (!engine::limits().navigationQuestions.empty()) GTEST_SKIP() << engine::limits().navigationQuestions;
  // A first page starts the web process, so the short bound below is spent
  // waiting on the server alone.
  server.page("/first", testPage());
  ASSERT_TRUE(loadAndWait(server.url("/first")));
  server.hold("/slow");
  view->loadWebView(server.url("/slow"), {}, std::nullopt, 0.5);
  ASSERT_TRUE(waitFor([&] { return !delegate->provisionalFailures.empty(); }));
  EXPECT_EQ(server.requestsTo("/slow").size(), 1u);
  EXPECT_TRUE(delegate->provisionalFailures[0].second.isTimeout);
  EXPECT_EQ(delegate->provisionalFailures[0].first, server.url("/slow"));

  // The engine's own stop is not reported as a second failure, and the view
  // stays usable.
  server.page("/next", testPage());
  ASSERT_TRUE(loadAndWait(server.url("/next")));
  EXPECT_EQ(delegate->provisionalFailures.size(), 1u);
  EXPECT_TRUE(delegate->committedFailures.empty());
}

TEST_F(E2ETest, AuthenticationChallengesAreAnsweredByTheDelegate) {
  if (!engine::limits().navigationQuestions.empty()) GTEST_SKIP() << engine::limits().navigationQuestions;
  server.protect("/private", "user", "secret");
  server.page("/private", testPage());
  delegate->challengeAnswer = [](const WebSDKAuthenticationChallenge&, WebSDKAuthChallengeCompletion done) {
    done(WebSDKAuthChallengeDisposition::useCredential, WebSDKURLCredential{"user", "secret"});
  };
  ASSERT_TRUE(loadAndWait(server.url("/private")));
  ASSERT_EQ(delegate->challenges.size(), 1u);
  EXPECT_EQ(delegate->challenges[0].host, "127.0.0.1");
  EXPECT_EQ(delegate->challenges[0].realm, "websdk-e2e");
  EXPECT_EQ(delegate->challenges[0].authenticationMethod, "httpBasic");
  EXPECT_TRUE(server.requestsTo("/private").back().header("authorization").has_value());
}

}  // namespace
}  // namespace websdk::e2e
