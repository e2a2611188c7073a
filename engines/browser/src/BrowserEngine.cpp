// The browser engine: a tab's document is the page, its WebSocket the channel.
// The server (DevServer.cpp) puts the page side below at the top of every
// HTML document it serves; this file translates between that socket and the
// port. Server callbacks hold the state weakly: one that arrives after the
// engine is gone does nothing.

#include "websdk/browser/BrowserEngine.hpp"

#include "DevServer.hpp"
#include "websdk/Log.hpp"
#include "websdk/webview/EngineCore.hpp"

#include <boost/asio/ip/address.hpp>

#include <cstdlib>
#include <map>
#include <thread>

namespace websdk::browser {

namespace {

// The page's side of the channel, as the real engines give it: the message
// handlers under window.webkit, answers and pushes evaluated in the page. The
// socket opens at once; messages posted before it is open wait, in order.
constexpr std::string_view kPageSide = R"JS((function () {
'use strict';
if (window.__websdkChannel) return;
Object.defineProperty(window, '__websdkChannel', {value: true});
const stringify = JSON.stringify, waiting = [];
let socket = null;
const send = m => {
  const text = stringify(m);
  if (socket !== null && socket.readyState === 1) socket.send(text); else waiting.push(text);
};
const evaluate = m => {
  const reply = {kind: 'result', id: m.id};
  try {
    const value = (0, eval)(m.script);
    if (m.reply && value !== undefined) { try { reply.value = stringify(value); } catch (e) {} }
  } catch (e) {
    reply.error = String(e && e.message !== undefined ? e.message : e);
  }
  if (m.reply) send(reply);
};
// A socket that closes (the tool restarted) is opened again: that document
// says so, and the engine takes it to a load, or reloads it.
const connect = again => {
  socket = new WebSocket('ws://' + location.host + SOCKET + '?token=' + TOKEN);
  socket.onopen = () => {
    socket.send(stringify({kind: 'hello', url: location.href, top: window === window.top, again}));
    for (const text of waiting.splice(0)) socket.send(text);
  };
  socket.onmessage = event => {
    const m = JSON.parse(event.data);
    if (m.kind === 'evaluate') evaluate(m);
    else if (m.kind === 'navigate') location.href = m.url;
  };
  socket.onclose = () => { setTimeout(() => connect(true), 200); };
};
connect(false);
// As under WebKit, postMessage lives on the handlers' prototype.
const nameOf = new WeakMap();
class UserMessageHandler {
  postMessage(body) {
    const name = nameOf.get(this);
    if (name === undefined) throw new TypeError('Illegal invocation');
    if (name === 'nativeRequest') {
      const message = body !== null && typeof body === 'object' ? body.message : undefined;
      // One over the size limit goes as its start only: it is refused
      // unread, and its start says what it was.
      if (typeof message === 'string')
        send({kind: 'post', name, message: message.length > LIMIT ? message.substring(0, 4096) : message,
              bytes: message.length, url: location.href});
      return;
    }
    send({kind: 'post', name, body: body === undefined ? null : body, url: location.href});
  }
}
Object.freeze(UserMessageHandler.prototype);
const handlers = {};
for (const name of NAMES) {
  const handler = Object.create(UserMessageHandler.prototype);
  nameOf.set(handler, name);
  handlers[name] = Object.freeze(handler);
}
Object.defineProperty(window, 'webkit', {value: Object.freeze({messageHandlers: Object.freeze(handlers)}), enumerable: true});
})();
)JS";

std::string quoted(std::string_view text) { return serialize(JSON(text)); }

void replace(std::string& text, std::string_view name, std::string_view value) {
  if (const auto at = text.find(name); at != std::string::npos) text.replace(at, name.size(), value);
}

}  // namespace

struct BrowserEngine::State : std::enable_shared_from_this<State> {
  BrowserMainQueue queue;
  // Its loads are the browser's: nothing here stops one on timeout.
  const std::shared_ptr<EngineCore> core =
      std::make_shared<EngineCore>(queue, "browser", -1001, [](const WebSDKNavigation&) { return false; });
  std::string token;
  std::unique_ptr<DevServer> server;
  std::vector<UserScript> userScripts;
  std::function<void(const std::string&)> refusal;
  WebPreferences preferences;

