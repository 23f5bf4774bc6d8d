// Reading and writing sets, in both byte orders, with handlers that are there and one that is not.
#include "core/EventSetFile.h"

#include <random>

#include "fakes/SetTestBase.h"

namespace kestrin {
namespace {

constexpr const char* Path = "/sets/Work.kestrin";

/// Events and layouts of any values at all.
class AnyValues {
 public:
  explicit AnyValues(unsigned seed) : random_(seed) {}

  template <typename T>
  T Number() {
    const auto bits = static_cast<uint32>(random_());
    return random_() % 4 == 0 ? T(random_() % 5) : static_cast<T>(bits);
  }
  bool Flag() { return random_() % 2 == 0; }
  std::string Text(size_t longest) {
    std::string text(random_() % 3 == 0 ? 0 : random_() % (longest + 1), '\0');
    for (char& c : text) c = static_cast<char>(1 + random_() % 255);
    return text;
  }
  Rect Frame() { return {Float(), Float(), Float(), Float()}; }
  float Float() { return std::bit_cast<float>(Number<uint32>()); }

  EventRecord Record() {
    EventRecord record;
    record.Name = Text(random_() % 9 == 0 ? 4095 : 20);
    record.PrewarnMessage = Text(40);
    record.NagMessage = Text(40);
    record.Comment = Text(4095);
    for (int32* number :
         {&record.NextEventTime, &record.ActualEventTime, &record.Status, &record.PeriodType,
          &record.TimingType, &record.RememberType, &record.EventTime, &record.MultiStartTime,
          &record.TimeToApply, &record.SubIntType, &record.StopTime, &record.PrewarnType,
          &record.PrewarnRepeatType, &record.NagRepeatType, &record.TabShown})
      *number = Number<int32>();
    for (uint32* number :
         {&record.Multiple, &record.PrewarnTime, &record.PrewarnRepeatTime, &record.NagRepeatTime})
      *number = Number<uint32>();
    for (int8* number : {&record.DayOfMonth, &record.WeekOfMonth, &record.DayOfWeek, &record.Month})
      *number = Number<int8>();
    for (bool* flag : {&record.Active, &record.ApplyTime, &record.ApplyStop, &record.ApplyPrewarn,
                       &record.ApplyPrewarnRepeat, &record.ApplyNag, &record.DeliverIfMissed,
                       &record.DeleteOnceDelivered, &record.ShouldWindowOpen})
      *flag = Flag();
    record.IconNumber = Flag() ? -2 : static_cast<int32>(random_() % 20) - 1;
    record.WindowFrame = Frame();
    return record;
  }
  SetLayout Layout() {
    SetLayout layout;
    layout.WindowFrame = Frame();
    for (int32& number : layout.ColumnOrder) number = Number<int32>();
    for (bool& shown : layout.ColumnShown) shown = Flag();
    for (float& width : layout.ColumnWidth) width = Float();
    for (int32& number : layout.SortKeys) number = Number<int32>();
    for (int32& number : layout.SortModes) number = Number<int32>();
    layout.NumberOfKeys = Number<int32>();
    layout.ViewMode = Number<int32>();
    return layout;
  }

 private:
  std::mt19937 random_;
};

class EventSetFileTest : public SetTestBase {
 protected:
  ConstructorResult Result = ConstructorResult::Success;
  bool VersionOK = true;
  SetFileReport Report;

