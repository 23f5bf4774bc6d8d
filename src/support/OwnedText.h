// The C strings that pass between the application and add-ons, and the limit every text obeys.
#pragma once

#include <string>
#include <string_view>

namespace kestrin {

/// No text of an event is this long or longer; files hold it with its NUL in 4096 bytes.
inline constexpr size_t TextLimit = 4096;

/// `text` up to its first NUL and to TextLimit - 1 bytes, cut at a UTF-8 character boundary.
/// `wasCut` (may be null) tells whether anything was left out.
std::string FitText(std::string_view text, bool* wasCut = nullptr);

bool IsUtf8(std::string_view text);

}  // namespace kestrin
