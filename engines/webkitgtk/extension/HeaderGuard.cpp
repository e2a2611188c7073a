// The WebSDK's module in WebKit's web processes, loaded into every web process
// the engine's web context starts. It does two things only a web process can:
//
// - The header guard: it sees each request the page is about to send,
//   redirects included, and keeps the app's header fields off hosts the
//   app's view does not trust. It answers the view's hello, so that the
//   view sends the app's headers only where it is known to be.
// - The page channel's stamp: each document's "nativeRequest" handler posts
//   through a function made for that document, which adds the document's own
//   URL, its frame and its top document to every message. The UI process
//   judges a message by that stamp, so a page cannot borrow the URL of a load
//   still pending or of another frame. Answers come back through this module
//   too, and run only if the document they were meant for is still shown.

#include "HeaderGuard.hpp"
#include "PageChannel.hpp"

// The same module builds against the 4.1 and the 6.0 web-process API; the
// names that differ are mapped here, once.
#ifdef WEBSDK_WEBKITGTK6
#include <webkit/webkit-web-process-extension.h>
using WebProcessExtension = WebKitWebProcessExtension;
#define WEBSDK_GUARD_ENTRY webkit_web_process_extension_initialize_with_user_data
#else
#include <webkit2/webkit-web-extension.h>
using WebProcessExtension = WebKitWebExtension;
#define WEBSDK_GUARD_ENTRY webkit_web_extension_initialize_with_user_data
#endif

#include <algorithm>
#include <cstring>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace websdk::webkitgtk;

// The rules of every view in this process's context, from the process's
// initialization data and each update since.
std::vector<guard::Rule>& rules() {
  static std::vector<guard::Rule> all;
  return all;
}

// The URL without its fragment, which no request carries.
std::string_view withoutFragment(std::string_view url) { return url.substr(0, url.find('#')); }

// The loads whose first request this process has sent.
std::set<guint64>& sentLoads() {
  static std::set<guint64> sent;
  return sent;
}

// The view whose load each page of this process sent, by the load's mark.
std::map<guint64, guint64>& viewOfPage() {
  static std::map<guint64, guint64> views;
  return views;
}

// The rule of the view showing `page`, if it has one.
const guard::Rule* ruleOf(WebKitWebPage* page) {
  const guint64 id = webkit_web_page_get_id(page);
  const auto view = viewOfPage().find(id);
  for (const auto& rule : rules())
    if (rule.page == id || (view != viewOfPage().end() && rule.view == view->second)) return &rule;
  return nullptr;
}

// The app's fields go on the first request of the view's load, the one its
// mark is on, if its host is trusted; WebKit copies them onto the load's
// redirects. A field the app loaded with leaves only for a host its view
// trusts: any view that owns the field and does not trust the host takes it
// off.
gboolean sendRequest(WebKitWebPage* page, WebKitURIRequest* request, WebKitURIResponse* redirected, gpointer) {
  SoupMessageHeaders* headers = webkit_uri_request_get_http_headers(request);
  const char* uri = webkit_uri_request_get_uri(request);
  if (headers == nullptr || uri == nullptr) return FALSE;
  if (const char* marked = soup_message_headers_get_one(headers, guard::kLoadMark)) {
    const std::string mark = marked;
    soup_message_headers_remove(headers, guard::kLoadMark);
    for (const auto& rule : rules()) {
      if (rule.load == 0 || guard::loadMark(rule.load) != mark) continue;
      viewOfPage()[webkit_web_page_get_id(page)] = rule.view;
      if (redirected == nullptr && withoutFragment(uri) == withoutFragment(rule.loadURL) &&
          sentLoads().insert(rule.load).second && rule.trust.isWhitelistedURL(uri))
        for (const auto& [name, value] : rule.loadFields)
          soup_message_headers_replace(headers, name.c_str(), value.c_str());
      break;
    }
  }
  for (const auto& rule : rules()) {
    bool judged = false, trusted = false;
    for (const auto& [name, value] : rule.fields) {
      const char* sent = soup_message_headers_get_one(headers, name.c_str());
      if (sent == nullptr || value != sent) continue;
      if (!judged) {
        trusted = rule.trust.isWhitelistedURL(uri);
        judged = true;
      }
      if (!trusted) soup_message_headers_remove(headers, name.c_str());
    }
  }
  return FALSE;  // the request goes on
}

