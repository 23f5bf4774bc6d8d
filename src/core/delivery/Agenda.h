// What would be delivered in a stretch of time, by the delivery code itself on a virtual clock.
#pragma once

#include <string>
#include <vector>

#include "core/delivery/VirtualEngine.h"

namespace kestrin {

struct AgendaEntry {
  int64 Time;  ///< when the delivery would happen
  DeliveryKind Kind;
  std::string Event;
  uint64 Set;  ///< the set's handle
  bool Missed;
  int64 Due;  ///< when it came due: not after Time, and before it for what lay there already
};

struct AgendaRequest {
  int64 From = 0;
  int64 To = 0;          ///< not included
  bool Startup = false;  ///< keep the stored times; the first pass is that of a start
};

/// More entries than this are not computed, nor more bytes of their events' names.
inline constexpr size_t MaxAgendaEntries = 500000;
inline constexpr size_t MaxAgendaNames = size_t{64} << 20;

/// Runs the open sets, all of which must be remembered and delivering, through the stretch and
/// appends what is delivered. The sets are changed as real deliveries would change them, but that
/// events which would delete themselves stay, inactive. False, with the entries so far, when there
/// would be too many.
///
/// Sets deliver independently of each other: the entries of several runs, one a set, are those of a
/// run of all once they are sorted by Time, then by Due, stably.
bool ComputeAgenda(VirtualEngine& engine, const AgendaRequest& request,
                   std::vector<AgendaEntry>& entries);

}  // namespace kestrin
