#include "support/FileDoor.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "harness/FailingFileDoor.h"
#include "harness/MemoryFileDoor.h"
#include "kestrin/EndianIndependentFile.h"
#include "support/Opened.h"
#include "support/WholeFile.h"

namespace kestrin {
namespace {

using Names = std::vector<std::string>;

// The system's door and its twin in memory must agree, or the tests of all others prove nothing.
class EveryFileDoor : public testing::TestWithParam<bool> {
 protected:
  EveryFileDoor() {
    std::string name = testing::TempDir() + "kestrin-XXXXXX";
    top = std::filesystem::canonical(mkdtemp(name.data()));
    door.MakeFolders(top);
  }
  ~EveryFileDoor() override { std::filesystem::remove_all(top); }

  void Link(const std::string& leaf, const std::string& target) {
    if (GetParam())
      static_cast<MemoryFileDoor&>(door).Links[top + "/" + leaf] = target;
    else
      std::filesystem::create_symlink(target, top + "/" + leaf);
  }
  status_t Try(const std::string& leaf, uint32 mode) {
    status_t status = 1;
    const auto file = door.Open(top + "/" + leaf, mode, status);
    EXPECT_EQ(file != nullptr, status == StatusOk);
    return status;
  }

  SystemFileDoor systemDoor;
  MemoryFileDoor memoryDoor;
  FileDoor& door = GetParam() ? static_cast<FileDoor&>(memoryDoor) : systemDoor;
  std::string top;
};

INSTANTIATE_TEST_SUITE_P(Doors, EveryFileDoor, testing::Bool(),
                         [](const auto& each) { return each.param ? "Memory" : "System"; });

TEST_P(EveryFileDoor, OpensAsTheModeSays) {
  EXPECT_EQ(Try("file", OpenReadWrite), -ENOENT);
  EXPECT_EQ(Try("no/file", OpenWriteOnly | OpenCreate), -ENOENT);
  EXPECT_EQ(Try("file", OpenWriteOnly | OpenExclusive), StatusOk);
  EXPECT_EQ(Try("file", OpenWriteOnly | OpenExclusive), -EEXIST);
  EXPECT_EQ(Try("", OpenReadOnly), -EISDIR);
  EXPECT_EQ(Try(std::string(256, 'x'), OpenWriteOnly | OpenCreate), -ENAMETOOLONG);
  status_t status = 1;
  EXPECT_EQ(WriteWholeFile(door, top + "/file", "12345"), StatusOk);
  EXPECT_EQ(Try("file", OpenReadOnly | OpenErase), StatusOk);
  const auto file = door.Open(top + "/file", OpenReadWrite | OpenAtEnd, status);
  EXPECT_EQ(file->Write("67", 2), 2);
  EXPECT_EQ(file->WriteAt(0, "A", 1), 1);
  EXPECT_EQ(file->Seek(-3, SEEK_CUR), 4);
  EXPECT_EQ(file->SetSize(6), StatusOk);
  EXPECT_EQ(file->Size(), 6);
  char bytes[8];
  EXPECT_EQ(file->Read(bytes, 8), 2);
  EXPECT_EQ(file->ReadAt(9, bytes, 8), 0);
  EXPECT_LT(file->Seek(-1, SEEK_SET), 0);
  EXPECT_EQ(ReadWholeFile(door, top + "/file", status), "A23456");
  EXPECT_EQ(Try("file", OpenWriteOnly | OpenErase), StatusOk);
  EXPECT_EQ(file->Size(), 0);
}

TEST_P(EveryFileDoor, AppendsBehindWhatOthersWroteAndLocksAgainstThem) {
  status_t status = 1;
  const uint32 mode = OpenReadWrite | OpenCreate | OpenAppend;
  const auto one = door.Open(top + "/log", mode, status),
             two = door.Open(top + "/log", mode, status);
  one->Write("1", 1), two->Write("23", 2);
  EXPECT_EQ(one->Write("4", 1), 1);
  EXPECT_EQ(one->Seek(0, SEEK_CUR), 4);
  EXPECT_EQ(ReadWholeFile(door, top + "/log", status), "1234");
  EXPECT_TRUE(one->Stamp()->IsSameFile(*door.Stamp(top + "/log")));
  door.Rename(top + "/log", top + "/old");
  WriteWholeFile(door, top + "/log", "1234");
  EXPECT_FALSE(one->Stamp()->IsSameFile(*door.Stamp(top + "/log")));
  auto lock = door.Lock(top + "/lock", 0);
  EXPECT_NE(lock, nullptr);
  EXPECT_EQ(door.Lock(top + "/lock", 10), nullptr);
  lock.reset();
  EXPECT_NE(door.Lock(top + "/lock", 0), nullptr);
}

TEST_P(EveryFileDoor, FindsTheTruePathOfLinksAndOfWhatIsNotThereYet) {
  door.MakeFolders(top + "/a/b");
  WriteWholeFile(door, top + "/a/b/file", "x");
  Link("link", "a/b");
  Link("chain", "link/file");
  Link("absolute", top + "/a");
  Link("dangling", "a/../new");
  Link("loop", "loop");
  const std::pair<const char*, const char*> cases[] = {
      {"/link/file", "/a/b/file"},  {"/chain", "/a/b/file"},
      {"/absolute/./b/", "/a/b"},   {"/dangling", "/new"},
      {"/link/../none", "/a/none"}, {"//a//b/../b/none", "/a/b/none"},
      {"/no/deep/x", "/no/deep/x"}, {"/loop", "/loop"}};
  for (const auto& [given, canonical] : cases)
    EXPECT_EQ(door.Canonical(top + given), top + canonical) << given;
  EXPECT_EQ(door.Kind(top + "/link"), FileKind::Folder);
  EXPECT_EQ(door.Kind(top + "/chain"), FileKind::Regular);
  EXPECT_EQ(door.Kind(top + "/dangling"), FileKind::Missing);
  EXPECT_EQ(door.List(top + "/link"), Names({"file"}));
  EXPECT_EQ(door.List(top), Names({"a", "absolute", "chain", "dangling", "link", "loop"}));
  EXPECT_EQ(door.List(top + "/none"), std::nullopt);
}

TEST_P(EveryFileDoor, KeepsAttributesAndModeWhenAFileIsReplaced) {
  const std::string path = top + "/file", name = "user.kestrin.test";
  WriteWholeFile(door, path, "one");
  const std::string value("with\0nul", 8);
  const status_t status = door.SetAttribute(path, name, value);
  if (!GetParam()) {
    chmod(path.c_str(), 0640);
    // A file system without attributes says so, and gives none.
    ASSERT_TRUE(status == StatusOk || status == -ENOTSUP);
  }
  WriteWholeFile(door, path, "two");
  EXPECT_EQ(door.GetAttribute(path, name),
            status == StatusOk ? std::optional(value) : std::nullopt);
  EXPECT_EQ(door.RemoveAttribute(path, name), status);
  EXPECT_EQ(door.GetAttribute(path, name), std::nullopt);
  if (GetParam()) return;
  struct stat info = {};
  stat(path.c_str(), &info);
  EXPECT_EQ(info.st_mode & 07777, 0640u);
  EXPECT_EQ(door.List(top), Names({"file"}));
}

using SystemFiles = EveryFileDoor;
INSTANTIATE_TEST_SUITE_P(System, SystemFiles, testing::Values(false));

TEST_P(SystemFiles, OpensNoPipeAndNoDeviceAndWaitsForNeither) {
  ASSERT_EQ(mkfifo((top + "/pipe").c_str(), 0600), 0);
  EXPECT_EQ(Try("pipe", OpenReadOnly), -EINVAL);
  EXPECT_EQ(Try("pipe", OpenReadWrite), -EINVAL);
  Link("null", "/dev/null");
  EXPECT_EQ(Try("null", OpenReadOnly), -EINVAL);
  EXPECT_EQ(WriteWholeFile(door, top + "/pipe", "x"), -EINVAL);
  EXPECT_EQ(door.Kind(top + "/pipe"), FileKind::Other);
}

TEST_P(SystemFiles, GivesANewFileWhatTheUmaskLeavesAndNoDescriptorToChildren) {
  const mode_t before = umask(0027);
  WriteWholeFile(door, top + "/file", "x");
  for (int again = 0; again < 2; ++again)
    EXPECT_EQ(door.MakeFolders(top + "/deep/er", 0700), StatusOk);
  EXPECT_EQ(door.MakeFolders(top + "/file/er", 0700), -ENOTDIR);
  umask(before);
  struct stat info = {};
  stat((top + "/file").c_str(), &info);
  EXPECT_EQ(info.st_mode & 07777, 0640u);
  stat((top + "/deep").c_str(), &info);
  EXPECT_EQ(info.st_mode & 07777, 0700u);
  const int next = dup(0);
  close(next);
  status_t status = 1;
  const auto file = door.Open(top + "/file", OpenReadOnly, status);
  EXPECT_EQ(fcntl(next, F_GETFD), FD_CLOEXEC);
}

TEST_P(SystemFiles, AnEndlesslyDeepMissingPathIsAnswered) {
  std::string deep = top;
  for (int i = 0; i < 50000; ++i) deep += "/x";
  EXPECT_EQ(door.Canonical(deep), deep);
  EXPECT_EQ(door.Canonical(""), "");
}

const std::string path = "/home/set";

// As a set is saved: through a small buffer, so that there is more than one write to fail.
status_t Save(FileDoor& door, const std::string& text) {
  return ReplaceFile(door, path, [&](const std::string& temporary) {
    Opened<EndianIndependentFile> file(door, temporary, OpenWriteOnly, 8);
    return file.InitCheck() == StatusOk && file.WriteString(text.c_str()) == StatusOk &&
           file.FlushBuffer() == StatusOk && file.Sync() == StatusOk;
  });
}

const std::string newText = "a text of more than one buffer";
const std::string newBytes = std::string(1, '\0') + newText + '\0';

TEST(ReplaceFile, WhateverCallFailsTheEarlierOrTheNewFileIsWholeAndNothingElseLeft) {
  for (const bool shortWrite : {false, true}) {
    int n = 1;
    for (;; ++n) {
      MemoryFileDoor disk;
      disk.Put(path, "earlier");
      FailingFileDoor door(disk, n, -ENOSPC);
      door.ShortWrite = shortWrite;
      const status_t status = Save(door, newText);
      if (!door.HasFailed()) break;
      SCOPED_TRACE(testing::Message() << "call " << n << ": " << door.Failed);
      const bool isTidying = door.Failed == "list" || door.Failed == "stamp";
      const bool isThere = isTidying || door.Failed == "sync folder";
      EXPECT_EQ(status == StatusOk, isTidying) << "what others have left is no part of the save";
      EXPECT_EQ(disk.Bytes(path), isThere ? newBytes : "earlier");
      EXPECT_THAT(*disk.List("/home"), testing::ElementsAre("set"));
    }
    EXPECT_GT(n, 10);
  }
}

TEST(ReplaceFile, APowerCutAtAnyCallLeavesTheEarlierOrTheNewFileWhole) {
  for (const auto& [namesKept, whole] :
       {std::pair(false, false), {false, true}, {true, false}, {true, true}})
    for (int n = 1;; ++n) {
      MemoryFileDoor disk;
      disk.Put(path, "earlier");
      FailingFileDoor door(disk, n);
      door.FailFromThen = true;
      const status_t status = whole ? WriteWholeFile(door, path, newBytes) : Save(door, newText);
      disk.CutPower(namesKept);
      if (!door.HasFailed()) {
        EXPECT_EQ(status, StatusOk);
        EXPECT_EQ(disk.Bytes(path), newBytes);
        break;
      }
      EXPECT_THAT(*disk.Bytes(path), testing::AnyOf("earlier", newBytes)) << n;
    }
}

TEST_P(EveryFileDoor, AFileBesideAnotherIsAsPrivateAndWhatWasAbandonedGoes) {
  const std::string of = top + "/of", beside = top + "/beside", name = "user.kestrin.test";
  WriteWholeFile(door, of, "1");
  const bool hasAttributes = door.SetAttribute(of, name, "mine") == StatusOk;
  if (!GetParam()) chmod(of.c_str(), 0600);
  const auto write = [](const std::string&) { return true; };
  EXPECT_EQ(ReplaceFile(door, beside, write, of), StatusOk);
  EXPECT_EQ(door.GetAttribute(beside, name).has_value(), hasAttributes);
  if (GetParam()) return;
  struct stat info = {};
  EXPECT_EQ(stat(beside.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0600u);
  EXPECT_EQ(ReplaceFile(door, top + "/orphan", write, top + "/gone"), StatusOk);
  EXPECT_EQ(stat((top + "/orphan").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, 0600u) << "nobody knows how private it was";

  const std::string random = ".0123456789abcdef.new";
  for (const char* leaf : {".old", ".young", ".mine", "plain"})
    WriteWholeFile(door, top + "/" + leaf + (leaf == std::string(".mine") ? ".new" : random), "");
  const timespec yesterday[2] = {{0, 0}, {time(nullptr) - 25 * 3600, 0}};
  for (const char* leaf : {".old.0123456789abcdef.new", ".mine.new", "plain.0123456789abcdef.new"})
    EXPECT_EQ(utimensat(AT_FDCWD, (top + "/" + leaf).c_str(), yesterday, 0), 0);
  const timespec today[2] = {{0, 0}, {time(nullptr) - 23 * 3600, 0}};
  EXPECT_EQ(utimensat(AT_FDCWD, (top + "/.young" + random).c_str(), today, 0), 0);
  WriteWholeFile(door, of, "2");
  EXPECT_EQ(door.List(top),
            Names({".mine.new", ".young" + random, "beside", "of", "orphan", "plain" + random}));
}

TEST(WholeFile, ReadsNoMoreThanTheLimit) {
  MemoryFileDoor disk;
  disk.Put(path, std::string(1000, 'x'));
  status_t status = 1;
  EXPECT_EQ(ReadWholeFile(disk, path, status, 1000), std::string(1000, 'x'));
  EXPECT_EQ(status, StatusOk);
  EXPECT_EQ(ReadWholeFile(disk, path, status, 999), std::nullopt);
  EXPECT_EQ(status, -EFBIG);
  EXPECT_EQ(ReadWholeFile(disk, "/home/missing", status), std::nullopt);
  EXPECT_EQ(status, -ENOENT);
}

}  // namespace
}  // namespace kestrin
