// What an add-on may ask of its event and of the application.
#pragma once

#include "kestrin/Types.h"

namespace kestrin {

class Event;

// ---- Questions to an event. Main thread, or any thread between LockEvent and UnlockEvent. ----

/// Valid until the event changes; never null.
const char* GetEventName(const Event* event);
const char* GetEventComment(const Event* event);
/// Seconds since 1970, 0 when there is none.
int32 GetActualEventTime(const Event* event);
int32 GetNextEventTime(const Event* event);
/// Whether the event's time has a time of day.
bool GetEventApplyTime(const Event* event);
/// Full path of the set's file. Valid until the set is saved under another name.
const char* GetEventSetFileName(const Event* event);

/// Takes and releases the lock of the event's set. Recursive for the thread that holds it.
void LockEvent(Event* event);
void UnlockEvent(Event* event);
/// Tells the set that the handler's data has changed. The event must be locked.
void SetEventModified(Event* event);

// ---- Services of the application. ----

/// "Kestrin event:  ", the event's name, the missed line when `missed`, then s1 to s5 (s2 to s5
/// may be null). The caller frees the result with delete[].
char* GenerateMessageAlertText(Event* event, bool missed, const char* s1, const char* s2,
                               const char* s3, const char* s4, const char* s5);

/// Shows that text in an alert with the button "Ok" and returns. The caller has taken a
/// ProcessHold, which the alert's end releases. Main thread.
void DeliverEventMessage(Event* event, bool missed, const char* s1, const char* s2, const char* s3,
                         const char* s4, const char* s5);

/// Shows that text as a notification of the desktop and returns; the hold as above. One that nobody
/// has answered when it goes, or that the desktop does not show, becomes that alert. `urgency`:
/// a NotificationUrgency; a larger number counts as UrgencyCritical. Main thread.
void DeliverEventNotification(Event* event, bool missed, uint32 urgency, const char* s1,
                              const char* s2, const char* s3, const char* s4, const char* s5);

/// Reads a value of the application's settings; the bytes stay the store's and are valid until
/// the next call. StatusOk, or StatusError when there is none.
status_t ReadAddOnSetting(const char* name, const void*& data, int32& size, uint32& type);

/// Stores a value beside the application's own settings: choose a name nobody else would.
status_t WriteAddOnSetting(const char* name, const void* data, uint32 size, uint32 type);

/// Keeps `source` in `*target` (allocated with new[], the old text freed); null when empty.
char* SetNewString(const char* source, char** target);
/// A copy made with new[], or null for null and the empty text.
char* GetCopyString(const char* source);

/// Shows a warning with one button. On the main thread it returns at once; another thread waits.
void ReportError(const char* text);

}  // namespace kestrin