gboolean extensionMessage(WebProcessExtension*, WebKitUserMessage* message, gpointer) {
  if (std::strcmp(webkit_user_message_get_name(message), guard::kRules) != 0) return FALSE;
  rules() = guard::decode(webkit_user_message_get_parameters(message));
  // A load no rule names any longer can never be matched again: forget it, so
  // a long-lived process does not keep every load it ever sent.
  std::erase_if(sentLoads(), [](guint64 load) {
    for (const auto& rule : rules())
      if (rule.load == load) return false;
    return true;
  });
  return TRUE;
}

// ---- The page channel ------------------------------------------------------------

// The top document a page shows now: its identity, and its script context,
// which is new with every document (so a navigation the identity has not
// caught up with still tells the documents apart).
struct TopDocument {
  guint64 id = 0;
  // The URL it was made with. Not the page's URI, which moves to a load
  // still pending as soon as it starts.
  std::string url;
  JSCContext* context = nullptr;
  // Calls the page's nativeResponse with an answer, made in `context` when
  // its first answer comes.
  JSCValue* answer = nullptr;
  GWeakRef frame;  // the main frame
  TopDocument() { g_weak_ref_init(&frame, nullptr); }
  ~TopDocument() {
    forget();
    g_weak_ref_clear(&frame);
  }
  void forget() {
    if (answer) g_object_unref(answer);
    answer = nullptr;
    if (context) g_object_unref(context);
    context = nullptr;
  }
};

TopDocument& topOf(WebKitWebPage* page) {
  auto* top = static_cast<TopDocument*>(g_object_get_data(G_OBJECT(page), "websdk-top-document"));
  if (top == nullptr) {
    top = new TopDocument;
    g_object_set_data_full(G_OBJECT(page), "websdk-top-document", top,
                           [](gpointer p) { delete static_cast<TopDocument*>(p); });
  }
  return *top;
}

guint64 newDocumentID() {
  guint64 id = 0;
  while (id == 0) id = (static_cast<guint64>(g_random_int()) << 32) | g_random_int();
  return id;
}

// What every message of one document carries.
struct Stamp {
  GWeakRef page;
  std::string frameURL;
  std::string topURL;
  gboolean isMainFrame;
  guint64 topDocument;
};

// A page's messages on their way to the view, in the order posted. A large
// one goes in parts, then the stamp; the next part leaves only once the view
// has taken the last, so the page's string is never copied whole again and
// the UI process never holds more than one part in flight.
struct Outgoing {
  char* message;       // owned: g_free
  std::size_t length;  // less than bytes when only the start goes
  std::size_t sent;
  std::string frameURL;
  std::string topURL;
  gboolean isMainFrame;
  guint64 topDocument;
  std::size_t bytes;  // as posted
};

struct Outbox {
  std::deque<Outgoing> queue;
  bool waiting = false;  // a part is with the view, not yet taken
  ~Outbox() {
    for (Outgoing& outgoing : queue) g_free(outgoing.message);
  }
};

Outbox& outboxOf(WebKitWebPage* page) {
  auto* box = static_cast<Outbox*>(g_object_get_data(G_OBJECT(page), "websdk-outbox"));
  if (box == nullptr) {
    box = new Outbox;
    g_object_set_data_full(G_OBJECT(page), "websdk-outbox", box, [](gpointer p) { delete static_cast<Outbox*>(p); });
  }
  return *box;
}

void pump(WebKitWebPage* page);

void partTaken(GObject* source, GAsyncResult* result, gpointer) {
  auto* page = WEBKIT_WEB_PAGE(source);
  GError* error = nullptr;
  // Taken or not (a view without the bridge does not answer), the rest goes.
  if (WebKitUserMessage* reply = webkit_web_page_send_message_to_view_finish(page, result, &error))
    g_object_unref(reply);
  g_clear_error(&error);
  outboxOf(page).waiting = false;
  pump(page);
}

// A message's stamped end: the whole message, or nothing after its parts.
void sendStamped(WebKitWebPage* page, GVariant* end, const std::string& frameURL, const std::string& topURL,
                 gboolean isMainFrame, guint64 topDocument, std::size_t bytes) {
  GVariant* params = g_variant_new("(@ssssbtt)", end, channel::kName, frameURL.c_str(), topURL.c_str(), isMainFrame,
                                   topDocument, static_cast<guint64>(bytes));
  webkit_web_page_send_message_to_view(page, webkit_user_message_new(channel::kPost, params), nullptr, nullptr,
                                       nullptr);
}

