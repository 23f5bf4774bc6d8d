// The counts and bytes of handler payloads.
#pragma once

#include <string>

#include "kestrin/EndianIndependentFile.h"

namespace kestrin {

bool ReadCount(EndianIndependentFile& file, uint32& count);
bool WriteCount(EndianIndependentFile& file, size_t count);

/// False, with nothing allocated, unless the file holds that many bytes more.
bool ReadBytes(EndianIndependentFile& file, uint32 count, std::string& bytes);
bool WriteBytes(EndianIndependentFile& file, const std::string& bytes);
/// Passes over a count and its bytes.
bool PassBytes(EndianIndependentFile& file);

/// A text as payloads hold it: the bytes that were read, or, of a text that was set, the text and
/// its NUL. Saved as it is.
class PayloadText {
 public:
  std::string Bytes;

  /// Cuts to what a text may be; null and the empty text leave no bytes.
  void Set(const char* text);
  /// Up to the first NUL; never null.
  const char* Get() const { return Bytes.c_str(); }
  bool Empty() const { return *Get() == '\0'; }
};

/// A text after a flag, which is there even when the count says that nothing follows.
struct FlaggedText {
  PayloadText Text;
  bool Flag = false;
  bool CountsBareFlag = false;  ///< as read: a count of 1 with no text, instead of 0

  bool Read(EndianIndependentFile& file);
  bool Write(EndianIndependentFile& file) const;
  static bool Pass(EndianIndependentFile& file);
  void SetText(const char* text);
};

}  // namespace kestrin
