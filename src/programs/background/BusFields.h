// Reading the fields of a posted message, and naming what the bus says about a failed call.
#pragma once

#include <systemd/sd-bus.h>

#include "kestrin/Types.h"

namespace kestrin {

/// Reads the `a{sv}` that comes next. `when` gets the field "When", or 0 when there is none; other
/// fields are skipped. Below 0 when the message cannot be read; a "When" of another type than int32
/// also sets `error`, and the result can be returned from a bus method as it is.
int ReadNextEventFields(sd_bus_message* message, int32& when, sd_bus_error* error);

/// Whether this error reply means that the bus knows no way to start the application.
bool MeansUnknownToBus(const sd_bus_error& error);

}  // namespace kestrin
