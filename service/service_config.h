// Where the service lives. The addresses are set when the plug-in is built (ORVANE_SERVICE_URL,
// ORVANE_DASHBOARD_URL and ORVANE_SITE_ADDRESS in CMake); the command-line tools take --service.
#pragma once

#include <string_view>

namespace orvane {

inline constexpr std::u16string_view kServiceBaseUrl = ORVANE_SERVICE_URL;
inline constexpr std::u16string_view kDashboardUrl = ORVANE_DASHBOARD_URL;
// The text of the panel's link, which opens the service's base address.
inline constexpr std::u16string_view kSiteAddress = ORVANE_SITE_ADDRESS;

}  // namespace orvane
