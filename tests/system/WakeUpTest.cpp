// Events that come due while nothing but the deliverer runs.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>

#include "SetMaker.h"
#include "SystemTest.h"

namespace kestrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr int64 Day = 86400;

class WakeUpTest : public SystemTest {
 protected:
  /// Far enough ahead for the application to start, hand over and leave before.
  int64 Soon() const { return Now() + 3; }

  void WriteScript(const std::string& path, const std::string& lines) const {
    WriteFile(path, "#!/bin/sh\n" + lines);
    chmod(path.c_str(), 0755);
  }

  int64 NextTimeOnDisk(const std::string& set, const std::string& event) const {
    return EventIn(Dump(set), event).at("NextEventTime");
  }
};

TEST_F(WakeUpTest, ShowsTheMessageAtItsSecondAndLeaves) {
  const std::string set = Path("day.kestrin");
  const int64 when = Soon();
  WriteMessageSet(set, "Tea", "Put the kettle on.", when, Now());
  Remember({set});
  ASSERT_NO_FATAL_FAILURE(HandOver(when));

  const Reader::Alert alert = WaitForAlert("Tea");
  EXPECT_GE(Now(), when);
  EXPECT_EQ(alert.text, "Kestrin event:  Tea\n\nPut the kettle on.");
  ASSERT_THAT(alert.Labels(), ElementsAre("Ok"));
  EXPECT_EQ(NextTimeOnDisk(set, "Tea"), when) << "a crash now would lose the event";

  // Once the window manager has placed the window, the application knows where its button is.
  const Screen::ShownWindow window = WaitForWindow("");
  ASSERT_TRUE(Until([&] {
    return TheReader().AreaOf(alert.object).corner == TheScreen().Windows().at(0).corner;
  }));
  const auto [corner, size] = TheReader().AreaOf(alert.buttons[0].object);
  TheScreen().Click({corner.x + size.x / 2, corner.y + size.y / 2});

  ASSERT_TRUE(WaitForEnd());
  EXPECT_EQ(NextTimeOnDisk(set, "Tea"), when + Day);
  EXPECT_EQ(When(), when + Day);
}

TEST_F(WakeUpTest, RunsCommandsAsTheirQuestionsAreAnswered) {
  const std::string set = Path("commands.kestrin");
  const int64 when = Soon();
  const auto touch = [this](const char* name) { return "echo ran >> '" + Path(name) + "'"; };
  {
    SetMaker maker(Now());
    maker.Run(maker.AddDaily("Unasked", when), touch("unasked"), false);
    maker.Run(maker.AddDaily("Agreed", when), touch("agreed"), true);
    maker.Run(maker.AddDaily("Refused", when), touch("refused"), true);
    maker.Save(set);
  }
  Remember({set});
  ASSERT_NO_FATAL_FAILURE(HandOver(when));

  const Reader::Alert agreed = WaitForAlert("Agreed"), refused = WaitForAlert("Refused");
  EXPECT_EQ(agreed.text,
            "Kestrin event:  Agreed\n\nKestrin is about to execute a shell command: \"" +
                touch("agreed") + "\".  Should the command be executed?");
  ASSERT_THAT(agreed.Labels(), ElementsAre("Cancel", "Ok"));
  EXPECT_TRUE(Until([&] { return HasFile(Path("unasked")); }));
  EXPECT_FALSE(HasFile(Path("agreed")));
  Press(refused, "Cancel");
  Press(agreed, "Ok");

  ASSERT_TRUE(WaitForEnd());
  EXPECT_EQ(ReadFile(Path("unasked")), "ran\n");
  EXPECT_EQ(ReadFile(Path("agreed")), "ran\n");
  EXPECT_FALSE(HasFile(Path("refused")));
  for (const char* name : {"Unasked", "Agreed", "Refused"})
    EXPECT_EQ(NextTimeOnDisk(set, name), when + Day) << name;
}

TEST_F(WakeUpTest, ActsOnFilesOfEveryKind) {
  const std::string set = Path("files.kestrin");
  const std::string known = Path("letter.txt"), unknown = Path("parcel"), program = Path("tool");
  WriteFile(known, "Dear Ada,\n");
  WriteFile(unknown, std::string("\0\1\2\3", 4));
  WriteScript(program, "echo ran > '" + Path("tool ran") + "'\n");
  WriteScript(Path("writer"), "echo \"$1\" > '" + Path("letter read") + "'\n");
  std::filesystem::create_directories(Path("data/applications"));
  WriteFile(Path("data/applications/writer.desktop"),
            "[Desktop Entry]\nType=Application\nName=Letter Writer\nMimeType=text/plain;\nExec='" +
                Path("writer") + "' %f\n");
  WriteFile(Path("config/mimeapps.list"), "[Default Applications]\ntext/plain=writer.desktop\n");
  const int64 when = Soon();
  {
    SetMaker maker(Now());
    maker.ActOn(maker.AddDaily("Letter", when), known, true);
    maker.ActOn(maker.AddDaily("Parcel", when), unknown, false);
    maker.ActOn(maker.AddDaily("Tool", when), program, true);
    maker.ActOn(maker.AddDaily("Lost", when), Path("gone"), false);
    maker.Save(set);
  }
  Remember({set});
  ASSERT_NO_FATAL_FAILURE(HandOver(when));

  const Reader::Alert letter = WaitForAlert("Letter\n"), tool = WaitForAlert("Tool"),
                      parcel = WaitForAlert("Parcel"), lost = WaitForAlert("Lost");
  EXPECT_THAT(letter.text, HasSubstr("\n\nKestrin is about to open the file \"" + known +
                                     "\" with the application Letter Writer."));
  EXPECT_THAT(tool.text, HasSubstr("\n\nKestrin is about to launch the application tool."));
  EXPECT_THAT(parcel.text, HasSubstr("\n\nKestrin failed to open the file \"" + unknown +
                                     "\" with the application ."));
  EXPECT_THAT(lost.text, HasSubstr("\n\nKestrin was about to act on a file: \"" + Path("gone") +
                                   "\".  Kestrin was unable to locate the file."));
  Press(letter, "Ok");
  Press(tool, "Ok");
  Press(parcel, "Ok");
  Press(lost, "Ok");

  ASSERT_TRUE(WaitForEnd());
  EXPECT_TRUE(Until([&] { return ReadFile(Path("letter read")) == known + "\n"; }));
  EXPECT_TRUE(Until([&] { return HasFile(Path("tool ran")); }));
  for (const char* name : {"Letter", "Parcel", "Tool", "Lost"})
    EXPECT_EQ(NextTimeOnDisk(set, name), when + Day) << name;
}

