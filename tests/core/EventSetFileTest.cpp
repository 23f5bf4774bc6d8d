// Reading and writing sets, in both byte orders, with handlers that are there and one that is not.
#include "core/EventSetFile.h"

#include <random>

#include "fakes/SetTestBase.h"

namespace kestrin {
namespace {

constexpr const char* Path = "/sets/Work.kestrin";

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
  /// A set with an event of its own icon, one of a handler that is not there, and a plain one.
  std::unique_ptr<EventSet> FullSet() {
    auto set = std::make_unique<EventSet>(World.Core, "full");
    EventRecord record = DailyAt(Sunday, "Tea \xff");
    record.Comment = record.NagMessage = record.PrewarnMessage = "Pour it.";
    Add(*set, record);
    record.IconNumber = -2;
    Add(*set, record)
        .AdoptIcon(std::make_unique<IconPair>(
            IconPair{std::string(LargeIconBytes, 'l'), std::string(MiniIconBytes, '\x7f')}));
    Event& foreign = Add(*set, record);
    auto data = std::make_unique<FakeUnknownData>(&foreign);
    data->Bytes = std::string("\0\1\xfe kept", 8);
    data->SetOriginalHandler("Not \xff installed");
    foreign.AdoptAddOnData(UnknownHandler, std::move(data));
    foreign.SetSelectedHandler(UnknownHandler);
    return set;
  }
};

TEST_F(EventSetFileTest, AnyBytesAreRefusedOrReadAndWrittenInBothByteOrders) {
  const auto full = FullSet();
  const std::string orders[] = {Written(*full, 0), Written(*full, 1)};
  std::mt19937 random(1);
  int read = 0;
  for (int i = 0; i < 4000; ++i) {
    std::string bytes = orders[i % 2];
    // The first ones stay as they are; most bytes belong to numbers and may be anything.
    for (int n = std::min(i / 2, 4); n > 0; --n)
      bytes[random() % bytes.size()] = static_cast<char>(random());
    Disk.Put(Path, bytes);
    Report = {};
    const auto set = Read();
    ASSERT_EQ(Report.Fault.empty(), Result == ConstructorResult::Success && VersionOK) << i;
    if (!Report.Fault.empty()) continue;
    ++read;
    EXPECT_FALSE(set->HasBeenModified());
    const std::string little = Written(*set, 0), big = Written(*set, 1);
    ASSERT_TRUE(i > 1 || bytes == (i == 0 ? little : big));
    for (const std::string& written : {little, big}) {
      Disk.Put(Path, written);
      const auto again = Read();
      ASSERT_EQ(Report.BigEndian, written == big);
      ASSERT_TRUE(Written(*again, 0) == little && Written(*again, 1) == big) << i;
    }
  }
  EXPECT_GT(read, 1000);
}

TEST_F(EventSetFileTest, AFileCutAnywhereIsDamaged) {
  const std::string whole = Written(*FullSet(), 1);
  for (size_t length = 0; length < whole.size(); ++length) {
    Disk.Put(Path, whole.substr(0, length));
    Read();
    ASSERT_EQ(Result, ConstructorResult::CouldNotRead) << length << " of " << whole.size();
    ASSERT_FALSE(Report.Fault.empty());
  }
}

TEST_F(EventSetFileTest, AnIconThatIsNotWholeIsLeftOut) {
  const std::string large(LargeIconBytes, 'l'), mini(MiniIconBytes, 'm');
  const std::pair<IconPair, int32> rows[] = {
      {{large, mini}, -2}, {{large.substr(1), mini}, -1}, {{large, mini + "m"}, -1}};
  for (const auto& [icon, saved] : rows) {
    EventSet& set = NewSet(Path);
    EventRecord record = DailyAt(Sunday);
    record.IconNumber = -2;
    Add(set, record).AdoptIcon(std::make_unique<IconPair>(icon));
    ASSERT_TRUE(set.SaveData());
    OpenSets::Sets.clear();
    const auto again = Read();
    ASSERT_EQ(Result, ConstructorResult::Success) << Report.Fault;
    EXPECT_EQ(again->Events()[0]->Record().IconNumber, saved);
    EXPECT_EQ(again->Events()[0]->GetOwnIcon() != nullptr, saved == -2);
  }
}

}  // namespace
}  // namespace kestrin
