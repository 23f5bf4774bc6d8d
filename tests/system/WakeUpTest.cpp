// Events that come due while nothing but the deliverer runs.
#include <filesystem>

#include "SystemTest.h"

namespace kestrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr int64 Day = 86400;

using WakeUpTest = SystemTest;

TEST_F(WakeUpTest, ShowsTheMessageAtItsSecondAndLeaves) {
  const int64 when = Soon();
  const std::string set = RememberTea(when);
  ASSERT_NO_FATAL_FAILURE(HandOver(when));

  const Reader::Alert alert = WaitForAlert("Tea");
  EXPECT_GE(Now(), when);
  EXPECT_EQ(alert.text, "Kestrin event:  Tea\n\nPut the kettle on.");
  ASSERT_THAT(alert.Labels(), ElementsAre("Ok"));
  EXPECT_EQ(SavedTime(set), when) << "a crash now would lose the event";
  ClickAway(alert);
  ASSERT_TRUE(WaitForEnd());
  EXPECT_EQ(SavedTime(set), when + Day);
  EXPECT_EQ(When(), when + Day);
}

TEST_F(WakeUpTest, ActsAsItsQuestionsAreAnswered) {
  const std::string set = Path("deeds.kestrin"), file = Path("letter.txt");
  const int64 when = Soon();
  const auto mark = [this](const char* name) { return "echo ran >> '" + Path(name) + "'"; };
  WriteFile(file, "Dear Ada,\n");
  OpenWith("text/plain", "Letter Writer", "echo \"$1\" > '" + Path("read") + "'");
  {
    SetMaker maker(Now());
    maker.Run(maker.AddDaily("Unasked", when), mark("unasked"), false);
    maker.Run(maker.AddDaily("Agreed", when), mark("agreed"), true);
    maker.Run(maker.AddDaily("Refused", when), mark("refused"), true);
    maker.ActOn(maker.AddDaily("Letter", when), file, true);
    maker.Save(set);
  }
  Remember({set});
  ASSERT_NO_FATAL_FAILURE(HandOver(when));

  const Reader::Alert agreed = WaitForAlert("Agreed"), refused = WaitForAlert("Refused"),
                      letter = WaitForAlert("Letter\n");
  EXPECT_EQ(agreed.text,
            "Kestrin event:  Agreed\n\nKestrin is about to execute a shell command: \"" +
                mark("agreed") + "\".  Should the command be executed?");
  EXPECT_THAT(letter.text, HasSubstr("\n\nKestrin is about to open the file \"" + file +
                                     "\" with the application Letter Writer."));
  ASSERT_THAT(agreed.Labels(), ElementsAre("Cancel", "Ok"));
  EXPECT_TRUE(Until([&] { return ReadFile(Path("unasked")) == "ran\n"; }));
  EXPECT_EQ(ReadFile(Path("agreed")) + ReadFile(Path("read")), "");
  Press(refused, "Cancel");
  Press(agreed, "Ok");
  Press(letter, "Ok");

  ASSERT_TRUE(WaitForEnd());
  EXPECT_EQ(ReadFile(Path("unasked")), "ran\n");
  EXPECT_EQ(ReadFile(Path("agreed")), "ran\n");
  EXPECT_TRUE(Until([&] { return ReadFile(Path("read")) == file + "\n"; }));
  EXPECT_FALSE(std::filesystem::exists(Path("refused")));
  for (const char* name : {"Unasked", "Agreed", "Refused", "Letter"})
    EXPECT_EQ(SavedTime(set, name), when + Day) << name;
}

// What cannot be loaded is told in alerts, and none of them may stand in the event's way.
TEST_F(WakeUpTest, DeliversInTimeWhateverElseIsBroken) {
  const std::string set = Path("day.kestrin"), missing = Path("missing.kestrin");
  const std::string addOn = Path("home/.local/lib/kestrin/add-ons/Broken.so");
  const int64 when = Soon();
  {
    SetMaker maker(Now());
    maker.Run(maker.AddDaily("Foreign", when + 7200), "\x01 any bytes \xfe", true);
    maker.Say(maker.AddDaily("Tea", when), "Put the kettle on.");
    maker.Save(set);
  }
  std::string bytes = ReadFile(set);
  const std::string handler = "Command", notInstalled = "Sonnets";
  WriteFile(set, bytes.replace(bytes.find(handler), handler.size(), notInstalled));
  const nlohmann::json foreign = SavedEvent(set, "Foreign");
  ASSERT_EQ(foreign.at("HandlerName"), notInstalled);
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
  EXPECT_EQ(SavedTime(set), when + Day);
  EXPECT_EQ(SavedEvent(set, "Foreign"), foreign);
  EXPECT_THAT(ReadFile(SettingsFile()), testing::Not(HasSubstr(missing)));
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
  ASSERT_NO_FATAL_FAILURE(HandOver(when, false));

  ASSERT_TRUE(Until([&] { return std::filesystem::exists(Path("ran")); }));
  const int64 seen = Now();
  ASSERT_TRUE(WaitForEnd());
  EXPECT_EQ(SavedTime(set, "Work"), when + Day);
  EXPECT_EQ(SavedTime(set), when);
  EXPECT_GE(When(), when + 60);
  EXPECT_LE(When(), Now() + 60);
  EXPECT_GE(seen, when);
  EXPECT_THAT(Bus().Errors(),
              HasSubstr("kestrin: no display: what needs a window stays due for another minute\n"));
}

}  // namespace
}  // namespace kestrin
