#pragma once
// The header guard's rules of every engine on one web context: each web
// process of the context gets them when it starts and after every change.

#include "HeaderGuard.hpp"
#include "websdk/webkitgtk/Native.hpp"
#include "websdk/webview/WebEngine.hpp"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace websdk::webkitgtk {

class GuardRules {
 public:
  /// The rules of `context`, made (and handed to its web processes from then
  /// on) when first asked for.
  static GuardRules& of(WebKitWebContext* context);

  /// `owner`'s view (of `page`) loads `url` under `trust`, with the app's
  /// `fields` (maybe none): every process hears of it before the load is
  /// made. A view's earlier fields stay guarded (a redirect of an earlier
  /// load may still be under way), the last few of them. Returns the load's
  /// number when it has fields for the module to add, else 0.
  guint64 add(WebKitWebContext* context, const void* owner, guint64 page, const std::string& url,
              const HeaderFields& fields, const WebSDKConfig& trust);
  /// `owner`'s view shows its pages in a new web page (WebKit moved it to
  /// another process): pages there are its pages from now on.
  void movePage(WebKitWebContext* context, const void* owner, guint64 page);
  /// A view that is gone: its fields no longer need guarding in new processes.
  void remove(const void* owner) { byOwner_.erase(owner); }

 private:
  std::vector<guard::Rule> all() const;
  std::map<const void*, guard::Rule> byOwner_;
  guint64 views_ = 0;
};

/// Asks the guard module in `view`'s web process whether it is there (the
/// question starts that process); `answered` hears whether it is, and if not,
/// why.
void askModule(WebKitWebView* view, GCancellable* cancellable,
               std::function<void(bool present, const std::string& why)> answered);

}  // namespace websdk::webkitgtk
