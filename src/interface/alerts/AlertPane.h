// What an alert says and the buttons that answer it: the inside of a box, and the lower part of the
// Reminders window.
#pragma once

#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <vector>

#include "core/ports/Alert.h"
#include "core/timing/LaterMoments.h"

class QHBoxLayout;
class QKeyEvent;
class QLabel;
class QPushButton;

namespace kestrin {

class AlertText;
class LaterMenu;
class OtherTimeLine;
struct Context;

/// "Tea – Kestrin nag".
QString AlertTitle(const AlertRequest& request);

class AlertPane final : public QWidget {
  Q_OBJECT

 public:
  /// Without a context nothing can be put off and no event be opened.
  explicit AlertPane(const Context* context, QWidget* parent = nullptr);

  /// Other text and buttons in the same place. A button that is being pressed while the labels
  /// change does not count. `mayOpen`: the event is there to be opened.
  void ShowRequest(const AlertRequest& request, bool mayOpen);
  /// Why the alert could not be put off; until the next request.
  void Complain(const std::string& why);
  /// The text takes the room it needs, so that the pane is no larger than `largest`.
  void FitText(QSize largest);

  /// For a pane in which one alert follows another: the buttons stand where they stood, the text
  /// takes the room there is, and a double click answers no more than one.
  void KeepButtonsInPlace();

  /// What the button that has the window's focus says; empty for anything else.
  QString FocusedLabel() const;
  /// Gives the focus to the button that says so, or to the default one; a question's are not
  /// entered that way. Nothing happens for the empty text.
  void FocusLabel(const QString& label);
  /// The one that Return presses.
  QPushButton* DefaultButton() const { return default_; }
  /// The letter of a button's mnemonic, without Alt. Not for a question.
  bool PressByLetter(const QKeyEvent& event);
  /// While its menu or line is open, the alert must stay where it is.
  bool IsBusy() const;
  QString Text() const;

 signals:
  void Pressed(int which);
  void PutOff(const PutOffMoment& when);
  void OpenEventWanted();
  /// The pane wants another size.
  void Resized();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Build();
  void ShowButtons(const std::vector<std::string>& labels);
  void ShowDue();
  void ShowComesAgain();
  void ShowLater();
  void OpenLaterMenu();
  void OpenOtherTime();
  void Press(int which);

  const Context* context_;
  AlertRequest request_;
  bool inPlace_ = false;
  bool shownBefore_ = false;
  QElapsedTimer shown_;  ///< since the request is shown
  QTimer dueTimer_;
  std::vector<std::string> labels_;
  AlertRole lettersOf_ = AlertRole::Notice;
  std::vector<QPushButton*> buttons_;
  QPushButton* default_ = nullptr;
  QLabel* icon_ = nullptr;
  QLabel* due_ = nullptr;
  AlertText* text_ = nullptr;
  QLabel* comesAgain_ = nullptr;
  QLabel* complaint_ = nullptr;
  OtherTimeLine* otherTime_ = nullptr;
  QPushButton* openEvent_ = nullptr;
  QPushButton* later_ = nullptr;
  QPointer<LaterMenu> menu_;
  QHBoxLayout* buttonRow_ = nullptr;
};

}  // namespace kestrin
