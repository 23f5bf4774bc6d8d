// What a person does at the windows while the program is busy with the same event: no deed is lost,
// and nothing rings twice or not at all.
#include <QLineEdit>
#include <functional>
#include <map>
#include <tuple>

#include "core/files/StoredSetFile.h"
#include "core/ports/UserInterface.h"
#include "harness/AppOnScreen.h"
#include "kestrin/EndianIndependentFile.h"
#include "kestrin/EventServices.h"

namespace kestrin {
namespace {

enum class Deed { Edit, Delete, CutAndPaste, Close };
enum class Moment { AlertOpen, BetweenPasses, WithinAction, QuestionOpen, WaitingForHold };

class BellData final : public EventAddOnData {
 public:
  using EventAddOnData::EventAddOnData;
  static inline std::map<int32, int> Rung;        ///< how often, by occurrence
  static inline std::function<void()> Meanwhile;  ///< called once, within the action

  QWidget* CreateEditView(Rect) override { return nullptr; }
  bool SaveData(EndianIndependentFile* file) override {
    uint32 count = 0;
    return file->WriteNumber(&count, 4, 1) == 1;
  }
  void DealWithEvent(bool missed) override {
    ++Rung[GetActualEventTime(GetAttachedTo())];
    ProcessHold();
    DeliverEventMessage(GetAttachedTo(), missed, "\n\nding", nullptr, nullptr, nullptr, nullptr);
    if (const auto deed = std::exchange(Meanwhile, nullptr)) deed();
    EXPECT_TRUE(GetAttachedTo()->IsActing()) << "it stays while it acts";
  }
};

EventAddOnData* NewBell(Event* event, EndianIndependentFile* file, bool* ok) {
  uint32 count = 0;
  if (file) *ok = file->ReadNumber(&count, 4, 1) == 1;
  return new BellData(event);
}

class BellOnScreen : public AppOnScreen {
 protected:
  BellOnScreen() { BellData::Rung.clear(), StartWithBell(); }

  ~BellOnScreen() override { MoreHandlers = nullptr; }

  void StartWithBell() {
    MoreHandlers = [](HandlerTable& handlers) { handlers.Add({"Bell", NewBell}); };
    Start();
  }
  void MakeFile() {
    const auto owned = kestrin::NewSet(It->Core, Path("Work.kestrin"));
    AddTea(*owned).SetSelectedHandler(It->Handlers.Find("Bell"));
    Add(*owned, "Cake", Sunday + 20 * Hour);
    ASSERT_TRUE(owned->SaveCopy(Path("Work.kestrin")));
  }
  EventSet& OpenWork() { return OpenFile("Work.kestrin"); }
  static Event& Tea(const EventSet& set) { return *set.Events().at(0); }

