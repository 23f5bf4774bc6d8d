#include "handlers/PayloadBytes.h"

#include <algorithm>
#include <array>
#include <limits>

#include "support/OwnedText.h"

namespace kestrin {

namespace {

bool Pass(EndianIndependentFile& file, uint32 count) {
  if (count < file.Ready().size()) {
    file.TakeReady(count);
    return true;
  }
  if (count > file.BytesLeft()) return false;
  std::array<char, 1024> passed{};
  for (size_t left = count; left > 0;) {
    const size_t some = std::min(left, passed.size());
    if (file.ReadRaw(passed.data(), some) != static_cast<int32>(some)) return false;
    left -= some;
  }
  return true;
}

}  // namespace

bool ReadCount(EndianIndependentFile& file, uint32& count) {
  return file.ReadNumber(&count, 4, 1) == 1;
}

bool WriteCount(EndianIndependentFile& file, size_t count) {
  uint32 number = static_cast<uint32>(count);
  return file.WriteNumber(&number, 4, 1) == 1;
}

bool ReadBytes(EndianIndependentFile& file, uint32 count, std::string& bytes) {
  if (count == 0) return true;
  if (count > std::numeric_limits<int32>::max() || count > file.BytesLeft()) return false;
  bytes.resize(count);
  return file.ReadRaw(bytes.data(), count) == static_cast<int32>(count);
}

bool WriteBytes(EndianIndependentFile& file, const std::string& bytes) {
  return bytes.empty() ||
         file.WriteRaw(bytes.data(), bytes.size()) == static_cast<int32>(bytes.size());
}

bool PassBytes(EndianIndependentFile& file) {
  uint32 count = 0;
  return ReadCount(file, count) && Pass(file, count);
}

void PayloadText::Set(const char* text) {
  Bytes = FitText(text ? text : "");
  if (!Bytes.empty()) Bytes.push_back('\0');
}

bool FlaggedText::Read(EndianIndependentFile& file) {
  uint32 count = 0;
  uint8 flag = 0;
  if (!ReadCount(file, count) || file.ReadNumber(&flag, 1, 1) != 1) return false;
  Flag = flag != 0;
  CountsBareFlag = count == 1;
  return count < 2 || ReadBytes(file, count - 1, Text.Bytes);
}

bool FlaggedText::Pass(EndianIndependentFile& file) {
  uint32 count = 0;
  return ReadCount(file, count) && kestrin::Pass(file, std::max(count, uint32{1}));
}

bool FlaggedText::Write(EndianIndependentFile& file) const {
  const size_t count = Text.Bytes.empty() ? (CountsBareFlag ? 1 : 0) : Text.Bytes.size() + 1;
  uint8 flag = Flag ? 1 : 0;
  return WriteCount(file, count) && file.WriteNumber(&flag, 1, 1) == 1 &&
         WriteBytes(file, Text.Bytes);
}

void FlaggedText::SetText(const char* text) {
  Text.Set(text);
  CountsBareFlag = false;
}

}  // namespace kestrin
