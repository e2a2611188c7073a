// The header guard: its rules reach the web processes intact, and without the
// guard module the app's headers are not sent at all.

#include <glib.h>
#include <glib/gstdio.h>
#include "E2E.hpp"

namespace websdk::e2e {
namespace {

// What the guard once read from a request: a field of the app's header names
// and the whitelist. A page that sends one today sends just a field.
std::string oldStyleGuardField(const std::vector<const char*>& names) {
  GVariantBuilder builder;
  g_variant_builder_init(&builder, G_VARIANT_TYPE_STRING_ARRAY);
  for (const char* n : names) g_variant_builder_add(&builder, "s", n);
  GVariant* value = g_variant_ref_sink(g_variant_new("(as@asb)", &builder, g_variant_new_strv(nullptr, 0), FALSE));
  gchar* text = g_base64_encode(static_cast<const guchar*>(g_variant_get_data(value)), g_variant_get_size(value));
  std::string out(text);
  g_free(text);
  g_variant_unref(value);
  return out;
}

// No field tells the guard anything: a page's own fetch with a forged guard
// field keeps the engine's fields, and no server sees a field of the guard.
TEST_F(E2ETest, APageCannotSteerTheGuardAndNoServerSeesIt) {
  server.page("/forge", testPage());
  server.page("/echo", "ok");
  ASSERT_TRUE(loadAndWait(server.url("/forge"), {{"token", "a"}}));
  const auto load = server.requestsTo("/forge");
  ASSERT_EQ(load.size(), 1u);
  EXPECT_EQ(load[0].header("token"), "a");
  for (const auto& [name, value] : load[0].headers) EXPECT_FALSE(name.starts_with("x-websdk")) << name;

  const std::string forged = oldStyleGuardField({"Origin", "Referer", "User-Agent", "Content-Type", "Accept", "token"});
  evaluate("fetch('/echo', {method: 'POST', body: 'x', headers: {'X-WebSDK-Confined': '" + forged +
           "', 'Content-Type': 'text/plain', 'token': 'page'}}); 0");
  ASSERT_TRUE(waitFor([&] { return !server.requestsTo("/echo").empty(); }));
  const auto echo = server.requestsTo("/echo")[0];
  for (const char* name : {"origin", "referer", "user-agent", "content-type", "accept"})
    EXPECT_TRUE(echo.header(name).has_value()) << name;
  EXPECT_EQ(echo.header("token"), "page") << "the page's own field of the same name is its own";
  EXPECT_EQ(echo.header("x-websdk-confined"), forged);

  // Nor does a load mark: a page cannot know a real one, one it makes up wins
  // it no app field, and no server sees the mark, whoever set it (an engine
  // with no module has no mark: the page's field is the page's).
  server.page("/marked", "ok");
  evaluate("fetch('/marked', {headers: {'X-WebSDK-Load': '0000000000000001'}}); 0");
  ASSERT_TRUE(waitFor([&] { return !server.requestsTo("/marked").empty(); }));
  const auto marked = server.requestsTo("/marked")[0];
  if (engine::limits().guardModule.empty()) {
    EXPECT_FALSE(marked.header("x-websdk-load").has_value());
  }
  EXPECT_FALSE(marked.header("token").has_value());
}

// The app's headers go only from a web process the guard module is in. The
// host replaces the view's extensions directory once its first process runs;
// the process the page gets after that one ends has no module, and its load
// goes without them.
TEST_F(E2ETest, AWebProcessWithoutTheGuardNeverSendsTheAppsHeaders) {
  if (!engine::limits().guardModule.empty()) GTEST_SKIP() << engine::limits().guardModule;
  char dir[] = "/tmp/websdk-no-guard.XXXXXX";
  ASSERT_NE(g_mkdtemp(dir), nullptr);
  server.page("/before", testPage());
  ASSERT_TRUE(loadAndWait(server.url("/before"), {{"token", "a"}}));
  EXPECT_EQ(server.requestsTo("/before")[0].header("token"), "a");
  engine::restartWithoutGuardModule(view->engine(), dir);
  expectLoadWithoutTheAppsHeaders("/replaced");
  g_rmdir(dir);
}

// A service worker sees the app's headers on what it serves and can send them
// anywhere: the view's pages (and their frames) have none unless it allows.
TEST_F(E2ETest, ServiceWorkersAreKeptFromTheViewsPagesUnlessItAllowsThem) {
  if (!engine::limits().serviceWorkers.empty()) GTEST_SKIP() << engine::limits().serviceWorkers;
  server.page("/sw", testPage());
  for (const bool allowed : {false, true}) {
    WebSDKConfig config{{"127.0.0.1"}};
    config.allowsServiceWorkers = allowed;
    makeView(config, delegate);
    ASSERT_TRUE(loadAndWait(server.url("/sw"), {{"token", "a"}}));
    const JSON expected = allowed ? "object" : "undefined";
    EXPECT_EQ(evaluate("typeof navigator.serviceWorker"), expected) << allowed;
    EXPECT_EQ(evaluate("typeof document.body.appendChild(document.createElement('iframe'))"
                       ".contentWindow.navigator.serviceWorker"),
              expected)
        << allowed;
  }
}

// Run by ctest in processes of their own, with WEBSDK_WEB_EXTENSIONS_DIR
// naming a directory without the module, or one that anyone may write to
// (see CMakeLists.txt); skipped in the ordinary run.
TEST_F(E2ETest, WithoutTheGuardModuleTheAppsHeadersAreNotSent) {
  if (!engine::limits().guardModule.empty()) GTEST_SKIP() << engine::limits().guardModule;
  if (g_getenv("WEBSDK_E2E_NO_GUARD") == nullptr) GTEST_SKIP() << "run by ctest with an unusable module directory";
  expectLoadWithoutTheAppsHeaders("/page");
}

}  // namespace
}  // namespace websdk::e2e
