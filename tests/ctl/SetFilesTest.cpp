// Every file of tests/data, in the program: what is read is dumped and saved as it should be, what
// is damaged is refused with one line.
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "ctl/CtlTestBase.h"

namespace kestrin {
namespace {

using nlohmann::json;
namespace fs = std::filesystem;

class SetFilesTest : public CtlTest {
 protected:
  const json Expected = json::parse(ReadFile(KESTRIN_EXPECTED));

  static std::string FromHex(const std::string& hex) {
    std::string bytes;
    for (size_t at = 0; at < hex.size(); at += 2)
      bytes += static_cast<char>(std::stoi(hex.substr(at, 2), nullptr, 16));
    return bytes;
  }
  void ExpectRefusedByAll(const std::string& file, const std::string& fault) const {
    ExpectRefused({"dump", file}, file, fault);
    ExpectRefused({"next", "--json", file}, file, fault);
    ExpectRefused({"agenda", "--json", TeaFile, file}, file, fault);
    ExpectRefused({"check", TeaFile, file}, file, fault);
    WriteFile(Path("kept"), "what was there");
    ExpectRefused({"rewrite", file, "kept"}, file, fault);
    EXPECT_EQ(ReadFile(Path("kept")), "what was there");
    ExpectRefused({"rewrite", file, "new"}, file, fault);
    EXPECT_FALSE(fs::exists(Path("new")));
  }
};

TEST_F(SetFilesTest, WhatIsReadIsDumpedAsItStandsInTheFileAndComputedWith) {
  ASSERT_GT(Expected["read"].size(), 25u);
  for (const auto& [name, expected] : Expected["read"].items()) {
    SCOPED_TRACE(name);
    const std::string file = DataFolder + name;
    const size_t events = expected["dump"]["events"].size();
    EXPECT_EQ(RunJson({"dump", file}), expected["dump"]);
    EXPECT_EQ(RunJson({"next", "--json", file}).size(), events);
    EXPECT_TRUE(
        RunJson({"agenda", "--json", "--startup", "--from", "1794700800", file}).is_array());
    EXPECT_THAT(Run({"next", file}).out, testing::HasSubstr(events ? "Next message time" : "No e"));
    EXPECT_EQ(Run({"agenda", "--from", "1794700800", file}).status, 0);
    EXPECT_THAT(Run({"check", file}).out,
                testing::StartsWith(file + ": " + std::to_string(events) + " events, version " +
                                    std::string(expected["dump"]["version"])));
  }
}

TEST_F(SetFilesTest, WhatIsReadIsSavedInTheNewestVersionAndKeepsEverything) {
  for (const auto& [name, expected] : Expected["read"].items())
    for (const std::string& from : {DataFolder + name, Path("again")}) {
      const Ran ran = Run({"rewrite", from, "again"});
      EXPECT_EQ(ran.status, 0) << ran.err;
      EXPECT_EQ(ran.out + ran.err, "");
      EXPECT_TRUE(ReadFile(Path("again")) == FromHex(expected["saved"]))
          << name << ", from " << from;
    }
}

// Every line of the page's dump begins with its place: "0005  01 00 00 00   what".
TEST_F(SetFilesTest, TheDumpOnThePageOfTheFormatIsTheFile) {
  std::istringstream page(ReadFile(KESTRIN_SOURCE_DIR "/docs/file-format.md"));
  std::string bytes;
  int fences = 0;
  for (std::string line; std::getline(page, line);) {
    if (line.starts_with("```")) ++fences;
    if (fences % 2 == 0 || line.starts_with("```") || line.starts_with(' ')) continue;
    EXPECT_EQ(std::stoul(line.substr(0, 4), nullptr, 16), bytes.size()) << line;
    std::string hex = line.substr(6, 47);
    hex.resize(std::min(hex.size(), hex.find("  ")));
    std::erase(hex, ' ');
    bytes += FromHex(hex);
  }
  EXPECT_EQ(fences, 2) << "one dump";
  EXPECT_EQ(bytes, ReadFile(TeaFile));
}

TEST_F(SetFilesTest, DamagedFilesAreRefused) {
  ASSERT_GT(Expected["refused"].size(), 20u);
  for (const auto& [name, fault] : Expected["refused"].items())
    ExpectRefusedByAll(DataFolder + name, fault);
}

TEST_F(SetFilesTest, WhatIsNoSetFileIsRefused) {
  fs::create_directory(Path("folder"));
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
  fs::create_symlink("nowhere", Path("dangling"));
  WriteFile(Path("above the limit"), ReadFile(TeaFile));
  fs::resize_file(Path("above the limit"), (size_t{64} << 20) + 2);
  const std::pair<const char*, const char*> rows[] = {{"folder", "Is a directory"},
                                                      {"pipe", "it is not a regular file"},
                                                      {"/dev/zero", "it is not a regular file"},
                                                      {"missing", "No such file"},
                                                      {"dangling", "No such file"},
                                                      {"", "No such file"},
                                                      {"above the limit", "64 MiB"}};
  for (const auto& [file, fault] : rows) ExpectRefusedByAll(file, fault);
}

TEST_F(SetFilesTest, RewriteFollowsLinksAndLeavesTheModeOfAFile) {
  fs::create_directory(Path("elsewhere"));
  WriteFile(Path("elsewhere/set"), "earlier", 0640);
  fs::create_symlink("elsewhere/set", Path("link"));
  for (const std::string& from : {TeaFile, std::string("link")}) {  // the second over itself
    EXPECT_EQ(Run({"rewrite", from, "link"}).status, 0);
    EXPECT_TRUE(fs::is_symlink(Path("link")));
    EXPECT_EQ(ReadFile(Path("elsewhere/set")), ReadFile(TeaFile));
    EXPECT_EQ(fs::status(Path("elsewhere/set")).permissions(), fs::perms{0640});
  }
}

TEST_F(SetFilesTest, WhatCannotBeWrittenIsNamed) {
  fs::create_directory(Path("folder"));
  WriteFile(Path("file"), "");
  const std::pair<const char*, const char*> rows[] = {{"no/such/folder", "No such file"},
                                                      {"folder", "it is a folder"},
                                                      {"/dev/full", "it is not a regular file"},
                                                      {"file/x", "Not a directory"}};
  for (const auto& [out, fault] : rows) ExpectRefused({"rewrite", TeaFile, out}, out, fault);
}

}  // namespace
}  // namespace kestrin
