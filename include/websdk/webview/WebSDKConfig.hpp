#pragma once
/// @file
/// A web view's settings.

#include "websdk/Export.hpp"

#include <chrono>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace websdk {

/// Turns a URL as written into the form the engine loads and shows (scheme
/// and host lowercased, IPv4 in dotted decimal, IDN as punycode), or nothing
/// when it is no URL. Every trust decision reads the host from that form.
using URLCanonicalizer = std::optional<std::string> (*)(std::string_view url);

/// The canonical form without an engine: the URL standard's host rules for
/// ASCII hosts. A host with other characters needs the engine's IDN rules, so
/// it is no URL here: an unsure answer never trusts.
WEBSDK_EXPORT std::optional<std::string> canonicalURL(std::string_view url);

/// The host of a canonical URL, as a page's `new URL(url).hostname` reads it
/// (IPv6 with its brackets); nothing for URLs without one (about:, data:,
/// blob:, file:///...).
WEBSDK_EXPORT std::optional<std::string_view> hostOf(std::string_view canonical);

/// How much of a message refused unread the bridge reads, for its request id
/// only; an engine may pass no more of such a message than this.
inline constexpr std::size_t kRefusedMessageStart = std::size_t{64} << 10;

/// Where a view records its traffic (every request in, every answer and push
/// out) as JSON lines, and how much.
struct WEBSDK_EXPORT WebSDKTrafficRecording {
  /// Appended to; at `maximumBytes` it is moved to `path` + ".1" (replacing
  /// the one before) and begun afresh, so a recording never holds more than
  /// twice that. Both are readable and writable by their owner alone (0600).
  std::string path;
  /// The size at which the file moves aside (8 MiB by default).
  std::size_t maximumBytes = std::size_t{8} << 20;
  /// On (the default): the app's header values, wherever they appear, and
  /// every field the models mark sensitive (card data, tokens, phone numbers,
  /// addresses) are written as "***".
  bool masksSensitiveValues = true;
  /// Keys of the app's answers whose values are masked as the models'
  /// sensitive fields are ("loyaltyToken", say): the models mark only what a
  /// page sends.
  std::set<std::string, std::less<>> sensitiveKeys{};

  /// Memberwise.
  bool operator==(const WebSDKTrafficRecording&) const = default;
};

/// Which hosts the web view trusts with the app's headers and the bridge.
/// Fixed when the view is made (the view holds it const).
struct WEBSDK_EXPORT WebSDKConfig {
  /// The trusted entries: hosts, or a scheme and host (see isWhitelistedURL()).
  std::vector<std::string> whitelistedHosts;
  /// Trusts every URL that has a host.
  bool shouldWhitelistAllUrls = false;
  /// Off: a message from any frame is judged by the top page's host. On:
  /// each frame is judged by its own document's host.
  bool judgesFramesByTheirOwnHost = false;
  /// The engine's own URL canonicalization; the view sets it from its engine.
  URLCanonicalizer canonicalizer = &canonicalURL;
  /// The longest request text, in bytes, the bridge reads. A longer one from
  /// a trusted page is answered with a failure and never parsed; 16 MiB holds
  /// any real checkout many times over.
  std::size_t maximumMessageBytes = std::size_t{16} << 20;
  /// Off (the default): the view's pages have no `navigator.serviceWorker`.
  /// A service worker sees the app's headers on the requests it serves and
  /// can send them on anywhere, beyond the header guard's reach.
  bool allowsServiceWorkers = false;
  /// Off (the default): an answer to a request id no page is waiting for
  /// (never asked, or answered already) goes to the page shown if it is
  /// trusted, as a page that reuses ids expects. On: it is not evaluated, and
  /// the listener hears `WebSDKDropReason::notAsked`. Either way it is
  /// counted (`WebSDKWebView::answerCounts`) and logged.
  bool dropsUnaskedAnswers = false;
  /// How long each family's plugin may take to answer, by family name
  /// ("cart", "payments", ...; "*" for every family not named). None by
  /// default. A request still unanswered then is logged, counted
  /// (`answerCounts().overdue`) and told to the listener
  /// (`didMissAnswerDeadline`).
  std::map<std::string, std::chrono::milliseconds, std::less<>> answerDeadlines = {};
  /// With a deadline: on, an overdue request is also answered with a failure
  /// (status 1, "no answer within N ms"), so the page's promise settles; the
  /// plugin's own answer after that counts as unasked.
  bool failsOverdueRequests = false;
  /// None by default. Apps that cannot be rebuilt can set the environment
  /// variable WEBSDK_RECORD to a file's path instead (masked, default cap).
  std::optional<WebSDKTrafficRecording> recording = std::nullopt;
  /// How the view's log lines name it ("checkout", say); "view N" (its
  /// place among the views this process made) when empty.
  std::string name = {};

  /// False for a URL without a host (also when every URL is trusted); true
  /// when every URL is trusted; otherwise true when some entry matches:
  /// - a host ("example.com") matches a URL of a network scheme (http, https,
  ///   ws, wss, ftp, file) when it occurs anywhere inside its canonical host.
  ///   The containment test is loose on purpose: "example.com" also trusts
  ///   "example.com.other.test". Scheme, port and path play no part.
  /// - a scheme and host ("app://checkout") matches a URL of exactly that
  ///   scheme and authority (no user, no other port), path aside. This is the
  ///   only entry that trusts a host under any other scheme, such as the
  ///   app's local pages: a plain "checkout" trusts neither app://checkout
  ///   nor, through it, https://checkout.evil.test.
  bool isWhitelistedURL(std::string_view url) const;

  /// This configuration with its entries in canonical form ("EXAMPLE.com" ->
  /// "example.com", "bücher.de" -> "xn--bcher-kva.de", "APP://Checkout/" ->
  /// "app://checkout").
  WebSDKConfig normalized() const;

  /// Memberwise.
  bool operator==(const WebSDKConfig&) const = default;
};

}  // namespace websdk
