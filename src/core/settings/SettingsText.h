// A set of settings as the text of its file.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "support/Message.h"

namespace kestrin {

/// By key: type code and bytes. Keys are UTF-8.
using SettingsMap = std::map<std::string, RawData>;

/// JSON, one line a key; reading it back gives the same bytes.
std::string WriteSettingsText(const SettingsMap& settings);

struct SettingsTextResult {
  SettingsMap settings;
  bool isObject = false;                ///< false: nothing could be read
  std::vector<std::string> unreadable;  ///< keys whose entries could not
};
/// Reads what can be read; never throws.
SettingsTextResult ReadSettingsText(std::string_view text);

}  // namespace kestrin
