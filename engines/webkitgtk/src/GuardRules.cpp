#include "GuardRules.hpp"

#include "Compat.hpp"
#include "Values.hpp"

#include <algorithm>
#include <memory>

namespace websdk::webkitgtk {

GuardRules& GuardRules::of(WebKitWebContext* context) {
  constexpr char kKey[] = "websdk-guard-rules";
  auto* rules = static_cast<GuardRules*>(g_object_get_data(G_OBJECT(context), kKey));
  if (rules == nullptr) {
    rules = new GuardRules;
    g_object_set_data_full(G_OBJECT(context), kKey, rules, [](gpointer p) { delete static_cast<GuardRules*>(p); });
    g_signal_connect(context, compat::kInitializeExtensions, G_CALLBACK(+[](WebKitWebContext* c, gpointer data) {
                       compat::setExtensionsData(c, guard::encode(static_cast<GuardRules*>(data)->all()));
                     }),
                     rules);
  }
  return *rules;
}

guint64 GuardRules::add(WebKitWebContext* context, const void* owner, guint64 page, const std::string& url,
                        const HeaderFields& fields, const WebSDKConfig& trust) {
  const bool known = byOwner_.contains(owner);
  guard::Rule& rule = byOwner_[owner];
  if (!known) rule.view = ++views_;
  const auto before = rule;
  rule.page = page;
  rule.trust = trust;
  rule.trust.canonicalizer = &canonicalURL;  // what the module judges with
  for (const auto& field : fields) {
    std::erase(rule.fields, field);
    rule.fields.push_back(field);
  }
  constexpr std::size_t kKept = 32;
  if (rule.fields.size() > kKept)
    rule.fields.erase(rule.fields.begin(), rule.fields.end() - static_cast<std::ptrdiff_t>(kKept));
  if (!fields.empty()) {
    // Random: a page must not guess the mark of a load to come.
    do rule.load = (static_cast<guint64>(g_random_int()) << 32) | g_random_int();
    while (rule.load == 0);
    rule.loadURL = url;
    rule.loadFields = fields;
  }
  if (rule != before)
    webkit_web_context_send_message_to_all_extensions(context,
                                                      webkit_user_message_new(guard::kRules, guard::encode(all())));
  return fields.empty() ? 0 : rule.load;
}

void GuardRules::movePage(WebKitWebContext* context, const void* owner, guint64 page) {
  const auto it = byOwner_.find(owner);
  if (it == byOwner_.end() || it->second.page == page) return;
  it->second.page = page;
  webkit_web_context_send_message_to_all_extensions(context,
                                                    webkit_user_message_new(guard::kRules, guard::encode(all())));
}

std::vector<guard::Rule> GuardRules::all() const {
  std::vector<guard::Rule> rules;
  for (const auto& [owner, rule] : byOwner_) rules.push_back(rule);
  return rules;
}

void askModule(WebKitWebView* view, GCancellable* cancellable,
               std::function<void(bool present, const std::string& why)> answered) {
  using Answered = std::function<void(bool, const std::string&)>;
  webkit_web_view_send_message_to_page(
      view, webkit_user_message_new(guard::kHello, nullptr), cancellable,
      [](GObject* source, GAsyncResult* result, gpointer data) {
        std::unique_ptr<Answered> answered(static_cast<Answered*>(data));
        GError* error = nullptr;
        WebKitUserMessage* reply = webkit_web_view_send_message_to_page_finish(WEBKIT_WEB_VIEW(source), result, &error);
        const bool present = reply != nullptr && g_str_equal(webkit_user_message_get_name(reply), guard::kReady);
        const std::string why = error ? text(error->message) : "no answer";
        if (reply) g_object_unref(reply);
        if (error) g_error_free(error);
        (*answered)(present, why);
      },
      new Answered(std::move(answered)));
}

}  // namespace websdk::webkitgtk
