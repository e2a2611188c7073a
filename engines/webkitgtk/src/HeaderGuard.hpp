#pragma once
// The header guard: how the UI process hands the app's header fields to the
// module in WebKit's web processes (extension/HeaderGuard.cpp), which alone
// puts them on a request. The UI process loads without them; the module adds
// them to the load's first request, and WebKit copies them onto each
// redirect, where the module takes them off again for a host the view does
// not trust. A web process without the module therefore never sends them.
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

// Each engine's module is built against its own web-process API, in a
// directory of its own: WebKit loads every module of the directory it is given.
#ifdef WEBSDK_WEBKITGTK6
inline constexpr char kModule[] = "libwebsdk-header-guard-6.so";
#else
inline constexpr char kModule[] = "libwebsdk-header-guard.so";
#endif
/// View -> every web process of its context: the rules, in the form below.
inline constexpr char kRules[] = "websdk:guard-rules";
/// View -> page: is the module here? The module answers kReady.
inline constexpr char kHello[] = "websdk:guard-hello";
inline constexpr char kReady[] = "websdk:guard-ready";
/// The field the view marks its load's first request with: the load's
/// number, in hex. WebKit may send that request from any process of the
/// context (it moves a view's navigations between processes at will, and a
/// page's identity with them), so the mark, not the page, tells whose load it
/// is. The module takes it off every request.
inline constexpr char kLoadMark[] = "X-WebSDK-Load";
inline std::string loadMark(guint64 load) {
  char text[17];
  g_snprintf(text, sizeof text, "%016" G_GINT64_MODIFIER "x", load);
  return text;
}

/// One view's rule: its page, the app's fields it has loaded with, and its
/// trust. With the trust the module also spares the UI process the text of
/// a message it would refuse unread (see PageChannel.hpp).
using Fields = std::vector<std::pair<std::string, std::string>>;

struct Rule {
  guint64 page = 0;
  /// Every app field the view has loaded with lately: each is taken off a
  /// request to a host the view does not trust.
  Fields fields;
  WebSDKConfig trust;
  /// The view's latest load with the app's fields: its number (random, so
  /// no page can guess its mark), its URL and the fields its first request
  /// gets.
  guint64 load = 0;
  std::string loadURL;
  Fields loadFields;
  /// The view, for as long as it lives: pages its loads reached stay its
  /// pages whatever their process.
  guint64 view = 0;
  bool operator==(const Rule&) const = default;
};

inline constexpr char kRulesType[] = "a(ta(ss)asbbttsa(ss)bt)";

/// The rules as a floating GVariant of kRulesType.
inline GVariant* encode(const std::vector<Rule>& rules) {
  GVariantBuilder all;
  g_variant_builder_init(&all, G_VARIANT_TYPE(kRulesType));
  const auto add = [](GVariantBuilder* builder, const Fields& fields) {
    g_variant_builder_open(builder, G_VARIANT_TYPE("a(ss)"));
    for (const auto& [name, value] : fields) g_variant_builder_add(builder, "(ss)", name.c_str(), value.c_str());
    g_variant_builder_close(builder);
  };
  for (const auto& rule : rules) {
    g_variant_builder_open(&all, G_VARIANT_TYPE("(ta(ss)asbbttsa(ss)bt)"));
    g_variant_builder_add(&all, "t", rule.page);
    add(&all, rule.fields);
    g_variant_builder_open(&all, G_VARIANT_TYPE_STRING_ARRAY);
    for (const auto& h : rule.trust.whitelistedHosts) g_variant_builder_add(&all, "s", h.c_str());
    g_variant_builder_close(&all);
    g_variant_builder_add(&all, "b", static_cast<gboolean>(rule.trust.shouldWhitelistAllUrls));
    g_variant_builder_add(&all, "b", static_cast<gboolean>(rule.trust.judgesFramesByTheirOwnHost));
    g_variant_builder_add(&all, "t", static_cast<guint64>(rule.trust.maximumMessageBytes));
    g_variant_builder_add(&all, "t", rule.load);
    g_variant_builder_add(&all, "s", rule.loadURL.c_str());
    add(&all, rule.loadFields);
    g_variant_builder_add(&all, "b", static_cast<gboolean>(rule.trust.allowsServiceWorkers));
    g_variant_builder_add(&all, "t", rule.view);
    g_variant_builder_close(&all);
  }
  return g_variant_builder_end(&all);
}

/// The rules in `value`; anything not of kRulesType is none.
inline std::vector<Rule> decode(GVariant* value) {
  std::vector<Rule> rules;
  if (value == nullptr || !g_variant_is_of_type(value, G_VARIANT_TYPE(kRulesType))) return rules;
  const auto read = [](GVariant* array) {
    Fields fields;
    GVariantIter it;
    g_variant_iter_init(&it, array);
    const gchar *name = nullptr, *text = nullptr;
    while (g_variant_iter_next(&it, "(&s&s)", &name, &text)) fields.emplace_back(name, text);
    return fields;
  };
  GVariantIter all;
  g_variant_iter_init(&all, value);
  while (GVariant* entry = g_variant_iter_next_value(&all)) {
    Rule rule;
    GVariant *fields = nullptr, *hosts = nullptr, *loadFields = nullptr;
    gboolean everyHost = FALSE, byFrame = FALSE, serviceWorkers = FALSE;
    guint64 limit = 0;
    const gchar* url = nullptr;
    g_variant_get(entry, "(t@a(ss)@asbbtt&s@a(ss)bt)", &rule.page, &fields, &hosts, &everyHost, &byFrame, &limit,
                  &rule.load, &url, &loadFields, &serviceWorkers, &rule.view);
    rule.trust.allowsServiceWorkers = serviceWorkers != FALSE;
    rule.fields = read(fields);
    rule.loadFields = read(loadFields);
    rule.loadURL = url;
    GVariantIter it;
    g_variant_iter_init(&it, hosts);
    const gchar* host = nullptr;
    while (g_variant_iter_next(&it, "&s", &host)) rule.trust.whitelistedHosts.emplace_back(host);
    rule.trust.shouldWhitelistAllUrls = everyHost != FALSE;
    rule.trust.judgesFramesByTheirOwnHost = byFrame != FALSE;
    rule.trust.maximumMessageBytes = static_cast<std::size_t>(limit);
    g_variant_unref(fields);
    g_variant_unref(hosts);
    g_variant_unref(loadFields);
    g_variant_unref(entry);
    rules.push_back(std::move(rule));
  }
  return rules;
}

}  // namespace websdk::webkitgtk::guard
