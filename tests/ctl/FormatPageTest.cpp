// The set that docs/file-format.md shows byte by byte is the golden file, and what the code writes.
#include <sstream>

#include "core/EventSet.h"
#include "core/HandlerTable.h"
#include "core/VirtualEngine.h"
#include "ctl/CtlTestBase.h"
#include "handlers/LoadEventHandlers.h"
#include "handlers/MessageDataHandler.h"

namespace kestrin {
namespace {

/// The bytes of the dump, whose every line begins with their place: "0005  01 00 00 00   what".
std::string BytesOnPage() {
  std::istringstream page(BytesOf(KESTRIN_SOURCE_DIR "/docs/file-format.md"));
  std::string line, bytes;
  bool inDump = false;
  int dumps = 0;
  while (std::getline(page, line)) {
    if (line.starts_with("```")) {
      inDump = !inDump;
      dumps += inDump;
      continue;
    }
    if (!inDump || line.starts_with(' ')) continue;
    EXPECT_EQ(std::stoul(line.substr(0, 4), nullptr, 16), bytes.size()) << line;
    const std::string hex = line.substr(6, 47);
    for (size_t at = 0; at < hex.size() && hex[at] != ' '; at += 3)
      bytes += static_cast<char>(std::stoi(hex.substr(at, 2), nullptr, 16));
  }
  EXPECT_EQ(dumps, 1);
  return bytes;
}

EventRecord Tea() {
  EventRecord record;
  record.Name = "Tea";
  record.PeriodType = Daily;
  record.EventTime = record.MultiStartTime = 1794700800;
  record.NextEventTime = record.ActualEventTime = record.EventTime + 57600;
  record.DayOfMonth = 15;
  record.WeekOfMonth = 2;
  record.DayOfWeek = 0;
  record.Month = 10;
  record.ApplyTime = true;
  record.TimeToApply = 57600;
  record.TabShown = 1;
  record.ShouldWindowOpen = false;
  record.WindowFrame = {100, 120, 480, 400};
  return record;
}

TEST_F(CtlTest, TheDumpOnThePageIsTheFileAndWhatIsWritten) {
  const std::string golden = BytesOf(DataFolder + "golden/tea.kestrin");
  EXPECT_EQ(BytesOnPage(), golden);

  VirtualEngine engine;
  LoadBuiltInHandlers(engine.context);
  EventSet set(engine.context, Path("tea"));
  auto event = std::make_unique<Event>(set, Tea());
  auto message = std::make_unique<MessageDataHandler>(event.get());
  message->SetMessage("Put the kettle on");
  event->AdoptAddOnData(MessageHandler, std::move(message));
  set.AddEvent(std::move(event));
  set.Layout() = {{40, 60, 640, 360},
                  {0, 1, 2, 3, 4, 5},
                  {true, true, true, false, true, true},
                  {35, 190, 150, 150, 60, 115},
                  1,
                  {2, 0, 0, 0, 0},
                  {0, 2, 2, 2, 2},
                  0};
  ASSERT_TRUE(set.SaveData());
  EXPECT_EQ(BytesOf(Path("tea")), golden);
  ResetHandlerTable();
}

}  // namespace
}  // namespace kestrin