  // Each document with its socket open, by socket.
  struct Document {
    std::string origin;
    std::string url;  // held to the origin the browser vouched for
    bool top = true;
    bool greeted = false;
    DocumentID id = 0;  // a top document's number
  };
  std::map<Socket*, std::pair<std::shared_ptr<Socket>, Document>> documents;
  Socket* shown = nullptr;  // the top document shown: the newest to open
  // Following loads: the origin loaded, and the load a browser is on its way to.
  bool followsLoads = false;
  std::string served, followed;
  std::optional<URLRequest> loading;
  bool fieldsSent = false;
  bool navigating = false;                                        // a navigation told started that has not committed
  std::size_t messageLimit = WebSDKConfig{}.maximumMessageBytes;  // from the last load's trust
  std::vector<Socket*> idle;                                      // top documents waiting to be taken to a load
  std::uint64_t lastEvaluation = 0;
  std::map<std::uint64_t, std::pair<Socket*, ScriptCompletion>> waiting;

  std::string pageSide(bool top) const {
    std::string names = "[";
    for (const auto& name : core->handlerNames()) names += (names.size() > 1 ? "," : "") + quoted(name);
    std::string side(kPageSide);
    replace(side, "SOCKET", quoted(kSocketPath));
    replace(side, "TOKEN", quoted(token));
    replace(side, "NAMES", names + "]");
    replace(side, "LIMIT", std::to_string(messageLimit));
    if (top)
      for (const auto& script : userScripts) side += script.source + "\n";
    return side;
  }

  // What the page says its URL is, held to the origin the browser vouched
  // for when the socket opened: a page may rewrite its path, never its origin.
  static std::string heldTo(std::string url, const std::string& origin) {
    if (url == origin || url.starts_with(origin + "/") || url.starts_with(origin + "?") ||
        url.starts_with(origin + "#"))
      return url;
    return origin + "/";
  }
  // The URL as the app knows it: following loads, on the server loaded.
  std::string appURL(std::string url) const {
    if (followsLoads && !followed.empty() && url.starts_with(served)) url = followed + url.substr(served.size());
    return url;
  }
  // The load's page, on this server.
  std::string servedURL(const std::string& url) const {
    const std::size_t path = url.find('/', url.find("://") + 3);
    return served + (path == std::string::npos ? "/" : url.substr(path));
  }
  void navigate(Socket* socket) {
    const std::string target = servedURL(loading->url);
    navigating = true;
    core->startNavigation(loading->url);
    documents.at(socket).first->send(serialize(JSONObject{{"kind", "navigate"}, {"url", target}}));
  }

  Document* documentOf(Socket* socket) {
    const auto it = documents.find(socket);
    return it == documents.end() ? nullptr : &it->second.second;
  }

  void received(const std::shared_ptr<Socket>& socket, std::string_view text) {
    Document* document = documentOf(socket.get());
    const JSON parsed = parseJSON(text);
    const JSONObject* m = parsed.if_object();
    if (document == nullptr || m == nullptr) return;
    const JSON* kind = m->if_contains("kind");
    const JSON* url = m->if_contains("url");
    const std::string said = url != nullptr && url->is_string() ? std::string(url->get_string()) : "";
    if (kind == nullptr || !kind->is_string()) return;
    EngineCore::Emitting emitting(*core);
    if (kind->get_string() == "hello" && !document->greeted) {
      document->greeted = true;
      document->url = appURL(heldTo(said, document->origin));
      const JSON* top = m->if_contains("top");
      document->top = top == nullptr || top->if_bool() == nullptr || *top->if_bool();
      if (!document->top) return;
      const JSON* again = m->if_contains("again");
      // A page of an earlier run (or the waiting page) is not this engine's
      // page: it is taken to the load, or waits for one; a tool reloads it.
      if ((again != nullptr && *again == true) || said.starts_with(document->origin + std::string(kIdlePath))) {
        if (loading) return navigate(socket.get());
        if (followsLoads) return idle.push_back(socket.get());
        socket->send(serialize(JSONObject{{"kind", "navigate"}, {"url", heldTo(said, document->origin)}}));
        return;
      }
      loading.reset();
      // A top document that opens is the page now: committed, and finished.
      const auto weak = weak_from_this();
      if (!std::exchange(navigating, false)) core->startNavigation(document->url);
      if (weak.expired() || !(document = documentOf(socket.get()))) return;
      document->id = core->commitDocument(document->url);
      shown = socket.get();
      core->finished();
    } else if (kind->get_string() == "post" && document->greeted) {
      posted(*document, *m, said);
    } else if (kind->get_string() == "result") {
      answered(*m);
    }
  }

