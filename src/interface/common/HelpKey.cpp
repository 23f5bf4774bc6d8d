#include "interface/common/HelpKey.h"

#include <QKeySequence>
#include <QShortcut>
#include <QWidget>
#include <utility>

#include "core/events/Context.h"
#include "core/loop/AppMessages.h"
#include "core/loop/MessageQueue.h"

namespace kestrin {

void OpenHelpByKey(QWidget& window, const Context& context, std::function<std::string()> chapter) {
  auto* key = new QShortcut(QKeySequence(Qt::Key_F1), &window);
  QObject::connect(
      key, &QShortcut::activated, &window,
      [&queue = context.queue, chapter = std::move(chapter)] { queue.Post(HelpAt(chapter())); });
}

}  // namespace kestrin
