// A message: a what-code and typed, named fields. JSON text is its flattened form.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "kestrin/Types.h"

namespace kestrin {

/// A four-character code as a number, the first character in the highest byte.
constexpr uint32 FourCharCode(const char (&text)[5]) {
  uint32 code = 0;
  for (int i = 0; i < 4; ++i) code = code << 8 | static_cast<unsigned char>(text[i]);
  return code;
}

/// Raw bytes with a four-character type code.
struct RawData {
  uint32 type = 0;
  std::string bytes;
  bool operator==(const RawData&) const = default;
};

class Message {
 public:
  using Value = std::variant<bool, int8, int32, int64, std::string, Rect, RawData>;

  explicit Message(uint32 code = 0) : what(code) {}

  uint32 what;

  /// Adds a field or replaces the one of that name; order of adding is kept.
  void Set(std::string_view name, Value value);
  bool Has(std::string_view name) const;
  const std::vector<std::pair<std::string, Value>>& Fields() const { return fields_; }

  /// The field, if it exists and holds exactly that type.
  template <typename T>
  std::optional<T> Get(std::string_view name) const {
    for (const auto& [key, value] : fields_)
      if (key == name) {
        if (const T* held = std::get_if<T>(&value)) return *held;
        return std::nullopt;
      }
    return std::nullopt;
  }

  /// JSON text that any byte content survives (texts that are not UTF-8 too).
  std::string Flatten() const;
  /// Nothing when the text is not a flattened message; never throws.
  static std::optional<Message> Unflatten(std::string_view json);

  bool operator==(const Message&) const = default;

 private:
  std::vector<std::pair<std::string, Value>> fields_;
};

}  // namespace kestrin
