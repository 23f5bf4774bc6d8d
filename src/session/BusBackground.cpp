#include "session/BusBackground.h"

#include <algorithm>
#include <utility>

#include "core/loop/MessageCodes.h"
#include "session/ActivationFile.h"
#include "session/BusMessages.h"
#include "session/BusNames.h"
#include "support/WholeFile.h"

namespace kestrin {

namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

constexpr milliseconds BetweenLooks{5};
constexpr char ApplicationProgram[] = "kestrin";
constexpr uint32 NoFlags = 0;

milliseconds TimeLeft(Clock::time_point deadline) {
  const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
  return std::max(left, milliseconds(1));
}

bool IsError(const QDBusMessage& reply) { return reply.type() != QDBusMessage::ReplyMessage; }

bool MeansNoOwner(const QString& error) {
  return error == "org.freedesktop.DBus.Error.NameHasNoOwner" ||
         error == "org.freedesktop.DBus.Error.ServiceUnknown";
}

}  // namespace

BusBackground::BusBackground(QDBusConnection bus, FileDoor& files, milliseconds patience)
    : bus_(std::move(bus)), files_(files), patience_(patience) {}

LaunchResult BusBackground::Launch(const Message* message) {
  const Deadline deadline = Clock::now() + patience_;
  const Reached running = Reach(message, false, deadline);
  if (running == Reached::Yes) return LaunchResult::AlreadyRunning;
  if (running == Reached::Failed) return LaunchResult::Failed;
  const std::optional<std::string> program = FindActivatedProgram(files_, BackgroundBusName);
  if (program && LiesInTrash(files_, *program)) return LaunchResult::InTrash;
  return Reach(message, true, deadline) == Reached::Yes ? LaunchResult::Started
                                                        : LaunchResult::Failed;
}

LaunchResult BusBackground::LaunchFile(const std::string& path, const Message* message) {
  if (!bus_.isConnected()) return LaunchResult::Failed;
  const Deadline deadline = Clock::now() + patience_;
  if (!program_ || program_->Path() != path || program_->EndsWithin(milliseconds(0)))
    program_ = DetachedProgram::Start(path);
  if (!program_) return LaunchResult::Failed;
  while (Clock::now() < deadline) {
    // Looked at before the call: another process may hold the name that this one found taken.
    const bool ended = program_->EndsWithin(milliseconds(0));
    const Reached reached = Reach(message, false, deadline);
    if (reached == Reached::Yes)
      return ended ? LaunchResult::AlreadyRunning : LaunchResult::Started;
    if (reached == Reached::Failed || ended) return LaunchResult::Failed;
    program_->EndsWithin(BetweenLooks);
  }
  return LaunchResult::Failed;
}

void BusBackground::RegisterFile(const std::string& path) {
  const Deadline deadline = Clock::now() + patience_;
  const std::string application = path.substr(0, path.rfind('/') + 1) + ApplicationProgram;
  const QDBusMessage names = Call(MakeBusCall("ListActivatableNames"), deadline);
  if (IsError(names)) return;
  const QStringList activatable = names.arguments().value(0).toStringList();
  if (Knows(BackgroundBusName, activatable) && Knows(ApplicationBusName, activatable)) return;

  const std::string folder = ActivationFolder() + "/";
  if (files_.MakeFolders(ActivationFolder(), 0700) != StatusOk) return;
  const std::pair<std::string, std::string> entries[] = {{BackgroundBusName, path},
                                                         {ApplicationBusName, application}};
  for (const auto& [name, program] : entries)
    if (const std::optional<std::string> text = ActivationText(name, program))
      WriteWholeFile(files_, (folder + name).append(".service"), *text);
  Call(MakeBusCall("ReloadConfig"), deadline);
}

// A name that the bus knows from a folder of its own configuration is its own business.
bool BusBackground::Knows(const std::string& name, const QStringList& activatable) {
  if (!activatable.contains(QString::fromStdString(name))) return false;
  const std::optional<std::string> program = FindActivatedProgram(files_, name);
  return !program || files_.Kind(*program) != FileKind::Missing;
}

void BusBackground::AskToQuit() {
  const Message quit(QUIT_REQUESTED);
  Reach(&quit, false, Clock::now() + patience_);
}

// One round trip: the message itself, or without one the question whether the name has an owner.
BusBackground::Reached BusBackground::Reach(const Message* message, bool start, Deadline deadline) {
  QDBusMessage call = MakeBusCall(start ? "StartServiceByName" : "NameHasOwner")
                      << BackgroundBusName;
  if (start) call << NoFlags;
  if (message) call = MakeBackgroundCall(*message);
  call.setAutoStartService(start);
  QDBusMessage reply = Call(call, deadline);
  if (reply.errorName() == "org.freedesktop.DBus.Error.NoReply" && !start &&
      Clock::now() < deadline)
    return Reached::NoOwner;  // it quit with the message unread
  if (IsError(reply)) return MeansNoOwner(reply.errorName()) ? Reached::NoOwner : Reached::Failed;
  const bool asked = !message && !start;
  return !asked || reply.arguments().value(0).toBool() ? Reached::Yes : Reached::NoOwner;
}

QDBusMessage BusBackground::Call(const QDBusMessage& call, Deadline deadline) {
  return bus_.call(call, QDBus::Block, static_cast<int>(TimeLeft(deadline).count()));
}

}  // namespace kestrin
