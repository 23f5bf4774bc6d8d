#include "kestrin/BufferedFile.h"

#include <gtest/gtest.h>

#include <random>

#include "harness/FailingFileDoor.h"
#include "harness/MemoryFileDoor.h"
#include "support/Opened.h"

namespace kestrin {
namespace {

const std::string path = "/d/file";

// Letters, so that a misplaced byte shows.
std::string Letters(size_t count) {
  std::string letters;
  for (size_t i = 0; i < count; ++i) letters += static_cast<char>('a' + i % 26);
  return letters;
}

TEST(BufferedFile, AnyMixOfOperationsActsAsOnThePlainBytes) {
  std::mt19937 random(20261115);
  for (const int32 bufferSize : {1, 2, 3, 7, 16, 64}) {
    MemoryFileDoor disk;
    std::string model = Letters(100);
    disk.Put(path, model);
    Opened<BufferedFile> file(disk, path, OpenReadWrite, bufferSize);
    size_t position = 0;
    for (int step = 0; step < 4000; ++step) {
      SCOPED_TRACE(testing::Message() << "buffer " << bufferSize << " step " << step);
      const size_t count = random() % 40;
      const size_t left = model.size() > position ? model.size() - position : 0;
      std::string got(count, '\0');
      size_t expected = std::min(count, left);
      const size_t choice = random() % 6;
      if (choice < 2) {
        got.resize(static_cast<size_t>(file.BufferedRead(got.data(), count)));
        ASSERT_EQ(got, model.substr(std::min(position, model.size()), expected));
        position += expected;
      } else if (choice == 2) {
        const std::string text(count, static_cast<char>('A' + step % 26));
        ASSERT_EQ(file.BufferedWrite(text.data(), count), static_cast<int32>(count));
        model.replace(position, std::min(count, left), text);
        position += count;
      } else if (choice == 3) {
        expected = std::min(expected, static_cast<size_t>(bufferSize) - 1);
        if (count > static_cast<size_t>(bufferSize)) expected = 0;
        got.resize(static_cast<size_t>(file.BufferedPreview(got.data(), count)));
        ASSERT_EQ(got, model.substr(std::min(position, model.size()), expected));
      } else if (choice == 4) {
        position = random() % (model.size() + 1);
        const auto target = static_cast<int64>(position);
        ASSERT_EQ(file.Seek(target, SEEK_SET), target);
      } else {
        ASSERT_EQ(file.Position(), static_cast<int64>(position));
        ASSERT_EQ(file.BytesLeft(), static_cast<int64>(left));
      }
    }
    ASSERT_EQ(file.FlushBuffer(), StatusOk);
    EXPECT_EQ(disk.Bytes(path), model);
  }
}

TEST(BufferedFile, ReadsLinesOfEveryEnding) {
  using namespace std::string_literals;
  const std::tuple<std::string, size_t, const char*, int32, std::string> cases[] = {
      {"ab\r\ncd", 20, "ab", 4, "cd"},
      {"ab\rcd", 20, "ab", 3, "cd"},
      {"ab\0cd"s, 20, "ab", 3, "cd"},
      {"ab\n", 20, "ab", 3, ""},
      {"abcd", 3, "ab", 2, "cd"},
      {"ab", 1, "", 0, "ab"},
      {"", 20, "", 0, ""}};
  for (const auto& [bytes, max, expected, consumed, after] : cases)
    for (const int32 bufferSize : {2, 3, 4, 64}) {
      SCOPED_TRACE(testing::Message() << testing::PrintToString(bytes) << " " << bufferSize);
      MemoryFileDoor disk;
      disk.Put(path, bytes);
      Opened<BufferedFile> file(disk, path, OpenReadOnly, bufferSize);
      std::string line(20, '#'), rest(20, '#');
      EXPECT_EQ(file.BufferedReadLine(line.data(), max), consumed);
      EXPECT_STREQ(line.c_str(), expected);
      rest.resize(static_cast<size_t>(file.BufferedRead(rest.data(), 20)));
      EXPECT_EQ(rest, after);
    }
}

TEST(BufferedFile, AnswersNothingWhereTheModeForbidsItOrNoFileIsOpen) {
  MemoryFileDoor disk;
  disk.Put(path, "abc");
  char byte = 0;
  Opened<BufferedFile> reader(disk, path, OpenReadOnly, 8), writer(disk, path, OpenWriteOnly, 8);
  Opened<BufferedFile> missing(disk, "/d", "missing", OpenReadWrite, 8);
  EXPECT_EQ(missing.InitCheck(), -ENOENT);
  EXPECT_LT(missing.Seek(0, SEEK_SET), 0);
  EXPECT_EQ(reader.BufferedWrite("x", 1) + missing.BufferedWrite("x", 1), 0);
  EXPECT_EQ(writer.BufferedRead(&byte, 1) + missing.BufferedRead(&byte, 1), 0);
  EXPECT_EQ(writer.BufferedPreview(&byte, 1), 0);
  EXPECT_EQ(missing.SetTo("/d", "file", OpenReadOnly), StatusOk);
  EXPECT_EQ(missing.BufferedRead(&byte, 1), 1);
}

TEST(BufferedFile, PlainOperationsSeeWhatIsPendingAndFailWhenThatCannotBeWritten) {
  MemoryFileDoor disk;
  disk.Put(path, Letters(20));
  FailingFileDoor door(disk);
  Opened<BufferedFile> file(door, path, OpenReadWrite, 16);
  char bytes[4];
  file.BufferedRead(bytes, 2);
  EXPECT_EQ(file.Read(bytes, 1), 1);
  EXPECT_EQ(bytes[0], 'c');
  file.BufferedWrite("XY", 2);
  EXPECT_EQ(file.ReadAt(2, bytes, 4), 4);
  EXPECT_EQ(std::string(bytes, 4), "cXYf");
  file.BufferedWrite("Z", 1);
  door.FailAt = door.Count + 1;
  door.FailFromThen = true;
  EXPECT_EQ(file.Seek(3, SEEK_SET), 0);
  EXPECT_EQ(file.Write("x", 1), 0);
  EXPECT_EQ(file.WriteFailure(), door.Error);
  EXPECT_EQ(file.SetSize(1), StatusFileError);
  EXPECT_EQ(file.SetTo(path, OpenReadOnly), StatusFileError);
  door.FailAt = 0;
  EXPECT_EQ(file.SetTo("/d/other", OpenWriteOnly | OpenCreate), StatusOk);
  EXPECT_EQ(disk.Bytes(path)->substr(0, 7), "abcXYZg");
}

}  // namespace
}  // namespace kestrin
