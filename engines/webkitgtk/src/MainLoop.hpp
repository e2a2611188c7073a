#pragma once
// What the engine needs of the main loop beyond the public functions.

namespace websdk::webkitgtk {

/// Whether this thread cannot be the UI thread: GTK was started on another,
/// or another runs the main loop now.
bool offTheUIThread();

}  // namespace websdk::webkitgtk
