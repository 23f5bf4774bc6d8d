#include "support/Message.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>

#include "support/Hex.h"
#include "support/OwnedText.h"

namespace kestrin {

namespace {

using nlohmann::json;

/// Room for a handler's data as large as a file may hold, written in hexadecimal.
constexpr size_t LargestText = size_t{160} << 20;
constexpr int DeepestNesting = 8;
/// A parsed element takes many times the room of its one or two characters.
constexpr int MostElements = 100000;

// ---- Writing ----

json TextToJson(std::string_view text) {
  if (IsUtf8(text)) return std::string(text);
  return {{"bytes", ToHex(text)}};
}

json EdgeToJson(float edge) {
  if (std::isfinite(edge)) return edge;
  return {{"bits", std::bit_cast<uint32>(edge)}};
}

struct Writer {
  json& field;

  void Put(const char* type, json value) const {
    field["type"] = type;
    field["value"] = std::move(value);
  }
  void operator()(bool value) const { Put("bool", value); }
  void operator()(int8 value) const { Put("int8", value); }
  void operator()(int32 value) const { Put("int32", value); }
  void operator()(int64 value) const { Put("int64", value); }
  void operator()(const std::string& value) const { Put("string", TextToJson(value)); }
  void operator()(const Rect& value) const {
    Put("rect", json::array({EdgeToJson(value.left), EdgeToJson(value.top), EdgeToJson(value.right),
                             EdgeToJson(value.bottom)}));
  }
  void operator()(const RawData& value) const {
    Put("raw", {{"code", value.type}, {"bytes", ToHex(value.bytes)}});
  }
};

// ---- Reading ----

const json* Member(const json& object, const char* name) {
  if (!object.is_object()) return nullptr;
  const auto found = object.find(name);
  return found == object.end() ? nullptr : &*found;
}

template <typename Number>
bool FromJson(const json* from, Number& value) {
  if (!from || !from->is_number_integer()) return false;
  if (from->is_number_unsigned()) {
    const auto wide = from->get<uint64>();
    value = static_cast<Number>(wide);
    return std::in_range<Number>(wide);
  }
  const auto wide = from->get<int64>();
  value = static_cast<Number>(wide);
  return std::in_range<Number>(wide);
}

bool FromJson(const json* from, bool& value) {
  if (!from || !from->is_boolean()) return false;
  value = from->get<bool>();
  return true;
}

bool BytesFromJson(const json* from, std::string& bytes) {
  if (!from || !from->is_string()) return false;
  std::optional<std::string> held = FromHex(from->get_ref<const std::string&>());
  if (held) bytes = std::move(*held);
  return held.has_value();
}

bool FromJson(const json* from, std::string& text) {
  if (!from || !from->is_string()) return from && BytesFromJson(Member(*from, "bytes"), text);
  text = from->get_ref<const std::string&>();
  return true;
}

bool FromJson(const json* from, float& edge) {
  if (!from || !from->is_number()) {
    uint32 bits = 0;
    if (!from || !FromJson(Member(*from, "bits"), bits)) return false;
    edge = std::bit_cast<float>(bits);
    return true;
  }
  const double wide = from->get<double>();
  if (std::abs(wide) > std::numeric_limits<float>::max()) return false;
  edge = static_cast<float>(wide);
  return true;
}

bool FromJson(const json* from, Rect& rect) {
  if (!from || !from->is_array() || from->size() != 4) return false;
  return FromJson(&(*from)[0], rect.left) && FromJson(&(*from)[1], rect.top) &&
         FromJson(&(*from)[2], rect.right) && FromJson(&(*from)[3], rect.bottom);
}

bool FromJson(const json* from, RawData& raw) {
  return from && FromJson(Member(*from, "code"), raw.type) &&
         BytesFromJson(Member(*from, "bytes"), raw.bytes);
}

template <typename T>
std::optional<Message::Value> ValueOf(const json* from) {
  T value{};
  if (!FromJson(from, value)) return std::nullopt;
  return value;
}

std::optional<Message::Value> ReadValue(const std::string& type, const json* from) {
  if (type == "bool") return ValueOf<bool>(from);
  if (type == "int8") return ValueOf<int8>(from);
  if (type == "int32") return ValueOf<int32>(from);
  if (type == "int64") return ValueOf<int64>(from);
  if (type == "string") return ValueOf<std::string>(from);
  if (type == "rect") return ValueOf<Rect>(from);
  if (type == "raw") return ValueOf<RawData>(from);
  return std::nullopt;
}

/// Whether parsing would take more room than a text of that length may.
bool IsTooIntricate(std::string_view text) {
  int depth = 0, elements = 0;
  for (size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    if (c == '"') {
      for (++at; at < text.size() && text[at] != '"'; ++at)
        if (text[at] == '\\') ++at;
    } else if (c == '{' || c == '[') {
      if (++depth > DeepestNesting) return true;
    } else if (c == '}' || c == ']') {
      --depth;
    }
    if ((c == ',' || c == '{' || c == '[') && ++elements > MostElements) return true;
  }
  return false;
}

}  // namespace

void Message::Set(std::string_view name, Value value) {
  const auto found = std::find_if(fields_.begin(), fields_.end(),
                                  [&](const auto& field) { return field.first == name; });
  if (found != fields_.end())
    found->second = std::move(value);
  else
    fields_.emplace_back(name, std::move(value));
}

bool Message::Has(std::string_view name) const {
  return std::any_of(fields_.begin(), fields_.end(),
                     [&](const auto& field) { return field.first == name; });
}

std::string Message::Flatten() const {
  json fields = json::array();
  for (const auto& [name, value] : fields_) {
    json field = {{"name", TextToJson(name)}};
    std::visit(Writer{field}, value);
    fields.push_back(std::move(field));
  }
  return json{{"what", what}, {"fields", std::move(fields)}}.dump();
}

std::optional<Message> Message::Unflatten(std::string_view text) {
  if (text.size() > LargestText || IsTooIntricate(text)) return std::nullopt;
  const json whole = json::parse(text, nullptr, false);
  Message message;
  const json* fields = Member(whole, "fields");
  if (!FromJson(Member(whole, "what"), message.what) || !fields || !fields->is_array())
    return std::nullopt;
  std::set<std::string_view> names;
  message.fields_.reserve(fields->size());
  for (const json& field : *fields) {
    std::string name, type;
    if (!FromJson(Member(field, "name"), name) || !FromJson(Member(field, "type"), type))
      return std::nullopt;
    std::optional<Value> value = ReadValue(type, Member(field, "value"));
    if (!value) return std::nullopt;
    message.fields_.emplace_back(std::move(name), *std::move(value));
    // The place is kept: room for all fields was made above.
    if (!names.insert(message.fields_.back().first).second) return std::nullopt;
  }
  return message;
}

}  // namespace kestrin
