// The set that docs/file-format.md shows byte by byte is the golden file.
#include <sstream>

#include "ctl/CtlTestBase.h"

namespace kestrin {
namespace {

/// The bytes of the dump, whose every line begins with their place: "0005  01 00 00 00   what".
std::string BytesOnPage() {
  std::istringstream page(ReadFile(KESTRIN_SOURCE_DIR "/docs/file-format.md"));
  std::string line, bytes;
  bool inDump = false;
  int dumps = 0;
  while (std::getline(page, line)) {
    if (line.starts_with("```")) {
      inDump = !inDump;
      dumps += inDump;
      continue;
    }
    if (!inDump || line.starts_with(' ')) continue;
    EXPECT_EQ(std::stoul(line.substr(0, 4), nullptr, 16), bytes.size()) << line;
    const std::string hex = line.substr(6, 47);
    for (size_t at = 0; at < hex.size() && hex[at] != ' '; at += 3)
      bytes += static_cast<char>(std::stoi(hex.substr(at, 2), nullptr, 16));
  }
  EXPECT_EQ(dumps, 1);
  return bytes;
}

TEST(FormatPage, TheDumpIsTheFile) { EXPECT_EQ(BytesOnPage(), ReadFile(TeaFile)); }

}  // namespace
}  // namespace kestrin
