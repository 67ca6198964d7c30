// The process environment, read the way the host's kernel call reads it.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace orvane::host {

// The value of an environment variable, or nullopt when it is not set.
using EnvironmentLookup = std::function<std::optional<std::u16string>(std::u16string_view name)>;

// This process's environment.
std::optional<std::u16string> ReadProcessEnvironment(std::u16string_view name);

}  // namespace orvane::host
