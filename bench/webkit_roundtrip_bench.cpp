// The page -> plugin -> page round trip through WebKitGTK, against a floor
// that uses WebKitGTK alone: the page posts the same request, native code
// finds the request id by searching the text (no JSON library) and evaluates a
// ready-made envelope. Each benchmark alternates floor and WebSDK batches in
// one run, so both see the same machine. Needs a display: xvfb-run -a.
// Built once per engine: webkit_roundtrip_bench (WebKitGTK 4.1, GTK 3) and
// webkit6_roundtrip_bench (WebKitGTK 6.0, GTK 4), each against its own floor.

#include "Compat.hpp"
#include "websdk/bridge/families/Cart.hpp"
#include "websdk/webkitgtk/Native.hpp"
#include "websdk/webview/WebSDKWebView.hpp"

#include "RoundTrip.hpp"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace websdk {
namespace {

namespace compat = webkitgtk::compat;
using namespace std::chrono_literals;
using bench::kBaseURI;
using bench::kPage;

bool loadPage(WebKitWebView* view, const std::function<bool()>& ready) {
  webkit_web_view_load_html(view, kPage.data(), kBaseURI.data());
  return webkitgtk::runUntil(ready, 20s);
}

// ---- Floor: WebKitGTK alone ----------------------------------------------------------

class Floor {
 public:
  Floor() {
    content_ = webkit_user_content_manager_new();
    view_ = WEBKIT_WEB_VIEW(
        g_object_ref_sink(g_object_new(WEBKIT_TYPE_WEB_VIEW, "user-content-manager", content_, nullptr)));
    g_signal_connect(content_, "script-message-received::nativeRequest", G_CALLBACK(&Floor::onRequest), this);
    g_signal_connect(content_, "script-message-received::done", G_CALLBACK(&Floor::onDone), this);
    compat::registerScriptMessageHandler(content_, "nativeRequest");
    compat::registerScriptMessageHandler(content_, "done");
    g_signal_connect(view_, "load-changed", G_CALLBACK(+[](WebKitWebView*, WebKitLoadEvent e, gpointer self) {
                       if (e == WEBKIT_LOAD_FINISHED) static_cast<Floor*>(self)->loaded_ = true;
                     }),
                     this);
  }
  ~Floor() {
    g_signal_handlers_disconnect_by_data(content_, this);
    g_signal_handlers_disconnect_by_data(view_, this);
    compat::destroy(GTK_WIDGET(view_));
    g_object_unref(content_);
  }
  GtkWidget* widget() { return GTK_WIDGET(view_); }
  bool load() {
    return loadPage(view_, [this] { return loaded_; });
  }

  void setPayload(const std::string& payload) {
    // The envelope is made once; only the request id is spliced in per answer.
    const std::string marker = "\x01";
    const std::string script =
        nativeResponseScript(WebSDKResponseModel{"SUCCESS", 0, std::nullopt, marker, payload}).value();
    const auto at = script.find("\\u0001");
    prefix_ = script.substr(0, at);
    suffix_ = script.substr(at + 6);
  }

  bool run(int n, bool pipelined) {
    done_ = false;
    const std::string call = "run(" + std::to_string(n) + "," + (pipelined ? "true" : "false") + ")";
    webkit_web_view_evaluate_javascript(view_, call.c_str(), -1, nullptr, nullptr, nullptr, nullptr, nullptr);
    return webkitgtk::runUntil([this] { return done_; }, 120s);
  }

