// Events on the system's clipboard, in the two forms of docs/event-message.md.
#pragma once

#include <memory>

namespace kestrin {

class Event;
class EventSet;

/// The type under which the clipboard holds an event's message.
inline constexpr char EventClipboardType[] = "application/x-vnd.ZR-KestrinEvent";

/// Replaces the clipboard's content. False, with the clipboard empty, when the event's handler
/// fails: then the event exists nowhere else.
bool CopyEvent(Event& event);

/// The clipboard's event, made for `set` but not yet in it; null when there is none, or no whole
/// one. What the user should know of a cut text is told. The set is not locked.
std::unique_ptr<Event> EventFromClipboard(EventSet& set);

/// Whether pasting may give something. Asks the program that owns the clipboard: not for a loop.
bool ClipboardHasEvent();

}  // namespace kestrin
