#pragma once
// websdk-serve: the page developer's loop. The page, opened in any desktop
// browser, talks to the real bridge in this process (the browser engine);
// answers come from an answers file, a recording, or the host's own plugins
// in a dev binary of its own:
//
//   int main(int argc, char** argv) {
//     return websdk::serve::serveMain(argc, argv, [](websdk::WebSDKWebView& view) {
//       auto cart = std::make_shared<MyCart>();
//       view.setCartPlugin(cart);
//       return std::shared_ptr<void>(cart);   // kept for as long as it serves
//     });
//   }

#include "websdk/webview/WebSDKWebView.hpp"

#include <functional>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace websdk::serve {

/// Registers the host's own plugins on `view`; returns what keeps them alive.
using HostPlugins = std::function<std::shared_ptr<void>(WebSDKWebView& view)>;

struct Options {
  std::optional<std::string> folder;
  std::optional<std::string> proxy;
  std::optional<std::string> answers;
  std::optional<std::string> recording;
  std::vector<std::string> pushes;  // files of pushes, run once a page is open
  std::optional<std::string> headers;
  std::string address = "127.0.0.1";
  bool otherAddress = false;  // --address given: not loopback is allowed, and warned of
  unsigned short port = 8790;
  std::vector<std::string> whitelist;
  bool help = false;
};

/// Reads the command line; nothing, with `error` set, when it is wrong.
std::optional<Options> parseArguments(const std::vector<std::string>& args, bool hostPlugins, std::string& error);

/// Serves until interrupted (or `quit` at the prompt); the prompt is `in`.
int run(const Options& options, const HostPlugins& plugins, std::istream& in, std::ostream& out, std::ostream& err);

/// The whole program: websdk-serve's, or a dev binary's with its plugins.
int serveMain(int argc, char** argv, const HostPlugins& plugins = nullptr);

}  // namespace websdk::serve
