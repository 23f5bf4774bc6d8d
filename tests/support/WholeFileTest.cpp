#include "support/WholeFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fakes/FailingFileDoor.h"
#include "fakes/MemoryFileDoor.h"
#include "kestrin/EndianIndependentFile.h"

namespace kestrin {
namespace {

using testing::ElementsAre;
using testing::StartsWith;

const std::string path = "/home/set";

// As a set is saved: through a small buffer, so that there is more than one write to fail.
status_t Save(FileDoor& door, const std::string& text) {
  return ReplaceFile(door, path, [&](const std::string& temporary) {
    EndianIndependentFile file(door, temporary, OpenWriteOnly, 8);
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
      EXPECT_NE(status, StatusOk);
      EXPECT_EQ(disk.Bytes(path), door.Failed == "sync folder" ? newBytes : "earlier");
      EXPECT_THAT(*disk.List("/home"), ElementsAre("set"));
    }
    EXPECT_GT(n, 10);
  }
}

TEST(ReplaceFile, APowerCutAtAnyCallLeavesTheEarlierOrTheNewFileWhole) {
  for (const bool namesKept : {false, true})
    for (int n = 1;; ++n) {
      MemoryFileDoor disk;
      disk.Put(path, "earlier");
      FailingFileDoor door(disk, n);
      door.FailFromThen = true;
      const status_t status = Save(door, newText);
      disk.CutPower(namesKept);
      if (!door.HasFailed()) {
        EXPECT_EQ(status, StatusOk);
        EXPECT_EQ(disk.Bytes(path), newBytes);
        break;
      }
      EXPECT_THAT(*disk.Bytes(path), testing::AnyOf("earlier", newBytes)) << n;
    }
}

TEST(ReplaceFile, ALongNameStillHasRoomForATemporaryOne) {
  MemoryFileDoor disk;
  std::string name = "/home/";
  while (name.size() < 6 + 254) name += "\xC3\xA9";
  disk.Put(name, "earlier");
  std::string beside;
  EXPECT_EQ(ReplaceFile(disk, name,
                        [&](const std::string& temporary) {
                          beside = temporary;
                          return true;
                        }),
            StatusOk);
  EXPECT_THAT(beside, StartsWith("/home/.\xC3\xA9\xC3\xA9"));
  EXPECT_LE(beside.size(), 6u + 255);
  EXPECT_EQ(disk.Bytes(name), "");
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
