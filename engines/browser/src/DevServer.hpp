#pragma once
// The browser engine's loopback server (Boost.Beast): it serves a page folder
// or proxies a page dev server, puts the page side at the top of each HTML
// document, and carries each document's WebSocket to the engine. Everything
// runs on the UI thread's loop (loop()).

#include "websdk/browser/BrowserEngine.hpp"

#include <boost/asio/io_context.hpp>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace websdk::browser {

/// The process's UI loop: the server's sockets and the main queue's tasks.
boost::asio::io_context& loop();
/// The UI thread: the first to make an engine or to run runUntil().
std::thread::id& uiThread();
/// A random token for a run (128 bits, in hex).
std::string randomToken();

/// One document's open WebSocket.
class Socket {
 public:
  virtual ~Socket() = default;
  /// Queues `text` as one text message to the page.
  virtual void send(std::string text) = 0;
  /// Closes the socket: the page is told, and may open one again.
  virtual void close() = 0;
};

/// What the server asks of and tells the engine, on the UI thread.
struct ServerHooks {
  /// The scripts that go at the top of an HTML document: the page side, and
  /// for a top document (not a frame's) the user scripts too.
  std::function<std::string(bool topDocument)> pageSide;
  /// A page of `origin` opened its socket.
  std::function<void(const std::shared_ptr<Socket>&, const std::string& origin)> opened;
  /// The page sent `text`.
  std::function<void(const std::shared_ptr<Socket>&, std::string_view text)> received;
  /// The socket closed (the page went, or the browser did).
  std::function<void(const std::shared_ptr<Socket>&)> closed;
  /// Someone was refused, and why.
  std::function<void(const std::string&)> refused;
  /// Following loads: the header fields to add to a top document's request
  /// for `target` (the load's own, once).
  std::function<std::vector<std::pair<std::string, std::string>>(const std::string& target)> documentFields;
};

/// The path of the page side's WebSocket.
inline constexpr std::string_view kSocketPath = "/__websdk/socket";
/// A blank page with the page side, where a browser waits for a load.
inline constexpr std::string_view kIdlePath = "/__websdk/idle";

/// Serves `configuration` on the UI loop until destroyed.
class DevServer {
 public:
  DevServer(const BrowserConfiguration& configuration, std::string token, ServerHooks hooks);
  ~DevServer();
  DevServer(const DevServer&) = delete;
  DevServer& operator=(const DevServer&) = delete;

  bool listening() const;
  const std::string& error() const;
  /// "http://<address>:<port>".
  std::string origin() const;
  /// Following loads: serves `origin` ("http://host:port") from now on.
  void follow(const std::string& origin);

  struct Shared;

 private:
  std::shared_ptr<Shared> shared_;
};

}  // namespace websdk::browser
