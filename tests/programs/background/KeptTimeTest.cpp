#include "programs/background/KeptTime.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <filesystem>

#include "harness/bus/PrivateBus.h"

namespace kestrin {
namespace {

namespace fs = std::filesystem;

TEST(KeptTimeText, OnlyWhatIsWrittenIsRead) {
  for (const int32 when : {0, 1, 1893456000, INT32_MAX, -1, INT32_MIN}) {
    const KeptTimeText text = FormatKeptTime(when);
    EXPECT_EQ(std::string_view(text.bytes, text.length), std::to_string(when) + "\n");
    EXPECT_EQ(ParseKeptTime({text.bytes, text.length}), when);
  }
  for (const char* damaged :
       {"", "\n", "-0\n", "00\n", "12", "12\n\n", "12\n13\n", " 12\n", "+12\n", "012\n", "12x\n",
        "1e3\n", "2147483648\n", "-2147483649\n", "12\r\n"})
    EXPECT_FALSE(ParseKeptTime(damaged)) << '"' << damaged << '"';
  EXPECT_FALSE(ParseKeptTime({"12\0\n", 4}));
}

TEST(KeptTimeFile, IsReplacedAsAWholeAndPrivate) {
  TemporaryFolder folder;
  KeptTimeFile kept;
  ASSERT_EQ(kept.Open(folder.path.c_str()), StatusOk);
  const std::string file = folder.path + "/kestrin/next-event";
  EXPECT_EQ(fs::status(folder.path + "/kestrin").permissions(), fs::perms::owner_all);

  int32 when = 7;
  EXPECT_EQ(kept.Read(when), -ENOENT);
  EXPECT_EQ(when, 7);

  WriteFile(file + ".new", "left over from a crash");
  ASSERT_EQ(kept.Write(1000), StatusOk);
  fs::create_hard_link(file, folder.path + "/seen");
  ASSERT_EQ(kept.Write(2000), StatusOk);
  EXPECT_EQ(ReadFile(folder.path + "/seen"), "1000\n") << "was written over, not replaced";
  EXPECT_EQ(ReadFile(file), "2000\n");
  EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
  EXPECT_EQ(kept.Read(when), StatusOk);
  EXPECT_EQ(when, 2000);

  for (const int32 unchanged : {2000, 0}) {
    ASSERT_EQ(kept.Write(unchanged), StatusOk);
    fs::remove(folder.path + "/seen");
    fs::create_hard_link(file, folder.path + "/seen");
    EXPECT_EQ(kept.Write(unchanged), StatusOk);
    EXPECT_TRUE(fs::equivalent(file, folder.path + "/seen")) << "was written again";
  }
  EXPECT_EQ(ReadFile(file), "0\n");
  fs::create_directory(file + ".new");
  WriteFile(file + ".new/in", "the way");
  EXPECT_LT(kept.Write(3000), 0);
  EXPECT_FALSE(fs::exists(file)) << "an old moment would be taken for the last one";
  fs::remove_all(file + ".new");
  EXPECT_EQ(kept.Write(0), StatusOk);
  EXPECT_EQ(ReadFile(file), "0\n");
}

TEST(KeptTimeFile, WhatCannotBeReadIsNamed) {
  TemporaryFolder folder;
  KeptTimeFile kept;
  ASSERT_EQ(kept.Open(folder.path.c_str()), StatusOk);
  const std::string file = folder.path + "/kestrin/next-event";
  int32 when = 0;
  WriteFile(file, std::string(5000, '1'));
  EXPECT_EQ(kept.Read(when), -EBADMSG);
  fs::remove(file);
  fs::create_symlink("/etc/hostname", file);
  EXPECT_EQ(kept.Read(when), -ELOOP);
  EXPECT_EQ(kept.Write(7), StatusOk);
  EXPECT_EQ(kept.Read(when), StatusOk);
  EXPECT_EQ(when, 7);
}

TEST(KeptTimeFile, NeedsAnAbsoluteFolderThatExists) {
  for (const char* folder : {"", "run", "/nonexistent/run"})
    EXPECT_EQ(KeptTimeFile().Open(folder), -ENOENT) << folder;
  KeptTimeFile none;
  EXPECT_EQ(none.Open(nullptr), -ENOENT);
  EXPECT_EQ(none.Write(5), StatusOk);
  TemporaryFolder taken;
  WriteFile(taken.path + "/kestrin", "a file in the way");
  EXPECT_EQ(KeptTimeFile().Open(taken.path.c_str()), -ENOTDIR);
}

}  // namespace
}  // namespace kestrin
