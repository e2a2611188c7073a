#include "Serve.hpp"

#include "Answers.hpp"
#include "Pushes.hpp"
#include "tools/CommandLine.hpp"
#include "tools/inspect/Decline.hpp"
#include "websdk/browser/BrowserEngine.hpp"
#include "websdk/json/Readings.hpp"
#include "websdk/testing/EveryFamilyHost.hpp"

#include <atomic>
#include <csignal>
#include <deque>
#include <fstream>
#include <iostream>
#include <mutex>
#include <sstream>
#include <thread>

namespace websdk::serve {
namespace {

constexpr std::string_view kUsage =
    "usage: websdk-serve FOLDER|--proxy URL [--answers FILE | --replay FILE] [options]\n"
    "Serves a page folder (or proxies a page dev server) on 127.0.0.1 with the bridge's page side\n"
    "put in: open the URL in any desktop browser and the page talks to the real bridge here.\n"
    "Each request is printed with its answer, and why, when the bridge declines it.\n"
    "  --proxy URL          the page's dev server (http://127.0.0.1:5173) instead of a folder\n"
    "  --answers FILE       answers by action: {\"ACTION\": {\"payload\": ...} or {\"status\": 1003,\n"
    "                       \"message\": ...} or a list of them, given in turn}\n"
    "  --replay FILE        the answers a traffic recording (WEBSDK_RECORD) holds, by action and order\n"
    "  --pushes FILE        pushes to make once a page is open, one a line (as at the prompt)\n"
    "  --headers FILE       the app's header fields, a JSON object, as window.__native_headers__\n"
    "  --whitelist HOST     a trusted host, repeatable (the served host names)\n"
    "  --port N             the port (8790; 0: any free one)\n"
    "  --address ADDRESS    listen there instead of 127.0.0.1 (other machines could drive the bridge)\n"
    "  --help               prints this\n"
    "At the prompt: a page function and its arguments (updateLocationHeader, globalJSBridgeHandler TEXT),\n"
    "js SCRIPT, help, quit.\n";

std::atomic<bool> interrupted{false};

std::string readFile(const std::string& path, std::string& error) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    error = "cannot read " + path;
    return {};
  }
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

/// Prints the traffic as the demo does, and why the bridge declined a request.
class Printer final : public WebSDKJSCommunicationProtocol {
 public:
  explicit Printer(std::ostream& out) : out_(out) {}

  void didReceiveRequest(std::string_view request) override {
    const JSON parsed = parseJSON(request);
    std::lock_guard lock(mutex_);
    asked_[Fields::of(&parsed).lenientString("requestId")] = std::string(request);
    out_ << "page -> app  " << request << std::endl;
  }

  void didSendResponse(const WebSDKResponseModel& response) override {
    std::string payload;
    if (response.payload) {
      const JSON parsed = parseJSON(*response.payload);
      payload = parsed.is_null() ? *response.payload : serialize(parsed);
      if (payload.size() > 240) payload = payload.substr(0, 240) + "...";
    }
    std::lock_guard lock(mutex_);
    out_ << "app -> page  " << response.type << " " << response.statusCode << " " << response.requestId;
    if (response.statusMessage) out_ << " \"" << *response.statusMessage << "\"";
    out_ << (payload.empty() ? "" : "  ") << payload << std::endl;
    const auto asked = asked_.find(response.requestId);
    if (asked == asked_.end()) return;
    if (response.statusCode == 1004 && response.statusMessage == "not a valid request")
      if (const auto why = inspect::whyDeclined(asked->second)) out_ << "declined     " << *why << std::endl;
    asked_.erase(asked);
  }

  void line(std::string_view tag, std::string_view text) {
    std::lock_guard lock(mutex_);
    out_ << tag << text << std::endl;
  }

 private:
  std::ostream& out_;
  std::mutex mutex_;
  std::map<std::string, std::string> asked_;  // request text by id, until answered
};

void give(WebSDKWebView& view, const std::string& requestId, const Answer& answer) {
  if (answer.payload && answer.payload->is_object()) {
    view.sendWebSDKResponse(answer.payload->get_object(), answer.type, requestId, answer.statusCode,
                            answer.statusMessage);
  } else if (answer.payload) {
    const JSON* p = &*answer.payload;
    view.sendWebSDKResponse(p->is_string() ? std::string(p->get_string()) : serialize(*p), answer.type, requestId,
                            answer.statusCode, answer.statusMessage);
  } else if (answer.type == WebSDKResponseType::success) {
    view.sendSuccess(requestId, answer.statusCode, answer.statusMessage);
  } else {
    view.sendFailure(requestId, answer.statusCode, answer.statusMessage);
  }
}

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> out;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);)
    if (const auto at = line.find_first_not_of(" \t\r"); at != std::string::npos && line[at] != '#')
      out.push_back(line);
  return out;
}

}  // namespace

