// What a host meets in its first hour with the real engine: the ready-made
// delegate, header text made from fields, misuses told through the log, and
// tear-down in either order.
#include "E2E.hpp"

#include "websdk/Log.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

namespace websdk::e2e {
namespace {

// Every message of the WebSDK's, and every GLib warning or critical of anyone's.
struct LogCapture {
  std::vector<std::string> websdk, glib;
  LogSink previous;
  GLogFunc previousHandler = nullptr;
  gpointer previousData = nullptr;
  LogCapture() {
    previous = setLogSink([this](const LogRecord& r) {
      if (r.level != LogLevel::debug) websdk.emplace_back(r.message);
    });
    previousHandler = g_log_set_default_handler(
        [](const gchar* domain, GLogLevelFlags level, const gchar* message, gpointer data) {
          if (level & (G_LOG_LEVEL_WARNING | G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_ERROR))
            static_cast<LogCapture*>(data)->glib.push_back(std::string(domain ? domain : "") + ": " + message);
        },
        this);
  }
  ~LogCapture() {
    g_log_set_default_handler(previousHandler, previousData);
    setLogSink(std::move(previous));
  }
  bool told(std::string_view words) const {
    return std::ranges::any_of(websdk, [&](const std::string& m) { return m.find(words) != std::string::npos; });
  }
};

TEST_F(E2ETest, TheReadyMadeDelegateKeepsTheViewOnItsTrustedHosts) {
  if (!engine::limits().navigationQuestions.empty()) GTEST_SKIP() << engine::limits().navigationQuestions;
  LogCapture log;
  auto trusted = std::make_shared<WebSDKTrustedHostsNavigationDelegate>();
  view->webSDKNavigationDelegate = trusted;
  server.page("/away", testPage());
  const std::string away = server.url("/away", "localhost");
  server.page("/start", testPage(R"(<a id="out" href=")" + away + R"(">out</a>)"));
  view->loadWebView(server.url("/start"), {{"token", "t"}}, std::nullopt, 30);
  ASSERT_TRUE(waitFor([&] { return !page->of("ready").empty(); }));
  ASSERT_EQ(server.requestsTo("/start").size(), 1u);
  EXPECT_EQ(server.requestsTo("/start")[0].header("token"), "t");
  const auto before = server.requestsTo("/away").size();
  evaluate("document.getElementById('out').click()");
  ASSERT_TRUE(waitFor([&] { return log.told("was cancelled: its host is not on the view's whitelist"); }));
  EXPECT_EQ(server.requestsTo("/away").size(), before) << "the main frame stays";
  EXPECT_EQ(view->url(), server.url("/start"));
}

TEST_F(E2ETest, HeaderTextMadeFromFieldsReachesThePageExactly) {
  const WebSDKHeaders fields{{"name", "O'Brien"}, {"quote", "say \"hi\""}, {"path", "C:\\dir\\"}, {"line", "a\nb"}};
  view->executeJSScript(WebSDKAppFunctions::nativeHeaders(fields));
  server.page("/page", testPage());
  ASSERT_TRUE(loadAndWait(server.url("/page")));
  const auto text = evaluate("window.__native_headers__.getDovaraHeaders()");
  ASSERT_TRUE(text && text->is_string());
  JSONObject expected;
  for (const auto& [name, value] : fields) expected.emplace(name, value);
  EXPECT_EQ(parseJSON(text->get_string()), JSON(expected));
}

TEST_F(E2ETest, AViewWithoutADelegateSaysWhyItStaysBlank) {
  if (!engine::limits().navigationQuestions.empty()) GTEST_SKIP() << engine::limits().navigationQuestions;
  LogCapture log;
  makeView({"127.0.0.1"}, nullptr);
  server.page("/page", testPage());
  view->loadWebView(server.url("/page"), {}, std::nullopt, 30);
  ASSERT_TRUE(waitFor([&] { return log.told("no navigation delegate is attached"); }));
  EXPECT_TRUE(server.requests().empty());
}

TEST(TearDown, WindowFirstOrViewFirstLeavesNoWarnings) {
  LoopbackServer server;
  server.page("/page", testPage());
  for (const bool windowFirst : {true, false}) {
    LogCapture log;
    engine::Window window;
    auto view = WebSDKWebView::create(engine::make(false), {"127.0.0.1"}, nullptr, nullptr,
                                      WebSDKTrustedHostsNavigationDelegate::shared());
    window.show(view->engine());
    view->loadWebView(server.url("/page"), {}, std::nullopt, 30);
    ASSERT_TRUE(waitFor([&] { return view->url().has_value(); }));
    view->sendSuccess("late");  // an answer still queued at tear-down
    if (windowFirst) {
      window.destroy();
      view.reset();
    } else {
      view.reset();
      window.destroy();
    }
    waitFor([] { return false; }, std::chrono::milliseconds(300));
    EXPECT_TRUE(log.glib.empty()) << (windowFirst ? "window first: " : "view first: ") << log.glib.front();
    EXPECT_TRUE(log.told("came after its web view was torn down"));
  }
}

// The README's "Local pages" snippet as a newcomer writes it: pages from a
// folder, and the ready-made delegate made inside the call. The view keeps
// that delegate (nothing else could), so the page loads, with the app's token.
TEST_F(E2ETest, TheLocalPagesSnippetAsWrittenLoadsItsPage) {
  if (!engine::limits().localPages.empty()) GTEST_SKIP() << engine::limits().localPages;
  const auto folder = std::filesystem::temp_directory_path() / ("websdk-snippet-" + std::to_string(getpid()));
  std::filesystem::create_directories(folder);
  std::ofstream(folder / "index.html") << testPage();
  websdk::LocalPages checkout{.host = "checkout", .folder = folder.string()};
  view = websdk::WebSDKWebView::create(engine::make(true, {checkout}), {checkout.origin()}, nullptr, nullptr,
                                       std::make_shared<websdk::WebSDKTrustedHostsNavigationDelegate>());
  view->engine().addScriptMessageHandler(page, "e2e");
  window.show(view->engine());
  view->loadWebView(checkout.url("index.html"), {{"token", "t"}}, std::nullopt, 30);
  const bool loaded = waitFor([&] { return !page->of("ready").empty(); });
  std::filesystem::remove_all(folder);
  ASSERT_TRUE(loaded) << "the page never loaded";
  EXPECT_EQ(view->url(), checkout.url("index.html"));
}

}  // namespace
}  // namespace websdk::e2e
