// Local pages against the real engine: an app-scheme page is loaded like any other,
// with the app's headers only when the whitelist names its scheme and host,
// its bridge works, and what it serves stays inside its folder and its view.

#include "E2E.hpp"

#include <filesystem>
#include <fstream>

namespace websdk::e2e {
namespace {

class CartPlugin final : public DvCartWebViewCallBacks {
 public:
  std::weak_ptr<WebSDKWebView> view;
  std::vector<std::string> ids;
  void handleCartRequest(const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload&) override {
    ids.push_back(request.requestId);
    if (auto v = view.lock())
      v->sendWebSDKResponse(JSONObject{{"items", 2}}, WebSDKResponseType::success, request.requestId);
  }
};

std::string cartRequest(const std::string& id) {
  return R"({"type":"GET_LOCAL_CART","requestId":")" + id +
         R"(","payload":{"tenant":{"marketplaceId":"m","marketplaceCategory":"c","marketplaceBusinessLine":"b"}}})";
}

// What the pages' responder was asked: the path and the request's fields.
struct Asked {
  std::string path;
  HeaderFields headers;
  std::optional<std::string> header(std::string_view name) const {
    for (const auto& [n, v] : headers)
      if (sameFieldName(n, name)) return v;
    return std::nullopt;
  }
};

class LocalPagesTest : public E2ETest {
 protected:
  /// The view again, with `pages` served by its engine.
  void makeLocalView(const WebSDKConfig& config, std::vector<LocalPages> pages, bool sharedContext = false) {
    view.reset();
    view = WebSDKWebView::create(engine::make(!sharedContext, std::move(pages)), config, nullptr, nullptr, delegate,
                                 listener);
    view->engine().addScriptMessageHandler(page, "e2e");
    window.show(view->engine());
    cart->view = view;
    view->setCartPlugin(cart);
  }

  /// Pages on `host` that serve the test page and a JSON file from memory,
  /// and note every request in `asked`.
  LocalPages recorded(const std::string& host) {
    LocalPages pages{.host = host, .resources = {{"index.html", {testPage(), ""}}, {"data.json", {R"({"n":1})", ""}}}};
    pages.respond = [this, host](std::string_view path, const LocalRequest& request) -> std::optional<LocalResource> {
      asked[host].push_back({std::string(path), request.headers});
      return std::nullopt;
    };
    return pages;
  }

  /// Has the page fetch `url` and report the outcome as "fetched".
  JSON fetchFromPage(const std::string& url) {
    const std::size_t before = page->of("fetched").size();
    view->engine().evaluateJavaScript(
        "fetch(" + serialize(JSON(url)) +
            ").then(r => r.text().then(t => report('fetched', {status: r.status, type: r.headers.get('content-type'), "
            "text: t})), e => report('fetched', {error: String(e)}))",
        nullptr);
    if (!waitFor([&] { return page->of("fetched").size() > before; })) return JSON("no report");
    return page->of("fetched").back();
  }

  std::map<std::string, std::vector<Asked>> asked;
  std::shared_ptr<CartPlugin> cart = std::make_shared<CartPlugin>();
};

// The app's headers reach the pages' own handler only where the whitelist
// names their scheme and host; the bridge answers there and refuses elsewhere.
TEST_F(LocalPagesTest, TheAppsHeadersAndTheBridgeFollowTheWhitelistOnAppPages) {
  struct Row {
    const char* what;
    WebSDKConfig config;
    std::string url;
    bool trusted;
  };
  const Row rows[] = {
      {"named with its scheme", {{"app://checkout"}}, "app://checkout/index.html", true},
      {"the folder's index", {{"app://checkout"}}, "app://checkout/", true},
      {"another app host", {{"app://checkout"}}, "app://other/index.html", false},
      {"a plain host entry", {{"checkout"}}, "app://checkout/index.html", false},
      {"every URL trusted", {{}, true}, "app://other/index.html", true},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    asked.clear();
    cart->ids.clear();
    page->reports.clear();
    makeLocalView(row.config, {recorded("checkout"), recorded("other")});
    ASSERT_TRUE(loadAndWait(row.url, {{"token", "a"}}, WebSDKHeaders{{"x-extra", "1"}}));
    const std::string host = row.url.substr(6, row.url.find('/', 6) - 6);
    ASSERT_EQ(asked[host].size(), 1u);
    EXPECT_EQ(asked[host][0].path, "index.html");
    EXPECT_EQ(asked[host][0].header("token"), row.trusted ? std::optional<std::string>("a") : std::nullopt);
    EXPECT_EQ(asked[host][0].header("x-extra"), "1") << "the external headers are the page's own";

    ASSERT_TRUE(waitFor([&] { return !page->of("ready").empty(); }));
    postFromPage(cartRequest("local"));
    ASSERT_TRUE(waitFor([&] { return !page->of("nativeResponse").empty(); }));
    const JSON answer = page->of("nativeResponse")[0];
    if (row.trusted) {
      EXPECT_EQ(cart->ids, std::vector<std::string>{"local"});
      EXPECT_EQ(answer.at("type"), JSON("SUCCESS"));
    } else {
      EXPECT_TRUE(cart->ids.empty());
      EXPECT_EQ(answer.at("statusCode"), JSON(1005));
      EXPECT_EQ(answer.at("statusMessage"), JSON(row.url));
    }
  }
}

