#include "harness/AppOnScreen.h"

namespace kestrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using HelpTest = AppOnScreen;

TEST_F(HelpTest, OpensThePageBesideTheProgramOrSaysWhyNot) {
  EventSetWindow& window = WindowOf(NewSet());
  Choose(window, "Help…");
  EXPECT_THAT(AlertTexts(), ElementsAre(HasSubstr("The help could not be found.")));
  EXPECT_TRUE(Answer("The help could not be found.", "Cancel"));

  QFile page(Folder.filePath("Kestrin documentation.html"));
  ASSERT_TRUE(page.open(QIODevice::WriteOnly));
  Choose(window, "Help…");
  EXPECT_THAT(It->Machine.Launched, ElementsAre(page.fileName().toStdString()));
  EXPECT_THAT(AlertTexts(), IsEmpty());

  It->Machine.LaunchWorks = false;
  Choose(window, "Help…");
  EXPECT_THAT(AlertTexts(), ElementsAre(HasSubstr(page.fileName().toStdString())));
}

}  // namespace
}  // namespace kestrin
