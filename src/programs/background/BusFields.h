// Reading the fields of a posted message, and naming what the bus says about a failed call.
#pragma once

#include <systemd/sd-bus.h>

#include "kestrin/Types.h"

namespace kestrin {

/// Seconds since 1970.
struct NextEventFields {
  int32 When = 0;   ///< 0: nothing is pending
  int32 Since = 0;  ///< 0: lateness counts from When
};

/// Reads the `a{sv}` that comes next; fields of other names are skipped. Below 0 when the message
/// cannot be read; a field of another type than int32 also sets `error`, and the result can be
/// returned from a bus method as it is.
int ReadNextEventFields(sd_bus_message* message, NextEventFields& fields, sd_bus_error* error);

/// Whether this error reply means that the bus knows no way to start the application.
bool MeansUnknownToBus(const sd_bus_error& error);

}  // namespace kestrin
