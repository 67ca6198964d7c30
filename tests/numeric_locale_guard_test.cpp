#include "package/numeric_locale_guard.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <sstream>
#include <stdexcept>

namespace orvane {
namespace {

struct CommaNumbers : std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
};

std::string StreamText(double value) {
  std::ostringstream stream;  // takes the global locale at construction
  stream << value;
  return stream.str();
}

std::string RuntimeLocaleName() {
  return std::setlocale(LC_ALL, nullptr);
}

// Some machines have no locale but "C" and "POSIX"; use one that differs from "C" if there is one.
const char* SomeOtherRuntimeLocale() {
  for (const char* name : {"C.UTF-8", "C.utf8", "POSIX"}) {
    if (std::setlocale(LC_ALL, name) != nullptr) return name;
  }
  return "C";
}

TEST(NumericLocaleGuard, PinsClassicNumbersAndRestoresBothLocales) {
  const char* runtime = SomeOtherRuntimeLocale();
  std::string runtimeBefore = RuntimeLocaleName();
  std::locale before = std::locale::global(std::locale(std::locale::classic(), new CommaNumbers));
  ASSERT_EQ(StreamText(2.5), "2,5");
  {
    NumericLocaleGuard guard;
    EXPECT_EQ(StreamText(2.5), "2.5");
    EXPECT_EQ(RuntimeLocaleName(), "C");
  }
  EXPECT_EQ(StreamText(2.5), "2,5");
  EXPECT_EQ(RuntimeLocaleName(), runtimeBefore) << "started from " << runtime;
  std::locale::global(before);
}

TEST(NumericLocaleGuard, RestoresWhenTheScopeIsLeftByAnException) {
  std::locale before = std::locale::global(std::locale(std::locale::classic(), new CommaNumbers));
  try {
    NumericLocaleGuard guard;
    throw std::runtime_error("writer failed");
  } catch (const std::runtime_error&) {
  }
  EXPECT_EQ(StreamText(0.5), "0,5");
  std::locale::global(before);
}

}  // namespace
}  // namespace orvane
