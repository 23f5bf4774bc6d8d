// Bytes of events and files as texts that may be shown.
#pragma once

#include <QString>
#include <string_view>

namespace kestrin {

/// What is not UTF-8 comes as replacement characters; NULs are left out.
QString ShownText(std::string_view bytes);

/// The same on one line: line ends and other control characters come as blanks, and a text longer
/// than any line of a screen is cut.
QString ShownLine(std::string_view bytes);

/// A line as setWindowTitle takes it: "[*]" stands for itself.
QString WindowTitle(std::string_view bytes);

/// A text as buttons and menus take it: "&" stands for itself.
QString WithoutMnemonic(QString text);

}  // namespace kestrin
