#include "kestrin/EndianIndependentFile.h"

#include <gtest/gtest.h>

#include "harness/MemoryFileDoor.h"
#include "support/MemoryFile.h"
#include "support/Opened.h"

namespace kestrin {
namespace {

using namespace std::string_literals;

const std::string path = "/d/file";

struct EndianIndependentFileTest : testing::Test {
  MemoryFileDoor disk;
  EndianIndependentFileTest() { disk.PutFolder("/d"); }
  Opened<EndianIndependentFile> Open(uint32 mode, int32 bufferSize = 1024) {
    return Opened<EndianIndependentFile>(disk, path, mode, bufferSize);
  }
};

TEST_F(EndianIndependentFileTest, KeepsTheOrderThatTheMarkerNames) {
  const struct {
    std::string marker, two, four, eight;
  } orders[] = {{"\x00"s, "\x02\x01", "\x04\x03\x02\x01", "\x08\x07\x06\x05\x04\x03\x02\x01"},
                {"\x01", "\x01\x02", "\x01\x02\x03\x04", "\x01\x02\x03\x04\x05\x06\x07\x08"}};
  for (const auto& order : orders)
    for (const int32 bufferSize : {1, 3, 1024}) {
      disk.Put(path, order.marker);
      uint16_t two = 0x0102, twoBack = 0;
      uint64 eight = 0x0102030405060708, eightBack = 0;
      std::vector<uint32> many(300, 0x01020304), manyBack(300);
      auto file = Open(OpenReadWrite, bufferSize);
      EXPECT_EQ(file.WriteNumber(&two, 2, 1), 1);
      EXPECT_EQ(file.WriteNumber(&eight, 3, 1), 0);
      EXPECT_EQ(file.WriteNumber(&eight, 4, -1), 0);
      EXPECT_EQ(file.WriteNumber(&eight, 8, 1), 1);
      EXPECT_EQ(file.WriteNumber(many.data(), 4, 300), 300);
      EXPECT_EQ(eight, 0x0102030405060708u) << "what is written stays as it was";
      EXPECT_EQ(file.FlushBuffer(), StatusOk);
      std::string expected = order.marker + order.two + order.eight;
      for (int i = 0; i < 300; ++i) expected += order.four;
      ASSERT_EQ(disk.Bytes(path), expected);

      file.Seek(0, SEEK_SET);
      EXPECT_EQ(file.ReadNumber(&twoBack, 2, 1), 1);
      EXPECT_EQ(file.ReadNumber(&eightBack, 5, 1), 0);
      EXPECT_EQ(file.ReadNumber(&eightBack, 8, 1), 1);
      EXPECT_EQ(file.ReadNumber(manyBack.data(), 4, 301), 300);
      EXPECT_TRUE(twoBack == two && eightBack == eight && manyBack == many);
    }
}

TEST_F(EndianIndependentFileTest, TakesTheMarkerOrGivesOne) {
  const std::tuple<std::string, uint32, status_t, std::string> cases[] = {
      {"", OpenReadOnly, StatusFileError, ""},
      {"", OpenReadWrite, StatusOk, "\0"s},
      {"\1ab", OpenReadWrite, StatusOk, "\1ab"},
      {"\1ab", OpenReadWrite | OpenErase, StatusOk, "\0"s},
      {"\1ab", OpenWriteOnly, StatusOk, "\0ab"s},
      // Opened at the end, the size is reported; write-only, the marker cannot be read first.
      {"\1ab", OpenReadWrite | OpenAtEnd, 3, "\1ab"},
      {"\1ab", OpenWriteOnly | OpenAtEnd, 3, "\0ab"s}};
  for (const auto& [before, mode, status, after] : cases) {
    disk.Put(path, before);
    auto file = Open(mode);
    EXPECT_EQ(file.InitCheck(), status) << before << " " << mode;
    file.FlushBuffer();
    EXPECT_EQ(disk.Bytes(path), after) << before << " " << mode;
  }
  disk.Put(path, "\x07\0\0\0\1"s);
  auto strange = Open(OpenReadOnly);
  int32 number = 0;
  EXPECT_FALSE(strange.IsNativeEndian());
  EXPECT_EQ(strange.ReadNumber(&number, 4, 1), 1);
  EXPECT_EQ(number, 1);
}

TEST_F(EndianIndependentFileTest, ReadsStringsUpToTheirNulAndNoFurtherThanAllowed) {
  const std::string thirty(30, 'x'), fits(29, 'x');
  const std::tuple<std::string, int32, status_t, std::string, std::string> cases[] = {
      {"\0rest"s, 30, StatusOk, "", "rest"},
      {thirty + "rest", 30, StatusError, fits, "rest"},
      {fits + "\0rest"s, 30, StatusOk, fits, "rest"},
      {"cut", 30, StatusFileError, "cut", ""},
      {"ab", 1, StatusError, "", "b"}};
  for (const auto& [bytes, max, status, expected, after] : cases)
    for (const int32 bufferSize : {1, 5, 31}) {
      SCOPED_TRACE(testing::Message() << testing::PrintToString(bytes) << " " << bufferSize);
      disk.Put(path, "\0"s + bytes);
      auto file = Open(OpenReadOnly, bufferSize);
      std::string text(31, '#'), rest(31, '#');
      EXPECT_EQ(file.ReadString(text.data(), max), status);
      EXPECT_STREQ(text.c_str(), expected.c_str());
      EXPECT_EQ(text.back(), '#');
      rest.resize(static_cast<size_t>(file.ReadRaw(rest.data(), 31)));
      EXPECT_EQ(rest, after);
    }
}

TEST_F(EndianIndependentFileTest, HidesTheMarkerInPositionsAndSizes) {
  auto file = Open(OpenReadWrite | OpenCreate, 16);
  EXPECT_EQ(file.WriteString(nullptr), StatusOk);
  EXPECT_EQ(file.WriteString("abc"), StatusOk);
  EXPECT_EQ(file.WriteRaw("\1\2", 2), 2);
  EXPECT_EQ(file.Seek(0, SEEK_SET), 0);
  EXPECT_EQ(file.Position(), 1);
  EXPECT_EQ(file.BytesLeft(), 7);
  char byte = 0;
  EXPECT_EQ(file.ReadAt(1, &byte, 1), 1);
  EXPECT_EQ(byte, 'a');
  EXPECT_EQ(file.WriteAt(2, "B", 1), 1);
  EXPECT_EQ(file.SetSize(4), StatusOk);
  EXPECT_EQ(disk.Bytes(path), "\0\0aBc"s);
  // The one byte is added whatever the seek counts from.
  EXPECT_EQ(file.Seek(-2, SEEK_END), 3);
  EXPECT_EQ(file.Seek(-1, SEEK_CUR), 3);
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
  EXPECT_EQ(file.SetSize(4), StatusOk);
  EXPECT_EQ(file.Seek(-1, SEEK_SET), -EINVAL);
  EXPECT_EQ(file.Seek(INT64_MAX, SEEK_SET), INT64_MAX);
  EXPECT_EQ(file.Seek(1, SEEK_CUR), -EINVAL);
  EXPECT_EQ(file.Read(&byte, 1), 0);
  EXPECT_EQ(file.Write(&byte, 1), -EFBIG);
  EXPECT_EQ(file.Size(), 4);
  Opened<EndianIndependentFile> pathless(std::make_unique<MemoryFile>(), OpenReadWrite | OpenErase,
                                         16);
  EXPECT_EQ(pathless.SetTo("/any/path", OpenReadOnly), StatusFileError) << "there is no door";
}

}  // namespace
}  // namespace kestrin
