// The icons of events as pictures, for the list, the editor and the panels.
#pragma once

#include <QIcon>
#include <QString>
#include <string>

#include "interface/icons/StandardIconShapes.h"
#include "support/Bitmap.h"

namespace kestrin {

class Event;

/// Sharp at any size and screen density; a number outside the table gives the null icon.
QIcon StandardIcon(int32 index);
QIcon OwnIcon(const IconPair& icon);
/// Null for an event without an icon.
QIcon EventIcon(const Event& event);

/// What the icon shows, for tool tips and screen readers.
QString IconName(int32 index);

/// Rows 0 to 10 of the standard icons as bitmaps.
const std::string& StandardLargeIconData(int32 index);
const std::string& StandardMiniIconData(int32 index);
/// The standard icon with these bytes, or NoIconNumber.
int32 WhichStandardIcon(const IconPair& icon);

}  // namespace kestrin