std::optional<Options> parseArguments(const std::vector<std::string>& args, bool hostPlugins, std::string& error) {
  static constexpr tools::OptionSpec known[] = {{"--proxy", true},   {"--answers", true},  {"--replay", true},
                                                {"--pushes", true},  {"--headers", true},  {"--port", true},
                                                {"--address", true}, {"--whitelist", true}};
  const auto line = tools::readCommandLine(args, known, error);
  if (!line) return std::nullopt;
  Options options;
  options.help = line->help;
  if (options.help) return options;
  for (const auto& [name, value] : line->options) {
    if (name == "--proxy") options.proxy = value;
    if (name == "--answers") options.answers = value;
    if (name == "--replay") options.recording = value;
    if (name == "--pushes") options.pushes.push_back(value);
    if (name == "--headers") options.headers = value;
    if (name == "--whitelist") options.whitelist.push_back(value);
    if (name == "--address") {
      options.address = value;
      options.otherAddress = true;
    }
    if (name == "--port") {
      const int port = std::atoi(value.c_str());
      if (port < 0 || port > 65535 || (port == 0 && value != "0")) {
        error = "--port takes a port number, not " + value;
        return std::nullopt;
      }
      options.port = static_cast<unsigned short>(port);
    }
  }
  if (line->operands.size() > 1) {
    error = "more than one page folder";
    return std::nullopt;
  }
  if (!line->operands.empty()) options.folder = line->operands.front();
  if (options.folder.has_value() == options.proxy.has_value()) {
    error = "name a page folder or --proxy URL (one of them)";
    return std::nullopt;
  }
  if (options.answers && options.recording) {
    error = "--answers and --replay both say where answers come from: give one";
    return std::nullopt;
  }
  if (hostPlugins && (options.answers || options.recording)) {
    error = "this build answers with the host's own plugins: --answers and --replay are not taken";
    return std::nullopt;
  }
  return options;
}

