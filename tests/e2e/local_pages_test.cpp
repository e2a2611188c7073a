// Local pages against the real engine: an app-scheme page is loaded like any other,
// with the app's headers only when the whitelist names its scheme and host,
// its bridge works, and what it serves stays inside its folder and its view.

#include "E2E.hpp"

#include <filesystem>
#include <fstream>

namespace websdk::e2e {
namespace {

class PagesCartPlugin final : public DvCartWebViewCallBacks {
 public:
  std::weak_ptr<WebSDKWebView> view;
  std::vector<std::string> ids;
  void handleCartRequest(const WebSDKCartRequestModel& request, const WebSDKCartRequestPayload&) override {
    ids.push_back(request.requestId);
    if (auto v = view.lock())
      v->sendWebSDKResponse(JSONObject{{"items", 2}}, WebSDKResponseType::success, request.requestId);
  }
};

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
  void SetUp() override {
    if (!engine::limits().localPages.empty()) GTEST_SKIP() << engine::limits().localPages;
    E2ETest::SetUp();
  }
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

  /// The checkout's pages: index.html shows the token its request carried,
  /// page.html is a page of theirs, and includes.html includes their script,
  /// style and image, as the page of any origin may try.
  LocalPages checkout() {
    LocalPages pages = recorded("checkout");
    pages.resources["page.html"] = {testPage(), ""};
    pages.resources["includes.html"] = {testPage(includes()), ""};
    pages.resources["app.js"] = {"window.secret = 'checkout';", ""};
    pages.resources["app.css"] = {"body { color: rgb(1, 2, 3); }", ""};
    pages.resources["logo.svg"] = {R"(<svg xmlns="http://www.w3.org/2000/svg" width="7" height="7"/>)", ""};
    pages.respond = [record = pages.respond](std::string_view path,
                                             const LocalRequest& request) -> std::optional<LocalResource> {
      record(path, request);
      if (path != "index.html") return std::nullopt;
      std::string token;
      for (const auto& [name, value] : request.headers)
        if (sameFieldName(name, "token")) token = value;
      return LocalResource{testPage("<i id='token'>" + token + "</i>"), ""};
    };
    return pages;
  }

  /// A page body that includes the checkout's script, style and image, and
  /// reports whether each loaded and what of it the page can read.
  static std::string includes() {
    return R"html(<script>
const outcome = {};
function done(what, value) {
  outcome[what] = value;
  if (Object.keys(outcome).length === 3)
    report('included', Object.assign(outcome, {secret: window.secret || null, color: getComputedStyle(document.body).color}));
}
</script>
<link rel="stylesheet" href="app://checkout/app.css" onload="done('style', 1)" onerror="done('style', 0)">
<img src="app://checkout/logo.svg" onload="done('image', this.naturalWidth)" onerror="done('image', 0)">
<script src="app://checkout/app.js" onload="done('script', 1)" onerror="done('script', 0)"></script>)html";
  }

  /// What the page of the view does to get the app's fields sent with a
  /// request of its own for `url`: it requests it every way a page can
  /// (image, script, fetch, XHR; frames too with `frames`), at once and on
  /// every turn of its loop, and, with `navigateAfter`, navigates there
  /// itself after a few turns.
  void requestFromPage(const std::string& url, bool frames, bool navigateAfter) {
    view->engine().evaluateJavaScript(R"((function (url, frames, navigateAfter) {
  let turns = 0;
  const burst = () => {
    new Image().src = url;
    const script = document.createElement('script');
    script.src = url;
    document.head.appendChild(script);
    fetch(url).catch(() => {});
    const xhr = new XMLHttpRequest();
    xhr.open('GET', url);
    xhr.send();
    if (frames) {
      const frame = document.createElement('iframe');
      frame.src = url;
      document.body.appendChild(frame);
    }
    if (++turns === 50) {
      clearInterval(timer);
      if (navigateAfter) location.href = url;
    }
  };
  const timer = setInterval(burst, 0);
  burst();
}))" + std::string("(") + serialize(JSON(url)) +
                                          (frames ? ", true" : ", false") + (navigateAfter ? ", true)" : ", false)"),
                                      nullptr);
  }

  /// How many of the requests the checkout's responder was asked carried the app's token.
  std::size_t withTheToken() const {
    const auto it = asked.find("checkout");
    if (it == asked.end()) return 0;
    return static_cast<std::size_t>(
        std::ranges::count_if(it->second, [](const Asked& a) { return a.header("token").has_value(); }));
  }

  std::map<std::string, std::vector<Asked>> asked;
  std::shared_ptr<PagesCartPlugin> cart = std::make_shared<PagesCartPlugin>();
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

