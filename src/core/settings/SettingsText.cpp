#include "core/settings/SettingsText.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>

#include "support/Hex.h"
#include "support/OwnedText.h"

namespace kestrin {

namespace {

using Json = nlohmann::json;

enum class Form { Int32, Byte, Float, Bytes };

Form FormOf(uint32 type) {
  switch (type) {
    case FourCharCode("LONG"):
      return Form::Int32;
    case FourCharCode("BOOL"):
      return Form::Byte;
    case FourCharCode("FLOT"):
    case FourCharCode("RECT"):
    case FourCharCode("BPNT"):
      return Form::Float;
    default:
      return Form::Bytes;
  }
}

bool IsVisible(unsigned char c) { return c >= 0x20 && c < 0x7f; }

// Four visible characters, or "0x" and eight digits for a code that has no such text.
std::string TypeText(uint32 type) {
  std::string text;
  for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(type >> shift & 0xff);
  for (const char c : text)
    if (!IsVisible(static_cast<unsigned char>(c))) {
      char digits[11];
      std::snprintf(digits, sizeof digits, "0x%08x", type);
      return digits;
    }
  return text;
}

std::optional<uint32> TypeOf(const Json& json) {
  if (!json.is_string()) return std::nullopt;
  const std::string text = json.get<std::string>();
  uint32 type = 0;
  if (text.size() == 4) {
    for (const char c : text) type = type << 8 | static_cast<unsigned char>(c);
    return type;
  }
  if (text.size() != 10 || !text.starts_with("0x")) return std::nullopt;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data() + 2, end, type, 16);
  return result.ec == std::errc() && result.ptr == end ? std::optional(type) : std::nullopt;
}

// The number that a person would write for this float.
double ShortestDouble(float value) {
  char text[32];
  const auto written = std::to_chars(text, text + sizeof text, value);
  double result = 0;
  std::from_chars(text, written.ptr, result);
  return result;
}

template <typename T, typename Convert>
Json NumbersOf(const std::string& bytes, Convert convert) {
  Json list = Json::array();
  for (size_t at = 0; at + sizeof(T) <= bytes.size(); at += sizeof(T)) {
    T value;
    std::memcpy(&value, bytes.data() + at, sizeof value);
    list.push_back(convert(value));
  }
  return list;
}

template <typename T>
void Append(std::string& bytes, T value) {
  char raw[sizeof value];
  std::memcpy(raw, &value, sizeof value);
  bytes.append(raw, sizeof value);
}

template <typename T>
bool AppendInteger(std::string& bytes, const Json& number) {
  if (!number.is_number_integer()) return false;
  constexpr auto Largest = static_cast<uint64>(std::numeric_limits<T>::max());
  if (number.is_number_unsigned() && number.get<uint64>() > Largest) return false;
  const int64 value = number.get<int64>();
  if (value < std::numeric_limits<T>::min() || value > std::numeric_limits<T>::max()) return false;
  Append(bytes, static_cast<T>(value));
  return true;
}

bool AppendFloat(std::string& bytes, const Json& number) {
  if (!number.is_number()) return false;
  const double value = number.get<double>();
  if (!(std::abs(value) <= double{std::numeric_limits<float>::max()})) return false;
  Append(bytes, static_cast<float>(value));
  return true;
}

bool AppendNumber(std::string& bytes, Form form, const Json& number) {
  if (form == Form::Float) return AppendFloat(bytes, number);
  if (form == Form::Int32) return AppendInteger<int32>(bytes, number);
  if (!number.is_boolean()) return AppendInteger<uint8>(bytes, number);
  Append(bytes, static_cast<uint8>(number.get<bool>()));
  return true;
}

// Texts one after another, each ended by a NUL, none empty.
std::optional<Json> TextsOf(const std::string& bytes) {
  if (bytes.empty() || bytes.back() != '\0' || !IsUtf8(bytes)) return std::nullopt;
  Json list = Json::array();
  for (size_t at = 0; at < bytes.size();) {
    const std::string text(bytes.c_str() + at);
    if (text.empty()) return std::nullopt;
    for (const char c : text)
      if (static_cast<unsigned char>(c) < 0x20) return std::nullopt;
    list.push_back(text);
    at += text.size() + 1;
  }
  return list;
}

bool AppendTexts(std::string& bytes, const Json& list) {
  if (!list.is_array()) return false;
  for (const Json& text : list) {
    if (!text.is_string()) return false;
    bytes += text.get_ref<const std::string&>();
    bytes += '\0';
  }
  return true;
}

std::optional<std::string> BytesOf(uint32 type, const Json& entry) {
  std::string bytes;
  if (const auto hex = entry.find("hex"); hex != entry.end())
    return hex->is_string() ? FromHex(hex->get_ref<const std::string&>()) : std::nullopt;
  if (const auto texts = entry.find("texts"); texts != entry.end())
    return AppendTexts(bytes, *texts) ? std::optional(bytes) : std::nullopt;
  const auto value = entry.find("value");
  const Form form = FormOf(type);
  if (value == entry.end() || !value->is_array() || form == Form::Bytes) return std::nullopt;
  for (const Json& number : *value)
    if (!AppendNumber(bytes, form, number)) return std::nullopt;
  return bytes;
}

// Null where the bytes have no readable form that gives the same bytes again.
Json ReadableForm(const RawData& data) {
  Json entry = {{"type", TypeText(data.type)}};
  switch (FormOf(data.type)) {
    case Form::Int32:
      entry["value"] = NumbersOf<int32>(data.bytes, [](int32 value) { return value; });
      break;
    case Form::Byte:
      entry["value"] = NumbersOf<uint8>(data.bytes, [](uint8 value) { return value; });
      break;
    case Form::Float:
      entry["value"] = NumbersOf<float>(data.bytes, ShortestDouble);
      break;
    case Form::Bytes:
      if (auto texts = TextsOf(data.bytes)) entry["texts"] = std::move(*texts);
      break;
  }
  return BytesOf(data.type, entry) == data.bytes ? entry : Json();
}

}  // namespace

std::string WriteSettingsText(const SettingsMap& settings) {
  std::string text = "{";
  for (const auto& [key, data] : settings) {
    Json entry = ReadableForm(data);
    if (entry.is_null()) entry = {{"type", TypeText(data.type)}, {"hex", ToHex(data.bytes)}};
    text += text.size() == 1 ? "\n  " : ",\n  ";
    text += Json(key).dump() + ": " + entry.dump();
  }
  return text + "\n}\n";
}

SettingsTextResult ReadSettingsText(std::string_view text) {
  SettingsTextResult result;
  const Json json = Json::parse(text, nullptr, false);
  result.isObject = json.is_object();
  if (!result.isObject) return result;
  for (const auto& [key, entry] : json.items()) {
    std::optional<uint32> type;
    if (entry.is_object() && entry.contains("type")) type = TypeOf(entry["type"]);
    std::optional<std::string> bytes;
    if (type) bytes = BytesOf(*type, entry);
    if (bytes)
      result.settings[key] = {*type, std::move(*bytes)};
    else
      result.unreadable.push_back(key);
  }
  return result;
}

}  // namespace kestrin
