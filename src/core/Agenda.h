// What would be delivered in a stretch of time, by the delivery code itself on a virtual clock.
#pragma once

#include <string>
#include <vector>

#include "core/VirtualEngine.h"

namespace kestrin {

struct AgendaEntry {
  int64 Time;  ///< when the delivery would happen
  DeliveryKind Kind;
  std::string Event;
  uint64 Set;  ///< the set's handle
  bool Missed;
};

struct AgendaRequest {
  int64 From = 0;
  int64 To = 0;          ///< not included
  bool Startup = false;  ///< keep the stored times; the first pass is that of a start
};

/// More entries than this are not computed.
inline constexpr size_t MaxAgendaEntries = 500000;

/// Runs the open sets, all of which must be remembered and delivering, through the stretch. The
/// sets are changed as real deliveries would change them. False, with the entries so far, when
/// there would be too many.
bool ComputeAgenda(VirtualEngine& engine, const AgendaRequest& request,
                   std::vector<AgendaEntry>& entries);

}  // namespace kestrin
