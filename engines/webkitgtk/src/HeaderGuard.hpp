#pragma once
// The header guard: how the UI process tells the module in WebKit's web
// processes (extension/HeaderGuard.cpp) which header fields are the app's and
// which hosts may see them. Redirects are followed inside WebKit, beyond the
// UI process's reach, and WebKit copies a load's fields onto each redirect;
// the module sees every request a page is about to send and removes the app's
// fields where the host is not trusted.
//
// Nothing of this travels on a request: the rules go to every web process of
// the context as a user message, and to each new one as its initialization
// data, so they are there before any load of a page in it. A field is the
// app's only if both its name and its value are, so a page cannot make the
// guard remove anything but the app's own fields.

#include "websdk/webview/WebSDKConfig.hpp"

#include <glib.h>

#include <string>
#include <utility>
#include <vector>

namespace websdk::webkitgtk::guard {

inline constexpr char kModule[] = "libwebsdk-header-guard.so";
/// View -> every web process of its context: the rules, in the form below.
inline constexpr char kRules[] = "websdk:guard-rules";
/// View -> page: is the module here? The module answers kReady.
inline constexpr char kHello[] = "websdk:guard-hello";
inline constexpr char kReady[] = "websdk:guard-ready";

/// One view's rule: its page, the app's fields it has loaded with, and its
/// trust. With the trust the module also spares the UI process the text of
/// a message it would refuse unread (see PageChannel.hpp).
struct Rule {
  guint64 page = 0;
  std::vector<std::pair<std::string, std::string>> fields;
  WebSDKConfig trust;
  bool operator==(const Rule&) const = default;
};

inline constexpr char kRulesType[] = "a(ta(ss)asbbt)";

/// The rules as a floating GVariant of kRulesType.
inline GVariant* encode(const std::vector<Rule>& rules) {
  GVariantBuilder all;
  g_variant_builder_init(&all, G_VARIANT_TYPE(kRulesType));
  for (const auto& rule : rules) {
    GVariantBuilder fields, hosts;
    g_variant_builder_init(&fields, G_VARIANT_TYPE("a(ss)"));
    for (const auto& [name, value] : rule.fields) g_variant_builder_add(&fields, "(ss)", name.c_str(), value.c_str());
    g_variant_builder_init(&hosts, G_VARIANT_TYPE_STRING_ARRAY);
    for (const auto& h : rule.trust.whitelistedHosts) g_variant_builder_add(&hosts, "s", h.c_str());
    g_variant_builder_add(&all, "(ta(ss)asbbt)", rule.page, &fields, &hosts,
                          static_cast<gboolean>(rule.trust.shouldWhitelistAllUrls),
                          static_cast<gboolean>(rule.trust.judgesFramesByTheirOwnHost),
                          static_cast<guint64>(rule.trust.maximumMessageBytes));
  }
  return g_variant_builder_end(&all);
}

/// The rules in `value`; anything not of kRulesType is none.
inline std::vector<Rule> decode(GVariant* value) {
  std::vector<Rule> rules;
  if (value == nullptr || !g_variant_is_of_type(value, G_VARIANT_TYPE(kRulesType))) return rules;
  GVariantIter all;
  g_variant_iter_init(&all, value);
  GVariantIter *fields = nullptr, *hosts = nullptr;
  gboolean everyHost = FALSE, byFrame = FALSE;
  guint64 page = 0, limit = 0;
  while (g_variant_iter_next(&all, "(ta(ss)asbbt)", &page, &fields, &hosts, &everyHost, &byFrame, &limit)) {
    Rule rule;
    rule.page = page;
    rule.trust.judgesFramesByTheirOwnHost = byFrame != FALSE;
    rule.trust.maximumMessageBytes = static_cast<std::size_t>(limit);
    const gchar *name = nullptr, *text = nullptr;
    while (g_variant_iter_next(fields, "(&s&s)", &name, &text)) rule.fields.emplace_back(name, text);
    while (g_variant_iter_next(hosts, "&s", &text)) rule.trust.whitelistedHosts.emplace_back(text);
    rule.trust.shouldWhitelistAllUrls = everyHost != FALSE;
    g_variant_iter_free(fields);
    g_variant_iter_free(hosts);
    rules.push_back(std::move(rule));
  }
  return rules;
}

}  // namespace websdk::webkitgtk::guard
