// The real-engine suite's fixture for the Qt WebEngine engine, under Qt's
// xcb platform (xvfb-run).

#include "../Engine.hpp"
#include "websdk/qtwebengine/Native.hpp"

#include <QApplication>
#include <QNativeGestureEvent>
#include <QPointer>
#include <QPointingDevice>
#include <QVBoxLayout>
#include <QWidget>

namespace websdk::e2e::engine {

std::string_view name() { return "qtwebengine"; }

bool start() { return qtwebengine::initialize(); }

std::unique_ptr<WebEngine> make(bool ephemeral, std::vector<LocalPages> localPages) {
  qtwebengine::QtWebEngineConfiguration configuration;
  configuration.ephemeral = ephemeral;
  configuration.localPages = std::move(localPages);
  return std::make_unique<qtwebengine::QtWebEngine>(configuration);
}

bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds bound) {
  return qtwebengine::runUntil(done, bound);
}

struct Window::Native {
  QPointer<QWidget> window;
  Native() {
    window = new QWidget();
    window->setWindowTitle(QStringLiteral("WebSDK real-engine tests"));
    window->resize(400, 600);
    new QVBoxLayout(window);
    window->layout()->setContentsMargins(0, 0, 0, 0);
  }
  ~Native() { delete window.data(); }
};
Window::Window() : native_(std::make_unique<Native>()) {}
Window::~Window() = default;

void Window::show(WebEngine& engine) {
  QWidget* window = native_->window;
  if (window == nullptr) return;
  QLayout* layout = window->layout();
  while (QLayoutItem* item = layout->takeAt(0)) {
    // The view before goes back to its engine, which destroys it.
    if (QWidget* old = item->widget()) old->setParent(nullptr);
    delete item;
  }
  layout->addWidget(qtwebengine::widget(engine));
  window->show();
}

bool Window::holdsAView() const { return native_->window && native_->window->layout()->count() > 0; }
void Window::destroy() { delete native_->window.data(); }

// A touchpad pinch as Qt delivers it, to the widget Chromium draws into:
// begin, a zoom step, end.
void pinch(WebEngine& engine, double scale) {
  QWidget* view = qtwebengine::widget(engine);
  if (view->focusProxy() != nullptr) view = view->focusProxy();
  const QPointF at(100, 100);
  const auto* device = QPointingDevice::primaryPointingDevice();
  for (const auto& [type, value] : {std::pair{Qt::BeginNativeGesture, 0.0}, std::pair{Qt::ZoomNativeGesture, scale - 1},
                                    std::pair{Qt::EndNativeGesture, 0.0}}) {
    QNativeGestureEvent event(type, device, 2, at, at, view->mapToGlobal(at), value, QPointF(), 0);
    QApplication::sendEvent(view, &event);
  }
}

bool hasPinchGesture(WebEngine& engine) {
  return dynamic_cast<qtwebengine::QtWebEngine&>(engine).hasPinchGestureRecognizer();
}
bool pinchEnabled(WebEngine& engine) {
  return dynamic_cast<qtwebengine::QtWebEngine&>(engine).pinchGestureRecognizerEnabled();
}

const Limits& limits() {
  static const Limits qt{
      "Qt WebEngine adds the app's headers in the UI process, from the view's request interceptor: there is no "
      "module in the page's process that a host could leave out, and no load mark",
      "Qt WebEngine runs no user script in a frame's first, blank document: such a frame has no "
      "window.webkit, and its page reaches the app only through the top page's",
      "Qt WebEngine 6.4 lets no fetch() reach an app's own scheme (Qt 6.6 adds the switch for it), and a scheme's "
      "answer has no status: a refusal fails the request. Pages, their scripts, styles and images load; views with "
      "local pages have a profile of their own",
      "",
      "Qt WebEngine runs Chromium's browser side in the host's process, and its heap keeps what a burst of "
      "messages grew (megabytes within Chromium's own code, by heaptrack): the WebSDK's part is measured on "
      "the WebKitGTK engines",
      "",
      "",
      "",
      "",
      "",
      "",
      ""};
  return qt;
}
void finish() {}

void restartWithoutGuardModule(WebEngine&, const std::string&) {}

}  // namespace websdk::e2e::engine
