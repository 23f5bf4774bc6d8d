// A person in front of the program: mouse, keyboard, and nothing set up beforehand.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <set>

#include "SetMaker.h"
#include "SystemTest.h"

namespace kestrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class PersonTest : public SystemTest {
 protected:
  using Control = Reader::Control;

  /// The first control of that name and role; throws what is there instead.
  Control Find(const std::string& window, const std::string& name, const std::string& role) {
    std::vector<Control> controls;
    auto found = controls.end();
    if (Until([&] {
          controls = TheReader().Controls(window);
          found = std::find_if(controls.begin(), controls.end(), [&](const Control& control) {
            return control.name == name && control.role == role;
          });
          return found != controls.end();
        }))
      return *found;
    std::string there;
    for (const Control& control : controls) there += "\n" + control.role + " " + control.name;
    throw std::runtime_error("no " + role + " \"" + name + "\" in \"" + window +
                             "\", but:" + there);
  }

  void Click(const std::string& window, const std::string& name, const std::string& role) {
    const Control control = Find(window, name, role);
    const auto [corner, size] = TheReader().AreaOf(control.object);
    TheScreen().Click({corner.x + size.x / 2, corner.y + size.y / 2});
  }

  bool HasFocus(const std::string& window, const std::string& name) {
    return Until([&] {
      for (const Control& control : TheReader().Controls(window))
        if (control.name == name && control.isFocused) return true;
      return false;
    });
  }

  /// Waits until the window is in front and told where it stands.
  Screen::ShownWindow InFront(const std::string& title) {
    const Screen::ShownWindow window = WaitForWindow(title);
    TheScreen().Activate(window);
    EXPECT_TRUE(Until([&] { return TheScreen().IsActive(window); })) << title;
    return window;
  }

