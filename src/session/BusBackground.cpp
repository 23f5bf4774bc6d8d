#include "session/BusBackground.h"

#include <algorithm>
#include <cstdio>
#include <thread>
#include <utility>

#include "core/loop/MessageCodes.h"
#include "session/ActivationFile.h"
#include "session/BusMessages.h"
#include "session/BusNames.h"
#include "support/WholeFile.h"

namespace kestrin {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds BetweenLooks{20}, WhileFinishing{1};
constexpr char ApplicationProgram[] = "kestrin";
constexpr uint32 NoFlags = 0;

bool IsError(const QDBusMessage& reply) { return reply.type() != QDBusMessage::ReplyMessage; }

bool MeansNoOwner(const QString& error) {
  return error == "org.freedesktop.DBus.Error.NameHasNoOwner" ||
         error == "org.freedesktop.DBus.Error.ServiceUnknown";
}

}  // namespace

BusBackground::BusBackground(QDBusConnection bus, FileDoor& files, MessageQueue& queue)
    : BusBackground(std::move(bus), files, queue, Patience()) {}

BusBackground::BusBackground(QDBusConnection bus, FileDoor& files, MessageQueue& queue,
                             Patience patience)
    : bus_(std::move(bus)),
      files_(files),
      queue_(queue),
      patience_(patience),
      watcher_(BackgroundBusName, bus_, QDBusServiceWatcher::WatchForUnregistration) {
  look_.setInterval(BetweenLooks);
  later_.setSingleShot(true);
  QObject::connect(&look_, &QTimer::timeout, [this] { LookAgain(); });
  QObject::connect(&later_, &QTimer::timeout, [this] { queue_.Post(BACKGROUND_GONE); });
  QObject::connect(&watcher_, &QDBusServiceWatcher::serviceUnregistered,
                   [this] { DelivererGone(); });
}

void BusBackground::Launch(const Message* message, const std::string& file) {
  if (message) message_ = *message;
  if (!file.empty()) file_ = file;
  // Where one is just being started, it gets the message as soon as it runs.
  if (step_ == Step::None || step_ == Step::Asking) Ask();
}

void BusBackground::AskToQuit() {
  quitting_ = true;
  message_ = Message(QUIT_REQUESTED);
  if (step_ == Step::None || step_ == Step::Asking) Ask();
}

void BusBackground::Send(Step step, const QDBusMessage& call, milliseconds patience) {
  if (!bus_.isConnected()) {
    End(false);
    return;
  }
  step_ = step;
  answerBy_ = Clock::now() + patience * 9 / 10;  // the library's timers are coarse
  call_ = std::make_unique<QDBusPendingCallWatcher>(
      bus_.asyncCall(call, static_cast<int>(patience.count())));
  QObject::connect(call_.get(), &QDBusPendingCallWatcher::finished,
                   [this](QDBusPendingCallWatcher* answered) {
                     call_.release()->deleteLater();
                     Answered(answered->reply());
                   });
}

void BusBackground::Answered(const QDBusMessage& reply) {
  switch (step_) {
    case Step::Asking:
      AskAnswered(reply);
      break;
    case Step::Starting:
      if (IsError(reply))
        Spawn();
      else if (message_)
        Ask();
      else
        End(true);
      break;
    case Step::Naming:
      if (WriteFiles(reply))
        Send(Step::Reloading, MakeBusCall("ReloadConfig"), patience_.answer);
      else
        End(true);
      break;
    default:
      End(true);
  }
}

// One round trip: the message itself, or without one the question whether the name has an owner.
// The bus keeps the order of messages, so the answer to one before this is not waited for.
void BusBackground::Ask() {
  QDBusMessage call =
      message_ ? MakeBackgroundCall(*message_) : MakeBusCall("NameHasOwner") << BackgroundBusName;
  call.setAutoStartService(false);
  Send(Step::Asking, call, patience_.answer);
}

void BusBackground::AskAnswered(const QDBusMessage& reply) {
  const QString error = reply.errorName();
  const bool silent = error == "org.freedesktop.DBus.Error.NoReply";
  // The bus says the same of one that ended with the message unread, but before the time.
  const bool ended = silent && Clock::now() < answerBy_;
  const bool nobody = IsError(reply) ? ended || MeansNoOwner(error)
                                     : !message_ && !reply.arguments().value(0).toBool();
  if (quitting_ && !spawned_) {
    End(true);
  } else if (nobody) {
    NobodyThere();
  } else if (IsError(reply) && !silent && error != NotKeptError) {
    Spawn();
  } else {
    // What has no answer yet waits in the queue of one that runs.
    if (IsError(reply))
      std::fprintf(stderr, "kestrin: the background deliverer: %s\n",
                   silent ? "no answer" : reply.errorMessage().toStdString().c_str());
    message_.reset();
    if (spawned_)
      Send(Step::Naming, MakeBusCall("ListActivatableNames"), patience_.answer);
    else
      End(true);
  }
}

