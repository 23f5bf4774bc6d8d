#include "interface/sets/EventClipboard.h"

#include <QClipboard>
#include <QMimeData>

#include "handlers/MessageDataHandler.h"
#include "harness/ScreenContext.h"

namespace kestrin {
namespace {

using namespace std::string_literals;

struct EventClipboardTest : testing::Test {
  static constexpr const char* Name =
      "T\xE4"
      "a & \u20AC\n";
  ScreenContext context;
  EventSet& source = context.NewSet();
  EventSet& target = context.NewSet("/sets/Other.kestrin");

  ~EventClipboardTest() override { QGuiApplication::clipboard()->clear(); }

  Event& Tea() {
    Event& tea = *source.AddEvent(nullptr);
    tea.SetName(Name);  // in part in another encoding
    dynamic_cast<MessageDataHandler&>(*tea.GetAddOnData()).SetMessage("Put the kettle on");
    return tea;
  }
  static bool CopyOne(Event& event) { return CopyEvents(event, {&event}); }
  static std::unique_ptr<Event> PastedInto(EventSet& set) {
    auto events = EventsFromClipboard(set);
    return events.size() == 1 ? std::move(events[0]) : nullptr;
  }
  static void Put(const char* type, const QByteArray& bytes) {
    auto* content = new QMimeData;
    content->setData(type, bytes);
    QGuiApplication::clipboard()->setMimeData(content);
  }
  static QByteArray EventBytes() {
    const QMimeData* content = QGuiApplication::clipboard()->mimeData();
    return content ? content->data(EventClipboardType) : QByteArray();
  }
};

TEST_F(EventClipboardTest, AnEventIsThereForAllProgramsAlsoOnceItIsDeleted) {
  EXPECT_TRUE(EventBytes().isEmpty());
  Event& tea = Tea();
  ASSERT_TRUE(CopyOne(tea));
  source.RemoveEvent(&tea);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "T\uFFFDa & \u20AC\n");
  EXPECT_FALSE(EventBytes().isEmpty());
  for (int times = 0; times < 2; ++times) {
    const auto pasted = PastedInto(target);
    ASSERT_TRUE(pasted);
    EXPECT_EQ(pasted->GetName(), Name);
    EXPECT_EQ(pasted->GetOwner(), &target);
    EXPECT_STREQ(dynamic_cast<MessageDataHandler&>(*pasted->GetAddOnData()).GetMessage(),
                 "Put the kettle on");
  }
}

TEST_F(EventClipboardTest, OfSeveralTheCurrentOneIsThereForThoseWhoKnowOnlyOne) {
  Event& tea = Tea();
  std::vector<Event*> all = {source.AddEvent(nullptr), &tea, source.AddEvent(nullptr)};
  all[0]->SetName("Cake");
  ASSERT_TRUE(CopyEvents(tea, all));
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "Cake\nT\uFFFDa & \u20AC\n\nUntitled");
  const auto pasted = EventsFromClipboard(target);
  ASSERT_EQ(pasted.size(), 3u);
  for (size_t i = 0; i < pasted.size(); ++i) EXPECT_EQ(pasted[i]->GetName(), all[i]->GetName());
  Put(EventClipboardType, EventBytes());
  EXPECT_EQ(PastedInto(target)->GetName(), Name);
}

TEST_F(EventClipboardTest, AnEventThatCannotBeCopiedLeavesTheClipboardEmpty) {
  ASSERT_TRUE(CopyOne(Tea()));
  Event& bare = AppendEvent(source, "without a handler's data");
  EXPECT_FALSE(CopyOne(bare));
  EXPECT_TRUE(EventBytes().isEmpty());
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "");
}

TEST_F(EventClipboardTest, NothingComesOfWhatIsNoWholeEvent) {
  ASSERT_TRUE(CopyOne(Tea()));
  const QByteArray whole = EventBytes();
  for (const QByteArray& bytes : {QByteArray(), QByteArray("{}"), whole.left(whole.size() / 2)}) {
    Put(EventClipboardType, bytes);
    EXPECT_FALSE(PastedInto(target)) << bytes.left(60).toStdString();
  }
  Put("text/plain", whole);
  EXPECT_TRUE(EventBytes().isEmpty());
  EXPECT_FALSE(PastedInto(target));
  EXPECT_TRUE(context.Alerts.Empty()) << "in silence";
  Put(EventClipboardType, whole);
  EXPECT_TRUE(PastedInto(target));
}

}  // namespace
}  // namespace kestrin
