#include "programs/background/BusFields.h"

#include <string.h>

#include "session/BusNames.h"

namespace kestrin {

namespace {

int ReadMoment(sd_bus_message* message, const char* name, int32& moment, sd_bus_error* error) {
  const char* contents = nullptr;
  const int found = sd_bus_message_peek_type(message, nullptr, &contents);
  if (found < 0) return found;
  if (!contents || strcmp(contents, "i") != 0)
    return sd_bus_error_setf(error, BadFieldError, "The field \"%s\" must be of type int32", name);
  return sd_bus_message_read(message, "v", "i", &moment);
}

}  // namespace

int ReadNextEventFields(sd_bus_message* message, NextEventFields& fields, sd_bus_error* error) {
  fields = {};
  int result = sd_bus_message_enter_container(message, 'a', "{sv}");
  if (result < 0) return result;
  while ((result = sd_bus_message_enter_container(message, 'e', "sv")) > 0) {
    const char* name = nullptr;
    result = sd_bus_message_read_basic(message, 's', &name);
    if (result >= 0)
      result = strcmp(name, "When") == 0    ? ReadMoment(message, name, fields.When, error)
               : strcmp(name, "Since") == 0 ? ReadMoment(message, name, fields.Since, error)
                                            : sd_bus_message_skip(message, "v");
    if (result >= 0) result = sd_bus_message_exit_container(message);
    if (result < 0) return result;
  }
  return result < 0 ? result : sd_bus_message_exit_container(message);
}

bool MeansUnknownToBus(const sd_bus_error& error) {
  static const char* const names[] = {
      "org.freedesktop.DBus.Error.ServiceUnknown",
      "org.freedesktop.DBus.Error.Spawn.ExecFailed",
      "org.freedesktop.DBus.Error.Spawn.FileInvalid",
      "org.freedesktop.DBus.Error.Spawn.ServiceNotFound",
  };
  for (const char* name : names)
    if (sd_bus_error_has_name(&error, name)) return true;
  return false;
}

}  // namespace kestrin
