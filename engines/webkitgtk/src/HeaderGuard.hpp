#pragma once
// The header guard: how a load tells the web process which of its header
// fields are the app's and which hosts may see them. Redirects are followed
// inside WebKit, beyond the UI process's reach, and WebKit copies a load's
// header fields onto each redirect; the guard module (extension/HeaderGuard.cpp),
// loaded into every web process, reads this field on each outgoing request
// and removes the app's fields, and the guard itself, where the host is not
// trusted. The guard rides on the request so that it follows the load into
// whichever web process serves it.

#include "websdk/webview/WebSDKConfig.hpp"

#include <glib.h>

#include <optional>
#include <string>
#include <vector>

namespace websdk::webkitgtk::guard {

inline constexpr char kField[] = "X-WebSDK-Confined";
inline constexpr char kModule[] = "libwebsdk-header-guard.so";

struct Guard {
  std::vector<std::string> confined;
  WebSDKConfig trust;
};

// A GVariant (asasb) in base64: any header names and host entries survive,
// and the value is plain ASCII as a header field must be.
inline std::string encode(const Guard& guard) {
  GVariantBuilder names, hosts;
  g_variant_builder_init(&names, G_VARIANT_TYPE_STRING_ARRAY);
  for (const auto& n : guard.confined) g_variant_builder_add(&names, "s", n.c_str());
  g_variant_builder_init(&hosts, G_VARIANT_TYPE_STRING_ARRAY);
  for (const auto& h : guard.trust.whitelistedHosts) g_variant_builder_add(&hosts, "s", h.c_str());
  GVariant* value = g_variant_ref_sink(
      g_variant_new("(asasb)", &names, &hosts, static_cast<gboolean>(guard.trust.shouldWhitelistAllUrls)));
  gchar* text = g_base64_encode(static_cast<const guchar*>(g_variant_get_data(value)), g_variant_get_size(value));
  std::string out(text);
  g_free(text);
  g_variant_unref(value);
  return out;
}

// Anything a page or server could put in the field decodes safely; what is
// not a guard is nothing.
inline std::optional<Guard> decode(const char* field) {
  gsize size = 0;
  guchar* data = g_base64_decode(field, &size);
  GBytes* bytes = g_bytes_new_take(data, size);
  GVariant* value = g_variant_ref_sink(g_variant_new_from_bytes(G_VARIANT_TYPE("(asasb)"), bytes, FALSE));
  g_bytes_unref(bytes);
  Guard guard;
  GVariantIter* names = nullptr;
  GVariantIter* hosts = nullptr;
  gboolean all = FALSE;
  g_variant_get(value, "(asasb)", &names, &hosts, &all);
  const gchar* s = nullptr;
  while (g_variant_iter_next(names, "&s", &s)) guard.confined.emplace_back(s);
  while (g_variant_iter_next(hosts, "&s", &s)) guard.trust.whitelistedHosts.emplace_back(s);
  guard.trust.shouldWhitelistAllUrls = all;
  g_variant_iter_free(names);
  g_variant_iter_free(hosts);
  g_variant_unref(value);
  if (guard.confined.empty()) return std::nullopt;
  return guard;
}

}  // namespace websdk::webkitgtk::guard
