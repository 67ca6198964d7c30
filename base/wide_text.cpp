#include "base/wide_text.h"

#include <cstring>

#ifdef _WIN32
#include <windows.h>
#endif

namespace orvane {

// UTF-8 is converted here on every system, so that ill-formed bytes become the same text on
// Windows as elsewhere.

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char16_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowSurrogate(char16_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

void AppendCodePoint(std::string& out, char32_t code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | (code >> 6));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    out += static_cast<char>(0xE0 | (code >> 12));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (code >> 18));
    out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  }
}

void AppendUtf16(std::u16string& out, char32_t code) {
  if (code < 0x10000) {
    out += static_cast<char16_t>(code);
  } else {
    code -= 0x10000;
    out += static_cast<char16_t>(0xD800 + (code >> 10));
    out += static_cast<char16_t>(0xDC00 + (code & 0x3FF));
  }
}

// The allowed range of the second byte of a sequence depends on its lead byte (this is what
// rules out overlong forms, surrogates and code points above U+10FFFF); later bytes are
// plain continuation bytes.
struct LeadInfo {
  int length;  // 0 for a byte that cannot start a sequence
  unsigned char secondLow, secondHigh;
};

LeadInfo ClassifyLead(unsigned char lead) {
  if (lead >= 0xC2 && lead <= 0xDF) return {2, 0x80, 0xBF};
  if (lead == 0xE0) return {3, 0xA0, 0xBF};
  if (lead == 0xED) return {3, 0x80, 0x9F};
  if (lead >= 0xE1 && lead <= 0xEF) return {3, 0x80, 0xBF};
  if (lead == 0xF0) return {4, 0x90, 0xBF};
  if (lead == 0xF4) return {4, 0x80, 0x8F};
  if (lead >= 0xF1 && lead <= 0xF3) return {4, 0x80, 0xBF};
  return {0, 0, 0};
}

}  // namespace

void AppendUtf8(std::string& out, std::u16string_view text) {
  // Most of what is converted (the package above all) is ASCII: copied in blocks the compiler
  // turns into vector instructions, then unit by unit, until the first unit that is not.
  size_t start = out.size();
  out.resize(start + text.size());
  constexpr size_t kBlock = 16;
  const char16_t* from = text.data();
  char* to = out.data() + start;
  size_t i = 0;
  for (; i + kBlock <= text.size(); i += kBlock) {
    char16_t units[kBlock];  // local copies, so that no store may alias a load
    char bytes[kBlock];
    std::memcpy(units, from + i, sizeof units);
    char16_t seen = 0;
    for (size_t k = 0; k < kBlock; ++k)
      seen |= units[k];
    if (seen >= 0x80) break;
    for (size_t k = 0; k < kBlock; ++k)
      bytes[k] = static_cast<char>(units[k]);
    std::memcpy(to + i, bytes, sizeof bytes);
  }
  for (; i < text.size() && text[i] < 0x80; ++i)
    to[i] = static_cast<char>(text[i]);
  if (i == text.size()) return;
  out.resize(start + i);
  out.reserve(start + i + 3 * (text.size() - i));
  for (; i < text.size(); ++i) {
    char16_t unit = text[i];
    if (unit < 0x80) {
      out += static_cast<char>(unit);
    } else if (IsHighSurrogate(unit) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
      char32_t code = 0x10000 + ((char32_t{unit} - 0xD800) << 10) + (text[i + 1] - 0xDC00);
      AppendCodePoint(out, code);
      ++i;
    } else if (IsHighSurrogate(unit) || IsLowSurrogate(unit)) {
      AppendCodePoint(out, kReplacement);
    } else {
      AppendCodePoint(out, unit);
    }
  }
}

std::string ToUtf8(std::u16string_view text) {
  std::string out;
  AppendUtf8(out, text);
  return out;
}