  void posted(const Document& document, const JSONObject& m, const std::string& said) {
    const JSON* name = m.if_contains("name");
    if (name == nullptr || !name->is_string()) return;
    const Document* top = document.top ? &document : documentOf(shown);
    MessageOrigin origin{heldTo(said, document.origin), top != nullptr ? top->url : "", document.top,
                         top != nullptr ? top->id : 0};
    ScriptMessage message{std::string(name->get_string()), nullptr, std::move(origin)};
    if (const JSON* text = m.if_contains("message"); text != nullptr && text->is_string()) {
      message.message = std::string_view(text->get_string());
      const JSON* bytes = m.if_contains("bytes");
      message.messageBytes = std::max<std::size_t>(text->get_string().size(),
                                                   bytes != nullptr && bytes->is_int64() ? bytes->get_int64() : 0);
    } else if (const JSON* body = m.if_contains("body")) {
      message.body = *body;
    }
    core->deliver(message);
  }

  void answered(const JSONObject& m) {
    const JSON* id = m.if_contains("id");
    const auto it = id != nullptr && id->is_uint64()  ? waiting.find(id->get_uint64())
                    : id != nullptr && id->is_int64() ? waiting.find(static_cast<std::uint64_t>(id->get_int64()))
                                                      : waiting.end();
    if (it == waiting.end()) return;
    ScriptCompletion completion = std::move(it->second.second);
    waiting.erase(it);
    ScriptResult result;
    if (const JSON* value = m.if_contains("value"); value != nullptr && value->is_string())
      result.value = parseJSON(value->get_string());
    if (const JSON* error = m.if_contains("error"); error != nullptr && error->is_string())
      result.error = std::string(error->get_string());
    completion(std::move(result));
  }

  void closed(const std::shared_ptr<Socket>& socket) {
    documents.erase(socket.get());
    std::erase(idle, socket.get());
    // Scripts waiting on the gone document never ran there.
    std::vector<ScriptCompletion> dropped;
    for (auto it = waiting.begin(); it != waiting.end();) {
      if (it->second.first != socket.get()) {
        ++it;
        continue;
      }
      dropped.push_back(std::move(it->second.second));
      it = waiting.erase(it);
    }
    if (shown == socket.get()) {
      shown = nullptr;
      core->showNothing();
    }
    for (const auto& completion : dropped) EngineCore::dropped(completion);
  }

  void evaluate(Socket* socket, std::string script, ScriptCompletion completion) {
    const std::uint64_t id = ++lastEvaluation;
    JSONObject m{{"kind", "evaluate"}, {"id", id}, {"script", std::move(script)}, {"reply", bool(completion)}};
    if (completion) waiting.emplace(id, std::pair{socket, std::move(completion)});
    documents.at(socket).first->send(serialize(m));
  }
};

BrowserEngine::BrowserEngine(BrowserConfiguration configuration) : state_(std::make_shared<State>()) {
  if (uiThread() != std::this_thread::get_id()) {
    log(LogLevel::error, "engine",
        "a BrowserEngine was made off the UI thread (the first to make one or to run browser::runUntil); its "
        "server and the bridge run on that thread's loop only");
    std::abort();
  }
  state_->token = configuration.token.empty() ? randomToken() : configuration.token;
  state_->followsLoads = configuration.followsLoads;
  const std::weak_ptr<State> weak = state_;
  ServerHooks hooks;
  hooks.pageSide = [weak](bool top) {
    const auto s = weak.lock();
    return s ? s->pageSide(top) : std::string();
  };
  hooks.opened = [weak](const std::shared_ptr<Socket>& socket, const std::string& origin) {
    if (const auto s = weak.lock()) s->documents[socket.get()] = {socket, State::Document{.origin = origin, .url = {}}};
  };
  hooks.received = [weak](const std::shared_ptr<Socket>& socket, std::string_view text) {
    if (const auto s = weak.lock()) s->received(socket, text);
  };
  hooks.closed = [weak](const std::shared_ptr<Socket>& socket) {
    if (const auto s = weak.lock()) s->closed(socket);
  };
  hooks.refused = [weak](const std::string& why) {
    const auto s = weak.lock();
    if (s && s->refusal)
      s->refusal(why);
    else
      log(LogLevel::warning, "engine", why);
  };
  hooks.documentFields = [weak](const std::string& target) {
    const auto s = weak.lock();
    HeaderFields fields;
    // The load's own request only, as an engine puts them on it.
    if (s && s->loading && !std::exchange(s->fieldsSent, true)) fields = s->loading->headersFor(target);
    return fields;
  };
  const std::string address = configuration.address;
  state_->server = std::make_unique<DevServer>(configuration, state_->token, std::move(hooks));
  state_->served = state_->server->origin();
  if (!state_->server->listening()) {
    log(LogLevel::error, "engine", state_->server->error());
  } else if (boost::system::error_code ec; !boost::asio::ip::make_address(address, ec).is_loopback()) {
    log(LogLevel::warning, "engine",
        "serving on " + address +
            ", not on a loopback address: other machines can load the pages, and with them "
            "this run's token, and drive the bridge");
  }
}

