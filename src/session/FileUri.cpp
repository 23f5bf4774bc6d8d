#include "session/FileUri.h"

#include <stdlib.h>
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace kestrin {

namespace {

constexpr std::string_view Scheme = "file:";
constexpr std::string_view Digits = "0123456789ABCDEF";

bool StandsForItself(char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
         (byte >= '0' && byte <= '9') || std::string_view("/-._~").find(byte) != std::string::npos;
}

bool StartsWithIgnoringCase(std::string_view text, std::string_view start) {
  return text.size() >= start.size() && strncasecmp(text.data(), start.data(), start.size()) == 0;
}

bool IsThisHost(std::string_view host) {
  if (host.empty()) return true;
  const std::string wanted(host);
  char own[256] = "";
  gethostname(own, sizeof own - 1);
  return strcasecmp(wanted.c_str(), "localhost") == 0 || strcasecmp(wanted.c_str(), own) == 0;
}

int DigitValue(char digit) {
  if (digit >= 'a' && digit <= 'f') digit = static_cast<char>(digit - 'a' + 'A');
  const size_t value = Digits.find(digit);
  return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

std::optional<std::string> Unescaped(std::string_view text) {
  std::string result;
  for (size_t at = 0; at < text.size(); ++at) {
    char byte = text[at];
    if (byte == '?' || byte == '#') return std::nullopt;
    if (byte == '%') {
      if (text.size() - at < 3) return std::nullopt;
      const int high = DigitValue(text[at + 1]), low = DigitValue(text[at + 2]);
      if (high < 0 || low < 0) return std::nullopt;
      byte = static_cast<char>(high << 4 | low);
      at += 2;
    }
    if (byte == '\0') return std::nullopt;
    result += byte;
  }
  return result;
}

std::string Normalised(std::string_view path) {
  std::vector<std::string_view> parts;
  for (size_t start = 0; start < path.size();) {
    const size_t end = std::min(path.find('/', start), path.size());
    const std::string_view part = path.substr(start, end - start);
    start = end + 1;
    if (part.empty() || part == ".") continue;
    if (part != "..")
      parts.push_back(part);
    else if (!parts.empty())
      parts.pop_back();
  }
  std::string result;
  for (const std::string_view part : parts) result.append("/").append(part);
  return result.empty() ? "/" : result;
}

}  // namespace

std::string FileUriOf(std::string_view path) {
  std::string uri = "file://";
  for (const char byte : path) {
    if (StandsForItself(byte)) {
      uri += byte;
      continue;
    }
    const auto value = static_cast<unsigned char>(byte);
    uri += {'%', Digits[value >> 4], Digits[value & 15]};
  }
  return uri;
}

std::optional<std::string> PathOfFileUri(std::string_view uri) {
  if (!StartsWithIgnoringCase(uri, Scheme)) return std::nullopt;
  std::string_view rest = uri.substr(Scheme.size());
  if (rest.starts_with("//")) {
    rest.remove_prefix(2);
    const size_t slash = std::min(rest.find('/'), rest.size());
    if (!IsThisHost(rest.substr(0, slash))) return std::nullopt;
    rest.remove_prefix(slash);
  }
  if (!rest.starts_with('/')) return std::nullopt;
  return Unescaped(rest);
}

std::optional<std::string> AbsolutePath(std::string_view argument) {
  if (argument.starts_with('/')) return Normalised(argument);
  const std::unique_ptr<char, decltype(&free)> folder(getcwd(nullptr, 0), &free);
  // What lies outside the root of the process is reported with a folder that is no path.
  if (!folder || *folder.get() != '/') return std::nullopt;
  return Normalised(std::string(folder.get()).append("/").append(argument));
}

}  // namespace kestrin
