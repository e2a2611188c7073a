#pragma once
/// @file
/// Buffers for large page scripts (answers and pushes). A burst of big answers
/// is written into buffers the engine hands back once it has sent them, so the
/// allocator does not map fresh pages for each answer and give them back to the
/// system after: on a busy page that churn costs more than the copies do.

#include "websdk/Export.hpp"

#include <cstddef>
#include <string>

namespace websdk::scriptBuffers {

/// An empty string with room for at least `size` bytes: a kept buffer when
/// one is large enough, a fresh one otherwise.
WEBSDK_EXPORT std::string take(std::size_t size);

/// Hands a script's buffer back once the engine is done with it. Small and
/// very large buffers are freed; at most a few megabytes are kept.
WEBSDK_EXPORT void give(std::string&& buffer);

}  // namespace websdk::scriptBuffers
