// Events as messages: the fields docs/event-message.md lists, the way there and back with every
// handler, and messages that nobody has checked.

#include <fstream>

#include "HandlerTestBase.h"
#include "core/files/EventMessage.h"
#include "core/files/StoredSetFile.h"
#include "handlers/SampleEvents.h"
#include "harness/PageTable.h"
#include "support/OwnedText.h"

namespace kestrin {
namespace {

using namespace std::string_literals;
using testing::ElementsAreArray;

std::string TypeOf(const Message::Value& value) {
  const char* const names[] = {"bool", "int8", "int32", "int64", "string", "rect", "raw"};
  std::string type = names[value.index()];
  if (const auto* raw = std::get_if<RawData>(&value))
    for (int shift = 24; shift >= 0; shift -= 8)
      type += (shift == 24 ? " " : "") + std::string(1, static_cast<char>(raw->type >> shift));
  return type;
}

std::vector<std::string> FieldsOf(const Message& message) {
  std::vector<std::string> fields;
  for (const auto& [name, value] : message.Fields()) fields.push_back(name + " " + TypeOf(value));
  return fields;
}

class EventMessageTest : public HandlerTestBase {
 protected:
  Message Generated() const {
    Message message;
    EXPECT_TRUE(GenerateMessageForEvent(*Subject, &message));
    return message;
  }
  /// The event with every field a message can have.
  void FillSubject() {
    Subject->SetPrewarnMessage("soon");
    Subject->SetNagMessage("late");
    Subject->SetComment("with milk");
    Subject->SetIcon(-2, std::make_unique<IconPair>(IconPair{std::string(LargeIconBytes, '\7'),
                                                             std::string(MiniIconBytes, '\xFF')}));
    Select<MessageDataHandler>("Message").SetMessage("Put the kettle on");
  }
  /// Through the flattened text, as over the clipboard.
  std::unique_ptr<Event> Pasted(const Message& message) {
    const auto read = Message::Unflatten(message.Flatten());
    EXPECT_TRUE(read);
    EventFromMessageResult result = EventFromMessage(Other, *read);
    Told = result.TextsCut + result.Complaint;
    return std::move(result.NewEvent);
  }

