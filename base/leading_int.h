// Reading a leading decimal number the way the host's C runtime (_wtoi) does.
#pragma once

#include <cstdint>
#include <string_view>

namespace orvane {

// Skips leading white space, takes an optional sign and the digits that follow; 0 when there
// are none. Values beyond 32 bits saturate at the nearest limit.
int32_t ParseLeadingInt(std::u16string_view text);

}  // namespace orvane