  std::unique_ptr<EventSet> Read(const std::string& path = Path) {
    return std::make_unique<EventSet>(World.Core, path, &Result, &VersionOK, &Report);
  }
  /// What is written into a file that begins with `marker`, and so keeps that byte order.
  std::string Written(EventSet& set, char marker) {
    Disk.Put("/sets/written", std::string(1, marker));
    EndianIndependentFile file(Disk, "/sets/written", OpenReadWrite, 512);
    EXPECT_TRUE(WriteSetFile(set, file));
    return *Disk.Bytes("/sets/written");
  }
  std::unique_ptr<EventSet> AnySet(unsigned seed) {
    AnyValues any(seed);
    auto set = std::make_unique<EventSet>(World.Core, "any");
    for (unsigned i = seed % 4; i > 0; --i) {
      auto event = std::make_unique<Event>(*set, any.Record());
      if (event->Record().IconNumber == -2) {
        auto icon = std::make_unique<IconPair>(IconPair{any.Text(1024), any.Text(256)});
        icon->large.resize(LargeIconBytes);
        icon->mini.resize(MiniIconBytes, '\x7f');
        event->AdoptIcon(std::move(icon));
      }
      auto data = std::make_unique<FakeUnknownData>(event.get());
      data->Bytes = any.Text(300);
      data->SetOriginalHandler(i % 2 ? "Message" : "Not \xff installed");
      event->AdoptAddOnData(UnknownHandler, std::move(data));
      set->AddEvent(std::move(event));
    }
    set->Layout() = any.Layout();
    return set;
  }
};

TEST_F(EventSetFileTest, AnythingAtAllIsReadBackInBothByteOrders) {
  for (unsigned seed = 0; seed < 60; ++seed) {
    const auto set = AnySet(seed);
    const std::string little = Written(*set, 0), big = Written(*set, 1);
    ASSERT_EQ(little.size(), big.size());
    ASSERT_NE(little.substr(1), big.substr(1)) << "the layout alone has numbers of several bytes";
    for (const std::string& bytes : {little, big}) {
      Disk.Put(Path, bytes);
      const auto again = Read();
      ASSERT_EQ(Result, ConstructorResult::Success) << seed << " " << Report.Fault;
      EXPECT_EQ(Report.BigEndian, bytes == big);
      EXPECT_FALSE(again->HasBeenModified());
      EXPECT_TRUE(Written(*again, 0) == little && Written(*again, 1) == big) << seed;
    }
  }
}

TEST_F(EventSetFileTest, AFileCutAnywhereIsDamaged) {
  const std::string whole = Written(*AnySet(3), 1);
  for (size_t length = 0; length < whole.size(); ++length) {
    Disk.Put(Path, whole.substr(0, length));
    Read();
    ASSERT_EQ(Result, ConstructorResult::CouldNotRead) << length << " of " << whole.size();
    ASSERT_FALSE(Report.Fault.empty());
  }
}

TEST_F(EventSetFileTest, AnyOneByteMayBeWrong) {
  const auto set = AnySet(2);
  const std::string whole = Written(*set, 0);
  std::mt19937 random(1);
  for (size_t at = 0; at < whole.size(); ++at) {
    std::string bytes = whole;
    bytes[at] = static_cast<char>(random());
    Disk.Put(Path, bytes);
    const auto read = Read();
    if (Result != ConstructorResult::Success || !VersionOK) {
      EXPECT_FALSE(Report.Fault.empty());
      continue;
    }
    Disk.Put(Path, Written(*read, 0));
    EXPECT_EQ(Written(*Read(), 0), *Disk.Bytes(Path)) << at;
  }
}

TEST_F(EventSetFileTest, AnIconThatIsNotWholeIsLeftOut) {
  const std::string large(LargeIconBytes, 'l'), mini(MiniIconBytes, 'm');
  const struct {
    int32 number;
    IconPair icon;
    int32 saved;
  } rows[] = {{-2, {large, mini}, -2},
              {-2, {large.substr(1), mini}, -1},
              {-2, {large, mini + "m"}, -1},
              {3, {large, mini}, 3}};
  for (const auto& row : rows) {
    EventSet& set = NewSet(Path);
    EventRecord record = DailyAt(Sunday);
    record.IconNumber = row.number;
    Add(set, record).AdoptIcon(std::make_unique<IconPair>(row.icon));
    ASSERT_TRUE(set.SaveData());
    OpenSets::Sets.clear();
    const auto again = Read();
    ASSERT_EQ(Result, ConstructorResult::Success) << Report.Fault;
    EXPECT_EQ(again->Events()[0]->Record().IconNumber, row.saved);
    EXPECT_EQ(again->Events()[0]->GetOwnIcon() != nullptr, row.saved == -2);
  }
}

}  // namespace
}  // namespace kestrin
