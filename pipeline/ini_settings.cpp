#include "pipeline/ini_settings.h"

#include <fstream>
#include <vector>

#include "base/wide_text.h"
#include "host/file_read.h"

#ifndef _WIN32
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace orvane {

namespace {

constexpr std::u16string_view kSection = u"Settings";
constexpr size_t kMaxValueLength = 1023;  // the panel reads into 1,024 characters

std::u16string Decode(const std::string& bytes) {
  if (bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFF &&
      static_cast<unsigned char>(bytes[1]) == 0xFE) {
    std::u16string text;
    for (size_t i = 2; i + 1 < bytes.size(); i += 2)
      text += static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                    static_cast<unsigned char>(bytes[i + 1]) << 8);
    return text;
  }
  if (std::optional<std::u16string> utf8 = FromUtf8Strict(bytes)) return *utf8;
  return FromAnsiCodePage(bytes);
}

std::vector<std::u16string> ReadLines(const std::filesystem::path& file) {
  host::FileRead read = host::ReadRegularFile(file, 1 << 20);
  std::vector<std::u16string> lines;
  if (!read.bytes) return lines;
  std::u16string text = Decode(*read.bytes);
  size_t start = 0;
  while (start < text.size()) {
    size_t end = text.find(u'\n', start);
    std::u16string line = text.substr(start, end == std::u16string::npos ? end : end - start);
    if (!line.empty() && line.back() == u'\r') line.pop_back();
    lines.push_back(std::move(line));
    if (end == std::u16string::npos) break;
    start = end + 1;
  }
  return lines;
}

bool IsSectionLine(std::u16string_view line, std::u16string* name) {
  std::u16string trimmed = TrimWhitespace(line);
  if (trimmed.size() < 2 || trimmed.front() != u'[') return false;
  size_t close = trimmed.find(u']');
  if (close == std::u16string::npos) return false;
  *name = TrimWhitespace(std::u16string_view(trimmed).substr(1, close - 1));
  return true;
}

// The key of a "key=value" line, folded, or empty text.
std::u16string KeyOf(std::u16string_view line) {
  size_t equals = line.find(u'=');
  if (equals == std::u16string_view::npos) return {};
  return LowerAscii(TrimWhitespace(line.substr(0, equals)));
}

// The lines of our section: [first, end) after its header; first == npos when it is absent.
std::pair<size_t, size_t> FindSection(const std::vector<std::u16string>& lines) {
  std::u16string name;
  for (size_t i = 0; i < lines.size(); ++i) {
    if (!IsSectionLine(lines[i], &name) || LowerAscii(name) != LowerAscii(kSection)) continue;
    size_t end = i + 1;
    while (end < lines.size() && !IsSectionLine(lines[end], &name))
      ++end;
    return {i + 1, end};
  }
  return {std::u16string::npos, std::u16string::npos};
}

void WriteLines(const std::filesystem::path& file, const std::vector<std::u16string>& lines) {
  std::string bytes;
  for (const std::u16string& line : lines)
    bytes += ToUtf8(line) + "\r\n";
#ifndef _WIN32
  int descriptor = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (descriptor < 0) return;
  fchmod(descriptor, 0600);  // a file made by someone else may be wider open; it holds the token
  size_t written = 0;
  while (written < bytes.size()) {
    ssize_t count = write(descriptor, bytes.data() + written, bytes.size() - written);
    if (count <= 0) break;
    written += static_cast<size_t>(count);
  }
  close(descriptor);
#else
  std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
#endif
}

}  // namespace

std::u16string IniSettingsStore::Read(std::u16string_view key) {
  std::vector<std::u16string> lines = ReadLines(file_);
  auto [first, end] = FindSection(lines);
  if (first == std::u16string::npos) return {};
  std::u16string wanted = LowerAscii(key);
  for (size_t i = first; i < end; ++i) {
    if (KeyOf(lines[i]) != wanted) continue;
    std::u16string value =
        TrimWhitespace(std::u16string_view(lines[i]).substr(lines[i].find(u'=') + 1));
    if (value.size() >= 2 && (value.front() == u'"' || value.front() == u'\'') &&
        value.back() == value.front()) {
      value = value.substr(1, value.size() - 2);
    }
    return value.substr(0, kMaxValueLength);
  }
  return {};
}

void IniSettingsStore::Write(std::u16string_view key, std::u16string_view value) {
  std::vector<std::u16string> lines = ReadLines(file_);
  std::u16string line = std::u16string(key) + u"=" + std::u16string(value);
  auto [first, end] = FindSection(lines);
  if (first == std::u16string::npos) {
    lines.push_back(u"[" + std::u16string(kSection) + u"]");
    lines.push_back(line);
  } else {
    std::u16string wanted = LowerAscii(key);
    size_t found = first;
    while (found < end && KeyOf(lines[found]) != wanted)
      ++found;
    if (found < end) {
      lines[found] = line;
    } else {
      // After the section's last entry, before any blank lines that close it.
      size_t insert = end;
      while (insert > first && TrimWhitespace(lines[insert - 1]).empty())
        --insert;
      lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(insert), line);
    }
  }
  WriteLines(file_, lines);
}

}  // namespace orvane
