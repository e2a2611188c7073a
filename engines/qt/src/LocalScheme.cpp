#include "LocalScheme.hpp"

#include "websdk/Log.hpp"

#include <QBuffer>
#include <QFile>
#include <QWebEngineUrlRequestJob>
#include <QWebEngineUrlScheme>
#include <QWebEngineUrlSchemeHandler>

#include <optional>
#include <set>

namespace websdk::qtwebengine::local {
namespace {

std::string withoutFragment(std::string_view url) { return std::string(url.substr(0, url.find('#'))); }

std::string utf8(const QUrl& url) { return url.toString(QUrl::FullyEncoded).toStdString(); }

// Qt has no status for a scheme's answer: a refusal fails the request.
QWebEngineUrlRequestJob::Error failureOf(int status) {
  switch (status) {
    case 403:
    case 405: return QWebEngineUrlRequestJob::RequestDenied;
    case 404: return QWebEngineUrlRequestJob::UrlNotFound;
    default: return QWebEngineUrlRequestJob::RequestFailed;
  }
}

}  // namespace

class Handler final : public QWebEngineUrlSchemeHandler {
 public:
  explicit Handler(std::vector<LocalPages> pages) : pages_(std::move(pages)) {}

  void expect(const std::string& url, HeaderFields fields) {
    load_.reset();  // a load elsewhere ends the wait for an earlier one
    if (servedBy(pages_, url) != nullptr) load_.emplace(url, std::move(fields));
  }

  void navigating(const QUrl& url, bool viewsOwnLoad) { ownNavigation_ = viewsOwnLoad ? utf8(url) : std::string(); }

  void requestStarted(QWebEngineUrlRequestJob* job) override {
    LocalRequest request{
        job->requestUrl().toString(QUrl::FullyEncoded).toStdString(), job->requestMethod().toStdString(), {}};
    const auto headers = job->requestHeaders();
    for (auto it = headers.begin(); it != headers.end(); ++it)
      request.headers.emplace_back(it.key().toStdString(), it.value().toStdString());
    // No initiator: the browser's own navigation of the view, never a page's
    // request. A page's gets an answer only from the pages of its origin: no
    // other page includes their scripts, styles or images.
    const QUrl initiator = job->initiator();
    if (!initiator.isEmpty() && !servesPageOf(pages_, request.url, utf8(initiator))) {
      log(LogLevel::debug, "load", request.method + " " + request.url + " from " + utf8(initiator) + ": 403");
      return job->fail(QWebEngineUrlRequestJob::RequestDenied);
    }
    const bool ownNavigation = initiator.isEmpty() && !ownNavigation_.empty() && ownNavigation_ == request.url;
    if (ownNavigation) ownNavigation_.clear();
    if (ownNavigation && load_ && withoutFragment(load_->first) == withoutFragment(request.url)) {
      // The load's own request: its fields, which replace the request's own.
      for (const auto& [name, value] : load_->second) {
        std::erase_if(request.headers, [&](const auto& field) { return sameFieldName(field.first, name); });
        request.headers.emplace_back(name, value);
      }
      load_.reset();
    }
    const LocalPages* served = servedBy(pages_, request.url);
    const LocalAnswer answer =
        served ? served->answer(request) : LocalAnswer{404, "text/plain; charset=utf-8", "not found", ""};
    log(LogLevel::debug, "load", request.method + " " + request.url + ": " + std::to_string(answer.status));
    if (answer.status != 200) return job->fail(failureOf(answer.status));
    QIODevice* device = nullptr;
    if (!answer.file.empty()) {
      auto* file = new QFile(QString::fromStdString(answer.file), job);
      if (!file->open(QIODevice::ReadOnly)) return job->fail(QWebEngineUrlRequestJob::UrlNotFound);
      device = file;
    } else {
      auto* buffer = new QBuffer(job);
      buffer->setData(QByteArray::fromStdString(answer.bytes));
      buffer->open(QIODevice::ReadOnly);
      device = buffer;
    }
    job->reply(QByteArray::fromStdString(answer.mimeType), device);
  }

 private:
  std::vector<LocalPages> pages_;
  std::optional<std::pair<std::string, HeaderFields>> load_;
  // The main-frame request the view's request interceptor saw last, when it
  // was the view's own load (not a page's navigation, nor a step in history).
  std::string ownNavigation_;
};

Serving::Serving(QWebEngineProfile* profile, std::vector<LocalPages> pages)
    : profile_(profile), handler_(std::make_unique<Handler>(pages)) {
  std::set<std::string> schemes;
  for (const auto& page : pages)
    if (schemes.insert(page.scheme).second)
      profile_->installUrlSchemeHandler(QByteArray::fromStdString(page.scheme), handler_.get());
}

Serving::~Serving() { profile_->removeUrlSchemeHandler(handler_.get()); }

void Serving::expect(const std::string& url, HeaderFields fields) { handler_->expect(url, std::move(fields)); }

void Serving::navigating(const QUrl& url, bool viewsOwnLoad) { handler_->navigating(url, viewsOwnLoad); }

std::unique_ptr<Serving> serve(QWebEngineProfile* profile, const std::vector<LocalPages>& pages) {
  std::vector<LocalPages> served = servablePages(pages, [](const LocalPages& page) -> std::string {
    if (!QWebEngineUrlScheme::schemeByName(QByteArray::fromStdString(page.scheme)).name().isEmpty()) return {};
    return "the scheme \"" + page.scheme +
           "\" was not registered before the QApplication was made (websdk::qtwebengine::prepare)";
  });
  if (served.empty()) return nullptr;
  return std::make_unique<Serving>(profile, std::move(served));
}

}  // namespace websdk::qtwebengine::local
