// Posting a finished scene package to the service as a job.
#pragma once

#include <string_view>

#include "host/file_system.h"
#include "service/http.h"

namespace orvane {

inline constexpr std::u16string_view kJobsPath = u"/node/api/v1/jobs";

// Posts the package file's bytes unchanged to base + "/node/api/v1/jobs", naming the job in
// "X-Job-Name" (percent-encoded) and, for the targets "5.1" and "5.2" only, the Blender version
// in "X-Blender-Target-Version". A package that cannot be read is reported without any request.
HttpResult SubmitJob(HttpClient& client, const host::FileSystem& files, std::u16string_view baseUrl,
                     std::u16string_view packagePath, std::u16string_view token,
                     std::u16string_view jobName, std::u16string_view blenderTarget);

}  // namespace orvane
