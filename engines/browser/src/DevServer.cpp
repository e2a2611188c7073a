#include "DevServer.hpp"

#include <boost/asio/connect.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>

#include <fcntl.h>

#include <boost/asio/steady_timer.hpp>

#include <algorithm>
#include <cctype>
#include <deque>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <thread>
#include <vector>

namespace websdk::browser {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
namespace websocket = beast::websocket;
using tcp = asio::ip::tcp;
using Request = http::request<http::string_body>;
using Response = http::response<http::string_body>;

asio::io_context& loop() {
  static asio::io_context context(1);
  return context;
}

// ---- The UI loop, and the token its pages carry ----

std::string randomToken() {
  std::random_device device;
  std::string token;
  for (int i = 0; i < 4; ++i) {
    char part[9];
    std::snprintf(part, sizeof part, "%08x", device());
    token += part;
  }
  return token;
}

std::thread::id& uiThread() {
  static std::thread::id id = std::this_thread::get_id();
  return id;
}

bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds bound) {
  uiThread() = std::this_thread::get_id();
  const auto end = std::chrono::steady_clock::now() + bound;
  auto& context = loop();
  while (!done()) {
    const auto now = std::chrono::steady_clock::now();
    if (now >= end) return false;
    if (context.stopped()) context.restart();
    context.run_one_for(std::min<std::chrono::steady_clock::duration>(end - now, std::chrono::milliseconds(50)));
  }
  return true;
}

void BrowserMainQueue::post(std::function<void()> task) { boost::asio::post(loop(), std::move(task)); }

void BrowserMainQueue::postAfter(std::chrono::milliseconds delay, std::function<void()> task) {
  auto timer = std::make_shared<boost::asio::steady_timer>(loop(), delay);
  timer->async_wait([timer, task = std::move(task)](const boost::system::error_code&) { task(); });
}

bool BrowserMainQueue::isUIThread() const { return std::this_thread::get_id() == uiThread(); }

namespace {

constexpr std::size_t kLargestBody = std::size_t{256} << 20;

std::string lower(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(), [](unsigned char c) { return std::tolower(c); });
  return out;
}

std::string contentType(const std::filesystem::path& file) {
  static const std::map<std::string, std::string> types = {{".html", "text/html; charset=utf-8"},
                                                           {".htm", "text/html; charset=utf-8"},
                                                           {".js", "text/javascript"},
                                                           {".mjs", "text/javascript"},
                                                           {".css", "text/css"},
                                                           {".json", "application/json"},
                                                           {".svg", "image/svg+xml"},
                                                           {".png", "image/png"},
                                                           {".jpg", "image/jpeg"},
                                                           {".jpeg", "image/jpeg"},
                                                           {".gif", "image/gif"},
                                                           {".webp", "image/webp"},
                                                           {".ico", "image/x-icon"},
                                                           {".wasm", "application/wasm"},
                                                           {".map", "application/json"},
                                                           {".txt", "text/plain; charset=utf-8"},
                                                           {".woff2", "font/woff2"},
                                                           {".woff", "font/woff"}};
  const auto it = types.find(lower(file.extension().string()));
  return it == types.end() ? "application/octet-stream" : it->second;
}

std::string percentDecoded(std::string_view text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size() && std::isxdigit(static_cast<unsigned char>(text[i + 1])) &&
        std::isxdigit(static_cast<unsigned char>(text[i + 2]))) {
      out += static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16));
      i += 2;
    } else {
      out += text[i];
    }
  }
  return out;
}

// The page side goes first in the document's head, ahead of any page script.
std::string withPageSide(std::string html, std::string_view scripts) {
  // A script's text cannot end the element it is put in.
  std::string tag = "<script>";
  const std::string foldedScripts = lower(scripts);
  std::size_t from = 0;
  for (std::size_t at; (at = foldedScripts.find("</script", from)) != std::string::npos; from = at + 2) {
    tag.append(scripts.substr(from, at - from));
    tag += "<\\/";
  }
  tag.append(scripts.substr(from));
  tag += "</script>";
  const std::string folded = lower(html);
  std::size_t at = 0;
  for (const char* element : {"<head", "<html", "<!doctype"}) {
    const std::size_t open = folded.find(element);
    if (open == std::string::npos) continue;
    const std::size_t end = folded.find('>', open);
    if (end != std::string::npos) {
      at = end + 1;
      break;
    }
  }
  html.insert(at, tag);
  return html;
}

struct Upstream {
  std::string host, port, base;
};

