#include "service/job_submission.h"

#include <limits>

namespace orvane {

HttpResult SubmitJob(HttpClient& client, const host::FileSystem& files, std::u16string_view baseUrl,
                     std::u16string_view packagePath, std::u16string_view token,
                     std::u16string_view jobName, std::u16string_view blenderTarget) {
  std::optional<std::string> package =
      files.ReadBytes(packagePath, std::numeric_limits<uint64_t>::max());
  if (!package) return {false, 0, u"Cannot read JSON file: " + std::u16string(packagePath)};

  std::u16string headers = u"X-Job-Name: " + PercentEncode(jobName);
  if (blenderTarget == u"5.2" || blenderTarget == u"5.1") {
    headers += u"\r\nX-Blender-Target-Version: ";
    headers += blenderTarget;
  }
  std::u16string url = std::u16string(baseUrl) + std::u16string(kJobsPath);
  return PerformRequest(client, url, u"POST", token, &*package, headers);
}

}  // namespace orvane
