// The header guard module, loaded by WebKit into every web process the
// engine's web context starts. It sees each request the page is about to
// send, redirects included, and keeps the app's header fields off hosts the
// load's guard does not trust.

#include "HeaderGuard.hpp"

#include <webkit2/webkit-web-extension.h>

namespace {

using namespace websdk::webkitgtk;

gboolean sendRequest(WebKitWebPage*, WebKitURIRequest* request, WebKitURIResponse*, gpointer) {
  SoupMessageHeaders* headers = webkit_uri_request_get_http_headers(request);
  if (headers == nullptr) return FALSE;
  const char* field = soup_message_headers_get_one(headers, guard::kField);
  if (field == nullptr) return FALSE;
  const auto g = guard::decode(field);
  const char* uri = webkit_uri_request_get_uri(request);
  // A trusted host keeps the guard with the fields: a redirect is made from
  // the request as sent, and must still carry the rule that confines them.
  if (g && uri != nullptr && g->trust.isWhitelistedURL(uri)) return FALSE;
  if (g)
    for (const auto& name : g->confined) soup_message_headers_remove(headers, name.c_str());
  soup_message_headers_remove(headers, guard::kField);
  return FALSE;  // the request goes on
}

void pageCreated(WebKitWebExtension*, WebKitWebPage* page, gpointer) {
  g_signal_connect(page, "send-request", G_CALLBACK(sendRequest), nullptr);
}

}  // namespace

extern "C" G_MODULE_EXPORT void webkit_web_extension_initialize(WebKitWebExtension* extension) {
  g_signal_connect(extension, "page-created", G_CALLBACK(pageCreated), nullptr);
}
