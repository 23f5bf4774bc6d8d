// What a person did, in words.
#pragma once

#include <QString>

#include "core/editing/EditHistory.h"

namespace kestrin {

/// For a menu item, as in "Undo change of 'Tea'".
QString StepPhrase(const ToldStep& step);

/// What the foot of the window offers back; empty for a step that can be seen where it was done.
QString StepReport(const ToldStep& step);

}  // namespace kestrin
