#include "support/MemoryFile.h"

#include <errno.h>
#include <gtest/gtest.h>
#include <stdio.h>

#include "kestrin/EndianIndependentFile.h"

namespace kestrin {
namespace {

TEST(MemoryFile, IsAFileWithoutAPath) {
  EndianIndependentFile file(std::make_unique<MemoryFile>(), OpenReadWrite | OpenErase, 16);
  ASSERT_EQ(file.InitCheck(), StatusOk);
  const std::string text(100, 'x');
  uint32 number = 7;
  EXPECT_EQ(file.WriteNumber(&number, 4, 1), 1);
  EXPECT_EQ(file.WriteRaw(text.data(), text.size()), 100);
  EXPECT_EQ(file.Seek(0, SEEK_SET), 0);
  EXPECT_EQ(file.BytesLeft(), 104);
  EXPECT_EQ(file.ReadNumber(&(number = 0), 4, 1), 1);
  EXPECT_EQ(number, 7u);
  std::string read(200, '\0');
  EXPECT_EQ(file.ReadRaw(read.data(), 200), 100);
  EXPECT_EQ(read.substr(0, 100), text);
  EXPECT_EQ(file.SetSize(4), StatusOk);
  EXPECT_EQ(file.Seek(4, SEEK_SET), 4);
  EXPECT_EQ(file.BytesLeft(), 0);
  EXPECT_EQ(file.SetTo("/any/path", OpenReadOnly), StatusFileError) << "there is no door";
}

TEST(MemoryFile, PlacesAndSizesOutOfReachAreRefused) {
  MemoryFile file;
  char byte = 'a';
  EXPECT_EQ(file.WriteAt(3, &byte, 1), 1);
  EXPECT_EQ(file.Size(), 4) << "a gap is filled";
  EXPECT_EQ(file.ReadAt(0, &byte, 1), 1);
  EXPECT_EQ(byte, '\0');
  EXPECT_EQ(file.ReadAt(INT64_MAX, &byte, 1), 0);
  EXPECT_EQ(file.ReadAt(-1, &byte, 1), -EINVAL);
  EXPECT_EQ(file.WriteAt(MemoryFile::LargestSize, &byte, 1), -EFBIG);
  EXPECT_EQ(file.WriteAt(1, &byte, SIZE_MAX), -EFBIG);
  EXPECT_EQ(file.SetSize(MemoryFile::LargestSize + 1), -EFBIG);
  EXPECT_EQ(file.Seek(-1, SEEK_SET), -EINVAL);
  EXPECT_EQ(file.Seek(INT64_MAX, SEEK_SET), INT64_MAX);
  EXPECT_EQ(file.Seek(1, SEEK_CUR), -EINVAL);
  EXPECT_EQ(file.Read(&byte, 1), 0);
  EXPECT_EQ(file.Write(&byte, 1), -EFBIG);
  EXPECT_EQ(file.Size(), 4);
}

}  // namespace
}  // namespace kestrin
