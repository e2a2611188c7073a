#pragma once
// The engine's local pages (websdk::LocalPages) as Qt WebEngine URL schemes.
// A profile takes one handler per scheme; Qt does not say which view made a
// request, so a view with local pages has a profile of its own, and its
// handler serves that view's pages only. Qt does say which origin made it:
// a page's resources go to the view's navigations and to its own origin.

#include "websdk/webview/LocalPages.hpp"

#include <QWebEnginePage>
#include <QWebEngineProfile>

#include <memory>
#include <vector>

namespace websdk::qtwebengine::local {

class Handler;

/// While it lives, the profile's requests under the schemes of the pages are
/// answered from them. Made and destroyed on the UI thread, before the profile.
class Serving {
 public:
  Serving(QWebEngineProfile* profile, std::vector<LocalPages> pages);
  ~Serving();
  Serving(const Serving&) = delete;
  Serving& operator=(const Serving&) = delete;

  /// The view loads `url` with `fields` (the app's only when it is trusted):
  /// the request of that navigation carries them, and no other, for Qt puts
  /// no header field on a request of a scheme that is not HTTP.
  void expect(const std::string& url, HeaderFields fields);
  /// The view's main frame requests `url` next: the view's own load, or a
  /// navigation of another kind (a page's, a step in history).
  void navigating(const QUrl& url, bool viewsOwnLoad);

 private:
  QWebEngineProfile* profile_;
  std::unique_ptr<Handler> handler_;
};

/// Serving of the pages that can be served (a warning names each that cannot,
/// and why); nothing when there are none.
std::unique_ptr<Serving> serve(QWebEngineProfile* profile, const std::vector<LocalPages>& pages);

}  // namespace websdk::qtwebengine::local
