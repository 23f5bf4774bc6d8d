// A person in front of the program: mouse, keyboard, and nothing set up beforehand.
#include <ctime>
#include <set>

#include "SystemTest.h"

namespace kestrin {
namespace {

using testing::IsEmpty;

class PersonTest : public SystemTest {
 protected:
  using Control = Reader::Control;

  void Click(const std::string& window, const std::string& name, const std::string& role) {
    SystemTest::Click(WaitForControl(window, name, role));
  }

  bool HasFocus(const std::string& window, const std::string& name) {
    return Until([&] {
      for (const Control& control : TheReader().Controls(window))
        if (control.name == name && control.isFocused) return true;
      return false;
    });
  }

  static std::string AsTyped(int64 moment) {
    char text[32];
    const std::time_t time = moment;
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", std::gmtime(&time));
    return text;
  }
};

TEST_F(PersonTest, MakesASetWithAnEventAndIsReminded) {
  const auto application = StartWithWindow({}, "Untitled event set 1");
  PressKeys("Untitled event set 1", "ctrl+n");
  PressKeys("Untitled event set 2", "ctrl+shift+n");
  const std::string editor = "Event (set Untitled event set 2)";
  InFront(editor);
  ASSERT_TRUE(HasFocus(editor, "Name:")) << "ready to be named";
  TheScreen().Type("Water the plants\n");
  Click(editor, "Message", "text");
  TheScreen().Type("Two cans of rain.");

  const std::string set = Path("home/Plants.kestrin");
  PressKeys("Untitled event set 2", "ctrl+s");
  const std::string panel = "Save event set";
  InFront(panel);
  TheScreen().Press("ctrl+a");
  TheScreen().Type(Path("home/Plants"));
  Click(panel, "Remember for delivery", "check box");
  Click(panel, "Save", "push button");
  InFront("Plants.kestrin");
  InFront("Event (set Plants.kestrin)");
  Click("Event (set Plants.kestrin)", "When", "page tab");
  Click("Event (set Plants.kestrin)", "Date", "text");
  const int64 when = Now() + 8;
  TheScreen().Press("ctrl+a");
  TheScreen().Type(AsTyped(when) + "\n");
  PressKeys("Plants.kestrin", "ctrl+s");
  ASSERT_TRUE(Until([&] { return SavedTime(set, "Water the plants") == when; }));
  PressKeys("Plants.kestrin", "ctrl+q");
  ASSERT_EQ(application->Wait(), 0) << application->Errors();
  EXPECT_EQ(When(), when);

  const Reader::Alert alert = WaitForAlert("Water the plants");
  EXPECT_GE(Now(), when);
  EXPECT_EQ(alert.text, "Kestrin event:  Water the plants\n\nTwo cans of rain.");
  Press(alert, "Ok");
  ASSERT_TRUE(WaitForEnd());
  EXPECT_EQ(SavedTime(set, "Water the plants"), 0);
}

TEST_F(PersonTest, AnswersAlertsWhilePanelsAndQuestionsStandOpen) {
  const std::string set = Path("home/Busy.kestrin");
  const int64 one = Now() + 4, two = Now() + 8;
  {
    SetMaker maker(Now());
    maker.Say(maker.AddDaily("One", one), "Beside the panels.");
    maker.Say(maker.AddDaily("Two", two), "Beside the question.");
    maker.Save(set);
  }
  const auto application = StartWithWindow({set}, "Busy.kestrin");
  PressKeys("Busy.kestrin", "ctrl+o");
  InFront("Open event sets");
  ASSERT_TRUE(HasFocus("Open event sets", "File name:")) << "or it would get in front again";
  PressKeys("Busy.kestrin", "alt+f a");
  InFront("Save event set");
  ClickAway(WaitForAlert("One"));
  WaitForWindow("Open event sets");
  PressKeys("Save event set", "Escape");

  PressKeys("Busy.kestrin", "ctrl+shift+n");
  PressKeys("Event (set Busy", "ctrl+w");
  PressKeys("Busy.kestrin", "ctrl+w");
  const Reader::Alert question = WaitForAlert("Save changes to the document");
  ClickAway(WaitForAlert("Two"));
  Press(question, "Don't save");

  EXPECT_EQ(SavedEvents(set).size(), 2U);
  EXPECT_EQ(SavedTime(set, "One"), one + SecondsPerDay) << "or it would ring again";
  EXPECT_EQ(SavedTime(set, "Two"), two + SecondsPerDay);
  TheScreen().Close(WaitForWindow("Open event sets"));
  EXPECT_EQ(application->Wait(), 0) << application->Errors();
}

TEST_F(PersonTest, FindsTheHelpBesideTheProgram) {
  OpenWith("text/html", "Reader", "cp \"$1\" '" + Path("page read") + "'");
  const auto application = StartWithWindow({}, "Untitled event set 1");
  PressKeys("Untitled event set 1", "ctrl+h");
  EXPECT_TRUE(Until([&] {
    const std::string page = ReadFile(Path("page read"));
    return page.find("<title>Kestrin documentation</title>") != page.npos;
  }));
}

/// What a screen reader would read without saying what it is for.
class ReadAloudTest : public PersonTest {
 protected:
  void Look(const std::string& window, const std::string& part = {}) {
    std::vector<Control> controls;
    EXPECT_TRUE(Until([&] {
      controls = TheReader().Controls(window);
      std::erase_if(controls,
                    [](const auto& each) { return !each.isFocusable || !each.isEnabled; });
      return !controls.empty();
    })) << window;
    for (const Control& control : controls) {
      // The name of a menu of choices is the choice; what it is for, its label says.
      const bool isTold = control.role == "combo box" ? TheReader().IsLabelled(control.object)
                                                      : !control.name.empty();
      if (!isTold) unnamed_.insert(window + " " + part + ": " + control.role + " " + control.name);
    }
  }

  std::set<std::string> unnamed_;
};

TEST_F(ReadAloudTest, EveryControlOfEveryWindowSaysWhatItIsFor) {
  const std::string set = Path("home/Names.kestrin"), editor = "Event (set Names.kestrin)";
  {
    SetMaker maker(Now());
    Event& event = maker.AddDaily("Tea", Now() + 3600);
    event.SetApplyPrewarn(true);
    event.SetApplyPrewarnRepeat(true);
    event.SetApplyNag(true);
    maker.Save(set);
  }
  const auto application = StartWithWindow({set}, "Names.kestrin");
  Look("Names.kestrin");
  PressKeys("Names.kestrin", "Home");
  TheScreen().Press("Return");
  InFront(editor);
  for (const char* page : {"Action", "Prewarning", "Nagging", "Comment", "When"}) {
    Click(editor, page, "page tab");
    ASSERT_TRUE(HasFocus(editor, page));
    Look(editor, page);
  }
  const char* shown = "Daily";
  for (const char* kind : {"Once", "MultiAnnually", "MultiMonthly", "SubDaily"}) {
    Click(editor, shown, "combo box");
    Click(editor, kind, "list item");
    WaitForControl(editor, kind, "combo box");
    Look(editor, kind);
    shown = kind;
  }
  for (const auto& [keys, title] : {std::pair{"ctrl+o", "Open"},
                                    {"alt+f t", "Kestrin settings"},
                                    {"alt+f b", "About Kestrin"},
                                    {"alt+f a", "Save event set"}}) {
    PressKeys("Names.kestrin", keys);
    const Screen::ShownWindow opened = InFront(title);
    Look(title);
    TheScreen().Close(opened);
  }
  EXPECT_THAT(unnamed_, IsEmpty());
}

}  // namespace
}  // namespace kestrin