int run(const Options& options, const HostPlugins& plugins, std::istream& in, std::ostream& out, std::ostream& err) {
  std::string error;
  std::optional<AnswerBook> book;
  std::string source;
  if (options.answers || options.recording) {
    source = options.answers ? *options.answers : *options.recording;
    std::ifstream file(source);
    if (!file) {
      err << "websdk-serve: cannot read " << source << "\n";
      return 2;
    }
    book = options.answers ? AnswerBook::fromAnswersFile(file, error) : AnswerBook::fromRecording(file, error);
    if (!book) {
      err << "websdk-serve: " << source << ": " << error << "\n";
      return 2;
    }
  }
  std::deque<std::string> pending;
  for (const auto& path : options.pushes) {
    const std::string text = readFile(path, error);
    if (!error.empty()) {
      err << "websdk-serve: " << error << "\n";
      return 2;
    }
    for (auto& line : lines(text)) pending.push_back(std::move(line));
  }
  std::optional<WebSDKHeaders> headers;
  if (options.headers) {
    const JSON fields = parseJSON(readFile(*options.headers, error));
    if (!error.empty() || !fields.is_object()) {
      err << "websdk-serve: " << (error.empty() ? *options.headers + " is not a JSON object" : error) << "\n";
      return 2;
    }
    headers.emplace();
    for (const auto& [name, value] : fields.get_object()) (*headers)[std::string(name)] = lenientString(&value);
  }

  browser::BrowserConfiguration configuration{.address = options.address, .port = options.port};
  if (options.folder) configuration.root = options.folder;
  if (options.proxy) configuration.upstream = options.proxy;
  if (options.otherAddress && options.address != "127.0.0.1")
    err << "websdk-serve: WARNING: listening on " << options.address
        << ": other machines can load the page and its token, and drive the bridge\n";
  auto engine = std::make_unique<browser::BrowserEngine>(configuration);
  if (!engine->listening()) {
    err << "websdk-serve: " << engine->error() << "\n";
    return 2;
  }
  auto printer = std::make_shared<Printer>(out);
  engine->onRefusal([printer](const std::string& why) { printer->line("refused      ", why); });
  const std::string url = engine->pageURL("/");
  std::vector<std::string> whitelist = options.whitelist;
  if (whitelist.empty()) whitelist = {options.address, "localhost"};
  auto view = WebSDKWebView::create(std::move(engine), whitelist, nullptr, nullptr, nullptr, printer);
  if (headers) view->executeJSScript(WebSDKAppFunctions::nativeHeaders(*headers));

  std::shared_ptr<void> keep;
  if (plugins) {
    keep = plugins(*view);
  } else if (book) {
    const std::weak_ptr<WebSDKWebView> weak = view;
    auto host = std::make_shared<testing::EveryFamilyHost>([&, weak](const testing::EveryFamilyHost::Delivery& d) {
      printer->line("decoded      ", std::string(d.family) + " " + std::string(d.action) + " " + serialize(d.payload));
      const auto view = weak.lock();
      if (!view) return;
      if (const auto answer = book->next(d.action)) return give(*view, d.requestId, *answer);
      printer->line("no answer    ", std::string(d.action) + " is not in " + source);
      view->sendFailure(d.requestId, rawValue(WebSDKStatusCode::notHandled),
                        "websdk-serve has no answer for " + std::string(d.action));
    });
    testing::registerForEveryFamily(*view, host);
    keep = host;
  }

  out << "websdk-serve: serving " << options.folder.value_or(options.proxy.value_or("")) << " at " << url << "\n"
      << "open " << url << " in a browser; answers from "
      << (plugins ? std::string("the host's plugins")
          : book  ? source
                  : std::string("nowhere (every request gets 1004)"))
      << "; type help for pushes" << std::endl;

  // The prompt is read off the UI thread; its lines run there, in order.
  auto queue = std::make_shared<std::pair<std::mutex, std::deque<std::string>>>();
  std::thread([queue, &in] {
    for (std::string line; std::getline(in, line);) {
      std::lock_guard lock(queue->first);
      queue->second.push_back(std::move(line));
    }
  }).detach();
  std::signal(SIGINT, [](int) { interrupted = true; });
  std::signal(SIGTERM, [](int) { interrupted = true; });

  const auto handle = [&](const std::string& line) {
    if (line.find_first_not_of(" \t\r") == std::string::npos) return;
    if (line == "quit") {
      interrupted = true;
      return;
    }
    if (line == "help") {
      printer->line("", pushHelp());
      return;
    }
    std::string why;
    const auto push = readPush(line, why);
    if (!push) return printer->line("push?        ", why);
    if (const auto* function = std::get_if<WebSDKJSFunctionType>(&*push)) {
      printer->line("app -> page  push ", function->script());
      view->executeJSFunction(*function);
      return;
    }
    printer->line("app -> page  js ", std::get<RawScript>(*push).script);
    view->engine().evaluateJavaScript(std::get<RawScript>(*push).script, [printer](ScriptResult result) {
      printer->line("page         ", result.error   ? "error: " + *result.error
                                     : result.value ? serialize(*result.value)
                                                    : "undefined");
    });
  };
  bool toldToOpen = false;
  while (!interrupted) {
    browser::runUntil(
        [&] {
          {
            std::lock_guard lock(queue->first);
            while (!queue->second.empty()) {
              pending.push_back(std::move(queue->second.front()));
              queue->second.pop_front();
            }
          }
          // Pushes wait for a page to reach.
          const bool open = view->engine().url().has_value();
          while (!pending.empty() && (open || pending.front() == "quit" || pending.front() == "help")) {
            const std::string line = std::move(pending.front());
            pending.pop_front();
            handle(line);
          }
          if (!pending.empty() && !interrupted && !std::exchange(toldToOpen, true))
            printer->line("", "no page is open yet: the pushes wait for " + url);
          return interrupted.load();
        },
        std::chrono::hours(1));
  }
  keep.reset();
  view.reset();
  out << "websdk-serve: stopped" << std::endl;
  return 0;
}

int serveMain(int argc, char** argv, const HostPlugins& plugins) {
  std::string error;
  const auto options = parseArguments(std::vector<std::string>(argv + 1, argv + argc), bool(plugins), error);
  if (!options) {
    std::cerr << "websdk-serve: " << error << "\n" << kUsage;
    return 2;
  }
  if (options->help) {
    std::cout << kUsage;
    return 0;
  }
  return run(*options, plugins, std::cin, std::cout, std::cerr);
}

}  // namespace websdk::serve
