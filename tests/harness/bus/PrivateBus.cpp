#include "harness/bus/PrivateBus.h"

#include <filesystem>

namespace kestrin {

namespace {

namespace fs = std::filesystem;

std::string WriteConfiguration(const std::string& folder) {
  for (const char* name : {"/services", "/run"}) fs::create_directory(folder + name);
  fs::permissions(folder + "/run", fs::perms::owner_all);
  const std::string path = folder + "/bus.conf";
  WriteFile(path, "<busconfig><type>session</type><listen>unix:path=" + folder +
                      "/bus</listen><servicedir>" + folder +
                      "/services</servicedir><policy context=\"default\">"
                      "<allow send_destination=\"*\"/><allow receive_sender=\"*\"/><allow "
                      "own=\"*\"/></policy></busconfig>");
  return path;
}

}  // namespace

PrivateBus::PrivateBus()
    : addressPipe_(folder_.path + "/address"),
      daemon_(
          {"/bin/sh", "-c", "exec \"$0\" --config-file=\"$1\" --nofork --print-address > \"$2\"",
           DBUS_DAEMON, WriteConfiguration(folder_.path), folder_.path + "/address"},
          Environment()) {
  address_ = addressPipe_.NextLine();
  Require(!address_.empty(), "the bus did not start");
}

std::map<std::string, std::string> PrivateBus::Environment() const {
  return {{"DBUS_SESSION_BUS_ADDRESS", address_},
          {"DBUS_STARTER_ADDRESS", ""},
          {"DBUS_STARTER_BUS_TYPE", ""},
          {"XDG_RUNTIME_DIR", RuntimeFolder()}};
}

void PrivateBus::AddService(const std::string& name, const std::string& command) const {
  WriteFile(Folder() + "/services/" + name + ".service",
            "[D-BUS Service]\nName=" + name + "\nExec=" + command + "\n");
}

void PrivateBus::ServeDataFolder(const std::string& dataHome) const {
  fs::create_directories(dataHome + "/dbus-1");
  fs::create_directory_symlink(Folder() + "/services", dataHome + "/dbus-1/services");
}

}  // namespace kestrin
