// Local pages without an engine: which whitelist entries trust them, which
// resource a URL names, and what the engine is told to answer.

#include "support/Harness.hpp"

#include "websdk/webview/LocalPages.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace websdk {
namespace {

TEST(LocalPagesTrust, OnlyAnEntryWithTheSchemeTrustsAnAppHost) {
  const auto config = WebSDKConfig{{"example.com", "APP://Checkout/", "checkout"}, false}.normalized();
  EXPECT_EQ(config.whitelistedHosts, (std::vector<std::string>{"example.com", "app://checkout", "checkout"}));
  const std::pair<const char*, bool> rows[] = {
      {"app://checkout/index.html", true},  {"app://checkout", true},        {"APP://checkout/a?b#c", true},
      {"app://CheckOut/", false},  // another host: a non-network host keeps its case
      {"app://checkout.evil.com/", false},  {"app://evil.checkout/", false}, {"app://u@checkout/", false},
      {"app://checkout:8080/", false},      {"other://checkout/", false},    {"app:checkout/x", false},
      {"foo://example.com/", false},                                      // a plain entry names network hosts only
      {"https://example.com/", true},       {"https://checkout/", true},  // the plain "checkout", as ever
      {"https://checkout.evil.com/", true},
  };
  for (const auto& [url, expected] : rows) EXPECT_EQ(config.isWhitelistedURL(url), expected) << url;

  // Without the plain entry, the app's pages do not lend their name to the network.
  const auto appOnly = WebSDKConfig{{"app://checkout"}, false}.normalized();
  for (const char* url : {"https://checkout/", "http://checkout.evil.com/", "wss://checkout/"})
    EXPECT_FALSE(appOnly.isWhitelistedURL(url)) << url;
  EXPECT_TRUE((WebSDKConfig{{}, true}.isWhitelistedURL("app://anything/"))) << "whitelist-all trusts them too";
}

TEST(LocalPagesTrust, EntriesWithASchemeAreExactAndCanonical) {
  const auto config =
      WebSDKConfig{{"HTTPS://Shop.Example:443/", "app://checkout/x", "https://pay.example:8443"}, false}.normalized();
  EXPECT_EQ(config.whitelistedHosts,
            (std::vector<std::string>{"https://shop.example", "app://checkout/x", "https://pay.example:8443"}));
  const std::pair<const char*, bool> rows[] = {
      {"https://shop.example/cart", true},
      {"https://SHOP.example:443/", true},
      {"http://shop.example/", false},
      {"https://pay.shop.example/", false},
      {"https://shop.example.evil.test/", false},
      {"app://checkout/x", false},  // an entry with a path matches nothing
      {"https://pay.example:8443/", true},
      {"https://pay.example/", false},
  };
  for (const auto& [url, expected] : rows) EXPECT_EQ(config.isWhitelistedURL(url), expected) << url;
}

TEST(LocalPagesTrust, LoadWebViewSendsTheAppsHeadersToAWhitelistedAppHostOnly) {
  const WebSDKHeaders app{{"token", "a"}};
  const std::pair<const char*, bool> rows[] = {
      {"app://checkout/index.html", true},
      {"app://other/index.html", false},
      {"https://checkout/", false},
  };
  for (const auto& [url, sent] : rows) {
    test::Harness h({"app://checkout"});
    h.view->loadWebView(url, app, std::nullopt, 10);
    ASSERT_EQ(h.engine->loads.size(), 1u) << url;
    EXPECT_EQ(h.engine->loads[0].url, url);
    const HeaderFields expected = sent ? HeaderFields{{"token", "a"}} : HeaderFields{};
    EXPECT_EQ(h.engine->loads[0].headers, expected) << url;
  }
}

TEST(LocalPaths, StayInsideThePagesAndNameOneResource) {
  const std::pair<const char*, std::optional<std::string>> rows[] = {
      {"", "index.html"},
      {"/", "index.html"},
      {"/index.html?x=1#f", "index.html"},
      {"/#/route", "index.html"},
      {"/a/b.js", "a/b.js"},
      {"/a/", "a/index.html"},
      {"/a/./b", "a/b"},
      {"/%2e", "index.html"},
      {"//etc/passwd", "etc/passwd"},  // no absolute path: it stays under the pages
      {"/...", "..."},
      {"/my%20file.txt", "my file.txt"},
      {"/caf%C3%A9.html", "caf\xC3\xA9.html"},
      {"/50%", "50%"},
      {"/..", std::nullopt},
      {"/a/../b", std::nullopt},
      {"/%2e%2e/x", std::nullopt},
      {"/a/%2E%2e/x", std::nullopt},
      {"/.%2E", std::nullopt},
      {"/a%2Fb", std::nullopt},
      {"/..%2fsecret", std::nullopt},
      {"/a%5Cb", std::nullopt},
      {"/a\\..\\b", std::nullopt},
      {"/a%00.html", std::nullopt},
  };
  for (const auto& [target, expected] : rows) EXPECT_EQ(localPath(target), expected) << target;
}

TEST(LocalPaths, TypesComeFromTheExtension) {
  const std::pair<const char*, const char*> rows[] = {
      {"index.html", "text/html; charset=utf-8"},
      {"a/app.JS", "text/javascript; charset=utf-8"},
      {"m.mjs", "text/javascript; charset=utf-8"},
      {"s.css", "text/css; charset=utf-8"},
      {"d.json", "application/json"},
      {"i.svg", "image/svg+xml"},
      {"p.png", "image/png"},
      {"j.jpg", "image/jpeg"},
      {"w.webp", "image/webp"},
      {"f.woff2", "font/woff2"},
      {"t.txt", "text/plain; charset=utf-8"},
      {"README", "application/octet-stream"},
      {"a.tar.gz", "application/octet-stream"},
      {"dir.html/file", "application/octet-stream"},
  };
  for (const auto& [path, type] : rows) EXPECT_EQ(mimeTypeFor(path), type) << path;
}

TEST(LocalPagesAnswer, FromMemoryAndFromTheResponderFirst) {
  LocalPages pages{
      .host = "checkout",
      .resources = {
          {"index.html", {"<p>home</p>", ""}}, {"/js/app.js", {"go()", ""}}, {"data", {"x", "application/x-custom"}}}};
  std::vector<std::pair<std::string, HeaderFields>> asked;
  pages.respond = [&](std::string_view path, const LocalRequest& request) -> std::optional<LocalResource> {
    asked.emplace_back(path, request.headers);
    if (path == "made.json") return LocalResource{"{}", ""};
    if (path == "index.html" && request.method == "GET" && !request.headers.empty())
      return LocalResource{"<p>for you</p>", ""};
    return std::nullopt;
  };
  struct Row {
    LocalRequest request;
    LocalAnswer expected;
  };
  const std::string text = "text/plain; charset=utf-8";
  const Row rows[] = {
      {{"app://checkout/"}, {200, "text/html; charset=utf-8", "<p>home</p>", ""}},
      {{"app://checkout/", "GET", {{"token", "a"}}}, {200, "text/html; charset=utf-8", "<p>for you</p>", ""}},
      {{"app://checkout/js/app.js?v=2"}, {200, "text/javascript; charset=utf-8", "go()", ""}},
      {{"app://checkout/data"}, {200, "application/x-custom", "x", ""}},
      {{"app://checkout/made.json"}, {200, "application/json", "{}", ""}},
      {{"app://checkout/", "HEAD"}, {200, "text/html; charset=utf-8", "", ""}},
      {{"app://checkout/missing.css"}, {404, text, "not found", ""}},
      {{"app://checkout/%2e%2e/secret"}, {403, text, "forbidden", ""}},
      {{"app://checkout/", "POST"}, {405, text, "method not allowed", ""}},
      {{"app://other/"}, {404, text, "not found", ""}},
  };
  for (const auto& row : rows) EXPECT_EQ(pages.answer(row.request), row.expected) << row.request.url;
  // The responder hears every path it may answer, with the request's fields;
  // never a refused one.
  ASSERT_FALSE(asked.empty());
  EXPECT_EQ(asked[1], (std::pair<std::string, HeaderFields>{"index.html", {{"token", "a"}}}));
  for (const auto& [path, headers] : asked) EXPECT_NE(path, "secret");
}

TEST(LocalPagesAnswer, FromAFolderWithoutLeavingIt) {
  namespace fs = std::filesystem;
  char dir[] = "/tmp/websdk-local-pages.XXXXXX";
  ASSERT_NE(mkdtemp(dir), nullptr);
  const fs::path base = fs::canonical(dir);
  const fs::path root = base / "pages";
  fs::create_directories(root / "sub");
  for (const auto& file : {root / "index.html", root / "sub" / "page.css", base / "secret.txt"})
    std::ofstream(file) << "x";
  fs::create_symlink(base / "secret.txt", root / "escape.txt");
  fs::create_symlink(root / "sub" / "page.css", root / "alias.css");

  const LocalPages pages{.host = "checkout",
                         .folder = (base / "pages" / ".." / "pages").string(),
                         .resources = {{"sub/page.css", {"from memory", "text/css"}}}};
  const std::string text = "text/plain; charset=utf-8";
  const std::pair<const char*, LocalAnswer> rows[] = {
      {"app://checkout/", {200, "text/html; charset=utf-8", "", (root / "index.html").string()}},
      {"app://checkout/alias.css", {200, "text/css; charset=utf-8", "", (root / "sub" / "page.css").string()}},
      {"app://checkout/sub/page.css", {200, "text/css", "from memory", ""}},  // memory first
      {"app://checkout/escape.txt", {403, text, "forbidden", ""}},
      {"app://checkout/sub", {404, text, "not found", ""}},  // a folder without its index
      {"app://checkout/none.html", {404, text, "not found", ""}},
  };
  for (const auto& [url, expected] : rows) EXPECT_EQ(pages.answer({url}), expected) << url;
  fs::remove_all(base);
}

TEST(LocalPagesAnswer, PagesAreFoundByExactSchemeAndHost) {
  const std::vector<LocalPages> all{{.host = "checkout"},
                                    {.host = "shop"},
                                    {.scheme = "other", .host = "checkout"},
                                    {.scheme = "http", .host = "taken"}};
  const std::pair<const char*, int> rows[] = {
      {"app://checkout/x", 0},
      {"APP://checkout", 0},
      {"app://shop/", 1},
      {"other://checkout/", 2},
      {"app://checkout.evil.com/", -1},
      {"app://u@checkout/", -1},
      {"app://checkout:1/", -1},
      {"app:checkout/x", -1},
      {"http://taken/", -1},
      {"app://CheckOut/", -1},
  };
  for (const auto& [url, index] : rows) {
    const LocalPages* found = servedBy(all, url);
    EXPECT_EQ(found ? found - all.data() : -1, index) << url;
  }
}

// The requester as the engines name it: a page's URL (WebKitGTK's shown
// document) or its origin (Qt's initiator). Only the pages' own origin is served.
TEST(LocalPagesAnswer, AResourceIsServedToThePagesOfItsOwnOriginOnly) {
  const std::vector<LocalPages> all{{.host = "checkout"}, {.host = "shop"}};
  const std::pair<const char*, bool> rows[] = {
      {"app://checkout", true},
      {"app://checkout/", true},
      {"app://checkout/a/index.html?x#y", true},
      {"APP://checkout", true},
      {"app://shop/index.html", false},  // another of the app's hosts
      {"https://checkout/", false},
      {"http://127.0.0.1:8080/", false},
      {"app://checkout.evil.test", false},
      {"app://u@checkout", false},
      {"app://checkout:1", false},
      {"null", false},  // an opaque origin: a sandboxed frame, a data: page
      {"", false},
  };
  for (const auto& [requester, served] : rows)
    EXPECT_EQ(servesPageOf(all, "app://checkout/app.js", requester), served) << requester;
  EXPECT_FALSE(servesPageOf(all, "app://other/app.js", "app://other")) << "pages that are not served";
  EXPECT_EQ(forbidden().status, 403);
}

TEST(LocalPagesAnswer, OnlyTheAppsOwnSchemesAndLowercaseHostsServe) {
  const std::tuple<const char*, const char*, bool> rows[] = {
      {"app", "checkout", true},
      {"my-app+x.1", "shop.local", true},
      {"App", "checkout", false},
      {"1app", "checkout", false},
      {"https", "checkout", false},
      {"file", "checkout", false},
      {"webkit-pdfjs-viewer", "x", false},
      {"app", "Checkout", false},
      {"app", "", false},
      {"app", "a..b", false},
      {"app", "check out", false},
      {"app", "checkout:1", false},
  };
  for (const auto& [scheme, host, ok] : rows)
    EXPECT_EQ((LocalPages{.scheme = scheme, .host = host}.problem().empty()), ok) << scheme << "://" << host;
  const LocalPages pages{.host = "checkout"};
  EXPECT_EQ(pages.origin(), "app://checkout");
  EXPECT_EQ(pages.url(), "app://checkout/index.html");
  EXPECT_EQ(pages.url("/js/app.js"), "app://checkout/js/app.js");
}

}  // namespace
}  // namespace websdk