std::optional<Upstream> readUpstream(std::string_view url) {
  if (!url.starts_with("http://")) return std::nullopt;
  url.remove_prefix(7);
  const std::size_t slash = url.find('/');
  std::string authority(url.substr(0, slash));
  std::string base = slash == std::string_view::npos ? "" : std::string(url.substr(slash));
  while (base.ends_with('/')) base.pop_back();
  const std::size_t colon = authority.rfind(':');
  if (authority.empty()) return std::nullopt;
  if (colon == std::string::npos) return Upstream{authority, "80", base};
  return Upstream{authority.substr(0, colon), authority.substr(colon + 1), base};
}

}  // namespace

struct DevServer::Shared : std::enable_shared_from_this<Shared> {
  BrowserConfiguration configuration;
  std::string token;
  ServerHooks hooks;
  tcp::acceptor acceptor{loop()};
  unsigned short port = 0;
  std::string error;
  std::optional<Upstream> upstream;
  std::vector<std::string> hosts;  // the Host fields that name this server
  std::vector<std::weak_ptr<Socket>> sockets;
  bool stopped = false;

  void accept() {
    acceptor.async_accept([self = shared_from_this()](beast::error_code ec, tcp::socket socket) {
      if (self->stopped) return;
      if (!ec) self->session(std::move(socket));
      self->accept();
    });
  }
  void session(tcp::socket socket);
  void refuse(const std::string& why) {
    if (!stopped && hooks.refused) hooks.refused(why);
  }
  std::string upstreamOrigin() const {
    return upstream ? "http://" + upstream->host + ":" + upstream->port : std::string();
  }
  bool servesHost(std::string_view host) const { return std::find(hosts.begin(), hosts.end(), host) != hosts.end(); }
  Response serveFile(const Request& request, bool top) const;
};

namespace {

class WebSocketSession final : public Socket, public std::enable_shared_from_this<WebSocketSession> {
 public:
  WebSocketSession(std::shared_ptr<DevServer::Shared> shared, tcp::socket socket, std::string origin)
      : shared_(std::move(shared)), ws_(std::move(socket)), origin_(std::move(origin)) {}

  void accept(Request request) {
    request_ = std::move(request);
    ws_.set_option(websocket::stream_base::timeout::suggested(beast::role_type::server));
    ws_.read_message_max(kLargestBody);
    ws_.async_accept(request_, [self = shared_from_this()](beast::error_code ec) {
      if (ec || self->shared_->stopped) return;
      auto& sockets = self->shared_->sockets;
      std::erase_if(sockets, [](const std::weak_ptr<Socket>& s) { return s.expired(); });
      sockets.push_back(self);
      self->shared_->hooks.opened(self, self->origin_);
      self->read();
    });
  }

  void send(std::string text) override {
    outbox_.push_back(std::move(text));
    if (outbox_.size() == 1) writeNext();
  }
  void close() override {
    ws_.async_close(websocket::close_code::going_away, [self = shared_from_this()](beast::error_code) {});
  }

 private:
  void read() {
    ws_.async_read(buffer_, [self = shared_from_this()](beast::error_code ec, std::size_t) {
      if (self->shared_->stopped) return;
      if (ec) return self->shared_->hooks.closed(self);
      const std::string text = beast::buffers_to_string(self->buffer_.data());
      self->buffer_.consume(self->buffer_.size());
      self->shared_->hooks.received(self, text);
      self->read();
    });
  }
  void writeNext() {
    ws_.text(true);
    ws_.async_write(asio::buffer(outbox_.front()), [self = shared_from_this()](beast::error_code ec, std::size_t) {
      if (ec) return;
      self->outbox_.pop_front();
      if (!self->outbox_.empty()) self->writeNext();
    });
  }

  std::shared_ptr<DevServer::Shared> shared_;
  websocket::stream<beast::tcp_stream> ws_;
  std::string origin_;
  Request request_;
  beast::flat_buffer buffer_;
  std::deque<std::string> outbox_;
};

class HttpSession final : public std::enable_shared_from_this<HttpSession> {
 public:
  HttpSession(std::shared_ptr<DevServer::Shared> shared, tcp::socket socket)
      : shared_(std::move(shared)), stream_(std::move(socket)) {}

  void read() {
    parser_.emplace();
    parser_->body_limit(kLargestBody);
    stream_.expires_after(std::chrono::minutes(2));
    http::async_read(stream_, buffer_, *parser_, [self = shared_from_this()](beast::error_code ec, std::size_t) {
      if (ec || self->shared_->stopped) return;
      self->handle(self->parser_->release());
    });
  }

