#pragma once
// What the windowed hosts share: the loyalty page, served from memory as
// app://loyalty/index.html, the member the example plays, the view's
// configuration (recording included) and the command line.
//
// The page asks for the balance, then redeems a coffee with the member's pin,
// and listens for the app's loyaltyPointsChanged event with its own
// window.nativeEvent (no page client needed). Its title becomes
// kDoneTitle once all three have come.

#include "Loyalty.hpp"

#include <websdk/webview/LocalPages.hpp>
#include <websdk/webview/WebSDKConfig.hpp>

#include <cstring>
#include <iostream>
#include <optional>
#include <string>

namespace example {

// The member: the pin the page sends (the app's own record of it, in a real
// app, is on its server) and the balance the example starts from.
inline constexpr const char* kPin = "7Q4-1958";
inline constexpr std::int64_t kStartingPoints = 120;

// The title of a page that got the balance, the redeem's answer and the event,
// each with the figures the plugin should have sent (a coffee costs 50).
inline constexpr const char* kDoneTitle = "done: balance 120, redeemed coffee, 70 left, event 70 (-50)";

inline constexpr const char* kPage = R"page(<!doctype html>
<html><head><meta charset="utf-8"><title>waiting</title></head>
<body><h1>Loyalty</h1><ol id="log"></ol>
<script>
const seen = {};
function show(line) {
  const item = document.createElement("li");
  item.textContent = line;
  document.getElementById("log").append(item);
}
function settle() {
  if ("balance" in seen && "redeemed" in seen && "event" in seen)
    document.title = "done: balance " + seen.balance + ", " + seen.redeemed + ", " + seen.event;
}
function ask(type, requestId, payload) {
  window.webkit.messageHandlers.nativeRequest.postMessage({ message: JSON.stringify({ type, requestId, payload }) });
}
// Every answer comes here; the request id tells which request it answers.
window.nativeResponse = function (envelope) {
  if (envelope.type !== "SUCCESS") {
    document.title = "failed: " + envelope.requestId + ": " + envelope.statusMessage;
    return;
  }
  const answer = JSON.parse(envelope.payload);
  if (envelope.requestId === "balance") {
    seen.balance = answer.points;
    show("balance " + answer.points);
    ask("LOYALTY_REDEEM", "redeem", { rewardId: "coffee", pin: "PIN" });
  } else if (envelope.requestId === "redeem") {
    seen.redeemed = "redeemed " + answer.rewardId + ", " + answer.points + " left";
    show(seen.redeemed);
  }
  settle();
};
// The app's own events: its name, and its data as the app wrote it.
window.nativeEvent = function (name, data) {
  if (name !== "loyaltyPointsChanged") return;
  seen.event = "event " + data.points + " (" + data.change + ")";
  show(seen.event + " " + data.reason);
  settle();
};
ask("LOYALTY_BALANCE", "balance");
</script></body></html>)page";

// The page with the member's pin in it, as the page would have it from the
// member's typing.
inline std::string page() {
  std::string text = kPage;
  text.replace(text.find("\"PIN\""), 5, std::string("\"") + kPin + "\"");
  return text;
}

// The page's origin: the view trusts it, and it alone, with the bridge.
inline websdk::LocalPages loyaltyPages() {
  return websdk::LocalPages{.host = "loyalty", .resources = {{"index.html", {page(), "text/html; charset=utf-8"}}}};
}

struct Options {
  bool exitWhenDone = false;          // quit with 0 once the page's title is kDoneTitle
  std::optional<std::string> record;  // record the traffic to this file
};

// `--exit-when-done` and `--record FILE`; nothing for anything else.
inline std::optional<Options> parse(const char* program, int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--exit-when-done") == 0) {
      options.exitWhenDone = true;
    } else if (std::strcmp(argv[i], "--record") == 0 && i + 1 < argc) {
      options.record = argv[++i];
    } else {
      std::cerr << "usage: " << program << " [--exit-when-done] [--record FILE]" << std::endl;
      return std::nullopt;
    }
  }
  return options;
}

// The view's configuration: the loyalty pages trusted, and the traffic
// recorded when asked, the pin masked (the family marks it sensitive).
inline websdk::WebSDKConfig configuration(const Options& options) {
  websdk::WebSDKConfig config;
  config.whitelistedHosts = {loyaltyPages().origin()};
  config.name = "loyalty";
  if (options.record) config.recording = websdk::WebSDKTrafficRecording{.path = *options.record};
  return config;
}

}  // namespace example
