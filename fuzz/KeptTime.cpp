// Any bytes as the deliverer's file: what is read is what would have been written, and the next
// moment can be kept over it.
#include "programs/background/KeptTime.h"

#include "Trial.h"
#include "harness/bus/Processes.h"

namespace kestrin {
namespace {

void TryFile(const std::string& folder, const std::string& bytes) {
  const std::optional<int32> parsed = ParseKeptTime(bytes);
  if (parsed) {
    const KeptTimeText text = FormatKeptTime(*parsed);
    Demand(std::string_view(text.bytes, text.length) == bytes, "one text for each moment");
  }
  KeptTimeFile kept;
  Demand(kept.Open(folder.c_str()) == StatusOk, "the folder is there");
  WriteFile(folder + "/kestrin/next-event", bytes);
  int32 when = 7;
  Demand((kept.Read(when) == StatusOk) == parsed.has_value(), "the file is read as its text is");
  Demand(when == parsed.value_or(7), "what cannot be read changes nothing");
  const int32 next = when ^ 1;
  Demand(kept.Write(next) == StatusOk && kept.Read(when) == StatusOk && when == next,
         "whatever stood there, the next moment is kept");
}

}  // namespace

void TryInput(FuzzedDataProvider& in) {
  static const TemporaryFolder folder;
  TryFile(folder.path, in.ConsumeRemainingBytesAsString());
}

}  // namespace kestrin