 private:
  void handle(Request request) {
    DevServer::Shared& shared = *shared_;
    const std::string host(request[http::field::host]);
    // A name that is not this server's is another site's, resolved here
    // (DNS rebinding): it gets neither the pages nor their token.
    if (!shared.servesHost(host)) {
      shared.refuse("refused a request for host \"" + host + "\": this server answers to " + shared.hosts.front());
      return respond(text(request, http::status::forbidden, "not this server's host name\n"));
    }
    const std::string target(request.target());
    const std::string path = target.substr(0, target.find('?'));
    if (path == kSocketPath) return upgrade(std::move(request), host, target);
    if (path == kIdlePath) {
      Response idle = text(request, http::status::ok, "");
      idle.set(http::field::content_type, "text/html; charset=utf-8");
      idle.body() = withPageSide("<!doctype html><title>waiting for a load</title>", shared.hooks.pageSide(true));
      return respond(std::move(idle));
    }
    // A frame's document gets the channel; the user scripts go to the top document only.
    const std::string_view dest = request["Sec-Fetch-Dest"];
    const bool top = dest.empty() || dest == "document";
    if (shared.configuration.followsLoads && !shared.upstream)
      return respond(text(request, http::status::not_found, "nothing is loaded yet\n"));
    if (!shared.upstream) return respond(shared.serveFile(request, top));
    if (top && shared.hooks.documentFields)
      for (auto& [name, value] : shared.hooks.documentFields(shared.upstreamOrigin() + path)) request.set(name, value);
    proxy(std::move(request), top, "http://" + host);
  }

  void upgrade(Request request, const std::string& host, const std::string& target) {
    DevServer::Shared& shared = *shared_;
    const std::string origin(request[http::field::origin]);
    const std::size_t at = target.find("token=");
    const std::string token = at == std::string::npos ? "" : target.substr(at + 6, target.find('&', at) - at - 6);
    std::string why;
    if (!websocket::is_upgrade(request))
      why = "not a WebSocket upgrade";
    else if (origin != "http://" + host)
      why = "its origin " + (origin.empty() ? std::string("(none)") : "\"" + origin + "\"") +
            " is not the one served, " + "http://" + host;
    else if (token != shared.token)
      why = "it does not carry this run's token";
    if (!why.empty()) {
      shared.refuse("refused a WebSocket: " + why);
      return respond(text(request, http::status::forbidden, "refused: " + why + "\n"));
    }
    std::make_shared<WebSocketSession>(shared_, stream_.release_socket(), origin)->accept(std::move(request));
  }

  // The dev server's answer, fetched off the UI thread: a slow build there
  // must not hold the bridge's traffic.
  void proxy(Request request, bool top, std::string servedOrigin) {
    const Upstream upstream = *shared_->upstream;
    request.target(upstream.base + std::string(request.target()));
    request.set(http::field::host, upstream.host + ":" + upstream.port);
    request.set(http::field::accept_encoding, "identity");  // the HTML is rewritten
    // The page's own Origin and Referer name the loaded server, as they
    // would had the browser gone there itself.
    const std::string upstreamOrigin = shared_->upstreamOrigin();
    for (const auto field : {http::field::origin, http::field::referer}) {
      const std::string value(request[field]);
      if (value.starts_with(servedOrigin)) request.set(field, upstreamOrigin + value.substr(servedOrigin.size()));
    }
    std::thread([self = shared_from_this(), request = std::move(request), upstream, top, servedOrigin]() mutable {
      Response response;
      try {
        asio::io_context context;
        tcp::resolver resolver(context);
        beast::tcp_stream stream(context);
        stream.expires_after(std::chrono::minutes(1));
        stream.connect(resolver.resolve(upstream.host, upstream.port));
        request.keep_alive(false);
        http::write(stream, request);
        beast::flat_buffer buffer;
        http::response_parser<http::string_body> parser;
        parser.body_limit(kLargestBody);
        http::read(stream, buffer, parser);
        response = parser.release();
      } catch (const std::exception& e) {
        response = text(
            request, http::status::bad_gateway,
            "the page's dev server at " + upstream.host + ":" + upstream.port + " did not answer: " + e.what() + "\n");
      }
      asio::post(loop(), [self, response = std::move(response), top, servedOrigin]() mutable {
        if (self->shared_->stopped) return;
        response.erase(http::field::transfer_encoding);
        // A redirect within the dev server stays on the origin served.
        const std::string location(response[http::field::location]);
        const std::string upstreamOrigin = self->shared_->upstreamOrigin();
        if (location.starts_with(upstreamOrigin))
          response.set(http::field::location, servedOrigin + location.substr(upstreamOrigin.size()));
        if (lower(response[http::field::content_type]).starts_with("text/html"))
          response.body() = withPageSide(std::move(response.body()), self->shared_->hooks.pageSide(top));
        response.keep_alive(false);
        self->respond(std::move(response));
      });
    }).detach();
  }

  static Response text(const Request& request, http::status status, std::string body) {
    Response response{status, request.version()};
    response.set(http::field::content_type, "text/plain; charset=utf-8");
    response.body() = std::move(body);
    return response;
  }

