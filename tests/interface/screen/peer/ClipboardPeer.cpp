// Another Kestrin process, as far as the clipboard can tell.
//
//     clipboard_peer paste        prints the message of the clipboard's event, or "nothing"
//     clipboard_peer copy NAME    copies an event, prints "copied", stays until its input ends

#include <QSocketNotifier>
#include <cstdio>
#include <cstring>

#include "core/files/EventMessage.h"
#include "handlers/MessageDataHandler.h"
#include "harness/ScreenContext.h"
#include "interface/sets/EventClipboard.h"

namespace kestrin {
namespace {

int Say(const std::string& text) {
  std::puts(text.c_str());
  return std::fflush(stdout);
}

int Paste() {
  ScreenContext context;
  const auto event = EventFromClipboard(context.NewSet());
  Message message;
  const bool whole = event && GenerateMessageForEvent(*event, &message);
  return Say(whole ? message.Flatten() : "nothing");
}

int Copy(const char* name) {
  ScreenContext context;
  Event& event = *context.NewSet().AddEvent(nullptr);
  event.SetName(name);
  dynamic_cast<MessageDataHandler&>(*event.GetAddOnData()).SetMessage("from the peer");
  if (!CopyEvent(event)) return 1;
  QSocketNotifier ended(0, QSocketNotifier::Read);
  QObject::connect(&ended, &QSocketNotifier::activated, qApp, &QCoreApplication::quit);
  Say("copied");
  return QApplication::exec();
}

}  // namespace
}  // namespace kestrin

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  if (argc == 3 && std::strcmp(argv[1], "copy") == 0) return kestrin::Copy(argv[2]);
  if (argc == 2 && std::strcmp(argv[1], "paste") == 0) return kestrin::Paste();
  return 2;
}
