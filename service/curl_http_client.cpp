#include "service/curl_http_client.h"

#include <curl/curl.h>

#include <memory>
#include <mutex>

#include "graph/wide_text.h"

namespace orvane {

namespace {

void InitialiseCurlOnce() {
  static std::once_flag once;
  std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

size_t AppendReply(char* data, size_t size, size_t count, void* reply) {
  static_cast<std::string*>(reply)->append(data, size * count);
  return size * count;
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

}  // namespace

CurlHttpClient::CurlHttpClient(std::string caFile) : caFile_(std::move(caFile)) {
  InitialiseCurlOnce();
}

HttpExchange CurlHttpClient::Exchange(const ParsedUrl& url, std::u16string_view method,
                                      const std::vector<std::u16string>& headerLines,
                                      const std::string* body) {
  HttpExchange exchange;
  std::unique_ptr<CURL, EasyDeleter> easy(curl_easy_init());
  if (!easy) return exchange;  // kSessionFailed

  // Only our header lines, in our order: libcurl's own Accept and Expect lines are removed
  // ("Expect: 100-continue" would also cost a round trip before every large package).
  HeaderList headers;
  Append(headers, "Accept:");
  for (const std::u16string& line : headerLines)
    Append(headers, ToUtf8(line));
  Append(headers, "Expect:");

  std::string target = ToUrl(url);
  std::string methodText = ToUtf8(method);
  std::string userAgent = ToUtf8(kUserAgent);
  CURL* handle = easy.get();
  curl_easy_setopt(handle, CURLOPT_URL, target.c_str());
  curl_easy_setopt(handle, CURLOPT_USERAGENT, userAgent.c_str());
  curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers.get());
  curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, AppendReply);
  curl_easy_setopt(handle, CURLOPT_WRITEDATA, &exchange.body);
  if (!caFile_.empty()) curl_easy_setopt(handle, CURLOPT_CAINFO, caFile_.c_str());
  if (body != nullptr) {
    // The package is sent from where it lies; libcurl does not copy it.
    curl_easy_setopt(handle, CURLOPT_POSTFIELDS, body->data());
    curl_easy_setopt(handle, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body->size()));
  }
  if (methodText != (body != nullptr ? "POST" : "GET")) {
    curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, methodText.c_str());
  }

  CURLcode code = curl_easy_perform(handle);
  long status = 0;
  curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &status);
  if (status > 0) {
    // Headers arrived: like the Windows stack, keep whatever body could be read, even when the
    // connection broke off in the middle of it.
    exchange.outcome = HttpExchange::Outcome::kReplied;
    exchange.status = static_cast<int32_t>(status);
  } else {
    exchange.outcome = HttpExchange::Outcome::kSendFailed;
    exchange.errorCode = static_cast<uint32_t>(code);
    exchange.body.clear();
  }
  return exchange;
}

}  // namespace orvane
