#include "LocalSchemes.hpp"

#include "websdk/Log.hpp"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace websdk::webkitgtk::local {
namespace {

using Pages = std::shared_ptr<const std::vector<LocalPages>>;

// A view's pages, and the load it expects next.
struct Served {
  Pages pages;
  std::optional<std::pair<std::string, HeaderFields>> load;
};

std::string_view withoutFragment(std::string_view url) { return url.substr(0, url.find('#')); }

std::string text(const char* s) { return s ? std::string(s) : std::string(); }

void finish(WebKitURISchemeRequest* request, const LocalAnswer& answer) {
  GInputStream* stream = nullptr;
  gint64 length = -1;
  if (!answer.file.empty()) {
    // Read as WebKit asks for it, off the UI thread; only the open is here.
    GFile* file = g_file_new_for_path(answer.file.c_str());
    GError* error = nullptr;
    GFileInputStream* input = g_file_read(file, nullptr, &error);
    g_object_unref(file);
    if (input == nullptr) {
      webkit_uri_scheme_request_finish_error(request, error);
      g_error_free(error);
      return;
    }
    if (GFileInfo* info = g_file_input_stream_query_info(input, G_FILE_ATTRIBUTE_STANDARD_SIZE, nullptr, nullptr)) {
      length = g_file_info_get_size(info);
      g_object_unref(info);
    }
    stream = G_INPUT_STREAM(input);
  } else {
    GBytes* bytes = g_bytes_new(answer.bytes.data(), answer.bytes.size());
    stream = g_memory_input_stream_new_from_bytes(bytes);
    length = static_cast<gint64>(answer.bytes.size());
    g_bytes_unref(bytes);
  }
  WebKitURISchemeResponse* response = webkit_uri_scheme_response_new(stream, length);
  webkit_uri_scheme_response_set_content_type(response, answer.mimeType.c_str());
  // Scripts read the type from the header fields.
  SoupMessageHeaders* fields = soup_message_headers_new(SOUP_MESSAGE_HEADERS_RESPONSE);
  soup_message_headers_replace(fields, "Content-Type", answer.mimeType.c_str());
  webkit_uri_scheme_response_set_http_headers(response, fields);
  // WebKit keeps the status only with a reason phrase.
  webkit_uri_scheme_response_set_status(response, static_cast<guint>(answer.status),
                                        soup_status_get_phrase(static_cast<guint>(answer.status)));
  webkit_uri_scheme_request_finish_with_response(request, response);
  g_object_unref(response);
  g_object_unref(stream);
}

// The schemes registered on one web context, and each view's pages.
class Registry {
 public:
  static Registry& of(WebKitWebContext* context) {
    constexpr char kKey[] = "websdk-local-pages";
    auto* registry = static_cast<Registry*>(g_object_get_data(G_OBJECT(context), kKey));
    if (registry == nullptr) {
      registry = new Registry;
      g_object_set_data_full(G_OBJECT(context), kKey, registry, [](gpointer p) { delete static_cast<Registry*>(p); });
    }
    return *registry;
  }

  void add(WebKitWebContext* context, WebKitWebView* view, Pages pages) {
    for (const auto& page : *pages) {
      if (!schemes_.insert(page.scheme).second) continue;
      webkit_web_context_register_uri_scheme(context, page.scheme.c_str(), &Registry::handle, this, nullptr);
      // Secure, so that a page there is a secure context and may load what a
      // page of https may; CORS-enabled, so that its scripts may fetch.
      WebKitSecurityManager* security = webkit_web_context_get_security_manager(context);
      webkit_security_manager_register_uri_scheme_as_secure(security, page.scheme.c_str());
      webkit_security_manager_register_uri_scheme_as_cors_enabled(security, page.scheme.c_str());
    }
    byView_[view] = Served{std::move(pages), std::nullopt};
  }

  void expect(WebKitWebView* view, const std::string& url, HeaderFields fields) {
    const auto it = byView_.find(view);
    if (it == byView_.end()) return;
    // A load elsewhere ends the wait for an earlier one.
    it->second.load.reset();
    if (servedBy(*it->second.pages, url) != nullptr) it->second.load.emplace(url, std::move(fields));
  }

  // A scheme stays registered (WebKit cannot take it back); its requests
  // from a view that is gone find no pages.
  void remove(WebKitWebView* view) { byView_.erase(view); }

 private:
  static void handle(WebKitURISchemeRequest* request, gpointer data) {
    auto& byView = static_cast<Registry*>(data)->byView_;
    LocalRequest local{
        text(webkit_uri_scheme_request_get_uri(request)), text(webkit_uri_scheme_request_get_http_method(request)), {}};
    if (SoupMessageHeaders* headers = webkit_uri_scheme_request_get_http_headers(request))
      soup_message_headers_foreach(
          headers,
          +[](const char* name, const char* value, gpointer fields) {
            static_cast<HeaderFields*>(fields)->emplace_back(name, value);
          },
          &local.headers);
    // Held for the call: the host's responder may close the view.
    Pages pages;
    if (const auto it = byView.find(webkit_uri_scheme_request_get_web_view(request)); it != byView.end()) {
      pages = it->second.pages;
      // The load's first request: its fields, which replace the request's own.
      auto& load = it->second.load;
      if (load && withoutFragment(load->first) == withoutFragment(local.url)) {
        for (const auto& [name, value] : load->second) {
          std::erase_if(local.headers, [&](const auto& field) { return sameFieldName(field.first, name); });
          local.headers.emplace_back(name, value);
        }
        load.reset();
      }
    }
    const LocalPages* served = pages ? servedBy(*pages, local.url) : nullptr;
    const LocalAnswer answer =
        served ? served->answer(local) : LocalAnswer{404, "text/plain; charset=utf-8", "not found", ""};
    log(LogLevel::debug, "load", local.method + " " + local.url + ": " + std::to_string(answer.status));
    finish(request, answer);
  }

  std::set<std::string> schemes_;
  std::map<WebKitWebView*, Served> byView_;
};

}  // namespace

Serving::Serving(WebKitWebView* view, std::vector<LocalPages> pages) : view_(view) {
  Registry::of(webkit_web_view_get_context(view))
      .add(webkit_web_view_get_context(view), view, std::make_shared<const std::vector<LocalPages>>(std::move(pages)));
}

Serving::~Serving() { Registry::of(webkit_web_view_get_context(view_)).remove(view_); }

void Serving::expect(const std::string& url, HeaderFields fields) {
  Registry::of(webkit_web_view_get_context(view_)).expect(view_, url, std::move(fields));
}

std::unique_ptr<Serving> serve(WebKitWebView* view, const std::vector<LocalPages>& pages) {
  std::vector<LocalPages> served = servablePages(pages);
  if (served.empty()) return nullptr;
  return std::make_unique<Serving>(view, std::move(served));
}

}  // namespace websdk::webkitgtk::local
