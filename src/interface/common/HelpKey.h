// F1.
#pragma once

#include <functional>
#include <string>

class QWidget;

namespace kestrin {

struct Context;

/// From then on F1 in the window opens the help at the chapter that is named then: the id of a
/// heading of the page. The context outlives the window.
void OpenHelpByKey(QWidget& window, const Context& context, std::function<std::string()> chapter);

}  // namespace kestrin
