#include "graph/json_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <initializer_list>

#include "base/wide_text.h"

namespace orvane {

std::u16string FormatJsonBool(bool value) {
  return value ? u"true" : u"false";
}

void AppendJsonNumber(std::u16string& out, float value) {
  if (!std::isfinite(value)) {
    out += u"null";
    return;
  }
  // to_chars with a precision is specified as printf's "%.6g" in the C locale, which is what a
  // stream with precision 6 and no format flags writes, without the stream's locale lookups.
  char digits[32];
  auto result = std::to_chars(digits, digits + sizeof digits, static_cast<double>(value),
                              std::chars_format::general, 6);
  out.append(digits, result.ptr);
}

std::u16string FormatJsonNumber(float value) {
  std::u16string out;
  AppendJsonNumber(out, value);
  return out;
}

namespace {

std::u16string FormatJsonArray(std::initializer_list<float> values) {
  std::u16string out = u"[";
  bool first = true;
  for (float value : values) {
    if (!first) out += u',';
    AppendJsonNumber(out, value);
    first = false;
  }
  out += u']';
  return out;
}

}  // namespace

std::u16string FormatJsonColor(const host::Color& color) {
  return FormatJsonArray({color.r, color.g, color.b});
}

std::u16string FormatJsonPoint3(const host::Point3& point) {
  return FormatJsonArray({point.x, point.y, point.z});
}

std::u16string FormatJsonQuat(const host::Quat& quat) {
  return FormatJsonArray({quat.w, quat.x, quat.y, quat.z});
}

namespace {

// The two-character escapes; null for characters that have none.
const char16_t* ShortEscape(char16_t c) {
  switch (c) {
    case u'\t': return u"\\t";
    case u'\n': return u"\\n";
    case u'\r': return u"\\r";
    case u'"': return u"\\\"";
    case u'\\': return u"\\\\";
    default: return nullptr;
  }
}

}  // namespace

std::u16string EscapeJsonString(std::u16string_view text) {
  static constexpr char16_t kHex[] = u"0123456789abcdef";
  std::u16string out;
  out.reserve(text.size() + 8);
  for (char16_t c : text) {
    if (const char16_t* escape = ShortEscape(c)) {
      out += escape;
    } else if (c < 0x20) {
      out += u"\\u00";
      out += kHex[c >> 4];
      out += kHex[c & 0xF];
    } else {
      out += c;
    }
  }
  return out;
}

void AppendEscapedJsonUtf8(std::string& out, std::u16string_view text) {
  bool plain = std::none_of(text.begin(), text.end(),
                            [](char16_t c) { return c < 0x20 || c == u'"' || c == u'\\'; });
  if (plain) {
    AppendUtf8(out, text);
  } else {
    AppendUtf8(out, EscapeJsonString(text));
  }
}

std::u16string JoinFragments(const FragmentList& fragments, std::u16string_view indent) {
  std::u16string out;
  for (size_t i = 0; i < fragments.size(); ++i) {
    if (i > 0) out += u",\n";
    out += indent;
    out += fragments[i];
  }
  return out;
}

}  // namespace orvane
