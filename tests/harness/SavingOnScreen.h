// What the tests of saving and leaving share: a person at the save panel.
#pragma once

#include <QCheckBox>
#include <QLineEdit>

#include "harness/AppOnScreen.h"
#include "interface/sets/SetFilePanel.h"

namespace kestrin {

class SavingOnScreen : public AppOnScreen {
 protected:
  static SetFilePanel* Panel() { return Find<SetFilePanel>("savePanel"); }
  /// Types a name into the panel, sets the box, and presses Save.
  void Accept(const std::string& name, bool remember) {
    ASSERT_TRUE(Panel());
    auto* edit = Panel()->findChild<QLineEdit*>("fileNameEdit");
    Panel()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(Panel()));
    edit->setFocus();
    edit->setText(QString::fromStdString(name));
    Find<QCheckBox>("rememberForDelivery")->setChecked(remember);
    QTest::keyClick(edit, Qt::Key_Return);
    Run();
  }
  static Event& First(EventSet& set) { return *set.Events().at(0); }
  void Change(EventSet& set, const std::string& name = "changed") {
    First(set).SetName(name);
    Run();
  }
  /// A file that cannot be replaced: its folder has gone.
  void LoseFolder() { QDir(Folder.filePath("sets")).removeRecursively(); }
  std::vector<std::string> Remembered() const { return It->Settings.SetFileNames; }
  const QString Question = "Save changes to the document \"Work.kestrin\"?";
};

}  // namespace kestrin