  /// With the mouse, once the application has been told where its alert stands.
  void ClickAway(const Reader::Alert& alert) {
    ASSERT_TRUE(Until([&] {
      const Place corner = TheReader().AreaOf(alert.object).corner;
      for (const Screen::ShownWindow& window : TheScreen().Windows())
        if (window.corner == corner) return true;
      return false;
    }));
    const auto [corner, size] = TheReader().AreaOf(alert.buttons.at(0).object);
    TheScreen().Click({corner.x + size.x / 2, corner.y + size.y / 2});
    EXPECT_TRUE(Until([&] {
      for (const Reader::Alert& open : TheReader().Alerts())
        if (open.text == alert.text) return false;
      return true;
    })) << alert.text;
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
  PressKeys(WaitForWindow("Untitled event set 1"), "ctrl+n");
  PressKeys(InFront("Untitled event set 2"), "ctrl+shift+n");
  const std::string editor = "Event (set Untitled event set 2)";
  InFront(editor);
  ASSERT_TRUE(HasFocus(editor, "Name:")) << "ready to be named";
  TheScreen().Type("Water the plants\n");
  Click(editor, "Message", "text");
  TheScreen().Type("Two cans of rain.");

  const std::string set = Path("home/Plants");
  PressKeys(InFront("Untitled event set 2"), "ctrl+s");
  const std::string panel = "Save event set";
  InFront(panel);
  TheScreen().Press("ctrl+a");
  TheScreen().Type(set);
  Click(panel, "Remember for delivery", "check box");
  Click(panel, "Save", "push button");
  InFront("Plants.kestrin");
  ASSERT_TRUE(HasFile(set + ".kestrin"));

  InFront("Event (set Plants.kestrin)");
  Click("Event (set Plants.kestrin)", "When", "page tab");
  Click("Event (set Plants.kestrin)", "Date", "text");
  const int64 when = Now() + 8;
  TheScreen().Press("ctrl+a");
  TheScreen().Type(AsTyped(when) + "\n");
  PressKeys(InFront("Plants.kestrin"), "ctrl+s");
  ASSERT_TRUE(Until([&] {
    return EventIn(Dump(set + ".kestrin"), "Water the plants").at("NextEventTime") == when;
  }));
  PressKeys(InFront("Plants.kestrin"), "ctrl+q");
  ASSERT_EQ(application->Wait(), 0) << application->Errors();
  EXPECT_EQ(When(), when);

  const Reader::Alert alert = WaitForAlert("Water the plants");
  EXPECT_GE(Now(), when);
  EXPECT_EQ(alert.text, "Kestrin event:  Water the plants\n\nTwo cans of rain.");
  Press(alert, "Ok");
  ASSERT_TRUE(WaitForEnd());
  EXPECT_EQ(EventIn(Dump(set + ".kestrin"), "Water the plants").at("NextEventTime"), 0);
}

TEST_F(PersonTest, AnswersAlertsWhilePanelsAndQuestionsStandOpen) {
  constexpr int64 Day = 86400;
  const std::string set = Path("home/Busy.kestrin");
  const int64 one = Now() + 4, two = Now() + 8;
  {
    SetMaker maker(Now());
    maker.Say(maker.AddDaily("One", one), "Beside the panels.");
    maker.Say(maker.AddDaily("Two", two), "Beside the question.");
    maker.Save(set);
  }
  const auto application = StartWithWindow({set}, "Busy.kestrin");
  PressKeys(WaitForWindow("Busy.kestrin"), "ctrl+o");
  WaitForWindow("Open event sets");
  PressKeys(InFront("Busy.kestrin"), "alt+f a");
  WaitForWindow("Save event set");
  ClickAway(WaitForAlert("One"));
  WaitForWindow("Open event sets");
  PressKeys(WaitForWindow("Save event set"), "Escape");

  PressKeys(InFront("Busy.kestrin"), "ctrl+shift+n");
  PressKeys(WaitForWindow("Event (set Busy"), "ctrl+w");
  PressKeys(InFront("Busy.kestrin"), "ctrl+w");
  const Reader::Alert question = WaitForAlert("Save changes to the document");
  ClickAway(WaitForAlert("Two"));
  Press(question, "Don't save");

  const nlohmann::json saved = Dump(set);
  EXPECT_EQ(saved.at("events").size(), 2U);
  EXPECT_EQ(EventIn(saved, "One").at("NextEventTime"), one + Day) << "or it would ring again";
  EXPECT_EQ(EventIn(saved, "Two").at("NextEventTime"), two + Day);
  TheScreen().Close(WaitForWindow("Open event sets"));
  EXPECT_EQ(application->Wait(), 0) << application->Errors();
}

TEST_F(PersonTest, FindsTheHelpBesideTheProgram) {
  const std::string reader = Path("reader");
  WriteFile(reader, "#!/bin/sh\ncp \"$1\" '" + Path("page read") + "'\n");
  chmod(reader.c_str(), 0755);
  std::filesystem::create_directories(Path("data/applications"));
  WriteFile(Path("data/applications/reader.desktop"),
            "[Desktop Entry]\nType=Application\nName=Reader\nMimeType=text/html;\nExec='" + reader +
                "' %f\n");
  WriteFile(Path("config/mimeapps.list"), "[Default Applications]\ntext/html=reader.desktop\n");
  const auto application = StartWithWindow({}, "Untitled event set 1");
  PressKeys(WaitForWindow("Untitled event set 1"), "ctrl+h");
  ASSERT_TRUE(Until([&] { return HasFile(Path("page read")); }));
  std::ifstream page(Path("page read"));
  std::string line;
  EXPECT_TRUE(Until([&] {
    page.clear();
    page.seekg(0);
    while (std::getline(page, line))
      if (line == "<title>Kestrin documentation</title>") return true;
    return false;
  }));
}

/// What a screen reader would read without saying what it is for.
class ReadAloudTest : public PersonTest {
 protected:
  void Look(const std::string& window, const std::string& part = {}) {
    size_t read = 0;
    for (const Control& control : TheReader().Controls(window)) {
      if (!control.isFocusable || !control.isEnabled) continue;
      ++read;
      // The name of a menu of choices is the choice; what it is for, its label says.
      const bool isTold = control.role == "combo box" ? control.isLabelled : !control.name.empty();
      if (!isTold) unnamed_.insert(window + " " + part + ": " + control.role + " " + control.name);
    }
    EXPECT_GT(read, 0U) << window;
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
  PressKeys(InFront("Names.kestrin"), "Home");
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
    Find(editor, kind, "combo box");
    Look(editor, kind);
    shown = kind;
  }
  for (const auto& [keys, title] : {std::pair{"ctrl+o", "Open"},
                                    {"alt+f t", "Kestrin settings"},
                                    {"alt+f b", "About Kestrin"},
                                    {"alt+f a", "Save event set"}}) {
    PressKeys(InFront("Names.kestrin"), keys);
    const Screen::ShownWindow opened = InFront(title);
    Look(title);
    TheScreen().Close(opened);
  }
  EXPECT_THAT(unnamed_, IsEmpty());
}

}  // namespace
}  // namespace kestrin