void BusBackground::NobodyThere() {
  if (spawned_) {
    step_ = Step::Spawned;
    if (lastLook_) End(false);
    return;
  }
  const std::optional<std::string> program = FindActivatedProgram(files_, BackgroundBusName);
  inTrash_ = program && LiesInTrash(files_, *program);
  if (inTrash_ || std::exchange(started_, true))
    Spawn();
  else
    Send(Step::Starting, MakeBusCall("StartServiceByName") << BackgroundBusName << NoFlags,
         patience_.start);
}

void BusBackground::Spawn() {
  const bool tried =
      quitting_ || file_.empty() || std::exchange(spawned_, true) || !bus_.isConnected();
  if (!tried && (!program_ || program_->Path() != file_ || program_->EndsWithin(milliseconds(0))))
    program_ = DetachedProgram::Start(file_);
  if (tried || !program_) {
    End(false);
    return;
  }
  step_ = Step::Spawned;
  startBy_ = Clock::now() + patience_.start;
  look_.start();
}

void BusBackground::LookAgain() {
  if (step_ != Step::Spawned) return;
  // Looked at before the call: another process may hold the name that this one found taken.
  lastLook_ = program_->EndsWithin(milliseconds(0)) || Clock::now() >= startBy_;
  Ask();
}

bool BusBackground::WriteFiles(const QDBusMessage& names) {
  if (IsError(names)) return false;
  const QStringList activatable = names.arguments().value(0).toStringList();
  if (Knows(BackgroundBusName, activatable) && Knows(ApplicationBusName, activatable)) return false;

  const std::string folder = ActivationFolder() + "/";
  if (files_.MakeFolders(ActivationFolder(), 0700) != StatusOk) return false;
  const std::string application = file_.substr(0, file_.rfind('/') + 1) + ApplicationProgram;
  const std::pair<std::string, std::string> entries[] = {{BackgroundBusName, file_},
                                                         {ApplicationBusName, application}};
  for (const auto& [name, program] : entries)
    if (const std::optional<std::string> text = ActivationText(name, program))
      WriteWholeFile(files_, (folder + name).append(".service"), *text);
  return true;
}

// A name that the bus knows from a folder of its own configuration is its own business.
bool BusBackground::Knows(const std::string& name, const QStringList& activatable) {
  if (!activatable.contains(QString::fromStdString(name))) return false;
  const std::optional<std::string> program = FindActivatedProgram(files_, name);
  return !program || files_.Kind(*program) != FileKind::Missing;
}

void BusBackground::Reset() {
  look_.stop();
  call_.reset();
  step_ = Step::None;
  message_.reset();
  file_.clear();
  quitting_ = inTrash_ = started_ = spawned_ = lastLook_ = false;
}

void BusBackground::End(bool runs) {
  const bool isAwaited = !file_.empty() && !quitting_;
  Message outcome(BACKGROUND_LAUNCHED);
  outcome.Set("runs", runs);
  outcome.Set("inTrash", inTrash_);
  // What came while the bus was told of the file.
  const std::optional<Message> next = runs && spawned_ ? std::move(message_) : std::nullopt;
  Reset();
  if (isAwaited && finishing_)
    outcome_ = std::move(outcome);
  else if (isAwaited)
    queue_.Post(std::move(outcome));
  if (next && next->what == QUIT_REQUESTED)
    AskToQuit();
  else if (next)
    Launch(&*next, {});
}

std::optional<Message> BusBackground::Finish() {
  const Clock::time_point deadline = Clock::now() + patience_.leaving;
  finishing_ = true;
  while (step_ != Step::None && Clock::now() < deadline) {
    if (step_ == Step::Spawned) {
      LookAgain();
    } else if (call_->isFinished()) {
      const std::unique_ptr<QDBusPendingCallWatcher> call = std::move(call_);
      Answered(call->reply());
    } else {
      std::this_thread::sleep_for(WhileFinishing);
    }
  }
  Reset();
  finishing_ = false;
  return std::exchange(outcome_, std::nullopt);
}

// One that dies again and again is not started again and again.
void BusBackground::DelivererGone() {
  if (later_.isActive()) return;
  const Clock::time_point now = Clock::now();
  if (lastGone_ && now - *lastGone_ < patience_.again) {
    later_.start(patience_.again);
    return;
  }
  lastGone_ = now;
  queue_.Post(BACKGROUND_GONE);
}

}  // namespace kestrin