BrowserEngine::~BrowserEngine() {
  state_->core->close();
  state_->server.reset();
}

bool BrowserEngine::listening() const { return state_->server->listening(); }
const std::string& BrowserEngine::error() const { return state_->server->error(); }
std::string BrowserEngine::origin() const { return state_->server->origin(); }
std::string BrowserEngine::pageURL(std::string_view path) const {
  return origin() + (path.starts_with('/') ? "" : "/") + std::string(path);
}
const std::string& BrowserEngine::token() const { return state_->token; }
std::size_t BrowserEngine::connectedDocuments() const { return state_->documents.size(); }
void BrowserEngine::onRefusal(std::function<void(const std::string&)> listener) {
  state_->refusal = std::move(listener);
}

void BrowserEngine::setClient(WebEngineClient* client) { state_->core->setClient(client); }

// Serving a folder, the browser makes its own requests: the app's header
// fields cannot go on them, and a load moves the page shown to the URL (with
// none shown, the URL is said, to be opened in a browser). Following loads,
// the load's server is served under this origin, and its first request gets
// the app's fields as the load allows them.
void BrowserEngine::load(const URLRequest& request) {
  State& s = *state_;
  s.messageLimit = request.trust.maximumMessageBytes;
  if (!s.followsLoads) {
    if (s.shown == nullptr) return log(LogLevel::info, "engine", "open " + request.url + " in a browser");
    s.documents.at(s.shown).first->send(serialize(JSONObject{{"kind", "navigate"}, {"url", request.url}}));
    return;
  }
  s.followed = request.url.substr(0, request.url.find('/', request.url.find("://") + 3));  // a URL the view read
  s.server->follow(s.followed);
  s.loading = request;
  s.fieldsSent = false;
  Socket* to = s.shown;
  if (to == nullptr && !s.idle.empty()) to = s.idle.back();
  if (to != nullptr) s.navigate(to);
}

std::string BrowserEngine::idleURL() const { return pageURL(kIdlePath); }

void BrowserEngine::evaluateJavaScript(std::string script, ScriptCompletion completion) {
  if (state_->shown != nullptr) return state_->evaluate(state_->shown, std::move(script), std::move(completion));
  if (completion) completion(ScriptResult{std::nullopt, "no page is open in a browser"});
}

void BrowserEngine::evaluateInDocument(DocumentID document, std::string script, ScriptCompletion completion) {
  for (auto& [socket, entry] : state_->documents)
    if (entry.second.top && entry.second.id == document && document != 0)
      return state_->evaluate(socket, std::move(script), std::move(completion));
  EngineCore::dropped(completion);
}

void BrowserEngine::addUserScript(const UserScript& script) { state_->userScripts.push_back(script); }

void BrowserEngine::addScriptMessageHandler(std::weak_ptr<ScriptMessageHandler> handler, std::string name) {
  state_->core->addHandler(std::move(handler), std::move(name));
}

void BrowserEngine::removeScriptMessageHandler(std::string_view name) { state_->core->removeHandler(name); }

std::optional<std::string_view> BrowserEngine::url() const { return state_->core->url(); }
DocumentID BrowserEngine::document() const { return state_->core->document(); }

// A browser's JavaScript switch is its user's: kept, with no effect.
void BrowserEngine::setPreferences(const WebPreferences& preferences) { state_->preferences = preferences; }

MainQueue& BrowserEngine::mainQueue() { return state_->queue; }

}  // namespace websdk::browser
