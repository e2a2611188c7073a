// The browser engine's server and channel without a browser: a Beast client
// on its own thread plays the browser while the test's thread runs the loop.
#include "websdk/browser/BrowserEngine.hpp"

#include <gtest/gtest.h>
#include <boost/asio/connect.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

namespace websdk::browser {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;
using tcp = asio::ip::tcp;

struct Folder {
  std::filesystem::path root =
      std::filesystem::temp_directory_path() / ("websdk-serve-test-" + std::to_string(::getpid()));
  Folder() {
    std::filesystem::create_directories(root / "page");
    std::ofstream(root / "page" / "index.html") << "<!doctype html><html><head><title>t</title><script>mine()</script>";
    std::ofstream(root / "secret.txt") << "not the page's";
  }
  ~Folder() { std::filesystem::remove_all(root); }
};

/// Runs `client` on a thread of its own while the loop runs here.
void whileServing(const std::function<void()>& client) {
  std::atomic<bool> done = false;
  std::thread thread([&] {
    client();
    done = true;
  });
  runUntil([&] { return done.load(); }, std::chrono::seconds(30));
  thread.join();
}

http::response<http::string_body> get(unsigned short port, const std::string& target, const std::string& host) {
  asio::io_context context;
  beast::tcp_stream stream(context);
  stream.connect(tcp::endpoint(asio::ip::make_address("127.0.0.1"), port));
  http::request<http::string_body> request{http::verb::get, target, 11};
  request.set(http::field::host, host);
  http::write(stream, request);
  beast::flat_buffer buffer;
  http::response<http::string_body> response;
  http::read(stream, buffer, response);
  return response;
}

struct ServerTest : ::testing::Test {
  Folder folder;
  BrowserEngine engine{BrowserConfiguration{.root = (folder.root / "page").string(), .token = "t0k3n"}};
  unsigned short port = static_cast<unsigned short>(std::stoi(engine.origin().substr(engine.origin().rfind(':') + 1)));
  std::string host = "127.0.0.1:" + std::to_string(port);
};

TEST_F(ServerTest, ServesTheFolderWithThePageSideAheadOfThePagesScripts) {
  http::response<http::string_body> page, up, encoded, rebound;
  whileServing([&] {
    page = get(port, "/", host);
    up = get(port, "/../secret.txt", host);
    encoded = get(port, "/%2e%2e/secret.txt", host);
    rebound = get(port, "/", "attacker.example:" + std::to_string(port));
  });
  ASSERT_EQ(page.result(), http::status::ok);
  const std::string& body = page.body();
  EXPECT_EQ(body.find("<!doctype html><html><head><script>"), 0u) << body.substr(0, 80);
  EXPECT_LT(body.find("messageHandlers"), body.find("mine()"));
  EXPECT_NE(body.find("\"t0k3n\""), std::string::npos);
  for (const auto* outside : {&up, &encoded}) {
    EXPECT_EQ(outside->result(), http::status::not_found);
    EXPECT_EQ(outside->body().find("not the page's"), std::string::npos);
  }
  EXPECT_EQ(rebound.result(), http::status::forbidden);
  EXPECT_EQ(rebound.body().find("t0k3n"), std::string::npos);
}

// Only a page of the origin served, holding the run's token, opens the socket.
TEST_F(ServerTest, TheSocketWantsTheOriginServedAndTheToken) {
  const std::string origin = "http://" + host;
  const struct {
    std::string origin, token;
    bool opens;
  } rows[] = {
      {origin, "t0k3n", true},
      {"http://127.0.0.1:1", "t0k3n", false},
      {"http://localhost:" + std::to_string(port), "t0k3n", false},  // not the host the request names
      {"", "t0k3n", false},
      {origin, "guess", false},
      {origin, "", false},
  };
  std::vector<std::string> refusals;
  engine.onRefusal([&](const std::string& why) { refusals.push_back(why); });
  std::vector<bool> opened;
  whileServing([&] {
    for (const auto& row : rows) {
      asio::io_context context;
      websocket::stream<tcp::socket> ws(context);
      ws.next_layer().connect(tcp::endpoint(asio::ip::make_address("127.0.0.1"), port));
      ws.set_option(websocket::stream_base::decorator([&](websocket::request_type& request) {
        if (!row.origin.empty()) request.set(http::field::origin, row.origin);
      }));
      beast::error_code ec;
      ws.handshake(host, "/__websdk/socket?token=" + row.token, ec);
      opened.push_back(!ec);
    }
  });
  ASSERT_EQ(opened.size(), std::size(rows));
  for (std::size_t i = 0; i < opened.size(); ++i) EXPECT_EQ(opened[i], rows[i].opens) << "row " << i;
  EXPECT_EQ(refusals.size(), 5u);
}

struct Recorder final : ScriptMessageHandler {
  std::vector<ScriptMessage> messages;
  std::vector<std::string> texts;
  std::function<void(const ScriptMessage&)> then;
  void userContentController(const ScriptMessage& message) override {
    messages.push_back(message);
    texts.emplace_back(message.message.value_or(""));
    if (then) then(message);
  }
};

// A page's messages reach the handler stamped with the URL the server can
// vouch for, and an evaluation meant for its document comes back answered.
TEST_F(ServerTest, APagesMessageAndAnEvaluationCrossTheSocket) {
  auto handler = std::make_shared<Recorder>();
  engine.addScriptMessageHandler(handler, "nativeRequest");
  std::optional<ScriptResult> result;
  std::atomic<bool> answered = false;
  std::string evaluateMessage;
  DocumentID shown = 0;
  std::optional<std::string> shownURL;
  handler->then = [&](const ScriptMessage& message) {
    shown = engine.document();
    shownURL = engine.url();
    engine.evaluateInDocument(message.origin.topDocument, "answer()", [&](ScriptResult r) {
      result = std::move(r);
      answered = true;
    });
  };
  whileServing([&] {
    asio::io_context context;
    websocket::stream<tcp::socket> ws(context);
    ws.next_layer().connect(tcp::endpoint(asio::ip::make_address("127.0.0.1"), port));
    ws.set_option(websocket::stream_base::decorator(
        [&](websocket::request_type& request) { request.set(http::field::origin, "http://" + host); }));
    ws.handshake(host, "/__websdk/socket?token=t0k3n");
    ws.write(asio::buffer(std::string(R"({"kind":"hello","url":"http://)" + host + R"(/checkout?x=1","top":true})")));
    // The page claims another site's URL: it is held to its origin.
    ws.write(asio::buffer(std::string(
        R"({"kind":"post","name":"nativeRequest","message":"{\"type\":\"LOGOUT\"}","url":"https://bank.example/"})")));
    beast::flat_buffer buffer;
    ws.read(buffer);
    evaluateMessage = beast::buffers_to_string(buffer.data());
    const JSON m = parseJSON(evaluateMessage);
    ws.write(asio::buffer(serialize(JSONObject{{"kind", "result"}, {"id", m.at("id")}, {"value", "[1,2]"}})));
    while (!answered) std::this_thread::sleep_for(std::chrono::milliseconds(5));  // the client's own pace
  });
  ASSERT_EQ(handler->messages.size(), 1u);
  const ScriptMessage& message = handler->messages[0];
  EXPECT_EQ(handler->texts[0], R"({"type":"LOGOUT"})");
  EXPECT_EQ(message.origin.topURL, "http://" + host + "/checkout?x=1");
  EXPECT_EQ(message.origin.frameURL, "http://" + host + "/");
  EXPECT_EQ(message.origin.topDocument, shown);
  EXPECT_EQ(shownURL, "http://" + host + "/checkout?x=1");
  // The page went with its socket: nothing is shown.
  EXPECT_TRUE(runUntil([&] { return engine.connectedDocuments() == 0; }, std::chrono::seconds(10)));
  EXPECT_EQ(engine.url(), std::nullopt);
  ASSERT_TRUE(result);
  EXPECT_EQ(result->value, parseJSON("[1,2]"));
  EXPECT_NE(evaluateMessage.find(R"j("script":"answer()")j"), std::string::npos) << evaluateMessage;
}

}  // namespace
}  // namespace websdk::browser

namespace websdk::browser {
namespace {

// One browser serves engine after engine: each takes the port of the one
// before as soon as that one is gone.
TEST(ServerPortTest, TheNextEngineServesOnThePortOfTheLast) {
  auto first = std::make_unique<BrowserEngine>(BrowserConfiguration{.followsLoads = true});
  ASSERT_TRUE(first->listening()) << first->error();
  const std::string origin = first->origin();
  const auto port = static_cast<unsigned short>(std::stoi(origin.substr(origin.rfind(':') + 1)));
  first.reset();
  BrowserEngine next(BrowserConfiguration{.port = port, .followsLoads = true});
  EXPECT_TRUE(next.listening()) << next.error();
}

}  // namespace
}  // namespace websdk::browser
