#pragma once
// A top-level window holding a web view for the WebSDK's own programs on Qt
// WebEngine (the Qt demo and the round-trip bench), as GtkWindow.hpp is on GTK.

#include "websdk/qtwebengine/Native.hpp"

#include <QApplication>
#include <QImage>
#include <QLayout>
#include <QPointer>
#include <QVBoxLayout>
#include <QWidget>

#include <chrono>
#include <string>

namespace websdk::qthost {

/// Starts Qt for this process; false without a display.
inline bool start(int& argc, char**& argv) { return qtwebengine::initialize(argc, argv); }

class Window {
 public:
  explicit Window(const char* title = "WebSDK", int width = 400, int height = 600) : window_(new QWidget()) {
    window_->setWindowTitle(QString::fromUtf8(title));
    window_->resize(width, height);
    auto* layout = new QVBoxLayout(window_);
    layout->setContentsMargins(0, 0, 0, 0);
  }
  ~Window() { destroy(); }
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  /// Puts the engine's view in the window (in place of what was there) and shows it.
  void show(WebEngine& engine) {
    if (!window_) return;
    QLayout* layout = window_->layout();
    while (QLayoutItem* item = layout->takeAt(0)) {
      if (QWidget* old = item->widget()) old->setParent(nullptr);  // its engine destroys it
      delete item;
    }
    layout->addWidget(qtwebengine::widget(engine));
    window_->show();
  }

  /// Destroys the window now, as a user closing it would; once.
  void destroy() { delete window_.data(); }

  /// Runs the UI loop until the user closes the window.
  void runUntilClosed() {
    if (!window_) return;
    window_->setAttribute(Qt::WA_DeleteOnClose);
    qtwebengine::runUntil([this] { return window_.isNull(); }, std::chrono::hours(24 * 365));
  }

 private:
  QPointer<QWidget> window_;
};

/// Writes what the view shows as a PNG file.
inline bool writeSnapshot(WebEngine& engine, const std::string& file, std::string& error) {
  QWidget* view = qtwebengine::widget(engine);
  if (view == nullptr) {
    error = "the view is gone";
    return false;
  }
  // Chromium paints asynchronously: a turn of the loop lets the last frame in.
  qtwebengine::runUntil([] { return false; }, std::chrono::milliseconds(200));
  const QImage image = view->grab().toImage();
  if (image.isNull() || !image.save(QString::fromStdString(file), "PNG")) {
    error = "the view could not be drawn to " + file;
    return false;
  }
  return true;
}

}  // namespace websdk::qthost