 private:
  static void onRequest(WebKitUserContentManager*, compat::ScriptMessageArgument result, gpointer data) {
    auto& self = *static_cast<Floor*>(data);
    JSCValue* body = compat::scriptMessageValue(result);
    JSCValue* message = jsc_value_object_get_property(body, "message");
    char* text = jsc_value_to_string(message);
    const std::string_view s(text);
    constexpr std::string_view key = R"("requestId":")";
    const auto start = s.find(key) + key.size();
    const auto end = s.find('"', start);
    std::string script;
    script.reserve(self.prefix_.size() + (end - start) + self.suffix_.size());
    script.append(self.prefix_).append(s.substr(start, end - start)).append(self.suffix_);
    g_free(text);
    g_object_unref(message);
    webkit_web_view_evaluate_javascript(self.view_, script.data(), static_cast<gssize>(script.size()), nullptr, nullptr,
                                        nullptr, nullptr, nullptr);
  }
  static void onDone(WebKitUserContentManager*, compat::ScriptMessageArgument, gpointer data) {
    static_cast<Floor*>(data)->done_ = true;
  }

  WebKitUserContentManager* content_;
  WebKitWebView* view_;
  std::string prefix_, suffix_;
  bool loaded_ = false;
  bool done_ = false;
};

// ---- WebSDK --------------------------------------------------------------------------

using bench::AllowAll;
using bench::CartAnswers;
using bench::Done;

class SDK {
 public:
  SDK() {
    view_ = WebSDKWebView::create(std::make_unique<webkitgtk::WebKitGTKEngine>(), {"127.0.0.1"}, nullptr, nullptr,
                                  navigation_);
    cart_->view = view_;
    view_->setCartPlugin(cart_);
    view_->engine().addScriptMessageHandler(done_, "done");
  }
  GtkWidget* widget() { return webkitgtk::widget(view_->engine()); }
  bool load() {
    return loadPage(webkitgtk::nativeWebView(view_->engine()), [this] { return navigation_->finished; });
  }
  void setPayload(const std::string& payload) { cart_->payload = payload; }
  bool run(int n, bool pipelined) {
    done_->done = false;
    view_->engine().evaluateJavaScript("run(" + std::to_string(n) + "," + (pipelined ? "true" : "false") + ")",
                                       nullptr);
    return webkitgtk::runUntil([this] { return done_->done; }, 120s);
  }

 private:
  std::shared_ptr<AllowAll> navigation_ = std::make_shared<AllowAll>();
  std::shared_ptr<CartAnswers> cart_ = std::make_shared<CartAnswers>();
  std::shared_ptr<Done> done_ = std::make_shared<Done>();
  std::shared_ptr<WebSDKWebView> view_;
};

// ---- The run ---------------------------------------------------------------------------

struct Rig {
  GtkWidget* window = nullptr;
  std::unique_ptr<Floor> floor;
  std::unique_ptr<SDK> sdk;
  bool ok = false;

  Rig() {
    if (!webkitgtk::initialize()) return;
    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
    floor = std::make_unique<Floor>();
    sdk = std::make_unique<SDK>();
    for (GtkWidget* view : {floor->widget(), sdk->widget()}) gtk_widget_set_size_request(view, 400, 400);
#ifdef WEBSDK_WEBKITGTK6
    window = gtk_window_new();
    gtk_window_set_child(GTK_WINDOW(window), box);
    gtk_box_append(GTK_BOX(box), floor->widget());
    gtk_box_append(GTK_BOX(box), sdk->widget());
    gtk_window_present(GTK_WINDOW(window));
#else
    window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_container_add(GTK_CONTAINER(window), box);
    gtk_box_pack_start(GTK_BOX(box), floor->widget(), TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(box), sdk->widget(), TRUE, TRUE, 0);
    gtk_widget_show_all(window);
#endif
    ok = floor->load() && sdk->load();
  }
  static Rig& get() {
    static Rig rig;
    return rig;
  }
};

void RoundTrip(benchmark::State& state) { bench::roundTrip(state, Rig::get()); }
WEBSDK_ROUND_TRIP_BENCHMARK(RoundTrip);

}  // namespace
}  // namespace websdk

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();

  websdk::bench::printFigures("Round trip, page -> plugin -> page", websdk::bench::target);
  return 0;
}