// A page that requests the URL its view is about to load, just before the
// view's navigation and while it goes, gets none of the app's fields: they go
// on the navigation's own request and no other, from the app's own page or
// any other. The page of another origin never reaches the responder at all.
TEST_F(LocalPagesTest, OnlyTheViewsNavigationCarriesTheAppsFieldsWhilePagesRequestItsURL) {
  server.page("/attacker", testPage());
  const std::pair<const char*, std::string> rows[] = {
      {"the app's own page", "app://checkout/page.html"},
      {"another app's page", "app://other/index.html"},
      {"a page of the network", server.url("/attacker")},
  };
  const std::string target = "app://checkout/index.html";
  for (const auto& [what, start] : rows) {
    SCOPED_TRACE(what);
    makeLocalView(WebSDKConfig{{"app://checkout"}}, {checkout(), recorded("other")});
    ASSERT_TRUE(loadAndWait(start));
    asked.clear();
    requestFromPage(target, /*frames=*/false, /*navigateAfter=*/false);
    ASSERT_TRUE(loadAndWait(target, {{"token", "b"}}));
    EXPECT_EQ(evaluate("document.getElementById('token').textContent"), JSON("b")) << "the navigation carried it";
    EXPECT_EQ(withTheToken(), 1u) << "and no other request";
    if (start.starts_with("app://checkout/"))
      EXPECT_GT(asked["checkout"].size(), 1u) << "the page's own requests reached the responder";
    else
      EXPECT_EQ(asked["checkout"].size(), 1u) << "a page of another origin is answered without asking it";
  }
}

// The view's load refused, or held unanswered, the page still shown asks for
// its URL every way it can, frames included, and then navigates there itself:
// no request carries the app's fields. Only that navigation, which replaces
// the page, may reach the responder.
TEST_F(LocalPagesTest, NoPageRequestCarriesTheAppsFieldsAfterTheViewsLoadIsCancelled) {
  server.page("/attacker", testPage());
  const std::string target = "app://checkout/index.html";
  struct Row {
    const char* what;
    std::string start;
    bool held;  // the view's load is never answered, rather than refused
  };
  const Row rows[] = {
      {"a page of the network, the load refused", server.url("/attacker"), false},
      {"another app's page, the load refused", "app://other/index.html", false},
      {"a page of the network, the load held", server.url("/attacker"), true},
      {"the app's own page, the load held", "app://checkout/page.html", true},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    makeLocalView(WebSDKConfig{{"app://checkout"}}, {checkout(), recorded("other")});
    ASSERT_TRUE(loadAndWait(row.start));
    asked.clear();
    bool askedAboutTheLoad = false;
    delegate->actionPolicy = [&](const WebSDKNavigationAction& action) -> std::optional<WebSDKNavigationActionPolicy> {
      if (action.url != target || std::exchange(askedAboutTheLoad, true)) return WebSDKNavigationActionPolicy::allow;
      if (row.held) return std::nullopt;
      return WebSDKNavigationActionPolicy::cancel;
    };
    view->loadWebView(target, {{"token", "b"}}, std::nullopt, 30);
    ASSERT_TRUE(waitFor([&] { return askedAboutTheLoad; }));

    const auto ended = [&] {
      return delegate->finished.size() + delegate->provisionalFailures.size() + delegate->committedFailures.size();
    };
    const std::size_t before = ended();
    requestFromPage(target, /*frames=*/true, /*navigateAfter=*/true);
    // The page's navigation ends: as a page of the app's, or refused.
    EXPECT_TRUE(waitFor([&] { return ended() > before; }));
    EXPECT_EQ(withTheToken(), 0u);
    if (!row.start.starts_with("app://checkout/")) {
      EXPECT_LE(asked["checkout"].size(), 1u) << "only its own navigation, which replaces it";
    }
    delegate->actionPolicy = [](const WebSDKNavigationAction&) { return WebSDKNavigationActionPolicy::allow; };
  }
}

