// Command-line flags of the form "--name value", and positional arguments.
#pragma once

#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::cli {

struct ParsedFlags {
  std::map<std::string, std::string> values;
  std::vector<std::string> positional;
  std::string error;  // empty when the arguments are well-formed

  bool Has(const std::string& flag) const { return values.count(flag) != 0; }
  const std::string& Get(const std::string& flag) const { return values.at(flag); }
};

// `allowed` lists the flags that take a value, `required` those that must be given, `switches`
// the flags that take none (their value is empty text).
ParsedFlags ParseFlags(const std::vector<std::string>& args,
                       std::initializer_list<std::string_view> allowed,
                       std::initializer_list<std::string_view> required,
                       std::initializer_list<std::string_view> switches = {});

}  // namespace orvane::cli
