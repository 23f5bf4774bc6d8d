#include "core/settings/JoinSettings.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

namespace {

constexpr char SetNames[] = "SetsToUse";
constexpr char SetCount[] = "NumberOfSetsToUse";
/// The second says how many of what the first holds.
constexpr std::array<const char*, 2> Icons = {"UserIcons", "NumberOfUserIcons"};

const RawData* Find(const SettingsMap& settings, const std::string& key) {
  const auto found = settings.find(key);
  return found == settings.end() ? nullptr : &found->second;
}

bool IsSame(const RawData* one, const RawData* other) {
  return one && other ? *one == *other : one == other;
}

void Take(SettingsMap& into, const std::string& key, const RawData* value) {
  if (value)
    into[key] = *value;
  else
    into.erase(key);
}

std::vector<std::string> TextsOf(const RawData* value) {
  std::vector<std::string> texts;
  std::string_view rest = value ? std::string_view(value->bytes) : std::string_view();
  while (!rest.empty()) {
    texts.emplace_back(rest.substr(0, rest.find('\0')));
    rest.remove_prefix(std::min(texts.back().size() + 1, rest.size()));
  }
  return texts;
}

bool Contains(const std::vector<std::string>& texts, const std::string& text) {
  return std::find(texts.begin(), texts.end(), text) != texts.end();
}

void JoinSetNames(const SettingsMap& before, const SettingsMap& ours, SettingsMap& theirs) {
  const std::vector<std::string> had = TextsOf(Find(before, SetNames)),
                                 have = TextsOf(Find(ours, SetNames));
  std::vector<std::string> joined = TextsOf(Find(theirs, SetNames));
  std::erase_if(joined,
                [&](const auto& name) { return Contains(had, name) && !Contains(have, name); });
  for (const std::string& name : have)
    if (!Contains(had, name) && !Contains(joined, name)) joined.push_back(name);
  std::string bytes;
  for (const std::string& name : joined) bytes.append(name).push_back('\0');
  const auto number = static_cast<int32>(joined.size());
  std::string count(sizeof number, '\0');
  std::memcpy(count.data(), &number, sizeof number);
  theirs[SetCount] = {FourCharCode("LONG"), count};
  if (joined.empty())
    theirs.erase(SetNames);
  else
    theirs[SetNames] = {FourCharCode("BYTE"), bytes};
}

}  // namespace

SettingsMap JoinSettings(const SettingsMap& before, const SettingsMap& ours, SettingsMap theirs) {
  const auto changed = [&](const std::string& key) {
    return !IsSame(Find(before, key), Find(ours, key));
  };
  const auto isApart = [](const std::string& key) { return key == SetNames || key == SetCount; };
  const bool setsChanged = changed(SetNames);
  const bool iconsChanged = changed(Icons[0]) || changed(Icons[1]);
  for (const auto& entry : before)
    if (!isApart(entry.first) && !ours.contains(entry.first)) theirs.erase(entry.first);
  for (const auto& [key, value] : ours)
    if (!isApart(key) && changed(key)) theirs[key] = value;
  if (setsChanged)
    JoinSetNames(before, ours, theirs);
  else if (!theirs.contains(SetCount))
    Take(theirs, SetCount, Find(ours, SetCount));
  if (iconsChanged)
    for (const char* const key : Icons) Take(theirs, key, Find(ours, key));
  return theirs;
}

}  // namespace kestrin