void pump(WebKitWebPage* page) {
  Outbox& box = outboxOf(page);
  while (!box.waiting && !box.queue.empty()) {
    Outgoing& next = box.queue.front();
    // Once in parts, all of it: the end then carries nothing.
    if (next.length > channel::kPostPartBytes && next.sent < next.length) {
      const std::size_t part = std::min(channel::kPostPartBytes, next.length - next.sent);
      GVariant* bytesOfPart = g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, next.message + next.sent, part, 1);
      next.sent += part;
      box.waiting = true;
      webkit_web_page_send_message_to_view(
          page,
          webkit_user_message_new(channel::kPostPart,
                                  g_variant_new("(t@ay)", static_cast<guint64>(next.length), bytesOfPart)),
          nullptr, partTaken, nullptr);
      return;
    }
    GVariant* end = next.sent == 0 ? g_variant_new_take_string(next.message) : g_variant_new_string("");
    if (next.sent != 0) g_free(next.message);
    sendStamped(page, end, next.frameURL, next.topURL, next.isMainFrame, next.topDocument, next.bytes);
    box.queue.pop_front();
  }
}

void post(JSCValue* body, gpointer data) {
  auto* stamp = static_cast<Stamp*>(data);
  auto* page = static_cast<WebKitWebPage*>(g_weak_ref_get(&stamp->page));
  if (page == nullptr) return;
  // The bridge reads only the body's "message" string: just that is sent,
  // as it stands, and the UI process judges the sender before reading it.
  // A body without one could never be a request.
  char* message = channel::messageOf(body);
  if (message == nullptr) {
    g_object_unref(page);
    return;
  }
  // A message its view would refuse unread goes as its start only: the UI
  // process never receives the rest.
  const std::size_t bytes = std::strlen(message);
  if (bytes > websdk::kRefusedMessageStart)
    if (const guard::Rule* rule = ruleOf(page);
        rule != nullptr &&
        (bytes > rule->trust.maximumMessageBytes || !rule->trust.isWhitelistedURL(stamp->topURL) ||
         (rule->trust.judgesFramesByTheirOwnHost && !rule->trust.isWhitelistedURL(stamp->frameURL)))) {
      // Cut at a character's start, so the start stays UTF-8.
      std::size_t cut = websdk::kRefusedMessageStart;
      while (cut > 0 && (static_cast<unsigned char>(message[cut]) & 0xC0) == 0x80) --cut;
      message[cut] = '\0';
    }
  const std::size_t length = std::strlen(message);
  Outbox& box = outboxOf(page);
  if (box.queue.empty() && length <= channel::kPostPartBytes) {
    // Nothing ahead of it, and small enough to go whole: straight out.
    sendStamped(page, g_variant_new_take_string(message), stamp->frameURL, stamp->topURL, stamp->isMainFrame,
                stamp->topDocument, bytes);
  } else {
    box.queue.push_back(
        Outgoing{message, length, 0, stamp->frameURL, stamp->topURL, stamp->isMainFrame, stamp->topDocument, bytes});
    pump(page);
  }
  g_object_unref(page);
}

// Runs before any script of the document: the channel's postMessage becomes
// this document's stamped function. It is set on the handlers' prototype,
// because the handler object's own wrapper may be collected and made anew;
// what it needs is captured now, before the page can change anything.
constexpr char kInstall[] = R"((function (post, name, marker) {
  var w = window.webkit, handlers = w && w.messageHandlers, h = handlers && handlers[name];
  if (!h || !handlers[marker]) return false;
  var prototype = Object.getPrototypeOf(h), original = prototype.postMessage, apply = Reflect.apply;
  Object.defineProperty(prototype, 'postMessage', {
    value: function postMessage(message) {
      if (this === handlers[name]) { post(message); return; }
      return apply(original, this, arguments);
    },
    writable: false, configurable: false, enumerable: true
  });
  return true;
}))";

