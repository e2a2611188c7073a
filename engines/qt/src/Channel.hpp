#pragma once
// The object the isolated world's channel reaches: it only forwards, on the
// UI thread, what the page's scripts sent (see PageScripts.hpp).

#include <QJsonArray>
#include <QObject>

#include <functional>

namespace websdk::qtwebengine {

class ChannelObject final : public QObject {
  Q_OBJECT
  // The page's calls arrive as writes of `calls`: a write, unlike a method
  // call, has no reply for the channel to send back to the page, which had
  // cost each round trip about a third of its time. Read, it is empty; it
  // never changes on this side, so the signal is never emitted.
  Q_PROPERTY(QJsonArray calls READ calls WRITE receive NOTIFY callsChanged)

 public:
  explicit ChannelObject(std::function<void(const QJsonArray&)> receiver) : receiver_(std::move(receiver)) {}
  /// Calls in the order the page made them, each ["hello", mark, url] or
  /// ["post", top document's mark, frame URL, handler, text, units, isMainFrame].
  void receive(const QJsonArray& calls) {
    if (receiver_) receiver_(calls);
  }
  QJsonArray calls() const { return {}; }
  void close() { receiver_ = nullptr; }

 Q_SIGNALS:
  void callsChanged();

 private:
  std::function<void(const QJsonArray&)> receiver_;
};

}  // namespace websdk::qtwebengine
