#pragma once
// The engine's local pages (websdk::LocalPages) as WebKit URI schemes. A web
// context takes one handler per scheme, once, for every view on it; the
// handler answers each request from the pages of the view that made it, so
// views sharing a context serve only their own pages. Within a view, a page's
// resources go to its own navigations and to the pages of its own origin.

#include "websdk/webview/LocalPages.hpp"

#include "Compat.hpp"

#include <memory>
#include <vector>

namespace websdk::webkitgtk::local {

/// While it lives, the requests of `view` under the schemes of its pages are
/// answered from them. Made on the UI thread and destroyed there, before the view.
class Serving {
 public:
  Serving(WebKitWebView* view, std::vector<LocalPages> pages);
  ~Serving();
  Serving(const Serving&) = delete;
  Serving& operator=(const Serving&) = delete;

  /// The view loads `url` with `fields` (the app's only when it is trusted):
  /// the request of that navigation carries them, and no other. WebKit
  /// carries no header fields on a request of a scheme that is not HTTP, so
  /// the engine hands them over itself; they never leave the process.
  void expect(const std::string& url, HeaderFields fields);

  struct View;

 private:
  std::shared_ptr<View> view_;
};

/// Serving of the pages that can be served (a warning names each that cannot,
/// and why); nothing when there are none.
std::unique_ptr<Serving> serve(WebKitWebView* view, const std::vector<LocalPages>& pages);

}  // namespace websdk::webkitgtk::local
