#pragma once
// The places Qt calls the engine from, each handing on to a callback: the
// page's questions, the profile's request interceptor and a pinch watcher.

#include "Values.hpp"
#include "websdk/Log.hpp"

#include <QChildEvent>
#include <QEvent>
#include <QNativeGestureEvent>
#include <QObject>
#include <QWebEnginePage>
#include <QWebEngineProfile>
#include <QWebEngineUrlRequestInterceptor>

#include <functional>
#include <string>

namespace websdk::qtwebengine {

/// A page that asks `accept` about each navigation, opens no new windows
/// (the view shows one page) and logs the page's console.
class Page final : public QWebEnginePage {
 public:
  using Accept = std::function<bool(const QUrl& url, NavigationType type, bool isMainFrame)>;
  Page(QWebEngineProfile* profile, Accept accept, QObject* parent)
      : QWebEnginePage(profile, parent), accept_(std::move(accept)) {}

 protected:
  bool acceptNavigationRequest(const QUrl& url, NavigationType type, bool isMainFrame) override {
    return accept_(url, type, isMainFrame);
  }
  QWebEnginePage* createWindow(WebWindowType) override { return nullptr; }
  void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel, const QString& message, int line,
                                const QString& source) override {
    log(LogLevel::debug, "engine", utf8(source) + ":" + std::to_string(line) + ": " + utf8(message));
  }

 private:
  Accept accept_;
};

/// Hands every request of the profile's pages to `intercept`.
class Interceptor final : public QWebEngineUrlRequestInterceptor {
 public:
  explicit Interceptor(std::function<void(QWebEngineUrlRequestInfo&)> intercept) : intercept_(std::move(intercept)) {}
  void interceptRequest(QWebEngineUrlRequestInfo& info) override { intercept_(info); }

 private:
  std::function<void(QWebEngineUrlRequestInfo&)> intercept_;
};

/// Watches pinches ahead of the page, so that a refused one never reaches
/// it: on the widget it is installed on and on every widget child that
/// widget gets (Chromium draws into one, which takes the device's gestures).
/// `begins` hears each pinch's start; `letsThrough` says whether the pinch
/// under way may go on.
class PinchFilter final : public QObject {
 public:
  PinchFilter(std::function<void()> begins, std::function<bool()> letsThrough)
      : begins_(std::move(begins)), letsThrough_(std::move(letsThrough)) {}
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::ChildAdded) {
      QObject* child = static_cast<QChildEvent*>(event)->child();
      if (child->isWidgetType()) child->installEventFilter(this);
      return false;
    }
    if (event->type() != QEvent::NativeGesture) return false;
    const auto type = static_cast<QNativeGestureEvent*>(event)->gestureType();
    if ((type == Qt::BeginNativeGesture || type == Qt::ZoomNativeGesture) && !pinching_) {
      pinching_ = true;
      begins_();
    }
    if (type == Qt::EndNativeGesture) pinching_ = false;
    return !letsThrough_();
  }

 private:
  std::function<void()> begins_;
  std::function<bool()> letsThrough_;
  bool pinching_ = false;
};

}  // namespace websdk::qtwebengine
