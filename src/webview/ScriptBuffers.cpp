#include "websdk/webview/ScriptBuffers.hpp"

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

namespace websdk::scriptBuffers {
namespace {

// Below this the allocator reuses memory well on its own; above the largest,
// answers are rare enough that keeping their memory would only waste it.
constexpr std::size_t kSmallest = 64 * 1024;
constexpr std::size_t kLargest = 8 * 1024 * 1024;
constexpr std::size_t kKeptAtMost = 16 * 1024 * 1024;

struct Pool {
  std::mutex mutex;
  std::vector<std::string> kept;
  std::size_t bytes = 0;
};

Pool& pool() {
  static Pool* p = new Pool;  // never destroyed: engines may give buffers back during exit
  return *p;
}

}  // namespace

std::string take(std::size_t size) {
  if (size >= kSmallest && size <= kLargest) {
    Pool& p = pool();
    std::lock_guard lock(p.mutex);
    // The smallest kept buffer that fits.
    auto best = p.kept.end();
    for (auto it = p.kept.begin(); it != p.kept.end(); ++it)
      if (it->capacity() >= size && (best == p.kept.end() || it->capacity() < best->capacity())) best = it;
    if (best != p.kept.end()) {
      std::string out = std::move(*best);
      p.kept.erase(best);
      p.bytes -= out.capacity();
      out.clear();
      return out;
    }
  }
  std::string out;
  out.reserve(size);
  return out;
}

void give(std::string&& buffer) {
  const std::size_t capacity = buffer.capacity();
  if (capacity < kSmallest || capacity > kLargest) return;
  Pool& p = pool();
  std::lock_guard lock(p.mutex);
  if (p.bytes + capacity > kKeptAtMost) return;
  p.bytes += capacity;
  p.kept.push_back(std::move(buffer));
}

}  // namespace websdk::scriptBuffers
