// Where alerts go that were put off.
#pragma once

#include <string>

#include "core/ports/Alert.h"
#include "core/timing/LaterMoments.h"

namespace kestrin {

class PutOffKeeper {
 public:
  virtual ~PutOffKeeper() = default;
  /// The alert is safe on disk when this returns the empty text; else the text, a sentence for the
  /// person, says why it is not. Main thread.
  virtual std::string Keep(const AlertRequest& request, const PutOffMoment& when) = 0;
  /// It is asked for: one that was put off before is known again.
  virtual void Asked(AlertRequest& request) = 0;
  /// The alert is about to open: what stands unanswered of its event is added to its text.
  virtual void Opening(AlertRequest& request) = 0;
  /// It was answered by a person, or a later one took its place.
  virtual void Ended(const AlertRequest& request) = 0;
  /// A person is about to delete the event; it is gone once the set is saved without it.
  virtual void EventDeleted(uint64 set, uint64 event) = 0;
  virtual void SetSaved(uint64 /*set*/) {}
};

}  // namespace kestrin
