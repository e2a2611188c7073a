#pragma once
// The Qt round-trip bench's floor: a bare channel object for the page's two
// handlers. In a header of its own, for moc.

#include <QObject>
#include <QString>

#include <functional>

namespace websdk {

class FloorChannel final : public QObject {
  Q_OBJECT
 public:
  std::function<void(const QString&)> onRequest;
  bool done = false;
  Q_INVOKABLE void request(const QString& text) { onRequest(text); }
  Q_INVOKABLE void finished() { done = true; }
};

}  // namespace websdk
