// A delivery of the past is shown once more.
#pragma once

#include "core/journal/LookBack.h"

namespace kestrin {

struct Context;

/// Shows what the delivery showed, or that it was due, as a message: its button does nothing but
/// close, so nothing is carried out again. It can be put off. Main thread, no set locked.
void RemindAgain(Context& context, const PastDelivery& past);

}  // namespace kestrin
