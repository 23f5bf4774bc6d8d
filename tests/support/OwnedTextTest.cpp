#include "support/OwnedText.h"

#include <gtest/gtest.h>

#include "kestrin/EventServices.h"

namespace kestrin {
namespace {

TEST(OwnedText, IsCutBetweenCharacters) {
  const auto x = [](size_t count) { return std::string(count, 'x'); };
  const std::pair<std::string, std::string> cases[] = {
      {x(4095), x(4095)},
      {x(4096), x(4095)},
      {std::string("ab\0cd", 5), "ab"},
      {x(4094) + "\xC3\xA9", x(4094)},
      {x(4091) + "\xF0\x9F\x98\x80" + x(1), x(4091) + "\xF0\x9F\x98\x80"},
      // What is not UTF-8 is cut at the byte.
      {std::string(5000, '\x80'), std::string(4095, '\x80')},
      {x(4094) + "\xE9\xE9", x(4094) + "\xE9"},
      {x(4092) + "\xF0\x9F\x94\xA7y", x(4092)}};
  for (const auto& [given, fitted] : cases) {
    bool wasCut = false;
    EXPECT_EQ(FitText(given, &wasCut), fitted) << given.size();
    EXPECT_EQ(wasCut, given != fitted) << given.size();
  }
}

TEST(OwnedText, KnowsUtf8) {
  using namespace std::string_literals;
  for (const char* good : {"", "a", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF",
                           "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"})
    EXPECT_TRUE(IsUtf8(good)) << testing::PrintToString(good);
  for (const std::string& bad :
       {"\x80"s, "\xC3"s, "\xC3 "s, "\xC1\xBF"s, "\xE0\x9F\xBF"s, "\xED\xA0\x80"s, "\xE2\x82"s,
        "\xE2\x82 "s, "\xF0\x8F\xBF\xBF"s, "\xF4\x90\x80\x80"s, "\xF5\x80\x80\x80"s})
    EXPECT_FALSE(IsUtf8(bad)) << testing::PrintToString(bad);
}

}  // namespace
}  // namespace kestrin
