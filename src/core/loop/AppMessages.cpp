#include "core/loop/AppMessages.h"

namespace kestrin {

Message QuitIfIdle() {
  Message quit(QUIT_REQUESTED);
  quit.Set("IfIdle", true);
  return quit;
}

Message QuitOnceMore(bool ifIdle) {
  Message again(QUIT_REQUESTED);
  again.Set("IfIdle", ifIdle);
  again.Set("Again", true);
  return again;
}

Message AlertReply(MessageCode code, uint64 set, uint64 event, int32 occurrence, int which) {
  Message reply(code);
  reply.Set("which", int32{which});
  reply.Set("Event", static_cast<int64>(event));
  reply.Set("EventSet", static_cast<int64>(set));
  reply.Set("Occurrence", occurrence);
  return reply;
}

Message OpenFiles(const std::vector<std::string>& paths, bool window) {
  Message open(OPEN_FILES);
  for (size_t i = 0; i < paths.size(); ++i) open.Set(std::to_string(i), paths[i]);
  open.Set("window", window);
  return open;
}

Message ErrorFound(const std::string& text) {
  Message message(ERROR_FOUND);
  message.Set("text", text);
  return message;
}

Message SetDiscarded(const std::string& path) {
  Message discarded(SET_DISCARDED);
  discarded.Set("path", path);
  return discarded;
}

Message HelpAt(const std::string& chapter) {
  Message message(HELP_REQUESTED);
  message.Set("Chapter", chapter);
  return message;
}

}  // namespace kestrin
