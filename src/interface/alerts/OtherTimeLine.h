// The line in which a person types when a reminder is to come back.
#pragma once

#include <QWidget>

#include "core/timing/LaterMoments.h"

class QLabel;
class QLineEdit;

namespace kestrin {

struct Context;

/// Says below the line, while it is typed, how it is understood. Return puts off, Escape closes the
/// line; neither reaches the alert.
class OtherTimeLine final : public QWidget {
  Q_OBJECT

 public:
  explicit OtherTimeLine(const Context& context, QWidget* parent = nullptr);

  /// Empty, and with the focus. `begins` as in LaterTerms.
  void Open(int32 begins);

 signals:
  void Chosen(const PutOffMoment& when);
  void Closed();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  TypedMoment Read() const;
  void ShowUnderstood();
  void Take();

  const Context& context_;
  int32 begins_ = 0;
  QLineEdit* line_;
  QLabel* understood_;
};

}  // namespace kestrin
