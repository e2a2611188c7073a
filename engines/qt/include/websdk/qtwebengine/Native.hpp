#pragma once
/// @file
/// Opt-in access to the Qt objects behind a web view, for hosts that place the
/// view in their own window or need Qt WebEngine calls the WebSDK does not
/// make. Including this header brings in Qt WebEngine Widgets.

#include "websdk/Export.hpp"
#include "websdk/qtwebengine/QtWebEngine.hpp"

#include <QWebEnginePage>
#include <QWebEngineView>

namespace websdk::qtwebengine {

/// The engine's QWebEngineView as an untyped pointer, or nullptr when `engine`
/// is not a Qt WebEngine engine (or its view is gone).
WEBSDK_EXPORT void* nativeHandle(WebEngine& engine);

/// The engine's view, or nullptr. Placed in a host's layout, the layout's
/// widget becomes its parent; the engine destroys it if it is still there.
inline QWebEngineView* widget(WebEngine& engine) { return static_cast<QWebEngineView*>(nativeHandle(engine)); }

/// The view's page.
inline QWebEnginePage* page(WebEngine& engine) {
  QWebEngineView* view = widget(engine);
  return view ? view->page() : nullptr;
}

}  // namespace websdk::qtwebengine
