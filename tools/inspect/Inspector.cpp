#include "Inspector.hpp"

#include "../CommandLine.hpp"
#include "Decline.hpp"
#include "websdk/bridge/Families.hpp"
#include "websdk/testing/EveryFamilyHost.hpp"
#include "websdk/testing/TestingEngine.hpp"
#include "websdk/webview/WebSDKWebView.hpp"

#include <istream>
#include <ostream>
#include <sstream>

namespace websdk::inspect {
namespace {

struct Listener final : WebSDKJSCommunicationProtocol {
  bool received = false;
  void didSendResponse(const WebSDKResponseModel&) override {}
  void didReceiveRequest(std::string_view) override { received = true; }
};

// The host object registered for family F, when the options ask for it.
template <class F>
std::shared_ptr<typename F::Plugin> pluginFor(const Options& options,
                                              const std::shared_ptr<testing::EveryFamilyHost>& all) {
  if (!options.plugins.contains(std::string(F::name))) return nullptr;
  return std::static_pointer_cast<typename F::Plugin>(all);
}

}  // namespace

std::vector<std::string> familyNames() {
  std::vector<std::string> names;
  forEachFamily([&]<class F>(F) { names.emplace_back(F::name); });
  return names;
}

std::optional<Options> parseArguments(const std::vector<std::string>& args, std::string& file, std::string& error) {
  static constexpr tools::OptionSpec known[] = {
      {"--url", true}, {"--whitelist", true}, {"--whitelist-all", false}, {"--plugins", true}};
  const auto line = tools::readCommandLine(args, known, error);
  if (!line) return std::nullopt;
  Options options;
  options.plugins = {};
  options.help = line->help;
  if (options.help) return options;
  bool whitelistGiven = false;
  std::string plugins = "all";
  for (const auto& [name, value] : line->options) {
    if (name == "--url") {
      options.url = value == "none" ? std::nullopt : std::optional<std::string>(value);
    } else if (name == "--whitelist") {
      if (!whitelistGiven) options.whitelist.clear();
      whitelistGiven = true;
      options.whitelist.push_back(value);
    } else if (name == "--whitelist-all") {
      options.whitelistAll = true;
    } else if (name == "--plugins") {
      plugins = value;
    }
  }
  if (line->operands.size() > 1) {
    error = "more than one input file";
    return std::nullopt;
  }
  if (!line->operands.empty()) file = line->operands.front();
  const auto names = familyNames();
  if (plugins == "all") {
    options.plugins.insert(names.begin(), names.end());
  } else if (plugins != "none") {
    std::stringstream list(plugins);
    for (std::string name; std::getline(list, name, ',');) {
      if (std::find(names.begin(), names.end(), name) == names.end()) {
        error = "unknown family " + name;
        return std::nullopt;
      }
      options.plugins.insert(name);
    }
  }
  return options;
}

int run(const Options& options, std::istream& in, std::ostream& out, std::ostream& err) {
  std::optional<JSONObject> delivered;
  auto plugins = std::make_shared<testing::EveryFamilyHost>([&](const testing::EveryFamilyHost::Delivery& d) {
    delivered =
        JSONObject{{"family", d.family}, {"action", d.action}, {"requestId", d.requestId}, {"payload", d.payload}};
  });
  auto listener = std::make_shared<Listener>();
  auto owned = std::make_unique<testing::TestingEngine>();
  testing::TestingEngine& engine = *owned;
  auto view = WebSDKWebView::create(std::move(owned), options.whitelist, nullptr, nullptr, nullptr, listener, nullptr,
                                    options.whitelistAll);
  forEachFamily([&]<class F>(F) { view->setPlugin<F>(pluginFor<F>(options, plugins)); });

  int status = 0;
  std::size_t lineNumber = 0;
  std::size_t responsesSeen = 0;
  for (std::string line; std::getline(in, line);) {
    ++lineNumber;
    if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
    const JSON input = parseJSON(line);
    const JSONObject* message = input.if_object();
    if (message == nullptr) {
      err << "websdk-inspect: line " << lineNumber << ": not a JSON object\n";
      status = 2;
      continue;
    }
    const Fields fields(message);
    std::string name = "nativeRequest";
    if (const JSON* n = fields["name"]) {
      if (!n->is_string()) {
        err << "websdk-inspect: line " << lineNumber << ": \"name\" is not a string\n";
        status = 2;
        continue;
      }
      name = std::string(n->get_string());
    }
    std::optional<std::string> url = options.url;
    if (const JSON* u = fields["url"])
      url = u->is_string() ? std::optional<std::string>(u->get_string()) : std::nullopt;
    engine.setURL(url);

    delivered.reset();
    listener->received = false;
    engine.postScriptMessage(name, fields["body"] ? *fields["body"] : JSON(nullptr));
    engine.queue().drain();

    JSONObject result;
    result.emplace("line", lineNumber);
    result.emplace("received", listener->received);
    if (delivered) result.emplace("delivered", std::move(*delivered));
    JSONArray responses;
    const auto all = engine.nativeResponses();
    bool declined = false;
    for (std::size_t i = responsesSeen; i < all.size(); ++i) {
      const JSON* message = all[i].is_object() ? all[i].get_object().if_contains("statusMessage") : nullptr;
      declined = declined || (message != nullptr && *message == "not a valid request");
      responses.push_back(all[i]);
    }
    responsesSeen = all.size();
    result.emplace("responses", std::move(responses));
    // Said in the contract's words: which key, which reading, what it wanted.
    const JSON* body = fields["body"];
    const JSON* text = body && body->is_object() ? body->get_object().if_contains("message") : nullptr;
    if (declined && text != nullptr && text->is_string())
      if (const auto why = whyDeclined(text->get_string())) result.emplace("declined", *why);
    out << serialize(result) << '\n';
  }
  return status;
}

}  // namespace websdk::inspect
