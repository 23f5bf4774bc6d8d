// Bytes as hexadecimal digits.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

/// Two digits a byte, lower case.
void AppendHex(std::string& text, std::string_view bytes);
std::string ToHex(std::string_view bytes);

/// Digits of either case; nothing for anything else or an odd number of them.
std::optional<std::string> FromHex(std::string_view digits);

}  // namespace kestrin
