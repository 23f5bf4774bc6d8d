// How pages that a check box switches on are laid out.
#pragma once

class QCheckBox;
class QString;
class QWidget;

namespace kestrin {

/// Puts the box at the top of the page and, set in below its label, a widget with a column for all
/// that the box switches.
QWidget* BuildSwitchedPage(QWidget& page, QCheckBox& box, const char* objectName);

/// Adds a caption and, below it, what it names, which takes the room that is left.
void AddCaptioned(QWidget& column, const QString& caption, QWidget* content);

}  // namespace kestrin
