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

struct Unref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
// Held, so that a resource the view has let go of cannot come back at the
// same address as another.
using Held = std::unique_ptr<WebKitWebResource, Unref>;
Held hold(WebKitWebResource* resource) {
  return Held(resource ? WEBKIT_WEB_RESOURCE(g_object_ref(resource)) : nullptr);
}

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

}  // namespace

// One view's pages, and what its requests are judged by. WebKit names the
// view of a request, never its frame or what made it; what it does say is
// the view's main resource: the request of its main frame's navigation,
// made anew for each navigation, never for a page's own requests.
struct Serving::View {
  WebKitWebView* view = nullptr;
  Pages pages;
  // The URL of the document the view shows: its requests are the pages'
  // when it is one of them.
  std::string shown;
  // The main resource last answered as a navigation: one request each.
  Held answeredMain;
  // The load the view expects with the app's fields. Its request is the
  // main resource of the one main-frame navigation to start after the load
  // was made, and to that URL: a page's fetch of the same URL is no main
  // resource. A second navigation asked about for its URL, or a second one
  // started, leaves it unclear whose navigation comes (a page's own, or one
  // after the load was refused or stopped): the fields then stay home.
  struct Load {
    std::string url;
    HeaderFields fields;
    Held mainBefore;
    int asked = 0;
    int started = 0;
  };
  std::optional<Load> load;
  std::vector<gulong> handlers;

  void asked(std::string_view url) {
    if (load && withoutFragment(url) == withoutFragment(load->url) && ++load->asked > 1) load.reset();
  }

  // Whether a request for `url` is the view's main-frame navigation; and
  // whether it is the load's, which then takes the load's fields.
  std::pair<bool, std::optional<HeaderFields>> navigation(const std::string& url) {
    WebKitWebResource* main = webkit_web_view_get_main_resource(view);
    if (main == nullptr || main == answeredMain.get() ||
        withoutFragment(text(webkit_web_resource_get_uri(main))) != withoutFragment(url))
      return {false, std::nullopt};
    answeredMain = hold(main);
    if (!load || load->asked != 1 || load->started != 1 || main == load->mainBefore.get() ||
        withoutFragment(load->url) != withoutFragment(url))
      return {true, std::nullopt};
    std::optional<HeaderFields> fields = std::move(load->fields);
    load.reset();
    return {true, std::move(fields)};
  }
};

namespace {

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

  void add(WebKitWebContext* context, std::shared_ptr<Serving::View> served) {
    for (const auto& page : *served->pages) {
      if (!schemes_.insert(page.scheme).second) continue;
      webkit_web_context_register_uri_scheme(context, page.scheme.c_str(), &Registry::handle, this, nullptr);
      // Secure, so that a page there is a secure context and may load what a
      // page of https may; CORS-enabled, so that its scripts may fetch.
      WebKitSecurityManager* security = webkit_web_context_get_security_manager(context);
      webkit_security_manager_register_uri_scheme_as_secure(security, page.scheme.c_str());
      webkit_security_manager_register_uri_scheme_as_cors_enabled(security, page.scheme.c_str());
    }
    byView_[served->view] = std::move(served);
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
    std::shared_ptr<Serving::View> served;
    if (const auto it = byView.find(webkit_uri_scheme_request_get_web_view(request)); it != byView.end())
      served = it->second;
    LocalAnswer answer;
    const LocalPages* pages = served ? servedBy(*served->pages, local.url) : nullptr;
    if (pages == nullptr) {
      answer = LocalAnswer{404, "text/plain; charset=utf-8", "not found", ""};
    } else if (auto [navigation, fields] = served->navigation(local.url);
               navigation || servesPageOf(*served->pages, local.url, served->shown)) {
      if (fields) {
        // The load's own request: its fields, which replace the request's own.
        for (const auto& [name, value] : *fields) {
          std::erase_if(local.headers, [&](const auto& field) { return sameFieldName(field.first, name); });
          local.headers.emplace_back(name, value);
        }
      }
      answer = pages->answer(local);
    } else {
      // A page of another origin, or one whose frames WebKit does not name:
      // the responder is not asked.
      answer = forbidden();
    }
    log(LogLevel::debug, "load", local.method + " " + local.url + ": " + std::to_string(answer.status));
    finish(request, answer);
  }

  std::set<std::string> schemes_;
  std::map<WebKitWebView*, std::shared_ptr<Serving::View>> byView_;
};

}  // namespace

Serving::Serving(WebKitWebView* view, std::vector<LocalPages> pages) : view_(std::make_shared<View>()) {
  view_->view = view;
  view_->pages = std::make_shared<const std::vector<LocalPages>>(std::move(pages));
  // Connected before the engine's own handlers, and only watching.
  view_->handlers.push_back(g_signal_connect(
      view, "decide-policy",
      G_CALLBACK(+[](WebKitWebView*, WebKitPolicyDecision* decision, WebKitPolicyDecisionType type, gpointer data) {
        if (type != WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION) return FALSE;
        WebKitNavigationAction* action =
            webkit_navigation_policy_decision_get_navigation_action(WEBKIT_NAVIGATION_POLICY_DECISION(decision));
        static_cast<View*>(data)->asked(text(webkit_uri_request_get_uri(webkit_navigation_action_get_request(action))));
        return FALSE;
      }),
      view_.get()));
  view_->handlers.push_back(
      g_signal_connect(view, "load-changed", G_CALLBACK(+[](WebKitWebView* v, WebKitLoadEvent event, gpointer data) {
                         auto* served = static_cast<View*>(data);
                         if (event == WEBKIT_LOAD_STARTED && served->load && ++served->load->started > 1)
                           served->load.reset();
                         if (event == WEBKIT_LOAD_COMMITTED) served->shown = text(webkit_web_view_get_uri(v));
                       }),
                       view_.get()));
  Registry::of(webkit_web_view_get_context(view)).add(webkit_web_view_get_context(view), view_);
}

Serving::~Serving() {
  for (const gulong id : view_->handlers)
    if (g_signal_handler_is_connected(view_->view, id)) g_signal_handler_disconnect(view_->view, id);
  Registry::of(webkit_web_view_get_context(view_->view)).remove(view_->view);
}

void Serving::expect(const std::string& url, HeaderFields fields) {
  // A load elsewhere ends the wait for an earlier one.
  view_->load.reset();
  if (servedBy(*view_->pages, url) != nullptr)
    view_->load.emplace(View::Load{url, std::move(fields), hold(webkit_web_view_get_main_resource(view_->view))});
}

std::unique_ptr<Serving> serve(WebKitWebView* view, const std::vector<LocalPages>& pages) {
  std::vector<LocalPages> served = servablePages(pages);
  if (served.empty()) return nullptr;
  return std::make_unique<Serving>(view, std::move(served));
}

}  // namespace websdk::webkitgtk::local
