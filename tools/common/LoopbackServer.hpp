#pragma once
// The loopback HTTP server the WebSDK's own programs load pages from: the
// real-engine tests read back what reached it, the demo prints it. libsoup
// only, so it serves every engine.

#include <libsoup/soup.h>

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace websdk {

/// An HTTP server on 127.0.0.1 serving fixed pages and recording every request.
class LoopbackServer {
 public:
  struct Request {
    std::string path;
    std::multimap<std::string, std::string> headers;  // names in lower case
    std::optional<std::string> header(std::string name) const {
      for (auto& c : name) c = static_cast<char>(g_ascii_tolower(c));
      const auto it = headers.find(name);
      return it == headers.end() ? std::nullopt : std::optional(it->second);
    }
  };

  LoopbackServer() {
    server_ = soup_server_new(nullptr, nullptr);
    soup_server_add_handler(server_, nullptr, &LoopbackServer::handle, this, nullptr);
    GError* error = nullptr;
    if (!soup_server_listen_local(server_, 0, SOUP_SERVER_LISTEN_IPV4_ONLY, &error)) {
      error_ = std::string("cannot listen on 127.0.0.1: ") + error->message;
      g_error_free(error);
      return;
    }
    GSList* uris = soup_server_get_uris(server_);
    port_ = g_uri_get_port(static_cast<GUri*>(uris->data));
    g_slist_free_full(uris, reinterpret_cast<GDestroyNotify>(g_uri_unref));
    // Further loopback addresses on the same port: hosts that differ for
    // trust decisions but reach this server.
    for (const char* address : {"127.0.0.2", "127.0.0.3"}) {
      GSocketAddress* socket = g_inet_socket_address_new_from_string(address, port_);
      if (!soup_server_listen(server_, socket, SoupServerListenOptions{}, &error)) {
        error_ = std::string("cannot listen on ") + address + ": " + error->message;
        g_clear_error(&error);
      }
      g_object_unref(socket);
    }
  }
  ~LoopbackServer() {
    soup_server_disconnect(server_);
    g_object_unref(server_);
  }
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  /// Whether it listens on every address, and why not.
  bool listening() const { return port_ != 0 && error_.empty(); }
  const std::string& error() const { return error_; }

  void page(const std::string& path, std::string html) { pages_[path] = std::move(html); }
  /// Called with each request as it arrives, before it is answered.
  void observe(std::function<void(const Request&)> observer) { observer_ = std::move(observer); }
  /// Served for every path without a page of its own.
  void fallback(std::string html) { fallback_ = std::move(html); }
  /// Requests to `path` are answered `status` with `location`.
  void redirect(const std::string& path, std::string location, int status = 302) {
    redirects_[path] = {status, std::move(location)};
  }
  /// Requests to `path` are taken and never answered.
  void hold(const std::string& path) { held_.insert(path); }
  /// Requests to `path` need HTTP basic credentials `user`/`password`.
  void protect(const std::string& path, std::string user, std::string password) {
    credentials_ = {std::move(user), std::move(password)};
    SoupAuthDomain* domain = soup_auth_domain_basic_new("realm", "websdk-e2e", nullptr);
    soup_auth_domain_add_path(domain, path.c_str());
    soup_auth_domain_basic_set_auth_callback(
        domain,
        +[](SoupAuthDomain*, SoupServerMessage*, const char* user, const char* password, gpointer self) -> gboolean {
          const auto& expected = static_cast<LoopbackServer*>(self)->credentials_;
          return user == expected.first && password == expected.second;
        },
        this, nullptr);
    soup_server_add_auth_domain(server_, domain);
    g_object_unref(domain);
  }

  /// "http://<host>:<port><path>"; "127.0.0.1" and "localhost" reach the same server.
  std::string url(const std::string& path, const std::string& host = "127.0.0.1") const {
    return "http://" + host + ":" + std::to_string(port_) + path;
  }

  const std::vector<Request>& requests() const { return requests_; }
  std::vector<Request> requestsTo(const std::string& path) const {
    std::vector<Request> out;
    for (const auto& r : requests_)
      if (r.path == path) out.push_back(r);
    return out;
  }

 private:
  static void handle(SoupServer*, SoupServerMessage* message, const char* path, GHashTable*, gpointer data) {
    auto& self = *static_cast<LoopbackServer*>(data);
    Request request{path, {}};
    soup_message_headers_foreach(
        soup_server_message_get_request_headers(message),
        +[](const char* name, const char* value, gpointer headers) {
          gchar* lower = g_ascii_strdown(name, -1);
          static_cast<std::multimap<std::string, std::string>*>(headers)->emplace(lower, value);
          g_free(lower);
        },
        &request.headers);
    if (self.observer_) self.observer_(request);
    self.requests_.push_back(std::move(request));
    if (self.held_.contains(path)) {
      soup_server_message_pause(message);
      return;
    }
    if (const auto r = self.redirects_.find(path); r != self.redirects_.end()) {
      soup_server_message_set_redirect(message, r->second.first, r->second.second.c_str());
      return;
    }
    const auto it = self.pages_.find(path);
    if (it == self.pages_.end() && !self.fallback_) {
      soup_server_message_set_status(message, 404, nullptr);
      return;
    }
    const std::string& html = it == self.pages_.end() ? *self.fallback_ : it->second;
    soup_server_message_set_status(message, 200, nullptr);
    soup_server_message_set_response(message, "text/html; charset=utf-8", SOUP_MEMORY_COPY, html.data(), html.size());
  }

  SoupServer* server_ = nullptr;
  guint port_ = 0;
  std::map<std::string, std::string> pages_;
  std::optional<std::string> fallback_;
  std::set<std::string> held_;
  std::map<std::string, std::pair<int, std::string>> redirects_;
  std::pair<std::string, std::string> credentials_;
  std::vector<Request> requests_;
  std::function<void(const Request&)> observer_;
  std::string error_;
};

}  // namespace websdk
