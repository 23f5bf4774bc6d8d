// What the built-in handlers carry out for an event: a command or a file, after a question if there
// is to be one.
#pragma once

#include <string>

#include "handlers/DeliveryAlert.h"

namespace kestrin {

class EventSet;
struct ActionPlan;

struct DeliveryWork {
  std::string Head;           ///< what everything that is told begins with: the event
  bool Asks = false;          ///< the person decides
  std::string Command, File;  ///< what it carries out: the one or the other
};

/// Main thread. Returns at once; holds the application until the work is done and everything told.
/// The answer "Cancel", which any end of the question but "Ok" counts as, drops the work. A command
/// has been started, or waits in the journal, when this returns; a file is looked at and opened in
/// workers alone.
void AskThenWork(const DeliveredEvent& delivered, const DeliveryWork& work);

/// What a record of the journal has left to do; the event may be gone. Nothing happens when another
/// session does it.
void WorkOfRecord(Context& context, const std::string& record, const ActionPlan& plan);

/// Whether commands and files of the event's set are carried out unasked: docs/trust.md.
bool IsTrusted(const EventSet& set);

/// What commands and files the set's events would carry out, a line each; empty when there is none.
std::string WhatItCarriesOut(const EventSet& set);

}  // namespace kestrin