  std::unique_ptr<EventSet> OwnedOther = kestrin::NewSet(World.Core, "Other");
  EventSet& Other = *OwnedOther;
  std::string Told;
};

TEST_F(EventMessageTest, ThePageAndTheCodeAgree) {
  const auto page = TableOfPage("event-message.md", "| field | type");
  ASSERT_EQ(page.size(), 41u);
  const auto nameOf = [](const auto& row) { return row.at(0).substr(1, row[0].size() - 2); };
  std::vector<std::string> all, always;
  for (const auto& row : page) {
    all.push_back(nameOf(row) + " " + row.at(1));
    if (row.at(3) == "always") always.push_back(all.back());
  }
  Select<CommandDataHandler>("Command");
  Subject->SetIcon(2, nullptr);
  EXPECT_THAT(FieldsOf(Generated()), ElementsAreArray(always));
  FillSubject();
  const Message whole = Generated();
  EXPECT_THAT(FieldsOf(whole), ElementsAreArray(all));

  ASSERT_TRUE(Pasted(whole));
  for (const auto& row : page) {
    const std::string name = nameOf(row);
    SCOPED_TRACE(name);
    Message without(whole.what), wrong = whole;
    for (const auto& [other, value] : whole.Fields())
      if (other != name) without.Set(other, value);
    EXPECT_EQ(Pasted(without) != nullptr, row[3].starts_with("unless"));
    wrong.Set(name, int64{1});
    EXPECT_FALSE(Pasted(wrong)) << "of another type";
    if (row[1].starts_with("raw")) {
      wrong.Set(name, RawData{FourCharCode("XXXX"), whole.Get<RawData>(name)->bytes});
      EXPECT_FALSE(Pasted(wrong)) << "of another code";
    }
  }
}

/// tests/data/sample.txt: every event of the sample, as it is saved.
TEST_F(EventMessageTest, TheSampleIsAsItIsKept) {
  Message stale = Generated();
  stale.Set("NextEventTime", int32{1});
  EXPECT_EQ(Pasted(stale)->GetNextEventTime(), Subject->GetNextEventTime())
      << "not what was copied";
  SampleEvents(Other).AddSample(60);
  EXPECT_FALSE(Other.HasBeenModified() && !Other.OnlyDeliveriesChanged());
  std::string events;
  for (const auto& event : Other.Events()) {
    Message message;
    ASSERT_TRUE(GenerateMessageForEvent(*event, &message));
    events += message.Flatten() + "\n";
  }
  std::ifstream kept(KESTRIN_SOURCE_DIR "/tests/data/sample.txt");
  EXPECT_EQ(events, std::string(std::istreambuf_iterator<char>(kept), {}));
}

TEST_F(EventMessageTest, AnAddOnThatFailsHarmsNothing) {
  class Stubborn final : public FakeHandlerData {
   public:
    using FakeHandlerData::FakeHandlerData;
    bool SaveData(EndianIndependentFile* file) override {
      uint32 count = 5;
      file->WriteNumber(&count, 4, 1);
      if (Bytes == "throw") throw std::runtime_error("no");
      return Bytes == "short";
    }
  };
  const int32 row = World.Handlers.NumberOfEventHandlers();
  World.Handlers.Add(
      {"Stubborn", [](Event*, EndianIndependentFile*, bool*) -> EventAddOnData* { throw 1; }});
  for (const char* what : {"short", "false", "throw"}) {
    auto data = std::make_unique<Stubborn>(Subject);
    data->Bytes = what;
    Subject->AdoptAddOnData(row, std::move(data));
    Message message;
    EXPECT_FALSE(GenerateMessageForEvent(*Subject, &message)) << what;
  }
  Select<MessageDataHandler>("Message").SetMessage("kept");
  Message message = Generated();
  message.Set("HandlerName", "Stubborn"s);
  const auto pasted = Pasted(message);
  ASSERT_TRUE(pasted);
  EXPECT_EQ(pasted->GetSelectedHandler(), UnknownHandler);
  EXPECT_EQ(pasted->GetHandlerName(), "Stubborn");
  EXPECT_THAT(Told, HasSubstr("\"Stubborn\" failed"));
}

TEST_F(EventMessageTest, TextsAreCutAndTheUserIsToldButHandlerNamesAndIconsMustFit) {
  const Message message = Generated();
  Message longTexts = message;
  longTexts.Set("Name", std::string(4094, 'x') + "\u20AC");
  longTexts.Set("Comment", "a\0b"s);
  longTexts.Set("NagMessage", "l\xE4ut"s);
  const auto pasted = Pasted(longTexts);
  ASSERT_TRUE(pasted);
  EXPECT_EQ(pasted->GetName(), std::string(4094, 'x'));
  EXPECT_EQ(pasted->GetComment(), "a");
  EXPECT_EQ(pasted->Record().NagMessage, "l\xE4ut") << "no other encoding is forced on it";
  EXPECT_THAT(Told, HasSubstr("has been cut"));

  const std::pair<const char*, Message::Value> refused[] = {
      {"HandlerName", std::string(TextLimit, 'x')},
      {"HandlerName", "Message\0"s},
      {"LargeIcon", RawData{FourCharCode("iBit"), std::string(1023, 'x')}},
      {"MiniIcon", RawData{FourCharCode("iBit"), std::string(257, 'x')}},
  };
  FillSubject();
  for (const auto& [name, value] : refused) {
    Message wrong = Generated();
    wrong.Set(name, value);
    EXPECT_FALSE(Pasted(wrong)) << name;
  }
  Message otherCode = message;
  otherCode.what = FourCharCode("SetE");
  EXPECT_FALSE(Pasted(otherCode));
}

}  // namespace
}  // namespace kestrin
