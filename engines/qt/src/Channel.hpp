#pragma once
// The object the isolated world's channel reaches: it only forwards, on the
// UI thread, what the page's scripts sent (see PageScripts.hpp).

#include <QJsonArray>
#include <QObject>

#include <functional>

namespace websdk::qtwebengine {

class ChannelObject final : public QObject {
  Q_OBJECT
 public:
  explicit ChannelObject(std::function<void(const QJsonArray&)> receiver) : receiver_(std::move(receiver)) {}
  /// ["hello", mark, url] or ["post", top document's mark, frame URL, handler, text,
  /// units, isMainFrame].
  Q_INVOKABLE void receive(const QJsonArray& call) {
    if (receiver_) receiver_(call);
  }
  void close() { receiver_ = nullptr; }

 private:
  std::function<void(const QJsonArray&)> receiver_;
};

}  // namespace websdk::qtwebengine
