// Texts made comparable without regard to case.
#pragma once

#include <string>
#include <string_view>

namespace kestrin {

/// Two texts that differ in case alone give the same bytes, and bytes compare as the characters do.
std::string FoldedText(std::string_view text);

}  // namespace kestrin