void windowObjectCleared(WebKitScriptWorld* world, WebKitWebPage* page, WebKitFrame* frame, gpointer) {
  if (world != webkit_script_world_get_default()) return;
  JSCContext* context = webkit_frame_get_js_context_for_script_world(frame, world);
  const gboolean isMain = webkit_frame_is_main_frame(frame);
  const char* uri = webkit_frame_get_uri(frame);
  TopDocument& top = topOf(page);
  if (isMain) {
    top.id = newDocumentID();
    top.url = uri ? uri : "";
    top.forget();
    top.context = JSC_CONTEXT(g_object_ref(context));
    g_weak_ref_set(&top.frame, frame);
  }
  auto* stamp = new Stamp{{}, uri ? uri : "", top.url, isMain, top.id};
  g_weak_ref_init(&stamp->page, page);
  JSCValue* function = jsc_value_new_function(
      context, nullptr, G_CALLBACK(post), stamp,
      [](gpointer data) {
        auto* s = static_cast<Stamp*>(data);
        g_weak_ref_clear(&s->page);
        delete s;
      },
      G_TYPE_NONE, 1, JSC_TYPE_VALUE);
  JSCValue* install = jsc_context_evaluate(context, kInstall, -1);
  bool installed = false;
  if (install != nullptr && jsc_value_is_function(install)) {
    JSCValue* done = jsc_value_function_call(install, JSC_TYPE_VALUE, function, G_TYPE_STRING, channel::kName,
                                             G_TYPE_STRING, channel::kMarker, G_TYPE_NONE);
    installed = done != nullptr && jsc_value_is_boolean(done) && jsc_value_to_boolean(done);
    if (done) g_object_unref(done);
  }
  // Service workers are kept from the engine's views unless their view allows
  // them: one sees the app's headers and can send them anywhere.
  if (installed) {
    const guard::Rule* rule = ruleOf(page);
    if (rule == nullptr || !rule->trust.allowsServiceWorkers)
      if (JSCValue* r = jsc_context_evaluate(context, "delete Navigator.prototype.serviceWorker", -1))
        g_object_unref(r);
  }
  // Only the engine's own views hear of their documents.
  if (isMain && installed)
    webkit_web_page_send_message_to_view(
        page, webkit_user_message_new(channel::kDocument, g_variant_new("(t)", top.id)), nullptr, nullptr, nullptr);
  jsc_context_clear_exception(context);
  if (install) g_object_unref(install);
  g_object_unref(function);
  g_object_unref(context);
}

void reply(WebKitUserMessage* message, gboolean dropped, gboolean failed, const char* text) {
  webkit_user_message_send_reply(
      message, webkit_user_message_new(channel::kEvaluated, g_variant_new("(bbs)", dropped, failed, text)));
}

// The top document `document` of `page`, if it is the one shown now.
TopDocument* shownDocument(WebKitWebPage* page, std::uint64_t document) {
  TopDocument& top = topOf(page);
  auto* frame = static_cast<WebKitFrame*>(g_weak_ref_get(&top.frame));
  JSCContext* shown =
      frame ? webkit_frame_get_js_context_for_script_world(frame, webkit_script_world_get_default()) : nullptr;
  const bool current = top.id != 0 && top.id == document && shown != nullptr && shown == top.context;
  if (shown) g_object_unref(shown);
  if (frame) g_object_unref(frame);
  return current ? &top : nullptr;
}

// What an evaluation or an answer did, told to the view if it asked.
void replyWith(WebKitUserMessage* message, bool wantsReply, JSCContext* context, JSCValue* result) {
  if (JSCException* exception = jsc_context_get_exception(context)) {
    if (wantsReply) reply(message, FALSE, TRUE, jsc_exception_get_message(exception));
    jsc_context_clear_exception(context);
  } else if (wantsReply) {
    char* json = result == nullptr || jsc_value_is_undefined(result) ? nullptr : jsc_value_to_json(result, 0);
    jsc_context_clear_exception(context);
    reply(message, FALSE, FALSE, json ? json : "");
    g_free(json);
  }
  if (result) g_object_unref(result);
}

JSCValue* jsText(JSCContext* context, std::string_view bytes) {
  GBytes* data = g_bytes_new_static(bytes.data(), bytes.size());
  JSCValue* value = jsc_value_new_string_from_bytes(context, data);
  g_bytes_unref(data);
  return value;
}

