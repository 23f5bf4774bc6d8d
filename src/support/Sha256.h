// SHA-256, for telling whether bytes are still those that a person has saved.
#pragma once

#include <string>
#include <string_view>

namespace kestrin {

/// 64 lower-case hexadecimal digits. `portable`: without the instructions that only some processors
/// have.
std::string Sha256(std::string_view bytes, bool portable = false);

}  // namespace kestrin