// A page of another origin, of the network or another app host, that includes
// an app page's script, style and image gets none of them, and the responder
// is never asked; the app's own page gets all three.
TEST_F(LocalPagesTest, OnlyTheirOwnPagesIncludeTheScriptsStylesAndImagesOfAppPages) {
  server.page("/includes", testPage(includes()));
  LocalPages other = recorded("other");
  other.resources["includes.html"] = {testPage(includes()), ""};
  const std::pair<const char*, std::string> rows[] = {
      {"a page of the network", server.url("/includes")},
      {"another app's page", "app://other/includes.html"},
      {"the app's own page", "app://checkout/includes.html"},
  };
  for (const auto& [what, url] : rows) {
    SCOPED_TRACE(what);
    page->reports.clear();
    makeLocalView(WebSDKConfig{{"app://checkout"}}, {checkout(), other});
    ASSERT_TRUE(loadAndWait(url));
    asked.clear();
    ASSERT_TRUE(waitFor([&] { return !page->of("included").empty(); }));
    const JSON outcome = page->of("included")[0];
    if (url.starts_with("app://checkout/")) {
      EXPECT_EQ(outcome,
                parseJSON(R"json({"style":1,"image":7,"script":1,"secret":"checkout","color":"rgb(1, 2, 3)"})json"));
    } else {
      EXPECT_EQ(outcome, parseJSON(R"json({"style":0,"image":0,"script":0,"secret":null,"color":"rgb(0, 0, 0)"})json"));
      EXPECT_TRUE(asked["checkout"].empty());
    }
  }
}

// A frame of another origin in the app's own page is a page of another
// origin too: it includes none of the app page's files.
TEST_F(LocalPagesTest, AFrameOfAnotherOriginInAnAppPageIncludesNoneOfItsFiles) {
  if (!engine::limits().localRequester.empty()) GTEST_SKIP() << engine::limits().localRequester;
  // The frame tells the app page what it got, which reports it.
  server.page("/framed",
              "<!doctype html><script>function report(kind, data) { parent.postMessage({kind, data}, '*'); }"
              "</script>" +
                  includes());
  LocalPages pages = checkout();
  pages.resources["framer.html"] = {
      testPage("<script>addEventListener('message', (e) => report(e.data.kind, e.data.data));</script><iframe src='" +
               server.url("/framed") + "'></iframe>"),
      ""};
  makeLocalView(WebSDKConfig{{"app://checkout"}}, {pages});
  asked.clear();
  ASSERT_TRUE(loadAndWait("app://checkout/framer.html"));
  ASSERT_TRUE(waitFor([&] { return !page->of("included").empty(); }));
  EXPECT_EQ(page->of("included")[0],
            parseJSON(R"json({"style":0,"image":0,"script":0,"secret":null,"color":"rgb(0, 0, 0)"})json"));
  ASSERT_EQ(asked["checkout"].size(), 1u);
  EXPECT_EQ(asked["checkout"][0].path, "framer.html");
}

}  // namespace
}  // namespace websdk::e2e