// What cannot be loaded is told in alerts, and none of them may stand in the event's way.
TEST_F(WakeUpTest, DeliversInTimeWhateverElseIsBroken) {
  const std::string set = Path("day.kestrin"), missing = Path("missing.kestrin");
  const std::string addOn = Path("home/.local/lib/kestrin/add-ons/Broken.so");
  const int64 when = Soon();
  WriteMessageSet(set, "Tea", "Put the kettle on.", when, Now());
  Remember({set});
  ASSERT_NO_FATAL_FAILURE(HandOver(when));
  Remember({missing, set});
  std::filesystem::create_directories(Path("home/.local/lib/kestrin/add-ons"));
  WriteFile(addOn, "no library");

  const Reader::Alert tea = WaitForAlert("Tea");
  EXPECT_LE(Now(), when + 1);
  const Reader::Alert loading = WaitForAlert(addOn), opening = WaitForAlert(missing);
  EXPECT_THAT(loading.text, HasSubstr("load_add_on failed for " + addOn + ": 0x00000008"));
  EXPECT_EQ(opening.text, "Kestrin: Attempt to open event set " + missing + " failed.");
  for (const Reader::Alert& alert : {loading, opening, tea}) Press(alert, alert.Labels().at(0));
  ASSERT_TRUE(WaitForEnd());
  EXPECT_EQ(NextTimeOnDisk(set, "Tea"), when + Day);
  EXPECT_THAT(ReadFile(SettingsFile()), testing::Not(HasSubstr(missing)));
}

TEST_F(WakeUpTest, KeepsTheDataOfHandlersThatAreNotInstalled) {
  const std::string set = Path("day.kestrin");
  const int64 when = Soon();
  {
    SetMaker maker(Now());
    maker.Run(maker.AddDaily("Foreign", when + 7200), "\x01 any bytes \xfe", true);
    maker.Say(maker.AddDaily("Tea", when), "Put the kettle on.");
    maker.Save(set);
  }
  std::string bytes = ReadFile(set);
  const std::string handler = "Command", other = "Sonnets";
  ASSERT_NE(bytes.find(handler), std::string::npos);
  WriteFile(set, bytes.replace(bytes.find(handler), handler.size(), other));
  const nlohmann::json before = EventIn(Dump(set), "Foreign");
  ASSERT_EQ(before.at("HandlerName"), other);
  Remember({set});
  ASSERT_NO_FATAL_FAILURE(HandOver(when));

  Press(WaitForAlert("Tea"), "Ok");
  ASSERT_TRUE(WaitForEnd());
  EXPECT_EQ(NextTimeOnDisk(set, "Tea"), when + Day) << "the set was not saved";
  EXPECT_EQ(EventIn(Dump(set), "Foreign"), before);
}

TEST_F(WakeUpTest, WithoutADisplayRunsCommandsAndPutsMessagesOff) {
  const std::string set = Path("day.kestrin");
  const int64 when = Soon();
  {
    SetMaker maker(Now());
    maker.Run(maker.AddDaily("Work", when), "echo ran > '" + Path("ran") + "'", false);
    maker.Say(maker.AddDaily("Tea", when), "Put the kettle on.");
    maker.Save(set);
  }
  Remember({set});
  const auto starter = Start({"-background"}, false);
  ASSERT_EQ(starter->Wait(), 0) << starter->Errors();
  ASSERT_EQ(When(), when);

  ASSERT_TRUE(Until([&] { return HasFile(Path("ran")); }));
  const int64 seen = Now();
  ASSERT_TRUE(WaitForEnd());
  EXPECT_EQ(NextTimeOnDisk(set, "Work"), when + Day);
  EXPECT_EQ(NextTimeOnDisk(set, "Tea"), when);
  EXPECT_GE(When(), when + 60);
  EXPECT_LE(When(), Now() + 60);
  EXPECT_GE(seen, when);
  EXPECT_THAT(Bus().Errors(),
              HasSubstr("kestrin: no display: what needs a window stays due for another minute\n"));
}

}  // namespace
}  // namespace kestrin
