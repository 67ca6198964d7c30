// Where the service lives. Both addresses are set when the plug-in is built
// (ORVANE_SERVICE_URL and ORVANE_DASHBOARD_URL in CMake); the command-line tools take --service.
#pragma once

#include <string_view>

namespace orvane {

inline constexpr std::u16string_view kServiceBaseUrl = ORVANE_SERVICE_URL;
inline constexpr std::u16string_view kDashboardUrl = ORVANE_DASHBOARD_URL;

}  // namespace orvane
