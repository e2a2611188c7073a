#pragma once
// The user messages between the engine and its module in the web process
// (extension/HeaderGuard.cpp): stamped page messages up, the top document's
// identity up, evaluations meant for one top document down.

namespace websdk::webkitgtk::channel {

/// The one handler whose messages carry the module's stamp: the bridge's.
inline constexpr char kName[] = "nativeRequest";
/// A handler only the engine's views register: the module stamps pages that
/// have it and leaves every other web view of the process as it is.
inline constexpr char kMarker[] = "websdkStamped";
/// Page -> view: (body JSON text, handler name, frame URL, top URL, is main frame, top document).
inline constexpr char kPost[] = "websdk:post";
/// Page -> view: a new top document, (id). The UI process keeps the URL it
/// saw committed; the stamp carries each document's own.
inline constexpr char kDocument[] = "websdk:document";
/// View -> page: (top document, script, wants a reply); evaluated only there.
inline constexpr char kEvaluate[] = "websdk:evaluate";
/// Page -> view, the reply: (dropped, failed, result JSON text or error message).
inline constexpr char kEvaluated[] = "websdk:evaluated";

}  // namespace websdk::webkitgtk::channel
