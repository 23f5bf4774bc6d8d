// Events on the system's clipboard, in the two forms of docs/event-message.md.
#pragma once

#include <memory>
#include <vector>

namespace kestrin {

class Event;
class EventSet;

/// The type under which the clipboard holds an event's message.
inline constexpr char EventClipboardType[] = "application/x-vnd.ZR-KestrinEvent";
/// And that of several.
inline constexpr char EventsClipboardType[] = "application/x-vnd.ZR-KestrinEvents";

/// Replaces the clipboard's content by `events`, of which `current` is the one for whoever knows
/// only one. False, with the clipboard empty, when a handler fails: then the event exists nowhere
/// else.
bool CopyEvents(Event& current, const std::vector<Event*>& events);

/// The clipboard's events, made for `set` but not yet in it; those that are not whole are left out.
/// What the user should know of cut texts is told. The set is not locked.
std::vector<std::unique_ptr<Event>> EventsFromClipboard(EventSet& set);

}  // namespace kestrin