// The envelope as the page's script would have made it: a plain object, its
// fields in order, each an own data property; then nativeResponse, looked up
// where the page's script would find it.
void answer(WebKitUserMessage* message, const channel::AnswerHead& head, TopDocument& top, std::string_view payload) {
  JSCContext* context = top.context;
  if (top.answer == nullptr) {
    top.answer = jsc_context_evaluate(context, "(function (envelope) { return nativeResponse(envelope); })", -1);
    jsc_context_clear_exception(context);
    if (top.answer != nullptr && !jsc_value_is_function(top.answer)) {
      g_object_unref(top.answer);
      top.answer = nullptr;
    }
    if (top.answer == nullptr) {
      if (head.wantsReply) reply(message, FALSE, TRUE, "the page's script cannot run");
      return;
    }
  }
  constexpr auto kData = static_cast<JSCValuePropertyFlags>(
      JSC_VALUE_PROPERTY_CONFIGURABLE | JSC_VALUE_PROPERTY_ENUMERABLE | JSC_VALUE_PROPERTY_WRITABLE);
  JSCValue* envelope = jsc_value_new_object(context, nullptr, nullptr);
  const auto field = [&](const char* name, JSCValue* value) {
    jsc_value_object_define_property_data(envelope, name, kData, value);
    g_object_unref(value);
  };
  field("type", jsText(context, head.type));
  field("statusCode", jsc_value_new_number(context, static_cast<double>(head.statusCode)));
  if (head.statusMessage) field("statusMessage", jsText(context, *head.statusMessage));
  field("requestId", jsText(context, head.requestId));
  if (head.hasPayload) field("payload", jsText(context, payload));
  JSCValue* result = jsc_value_function_call(top.answer, JSC_TYPE_VALUE, envelope, G_TYPE_NONE);
  g_object_unref(envelope);
  replyWith(message, head.wantsReply, context, result);
}

// An evaluation or an answer for one top document: run only if that document is shown.
gboolean userMessage(WebKitWebPage* page, WebKitUserMessage* message, gpointer) {
  const char* name = webkit_user_message_get_name(message);
  // The view asks whether the guard is in its page's process before it sends
  // the app's headers there.
  if (std::strcmp(name, guard::kHello) == 0) {
    webkit_user_message_send_reply(message, webkit_user_message_new(guard::kReady, nullptr));
    return TRUE;
  }
  GVariant* params = webkit_user_message_get_parameters(message);
  if (params == nullptr || !g_variant_is_of_type(params, G_VARIANT_TYPE_BYTESTRING)) return FALSE;
  std::uint64_t document = 0;
  bool wantsReply = false;
  channel::AnswerHead head;
  const bool isAnswer = channel::readAnswerName(name, head);
  if (isAnswer) {
    document = head.document;
    wantsReply = head.wantsReply;
  } else if (!channel::readEvaluateName(name, document, wantsReply)) {
    return FALSE;
  }
  gsize length = 0;
  const auto* bytes = static_cast<const char*>(g_variant_get_fixed_array(params, &length, 1));
  // Read by its length, in place: JavaScriptCore checks the UTF-8 as it
  // converts, so the bytes are not scanned a second time here.
  const std::string_view data(length != 0 ? bytes : "", length);
  TopDocument* top = shownDocument(page, document);
  if (top == nullptr) {
    if (wantsReply) reply(message, TRUE, FALSE, "");
    return TRUE;
  }
  if (isAnswer)
    answer(message, head, *top, data);
  else
    replyWith(message, wantsReply, top->context,
              jsc_context_evaluate(top->context, data.data(), static_cast<gssize>(data.size())));
  return TRUE;
}

void pageCreated(WebProcessExtension*, WebKitWebPage* page, gpointer) {
  // A page that is gone shows no view any longer.
  static_assert(sizeof(guint64) <= sizeof(gpointer));
  g_object_weak_ref(
      G_OBJECT(page), [](gpointer id, GObject*) { viewOfPage().erase(reinterpret_cast<guintptr>(id)); },
      reinterpret_cast<gpointer>(static_cast<guintptr>(webkit_web_page_get_id(page))));
  g_signal_connect(page, "send-request", G_CALLBACK(sendRequest), nullptr);
  g_signal_connect(page, "user-message-received", G_CALLBACK(userMessage), nullptr);
}

}  // namespace

extern "C" G_MODULE_EXPORT void WEBSDK_GUARD_ENTRY(WebProcessExtension* extension, const GVariant* data) {
  rules() = guard::decode(const_cast<GVariant*>(data));
  g_signal_connect(extension, "user-message-received", G_CALLBACK(extensionMessage), nullptr);
  g_signal_connect(extension, "page-created", G_CALLBACK(pageCreated), nullptr);
  g_signal_connect(webkit_script_world_get_default(), "window-object-cleared", G_CALLBACK(windowObjectCleared),
                   nullptr);
}
