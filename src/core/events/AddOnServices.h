// What the static functions of the public headers work with.
#pragma once

#include <atomic>

namespace kestrin {

struct Context;

/// ProcessHold, ReportError, the add-on settings and their like are promised to add-ons as static
/// functions, which are told no context: it is this one, and when it is null they do nothing. Set
/// by main or by a test, through ServesAddOns; null from UnloadEventHandlers on. Read in any
/// thread. Nothing else of namespace scope changes (scripts/checks/globals.py).
extern std::atomic<Context*> AddOnServices;

/// While it lives, the context serves add-ons.
class ServesAddOns {
 public:
  explicit ServesAddOns(Context& context) : context_(&context) { AddOnServices = context_; }
  ~ServesAddOns() { AddOnServices.compare_exchange_strong(context_, nullptr); }
  ServesAddOns(const ServesAddOns&) = delete;
  ServesAddOns& operator=(const ServesAddOns&) = delete;

 private:
  Context* context_;
};

}  // namespace kestrin
