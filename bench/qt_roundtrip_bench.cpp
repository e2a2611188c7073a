// The page -> plugin -> page round trip through Qt WebEngine, against a floor
// that uses Qt WebEngine alone: the same page, its handlers a bare QWebChannel
// object that finds the request id by searching the text (no JSON library)
// and answers with a ready-made envelope by runJavaScript. Each benchmark
// alternates floor and WebSDK batches in one run, so both see the same
// machine. Needs a display: xvfb-run -a.

#include "QtFloorChannel.hpp"
#include "websdk/bridge/families/Cart.hpp"
#include "websdk/qtwebengine/Native.hpp"
#include "websdk/webview/WebSDKWebView.hpp"

#include "RoundTrip.hpp"

#include <benchmark/benchmark.h>

#include <QFile>
#include <QHBoxLayout>
#include <QWebChannel>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>
#include <QWidget>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace websdk {
namespace {

using namespace std::chrono_literals;
using bench::kBaseURI;
using bench::kPage;

bool loadPage(QWebEnginePage* page, const std::function<bool()>& ready) {
  page->setHtml(QString::fromUtf8(kPage.data(), static_cast<qsizetype>(kPage.size())),
                QUrl(QString::fromUtf8(kBaseURI.data(), static_cast<qsizetype>(kBaseURI.size()))));
  return qtwebengine::runUntil(ready, 20s);
}

// ---- Floor: Qt WebEngine alone -------------------------------------------------------

class Floor {
 public:
  Floor() {
    view_ = new QWebEngineView();
    page_ = view_->page();
    page_->setWebChannel(&channel_);
    channel_.registerObject(QStringLiteral("floor"), &object_);
    QFile library(QStringLiteral(":/qtwebchannel/qwebchannel.js"));
    library.open(QIODevice::ReadOnly);
    QWebEngineScript script;
    script.setInjectionPoint(QWebEngineScript::DocumentCreation);
    script.setWorldId(QWebEngineScript::MainWorld);
    script.setSourceCode(QString::fromUtf8(library.readAll()) + QStringLiteral(R"JS(
      (function () {
        let floor = null; const waiting = [];
        const call = (m, ...a) => { if (floor) floor[m](...a); else waiting.push([m, a]); };
        window.webkit = {messageHandlers: {
          nativeRequest: {postMessage: body => call('request', body.message)},
          done: {postMessage: () => call('finished')}}};
        new QWebChannel(qt.webChannelTransport, c => {
          floor = c.objects.floor;
          for (const [m, a] of waiting.splice(0)) floor[m](...a);
        });
      })();)JS"));
    page_->scripts().insert(script);
    QObject::connect(page_, &QWebEnginePage::loadFinished, [this](bool) { loaded_ = true; });
    object_.onRequest = [this](const QString& text) {
      const std::string s = text.toStdString();
      constexpr std::string_view key = R"("requestId":")";
      const auto start = s.find(key) + key.size();
      const auto end = s.find('"', start);
      std::string answer;
      answer.reserve(prefix_.size() + (end - start) + suffix_.size());
      answer.append(prefix_).append(s, start, end - start).append(suffix_);
      page_->runJavaScript(QString::fromStdString(answer));
    };
  }
  ~Floor() { delete view_; }
  QWidget* widget() { return view_; }
  long webProcess() const { return page_->renderProcessPid(); }
  bool load() {
    return loadPage(page_, [this] { return loaded_; });
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
    object_.done = false;
    page_->runJavaScript(
        QString::fromStdString("run(" + std::to_string(n) + "," + (pipelined ? "true" : "false") + ")"));
    return qtwebengine::runUntil([this] { return object_.done; }, 120s);
  }

 private:
  QWebEngineView* view_;
  QWebEnginePage* page_;
  QWebChannel channel_;
  FloorChannel object_;
  std::string prefix_, suffix_;
  bool loaded_ = false;
};

// ---- WebSDK --------------------------------------------------------------------------

using bench::AllowAll;
using bench::CartAnswers;
using bench::Done;

class SDK {
 public:
  SDK() {
    view_ = WebSDKWebView::create(std::make_unique<qtwebengine::QtWebEngine>(), {"127.0.0.1"}, nullptr, nullptr,
                                  navigation_);
    cart_->view = view_;
    view_->setCartPlugin(cart_);
    view_->engine().addScriptMessageHandler(done_, "done");
  }
  QWidget* widget() { return qtwebengine::widget(view_->engine()); }
  long webProcess() const { return qtwebengine::page(view_->engine())->renderProcessPid(); }
  bool load() {
    return loadPage(qtwebengine::page(view_->engine()), [this] { return navigation_->finished; });
  }
  void setPayload(const std::string& payload) { cart_->payload = payload; }
  bool run(int n, bool pipelined) {
    done_->done = false;
    view_->engine().evaluateJavaScript("run(" + std::to_string(n) + "," + (pipelined ? "true" : "false") + ")",
                                       nullptr);
    return qtwebengine::runUntil([this] { return done_->done; }, 120s);
  }

 private:
  std::shared_ptr<AllowAll> navigation_ = std::make_shared<AllowAll>();
  std::shared_ptr<CartAnswers> cart_ = std::make_shared<CartAnswers>();
  std::shared_ptr<Done> done_ = std::make_shared<Done>();
  std::shared_ptr<WebSDKWebView> view_;
};

// ---- The run ---------------------------------------------------------------------------

struct Rig {
  std::unique_ptr<QWidget> window;
  std::unique_ptr<Floor> floor;
  std::unique_ptr<SDK> sdk;
  bool ok = false;

  Rig() {
    if (!qtwebengine::initialize()) return;
    window = std::make_unique<QWidget>();
    auto* box = new QHBoxLayout(window.get());
    floor = std::make_unique<Floor>();
    sdk = std::make_unique<SDK>();
    for (QWidget* view : {floor->widget(), sdk->widget()}) {
      view->setMinimumSize(400, 400);
      box->addWidget(view);
    }
    window->show();
    ok = floor->load() && sdk->load();
  }
  ~Rig() {
    // The views go with their engines and the floor, not with the window.
    for (QWidget* view : {floor ? floor->widget() : nullptr, sdk ? sdk->widget() : nullptr})
      if (view) view->setParent(nullptr);
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

  websdk::bench::printFigures("Round trip on Qt WebEngine, page -> plugin -> page", websdk::bench::target);
  return 0;
}
