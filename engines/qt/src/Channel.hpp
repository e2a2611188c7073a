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
  /// Calls in the order the page made them, each ["hello", mark, url] or
  /// ["post", top document's mark, frame URL, handler, text, units, isMainFrame].
  Q_INVOKABLE void receive(const QJsonArray& calls) {
    for (const auto& call : calls)
      if (receiver_ && call.isArray()) receiver_(call.toArray());
  }
  void close() { receiver_ = nullptr; }

 private:
  std::function<void(const QJsonArray&)> receiver_;
};

}  // namespace websdk::qtwebengine
