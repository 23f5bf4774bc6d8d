#include "session/SessionBus.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTimer>

#include "session/BusMessages.h"

namespace kestrin {

namespace fs = std::filesystem;

void ScopedVariables::Exchange() {
  for (auto& [name, value] : values_) {
    const char* const now = getenv(name.c_str());
    const auto before = now ? std::optional<std::string>(now) : std::nullopt;
    if (value)
      setenv(name.c_str(), value->c_str(), 1);
    else
      unsetenv(name.c_str());
    value = before;
  }
}

bool RunUntil(const std::function<bool()>& condition) {
  QTimer patience;
  patience.setSingleShot(true);
  patience.start(Patience);
  while (!condition() && patience.isActive())
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  return condition();
}

SessionBus::SessionBus()
    : variables_({{"HOME", folder_ / "home"},
                  {"XDG_DATA_HOME", folder_ / "data"},
                  {"XDG_DATA_DIRS", folder_ / "system"},
                  {"XDG_RUNTIME_DIR", folder_ / "runtime"},
                  {"KESTRIN_PEER_LOG", folder_ / "log"},
                  {"DISPLAY", std::nullopt},
                  {"XDG_ACTIVATION_TOKEN", std::nullopt},
                  {"DESKTOP_STARTUP_ID", std::nullopt}}),
      client_(QDBusConnection::connectToBus(QString::fromStdString(bus_.Address()), "client")) {
  for (const char* name : {"home", "data", "system", "runtime"})
    fs::create_directory(folder_ / name);
  bus_.ServeDataFolder(folder_ / "data");
  EXPECT_TRUE(client_.isConnected());
}

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

void SessionBus::Activatable(const std::string& name, const std::string& program) {
  bus_.AddService(name, program);
  CallBus("ReloadConfig");
}

}  // namespace kestrin

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