  void Ring() {
    It->Time.JumpTo(Sunday + 9 * Hour);
    Post(Message(DELIVER_EVENTS));
  }
};

class MeanwhileTest : public BellOnScreen,
                      public testing::WithParamInterface<std::tuple<Moment, Deed, bool>> {
 protected:
  const Moment When = std::get<0>(GetParam());
  const Deed What = std::get<1>(GetParam());
  const bool Saves = std::get<2>(GetParam());

  /// Runs no message of the application.
  void Do() {
    EventSet& set = *Set("Work.kestrin");
    EventSetWindow& window = WindowOf(set);
    if (What == Deed::Close) {
      Item(window, "Close")->trigger();
      return;
    }
    if (What == Deed::Edit) {
      auto* editor = dynamic_cast<QWidget*>(Tea(set).GetWindow());
      auto* name = editor->findChild<QLineEdit*>("eventName");
      editor->activateWindow();
      ASSERT_TRUE(QTest::qWaitForWindowActive(editor));
      name->setFocus();
      QTest::keyClick(name, Qt::Key_A, Qt::ControlModifier);
      QTest::keyClicks(name, "Tea with milk");  // and no Return
      return;
    }
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    ListEventView& list = *window.GetEventsView();
    list.SelectEvents({&Tea(set)});
    if (What == Deed::Delete) {
      QTest::keyClick(&list, Qt::Key_Delete);
    } else {
      QTest::keyClick(&list, Qt::Key_X, Qt::ControlModifier);
      QTest::keyClick(&list, Qt::Key_V, Qt::ControlModifier);
    }
  }
  void RingUntilDealtWith() {
    It->Time.JumpTo(Sunday + 9 * Hour);
    It->Queue.Post(DELIVER_EVENTS);
    while (!It->Queue.Holds(EVENT_DEALT_WITH)) It->App.MessageReceived(*It->Queue.Take());
  }
  /// Brings the program to the moment, and does the deed.
  void DoAtTheMoment() {
    EventSet& set = *Set("Work.kestrin");
    switch (When) {
      case Moment::AlertOpen:
        Ring();
        Do();
        break;
      case Moment::BetweenPasses:
        RingUntilDealtWith();
        Do();
        break;
      case Moment::WithinAction:
        BellData::Meanwhile = [this] { Do(); };
        Ring();
        EXPECT_FALSE(BellData::Meanwhile) << "it has acted";
        break;
      case Moment::QuestionOpen:
        set.Events()[1]->SetComment("mine");
        Choose(WindowOf(set), "Quit to background");
        ASSERT_THAT(AlertTexts(), ElementsAre(Question.toStdString()));
        Do();
        Ring();
        break;
      case Moment::WaitingForHold:
        Ring();
        Choose(WindowOf(set), "Quit to background");
        ASSERT_FALSE(Set("Work.kestrin") || It->Ended);
        Tea(OpenWork()).OpenWindow();
        Do();
        break;
    }
    Run();
  }
  void LeaveAndReadEverything() {
    if (Set("Work.kestrin")) Choose(WindowOf(*Set("Work.kestrin")), "Close");
    Answer(Question, Saves ? "Save" : "Don't save");
    EXPECT_FALSE(Set("Work.kestrin"));
    while (Answer("Kestrin event:", "Ok")) continue;
    EXPECT_THAT(AlertTexts(), IsEmpty());
    const bool quits = When == Moment::QuestionOpen || When == Moment::WaitingForHold;
    EXPECT_EQ(It->Ended, quits) << "a new set stands open in all other cases";
  }
  std::vector<std::string> Expected() const {
    if (Saves && What == Deed::Edit) return {"Tea with milk", "Cake"};
    if (Saves && What == Deed::Delete) return {"Cake"};
    if (Saves && What == Deed::CutAndPaste) return {"Cake", "Tea"};
    return {"Tea", "Cake"};
  }

  const QString Question = "Save changes to the document \"Work.kestrin\"?";
};

INSTANTIATE_TEST_SUITE_P(
    All, MeanwhileTest,
    testing::Combine(testing::Values(Moment::AlertOpen, Moment::BetweenPasses, Moment::WithinAction,
                                     Moment::QuestionOpen, Moment::WaitingForHold),
                     testing::Values(Deed::Edit, Deed::Delete, Deed::CutAndPaste, Deed::Close),
                     testing::Bool()));

TEST_P(MeanwhileTest, EveryDeedCountsAndEveryOccurrenceRingsOnce) {
  MakeFile();
  Tea(OpenWork()).OpenWindow();
  DoAtTheMoment();
  LeaveAndReadEverything();
  // Another process, an hour later.
  Now = Sunday + 10 * Hour;
  StartWithBell();
  const EventSet& again = OpenWork();
  EXPECT_EQ(Names(again), Expected());
  const bool neverRang = When == Moment::QuestionOpen && What == Deed::Delete && Saves;
  EXPECT_EQ(BellData::Rung,
            neverRang ? (std::map<int32, int>{}) : (std::map<int32, int>{{Sunday + 9 * Hour, 1}}));
  for (const auto& event : again.Events())
    EXPECT_EQ(event->GetNextEventTime(),
              Sunday + (event->GetName() == "Cake" ? 20 * Hour : Day + 9 * Hour));
}

TEST_F(BellOnScreen, AnEventMayGoWithItsSetWhileItActs) {
  MakeFile();
  OpenWork();
  BellData::Meanwhile = [this] {
    EventSetWindow& window = WindowOf(*Set("Work.kestrin"));
    window.GetEventsView()->SelectEvents({&Tea(*Set("Work.kestrin"))});
    QTest::keyClick(window.GetEventsView(), Qt::Key_Delete);
    window.CloseNow();
    EXPECT_FALSE(Set("Work.kestrin"));
  };
  Ring();
  EXPECT_FALSE(BellData::Meanwhile);
  EXPECT_TRUE(Answer("Kestrin event:", "Ok"));
  EXPECT_EQ(Names(OpenWork()), (std::vector<std::string>{"Tea", "Cake"})) << "nobody saved";
  EXPECT_EQ(BellData::Rung.size(), 1u);
  EXPECT_THAT(AlertTexts(), IsEmpty());
}

}  // namespace
}  // namespace kestrin
