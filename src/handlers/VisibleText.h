// Texts that somebody else may have written, as a person must see them before saying yes.
#pragma once

#include <string>
#include <string_view>

namespace kestrin {

/// Control characters as their pictures, and what turns the writing direction or takes no room as
/// "<U+202E>"; docs/trust.md tells more. UTF-8; other bytes stay.
std::string VisibleText(std::string_view text);

}  // namespace kestrin
