// An event's editor on the screen, worked as a person works it: by keys and the mouse.
#pragma once

#include <gmock/gmock.h>

#include <QAbstractItemView>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QLabel>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QTabWidget>
#include <QtTest/QTest>

#include "harness/ScreenContext.h"
#include "interface/editor/EventWindow.h"
#include "interface/fields/TypedField.h"

namespace kestrin {

struct EditorTest : testing::Test {
  enum Tab { ActionTab, WhenTab, PrewarningTab, NaggingTab, CommentTab };

  ScreenContext context;
  EventSet* set = &context.NewSet();
  Event* event = nullptr;
  EventWindow* window = nullptr;

  EventWindow& Open(Event& of, int tab = WhenTab) {
    event = &of;
    of.SetTabShown(tab);
    of.OpenWindow();
    window = dynamic_cast<EventWindow*>(of.GetWindow());
    if (!QTest::qWaitForWindowActive(window)) ADD_FAILURE() << "the editor is not active";
    return *window;
  }
  /// A new event that already has a name.
  EventWindow& OpenNew(int tab = WhenTab) {
    Event* made = set->AddEvent(nullptr);
    made->SetName("Water the plants");
    return Open(*made, tab);
  }
  EventWindow& OpenRecord(EventRecord record, int tab = WhenTab) {
    set->AppendRead(std::make_unique<Event>(*set, std::move(record)));
    return Open(*set->Events().back(), tab);
  }
  const EventRecord& Record() const { return event->Record(); }

  template <typename T = QWidget>
  T& Find(const char* name) const {
    T* found = window->findChild<T*>(name);
    if (!found) throw std::runtime_error(std::string("no control called ") + name);
    return *found;
  }
  std::string TextOf(const char* label) const { return Find<QLabel>(label).text().toStdString(); }
  std::string FieldText(const char* field) const {
    return Find<TypedField>(field).text().toStdString();
  }
  std::string Complaint() const {
    const auto& line = Find<QLabel>("complaint");
    return line.isVisible() ? line.text().toStdString() : "";
  }

  /// What the alerts say that were asked for and stand open.
  std::string AlertTexts() {
    QCoreApplication::sendPostedEvents();
    context.RunMessages();
    std::string texts;
    for (QWidget* widget : QApplication::topLevelWidgets())
      if (auto* text = widget->findChild<QPlainTextEdit*>("alertText"); text && widget->isVisible())
        texts += text->toPlainText().toStdString() + '\n';
    return texts;
  }

  /// Types over what is there; commits nothing.
  void Type(const char* field, const char* text) const {
    QWidget& widget = Find(field);
    widget.setFocus();
    QTest::keyClick(&widget, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&widget, Qt::Key_Delete);
    QTest::keyClicks(&widget, text);
  }
  void Enter(const char* field, const char* text) const {
    Type(field, text);
    QTest::keyClick(&Find(field), Qt::Key_Return);
  }
  /// Opens the menu by key, goes down to the item, and takes it; false when it cannot be reached.
  bool Choose(const char* name, const char* label) const {
    auto& menu = Find<QComboBox>(name);
    menu.setFocus();
    QTest::keyClick(&menu, Qt::Key_F4);
    QAbstractItemView* view = menu.view();
    for (int up = 0; up < menu.count(); ++up) QTest::keyClick(view, Qt::Key_Up);
    for (int down = 0; down < menu.count() && view->currentIndex().data().toString() != label;
         ++down)
      QTest::keyClick(view, Qt::Key_Down);
    const bool reached = view->currentIndex().data().toString() == label;
    QTest::keyClick(view, reached ? Qt::Key_Return : Qt::Key_Escape);
    return reached;
  }
  /// One act of a person: "enter date tomorrow", "write comment why" (into a text, which is left
  /// then), "choose month May", "click useTime"; false when there is no such choice.
  bool Do(const std::string& act) const {
    const QStringList words = QString::fromStdString(act).split(' ');
    const std::string control = words[1].toStdString(), what = words.mid(2).join(' ').toStdString();
    if (words[0] == "choose") return Choose(control.c_str(), what.c_str());
    if (words[0] == "click") {
      Click(control.c_str());
      return true;
    }
    words[0] == "enter" ? Enter(control.c_str(), what.c_str())
                        : Type(control.c_str(), what.c_str());
    Find("tabs").setFocus();
    return true;
  }
  void ShowPage(int tab) const { Find<QTabWidget>("tabs").setCurrentIndex(tab); }
  void SaveSet() {
    context.Files.PutFolder("/sets");
    ASSERT_TRUE(set->SaveData());
  }
  void Click(const char* name) const {
    QWidget& widget = Find(name);
    QTest::mouseClick(&widget, Qt::LeftButton, {}, QPoint(8, widget.height() / 2));
  }
  /// Drags something onto a control and lets go of it there; false when it is not welcome.
  bool Drop(const char* name, const QMimeData& dragged) const {
    QWidget& widget = Find(name);
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &dragged, Qt::LeftButton, {});
    QApplication::sendEvent(&widget, &enter);
    if (!enter.isAccepted()) return false;
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction | Qt::MoveAction, &dragged, Qt::LeftButton,
                    Qt::ShiftModifier);
    drop.setDropAction(Qt::MoveAction);
    QApplication::sendEvent(&widget, &drop);
    EXPECT_EQ(drop.dropAction(), Qt::CopyAction) << "who drags it must not delete it";
    return true;
  }
  static void DeleteClosed() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
};

}  // namespace kestrin