  void respond(Response response) {
    response.set(http::field::cache_control, "no-store");
    response.prepare_payload();
    auto held = std::make_shared<Response>(std::move(response));
    http::async_write(stream_, *held, [self = shared_from_this(), held](beast::error_code ec, std::size_t) {
      if (ec || held->need_eof()) {
        beast::error_code ignored;
        self->stream_.socket().shutdown(tcp::socket::shutdown_send, ignored);
        return;
      }
      self->read();
    });
  }

  std::shared_ptr<DevServer::Shared> shared_;
  beast::tcp_stream stream_;
  beast::flat_buffer buffer_;
  std::optional<http::request_parser<http::string_body>> parser_;
};

}  // namespace

void DevServer::Shared::session(tcp::socket socket) {
  std::make_shared<HttpSession>(shared_from_this(), std::move(socket))->read();
}

Response DevServer::Shared::serveFile(const Request& request, bool top) const {
  namespace fs = std::filesystem;
  Response response{http::status::ok, request.version()};
  response.keep_alive(request.keep_alive());
  const std::string target(request.target());
  const std::string path = percentDecoded(target.substr(0, target.find('?')));
  std::error_code ec;
  const fs::path root = fs::weakly_canonical(*configuration.root, ec);
  fs::path file = fs::weakly_canonical(root / fs::path(path).relative_path(), ec);
  // Nothing outside the folder: its canonical path must lie under the root's.
  const auto [rootEnd, fileAt] = std::mismatch(root.begin(), root.end(), file.begin(), file.end());
  if (ec || rootEnd != root.end()) file.clear();
  if (!file.empty() && fs::is_directory(file, ec)) file /= "index.html";
  std::ifstream in(file, std::ios::binary);
  if (file.empty() || !fs::is_regular_file(file, ec) || !in) {
    response.result(http::status::not_found);
    response.set(http::field::content_type, "text/plain; charset=utf-8");
    response.body() = "not found: " + path + "\n";
    return response;
  }
  std::ostringstream body;
  body << in.rdbuf();
  response.set(http::field::content_type, contentType(file));
  response.body() = body.str();
  if (contentType(file).starts_with("text/html")) response.body() = withPageSide(response.body(), hooks.pageSide(top));
  return response;
}

DevServer::DevServer(const BrowserConfiguration& configuration, std::string token, ServerHooks hooks)
    : shared_(std::make_shared<Shared>()) {
  Shared& s = *shared_;
  s.configuration = configuration;
  s.token = std::move(token);
  s.hooks = std::move(hooks);
  if (configuration.upstream) {
    s.upstream = readUpstream(*configuration.upstream);
    if (!s.upstream) {
      s.error = "the page's dev server must be an http:// URL: " + *configuration.upstream;
      return;
    }
  } else if (!configuration.followsLoads &&
             (!configuration.root || !std::filesystem::is_directory(*configuration.root))) {
    s.error = "no page folder: " + configuration.root.value_or("(none given)");
    return;
  }
  beast::error_code ec;
  const auto address = asio::ip::make_address(configuration.address, ec);
  if (ec) {
    s.error = "not an IP address: " + configuration.address;
    return;
  }
  const tcp::endpoint endpoint(address, configuration.port);
  s.acceptor.open(endpoint.protocol(), ec);
  // A program this process starts (a browser) must not keep the port open.
  if (!ec) ::fcntl(s.acceptor.native_handle(), F_SETFD, FD_CLOEXEC);
  if (!ec) s.acceptor.set_option(asio::socket_base::reuse_address(true), ec);
  if (!ec) s.acceptor.bind(endpoint, ec);
  if (!ec) s.acceptor.listen(asio::socket_base::max_listen_connections, ec);
  if (ec) {
    s.error =
        "cannot listen on " + configuration.address + ":" + std::to_string(configuration.port) + ": " + ec.message();
    return;
  }
  s.port = s.acceptor.local_endpoint().port();
  const std::string port = ":" + std::to_string(s.port);
  const std::string named = address.is_v6() ? "[" + address.to_string() + "]" : address.to_string();
  s.hosts.push_back(named + port);
  if (address.is_loopback()) {
    for (const char* name : {"127.0.0.1", "localhost", "[::1]"})
      if (named != name) s.hosts.push_back(name + port);
  }
  s.accept();
}

DevServer::~DevServer() {
  shared_->stopped = true;
  beast::error_code ignored;
  shared_->acceptor.close(ignored);
  // Their pages learn it at once, and may find the next server on this port.
  for (const auto& weak : shared_->sockets)
    if (const auto socket = weak.lock()) socket->close();
}

void DevServer::follow(const std::string& origin) { shared_->upstream = readUpstream(origin); }

bool DevServer::listening() const { return shared_->error.empty(); }
const std::string& DevServer::error() const { return shared_->error; }
std::string DevServer::origin() const { return "http://" + (shared_->hosts.empty() ? "" : shared_->hosts.front()); }

}  // namespace websdk::browser