// A sequence that breaks off early is replaced by one U+FFFD for its well-formed start (the
// "maximal subpart"), and decoding resumes at the byte that broke it.
namespace {

std::u16string Decode(std::string_view bytes, bool& wellFormed) {
  wellFormed = true;
  std::u16string out;
  out.reserve(bytes.size());
  // Most text is plain ASCII: its leading run is widened in one go.
  size_t i = 0;
  while (i < bytes.size() && static_cast<unsigned char>(bytes[i]) < 0x80)
    ++i;
  out.resize(i);
  for (size_t k = 0; k < i; ++k)
    out[k] = static_cast<char16_t>(bytes[k]);
  while (i < bytes.size()) {
    auto lead = static_cast<unsigned char>(bytes[i]);
    if (lead < 0x80) {
      out += static_cast<char16_t>(lead);
      ++i;
      continue;
    }
    LeadInfo info = ClassifyLead(lead);
    if (info.length == 0) {
      out += static_cast<char16_t>(kReplacement);
      wellFormed = false;
      ++i;
      continue;
    }
    char32_t code = lead & (0x7F >> info.length);
    size_t consumed = 1;
    bool complete = true;
    for (int k = 1; k < info.length; ++k) {
      if (i + consumed >= bytes.size()) {
        complete = false;
        break;
      }
      auto next = static_cast<unsigned char>(bytes[i + consumed]);
      unsigned char low = k == 1 ? info.secondLow : 0x80;
      unsigned char high = k == 1 ? info.secondHigh : 0xBF;
      if (next < low || next > high) {
        complete = false;
        break;
      }
      code = (code << 6) | (next & 0x3F);
      ++consumed;
    }
    if (complete) {
      AppendUtf16(out, code);
    } else {
      out += static_cast<char16_t>(kReplacement);
      wellFormed = false;
    }
    i += consumed;
  }
  return out;
}

}  // namespace

std::u16string FromUtf8(std::string_view bytes) {
  bool wellFormed = true;
  return Decode(bytes, wellFormed);
}

std::optional<std::u16string> FromUtf8Strict(std::string_view bytes) {
  bool wellFormed = true;
  std::u16string text = Decode(bytes, wellFormed);
  if (!wellFormed) return std::nullopt;
  return text;
}

#ifdef _WIN32

std::u16string FromAnsiCodePage(std::string_view bytes) {
  if (bytes.empty()) return {};
  int length = static_cast<int>(bytes.size());
  int size = MultiByteToWideChar(CP_ACP, 0, bytes.data(), length, nullptr, 0);
  std::u16string out(static_cast<size_t>(size), u'\0');
  MultiByteToWideChar(CP_ACP, 0, bytes.data(), length, reinterpret_cast<wchar_t*>(out.data()),
                      size);
  return out;
}

#else

// Windows-1252, the ANSI code page of Western Windows installations.
std::u16string FromAnsiCodePage(std::string_view bytes) {
  // 0x80-0x9F differ from Latin-1; 0 marks the five bytes the code page leaves undefined, which
  // map to the same-numbered control characters, as Windows does.
  static constexpr char16_t kHigh[32] = {
      0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
      0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
      0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
  std::u16string out;
  out.reserve(bytes.size());
  for (unsigned char byte : bytes) {
    out += byte >= 0x80 && byte <= 0x9F ? kHigh[byte - 0x80] : static_cast<char16_t>(byte);
  }
  return out;
}

#endif

std::u16string TrimWhitespace(std::u16string_view text) {
  constexpr std::u16string_view kBlanks = u" \t\r\n";
  size_t first = text.find_first_not_of(kBlanks);
  if (first == std::u16string_view::npos) return {};
  size_t last = text.find_last_not_of(kBlanks);
  return std::u16string(text.substr(first, last - first + 1));
}

std::u16string LowerAscii(std::u16string_view text) {
  std::u16string lowered(text);
  for (char16_t& c : lowered) {
    if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c + (u'a' - u'A'));
  }
  return lowered;
}

std::u16string AsciiToWide(std::string_view ascii) {
  return std::u16string(ascii.begin(), ascii.end());
}

}  // namespace orvane
