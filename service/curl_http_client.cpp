#include "service/curl_http_client.h"

#include <curl/curl.h>

#include <memory>
#include <mutex>

#include "base/wide_text.h"
#include "service/redirect.h"

namespace orvane {

namespace {

void InitialiseCurlOnce() {
  static std::once_flag once;
  std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

struct EasyDeleter {
  void operator()(CURL* easy) const { curl_easy_cleanup(easy); }
};
struct ListDeleter {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

using HeaderList = std::unique_ptr<curl_slist, ListDeleter>;

// libcurl grows a list in place and answers its head; on failure the list stays as it was.
void Append(HeaderList& list, const std::string& line) {
  curl_slist* grown = curl_slist_append(list.get(), line.c_str());
  if (grown == nullptr) return;
  list.release();
  list.reset(grown);
}

std::string ToUrl(const ParsedUrl& url) {
  return std::string(url.secure ? "https" : "http") + "://" + ToUtf8(url.host) + ":" +
         std::to_string(url.port) + ToUtf8(url.path);
}

// What one request on the wire brought back.
struct Reply {
  std::string body;
  // libcurl records the status as soon as the status line is read; only the blank line that
  // ends the headers says a reply really arrived. A 1xx interim reply starts over.
  bool headersComplete = false;
};

size_t AppendBody(char* data, size_t size, size_t count, void* reply) {
  static_cast<Reply*>(reply)->body.append(data, size * count);
  return size * count;
}

size_t WatchHeaders(char* data, size_t size, size_t count, void* reply) {
  std::string_view line(data, size * count);
  auto& watched = *static_cast<Reply*>(reply);
  if (line.starts_with("HTTP/")) watched.headersComplete = false;
  if (line == "\r\n" || line == "\n") watched.headersComplete = true;
  return size * count;
}

class Hop {
 public:
  Hop(CURL* handle, const std::string& caFile, const HttpTimeouts& timeouts) : handle_(handle) {
    userAgent_ = ToUtf8(kUserAgent);
    curl_easy_setopt(handle, CURLOPT_USERAGENT, userAgent_.c_str());
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, AppendBody);
    curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, WatchHeaders);
    curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT_MS,
                     static_cast<long>(timeouts.connect.count()));
    // A peer silent for the idle time ends the request, as WinHTTP's send and receive timeouts
    // do; libcurl reports it as its own timeout code (28).
    curl_easy_setopt(handle, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(handle, CURLOPT_LOW_SPEED_TIME, static_cast<long>(timeouts.idle.count()));
    if (!caFile.empty()) curl_easy_setopt(handle, CURLOPT_CAINFO, caFile.c_str());
  }

  CURLcode Perform(const ParsedUrl& url, const std::string& method,
                   const std::vector<std::u16string>& headerLines, const std::string* body,
                   Reply& reply) {
    // Only our header lines, in our order: libcurl's own Accept and Expect lines are removed
    // ("Expect: 100-continue" would also cost a round trip before every large package).
    HeaderList headers;
    Append(headers, "Accept:");
    for (const std::u16string& line : headerLines)
      Append(headers, ToUtf8(line));
    Append(headers, "Expect:");

    target_ = ToUrl(url);
    method_ = method;
    curl_easy_setopt(handle_, CURLOPT_URL, target_.c_str());
    curl_easy_setopt(handle_, CURLOPT_HTTPHEADER, headers.get());
    curl_easy_setopt(handle_, CURLOPT_WRITEDATA, &reply);
    curl_easy_setopt(handle_, CURLOPT_HEADERDATA, &reply);
    if (body != nullptr) {
      // The package is sent from where it lies; libcurl does not copy it.
      curl_easy_setopt(handle_, CURLOPT_POSTFIELDS, body->data());
      curl_easy_setopt(handle_, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body->size()));
    } else {
      curl_easy_setopt(handle_, CURLOPT_HTTPGET, 1L);
    }
    bool standard = method_ == (body != nullptr ? "POST" : "GET");
    curl_easy_setopt(handle_, CURLOPT_CUSTOMREQUEST, standard ? nullptr : method_.c_str());
    return curl_easy_perform(handle_);
  }

  int32_t Status() const {
    long status = 0;
    curl_easy_getinfo(handle_, CURLINFO_RESPONSE_CODE, &status);
    return static_cast<int32_t>(status);
  }

  std::u16string Location() const {
    char* location = nullptr;
    curl_easy_getinfo(handle_, CURLINFO_REDIRECT_URL, &location);
    return location != nullptr ? FromUtf8(location) : std::u16string();
  }

 private:
  CURL* handle_;
  std::string userAgent_, target_, method_;
};

}  // namespace

CurlHttpClient::CurlHttpClient(std::string caFile, HttpTimeouts timeouts)
    : caFile_(std::move(caFile)), timeouts_(timeouts) {
  InitialiseCurlOnce();
}

HttpExchange CurlHttpClient::Exchange(const ParsedUrl& url, std::u16string_view method,
                                      const std::vector<std::u16string>& headerLines,
                                      const std::string* body) {
  HttpExchange exchange;
  std::unique_ptr<CURL, EasyDeleter> easy(curl_easy_init());
  if (!easy) return exchange;  // kSessionFailed
  Hop hop(easy.get(), caFile_, timeouts_);

  ParsedUrl current = url;
  std::u16string currentMethod(method);
  std::vector<std::u16string> lines = headerLines;
  for (int redirects = 0;; ++redirects) {
    Reply reply;
    CURLcode code = hop.Perform(current, ToUtf8(currentMethod), lines, body, reply);
    if (!reply.headersComplete) {
      exchange.outcome = HttpExchange::Outcome::kSendFailed;
      // A peer that closes before saying anything leaves libcurl without an error of its own.
      exchange.errorCode = static_cast<uint32_t>(code != CURLE_OK ? code : CURLE_GOT_NOTHING);
      return exchange;
    }
    // The headers arrived: like the Windows stack, keep whatever body could be read, even when
    // the connection broke off in the middle of it.
    std::optional<Redirect> next =
        FollowRedirect(hop.Status(), current, currentMethod, hop.Location());
    if (!next) {
      exchange.outcome = HttpExchange::Outcome::kReplied;
      exchange.status = hop.Status();
      exchange.body = std::move(reply.body);
      return exchange;
    }
    if (redirects == kMaxRedirects) {
      exchange.outcome = HttpExchange::Outcome::kSendFailed;
      exchange.errorCode = CURLE_TOO_MANY_REDIRECTS;
      return exchange;
    }
    StripForRedirect(*next, lines, body);
    current = next->target;
    currentMethod = next->method;
  }
}

}  // namespace orvane
