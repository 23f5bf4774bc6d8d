#include "session/SessionBus.h"

#include <stdlib.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

#include "session/BusMessages.h"

namespace kestrin {

namespace fs = std::filesystem;

ScopedVariable::ScopedVariable(const char* name, std::optional<std::string> value) : name_(name) {
  if (const char* before = getenv(name)) before_ = before;
  Set(name_, value);
}

ScopedVariable::~ScopedVariable() { Set(name_, before_); }

void ScopedVariable::Set(const std::string& name, const std::optional<std::string>& value) {
  if (value)
    setenv(name.c_str(), value->c_str(), 1);
  else
    unsetenv(name.c_str());
}

bool RunUntil(const std::function<bool()>& condition) {
  QTimer patience;
  patience.setSingleShot(true);
  patience.start(Patience);
  while (!condition() && patience.isActive())
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  return condition();
}

SessionBus::SessionBus() {
  const auto set = [this](const char* name, std::optional<std::string> value) {
    variables_.push_back(std::make_unique<ScopedVariable>(name, std::move(value)));
  };
  for (const auto& [name, leaf] : {std::pair{"HOME", "home"},
                                   {"XDG_DATA_HOME", "data"},
                                   {"XDG_DATA_DIRS", "system"},
                                   {"XDG_RUNTIME_DIR", "runtime"}}) {
    fs::create_directory(folder_ / leaf);
    set(name, folder_ / leaf);
  }
  set("KESTRIN_PEER_LOG", folder_ / "log");
  for (const char* name : {"DISPLAY", "XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"})
    set(name, std::nullopt);
  bus_ = std::make_unique<PrivateBus>();
  fs::create_directory(folder_ / "data/dbus-1");
  fs::create_directory_symlink(bus_->Folder() + "/services", folder_ / "data/dbus-1/services");
  set("DBUS_SESSION_BUS_ADDRESS", bus_->Address());
  client_ = QDBusConnection::connectToBus(QString::fromStdString(bus_->Address()), "client");
  EXPECT_TRUE(client_.isConnected());
}

SessionBus::~SessionBus() { QDBusConnection::disconnectFromBus("client"); }

QDBusMessage SessionBus::CallBus(const char* member, const QVariantList& arguments) {
  QDBusMessage call = MakeBusCall(member);
  call.setArguments(arguments);
  return client_.call(call);
}

bool SessionBus::HasOwner(const char* name) {
  return CallBus("NameHasOwner", {name}).arguments().value(0).toBool();
}

fs::path SessionBus::Install(const std::string& name, const std::string& folder) {
  fs::create_directories(folder_ / folder);
  const fs::path program = folder_ / folder / name;
  fs::create_symlink(SESSION_PEER, program);
  return program;
}

std::unique_ptr<Child> SessionBus::Start(const std::string& program,
                                         std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), program);
  return std::make_unique<Child>(std::move(arguments), std::map<std::string, std::string>(),
                                 folder_);
}

std::string SessionBus::ActivationFile(const std::string& name) const {
  return bus_->Folder() + "/services/" + name + ".service";
}

void SessionBus::Activatable(const std::string& name, const std::string& program) {
  bus_->AddService(name, program);
  CallBus("ReloadConfig");
}

}  // namespace kestrin