// A trusted app page is a secure context whose scripts fetch from their own
// pages, without the app's headers (they go on the load's first request only).
TEST_F(LocalPagesTest, AnAppPageFetchesItsOwnResources) {
  if (!engine::limits().localFetch.empty()) GTEST_SKIP() << engine::limits().localFetch;
  makeLocalView(WebSDKConfig{{"app://checkout"}}, {recorded("checkout")});
  ASSERT_TRUE(loadAndWait("app://checkout/index.html", {{"token", "a"}}));
  EXPECT_EQ(evaluate("window.isSecureContext && location.origin"), JSON("app://checkout"));
  EXPECT_EQ(fetchFromPage("data.json"), parseJSON(R"({"status":200,"type":"application/json","text":"{\"n\":1}"})"));
  EXPECT_EQ(fetchFromPage("/missing.css").at("status"), JSON(404));
  ASSERT_EQ(asked["checkout"].size(), 3u);
  EXPECT_EQ(asked["checkout"][1].path, "data.json");
  EXPECT_EQ(asked["checkout"][1].header("token"), std::nullopt);
}

// Served from a folder: what the page reaches is the folder's, whatever path
// it tries; and a page of another origin cannot read it.
TEST_F(LocalPagesTest, AFolderServesOnlyWhatIsInsideIt) {
  if (!engine::limits().localFetch.empty()) GTEST_SKIP() << engine::limits().localFetch;
  namespace fs = std::filesystem;
  char dir[] = "/tmp/websdk-e2e-pages.XXXXXX";
  ASSERT_NE(mkdtemp(dir), nullptr);
  const fs::path base = fs::canonical(dir), root = base / "pages";
  fs::create_directories(root / "js");
  std::ofstream(root / "index.html") << testPage();
  std::ofstream(root / "js" / "app.js") << "window.loaded = 1;";
  std::ofstream(base / "secret.txt") << "secret";
  fs::create_symlink(base / "secret.txt", root / "link.txt");

  makeLocalView(WebSDKConfig{{"app://checkout"}}, {LocalPages{.host = "checkout", .folder = root.string()}});
  ASSERT_TRUE(loadAndWait("app://checkout/"));
  ASSERT_TRUE(waitFor([&] { return !page->of("ready").empty(); }));
  EXPECT_EQ(fetchFromPage("js/app.js"),
            parseJSON(R"({"status":200,"type":"text/javascript; charset=utf-8","text":"window.loaded = 1;"})"));
  const std::pair<const char*, int> refused[] = {
      {"../secret.txt", 404},      // the URL parser keeps it at the top: /secret.txt is not in the folder
      {"%2e%2e/secret.txt", 404},  // the same
      {"..%2fsecret.txt", 403},    // an escaped slash is refused
      {"link.txt", 403},           // a link out of the folder
      {"js", 404},                 // a folder without an index
  };
  for (const auto& [path, status] : refused) {
    const JSON outcome = fetchFromPage(path);
    EXPECT_EQ(outcome.at("status"), JSON(status)) << path;
    EXPECT_EQ(outcome.at("text").as_string().find("secret"), std::string::npos) << path;
  }

  // A page of the loopback server, in the same view: the request may go, the
  // answer is not its to read.
  server.page("/elsewhere", testPage());
  ASSERT_TRUE(loadAndWait(server.url("/elsewhere")));
  EXPECT_TRUE(fetchFromPage("app://checkout/js/app.js").as_object().contains("error"));
  fs::remove_all(base);
}

// Views on one web context share its scheme handler, and each serves only its
// own pages: the second view's "app" scheme is not registered again, and
// neither view reaches the other's host.
TEST_F(LocalPagesTest, ViewsOnASharedContextServeOnlyTheirOwnPages) {
  if (!engine::limits().localFetch.empty()) GTEST_SKIP() << engine::limits().localFetch;
  engine::Window secondWindow;
  auto second = WebSDKWebView::create(engine::make(false, {recorded("shop")}), WebSDKConfig{{"app://shop"}}, nullptr,
                                      nullptr, delegate, listener);
  secondWindow.show(second->engine());
  makeLocalView(WebSDKConfig{{"app://checkout"}}, {recorded("checkout")}, /*sharedContext=*/true);

  ASSERT_TRUE(loadAndWait("app://checkout/index.html"));
  EXPECT_EQ(fetchFromPage("app://checkout/data.json").at("status"), JSON(200));
  ASSERT_TRUE(loadAndWait("app://shop/index.html"));
  EXPECT_EQ(evaluate("document.body.textContent"), JSON("not found"));
  EXPECT_TRUE(asked["shop"].empty());

  const std::size_t finished = delegate->finished.size();
  second->loadWebView("app://shop/index.html", {{"token", "s"}}, std::nullopt, 30);
  ASSERT_TRUE(waitFor([&] { return delegate->finished.size() > finished; }));
  ASSERT_EQ(asked["shop"].size(), 1u);
  EXPECT_EQ(asked["shop"][0].header("token"), "s");

  // The other view gone, this one still serves its own.
  second.reset();
  secondWindow.destroy();
  ASSERT_TRUE(loadAndWait("app://checkout/index.html"));
  EXPECT_EQ(fetchFromPage("data.json").at("status"), JSON(200));
}

}  // namespace
}  // namespace websdk::e2e
