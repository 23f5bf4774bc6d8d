// What was delivered, put off and missed, for people to look back at.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/journal/JournalRecord.h"
#include "core/journal/Later.h"
#include "support/FileDoor.h"

namespace kestrin {

struct PastDelivery {
  JournalRecord Record;
  std::optional<ReturnTime> Returns;  ///< it is put off until then
};

/// The state folder's three files as they stand: nothing is written, locked or set aside. Newest
/// first, what is not settled yet among them; each delivery once. Up to 5 MB are read: not at a
/// start. `status`: StatusOk, -EBADMSG when damaged lines were left out, else why a file cannot be
/// read; what could be read is there all the same.
std::vector<PastDelivery> LookBack(FileDoor& files, const std::string& stateFolder,
                                   status_t& status);

/// The file `later` in the same way, in the order in which it was put off.
std::vector<PutOffAlert> ReadPutOff(FileDoor& files, const std::string& stateFolder,
                                    status_t& status);

}  // namespace kestrin
