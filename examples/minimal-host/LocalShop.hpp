#pragma once
// A stand-in for the shop's web server, so that the example runs offline: it
// serves one page, /cart, on 127.0.0.1 and remembers the header fields of the
// last request for it. A real app loads its shop's own address instead.

#include <libsoup/soup.h>  // comes with WebKitGTK

#include <map>
#include <string>
#include <string_view>

class LocalShop {
 public:
  explicit LocalShop(std::string page) : page_(std::move(page)) {
    soup_server_add_handler(server_, nullptr, &LocalShop::answer, this, nullptr);
    soup_server_listen_local(server_, 0, SOUP_SERVER_LISTEN_IPV4_ONLY, nullptr);
  }
  ~LocalShop() { g_object_unref(server_); }
  LocalShop(const LocalShop&) = delete;
  LocalShop& operator=(const LocalShop&) = delete;

  /// "http://127.0.0.1:<port>/cart".
  std::string url() const {
    GSList* uris = soup_server_get_uris(server_);
    const int port = uris ? g_uri_get_port(static_cast<GUri*>(uris->data)) : 0;
    g_slist_free_full(uris, reinterpret_cast<GDestroyNotify>(g_uri_unref));
    return "http://127.0.0.1:" + std::to_string(port) + "/cart";
  }

  /// The value of the field `name` (lower case) on the last request for the
  /// page; "" when it had none.
  std::string header(const std::string& name) const {
    const auto it = lastHeaders_.find(name);
    return it == lastHeaders_.end() ? "" : it->second;
  }

 private:
  static void answer(SoupServer*, SoupServerMessage* message, const char* path, GHashTable*, gpointer data) {
    auto& shop = *static_cast<LocalShop*>(data);
    if (std::string_view(path) != "/cart") {
      soup_server_message_set_status(message, 404, nullptr);
      return;
    }
    shop.lastHeaders_.clear();
    soup_message_headers_foreach(
        soup_server_message_get_request_headers(message),
        [](const char* name, const char* value, gpointer headers) {
          gchar* lower = g_ascii_strdown(name, -1);
          (*static_cast<std::map<std::string, std::string>*>(headers))[lower] = value;
          g_free(lower);
        },
        &shop.lastHeaders_);
    soup_server_message_set_status(message, 200, nullptr);
    soup_server_message_set_response(message, "text/html; charset=utf-8", SOUP_MEMORY_COPY, shop.page_.data(),
                                     shop.page_.size());
  }

  SoupServer* server_ = soup_server_new(nullptr, nullptr);
  std::string page_;
  std::map<std::string, std::string> lastHeaders_;
};
