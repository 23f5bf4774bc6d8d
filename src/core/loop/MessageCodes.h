// What-codes of messages. The numbers below 100 and the four-character codes are fixed: windows,
// the background deliverer and add-ons rely on them.
#pragma once

#include "support/Message.h"

namespace kestrin {

enum MessageCode : uint32 {
  NEW_EVENT_SET = 1,
  OPEN_EVENT_SET = 2,
  OPEN_SETTINGS_WINDOW = 3,
  FULL_QUIT_REQUESTED = 4,
  HELP_REQUESTED = 5,
  EVENT_DEALT_WITH = 6,
  EVENT_SETS_CHANGED = 7,
  PREWARN_ALERT_REPLY = 8,  ///< int32 "which", int64 "Event" and "EventSet" (handles), int32
  NAG_ALERT_REPLY = 9,      ///< "Occurrence" (the ActualEventTime the alert was for)

  DELIVER_EVENTS = FourCharCode("DelE"),      ///< optional int32 "Late": by so many seconds
  PROCESS_HOLD_DONE = FourCharCode("Sphd"),   ///< optional int64 "EventSet": whose hold it was
  NEXT_EVENT_MESSAGE = FourCharCode("SetE"),  ///< optional int32 "When", "Since" (docs/bus.md)
  QUIT_REQUESTED = FourCharCode("_QRQ"),      ///< optional bools "IfIdle": only while nothing
                                              ///< holds; "Again": unless it was given up since
  ABOUT_REQUESTED = FourCharCode("_ABR"),

  // Of the application to itself.
  OPEN_FILES = FourCharCode("OpnF"),  ///< string "path" fields numbered "0", "1", …; bool "window"
  SHOW_HISTORY = FourCharCode("Hist"),
  SHOW_SAMPLE = FourCharCode("Smpl"),     ///< the sample set, in a window
  SETS_OPENED = FourCharCode("Opnd"),     ///< sets were loaded: what is due in them may be missed
  SET_DISCARDED = FourCharCode("Dscd"),   ///< string "path": changes of that set were thrown away
  EDITS_CHANGED = FourCharCode("Edit"),   ///< a set was edited, saved or closed: look at its copy
  COPY_EDITS = FourCharCode("Copy"),      ///< unsaved edits have waited long enough for a copy
  WORK_DONE = FourCharCode("Work"),       ///< a worker is back (BackgroundWork)
  START_COMMANDS = FourCharCode("Cmds"),  ///< commands that wait for their turn (CommandQueue)
  ACTIVATE = FourCharCode("Actv"),        ///< a second plain launch: open or raise the interface
  ALERTS_WAITING = FourCharCode("Alrt"),  ///< the alert desk has windows to open
  SETTINGS_CHANGED = FourCharCode("StCh"),
  ERROR_FOUND = FourCharCode("ErrF"),      ///< string "text": by somebody who may hold a set's lock
  SESSION_SAVED = FourCharCode("SnSv"),    ///< the desktop's session is saved, or is about to end
  RESUMED = FourCharCode("Rsmd"),          ///< the machine has slept
  BACKGROUND_GONE = FourCharCode("BgGn"),  ///< the background deliverer has ended
  BACKGROUND_LAUNCHED = FourCharCode("BgLd"),  ///< bools "runs", "inTrash": what has come of it
  FORCED_QUIT = FourCharCode("FrcQ"),          ///< a signal or the end of the desktop session
  JOURNAL_SYNCED = FourCharCode("JrSy"),       ///< what was written down before is durable
  FILES_CHANGED = FourCharCode("FlCh"),        ///< somebody may have written an open set's file
  PASSES_AT_REST = FourCharCode("Rest"),  ///< nothing is due any more: save what delivery changed
};

}  // namespace kestrin
