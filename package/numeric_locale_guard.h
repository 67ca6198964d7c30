// Pins numbers to the classic format ("." as decimal separator, no grouping) for a scope.
#pragma once

#include <locale>
#include <string>

namespace orvane {

// Sets the C runtime locale to "C" and the global stream locale to classic; the destructor
// puts both back, also when the scope is left by an exception.
class NumericLocaleGuard {
 public:
  NumericLocaleGuard();
  ~NumericLocaleGuard();
  NumericLocaleGuard(const NumericLocaleGuard&) = delete;
  NumericLocaleGuard& operator=(const NumericLocaleGuard&) = delete;

 private:
  std::string previousRuntimeLocale_;
  std::locale previousStreamLocale_;
};

}  // namespace orvane
