#include "session/PortalFilePanels.h"

#include <utility>

#include "session/PortalPanel.h"

namespace kestrin {

PortalFilePanels::PortalFilePanels(QDBusConnection bus, std::chrono::milliseconds patience)
    : bus_(std::move(bus)), patience_(patience) {}

PortalFilePanels::~PortalFilePanels() = default;

uint64 PortalFilePanels::Ask(const FilePanelRequest& request, Done done) {
  const uint64 number = next_++;
  open_[number].done = std::move(done);
  open_[number].panel = std::make_unique<PortalPanel>(
      bus_, request, number, patience_,
      [this, number](const FilePanelAnswer& answer) { Answered(number, answer); });
  return number;
}

void PortalFilePanels::Withdraw(uint64 panel) {
  const auto found = open_.find(panel);
  if (found == open_.end()) return;
  found->second.panel->Withdraw();
  found->second.panel.release()->deleteLater();  // its own signal may be what calls this
  open_.erase(found);
}

void PortalFilePanels::Answered(uint64 panel, const FilePanelAnswer& answer) {
  const auto found = open_.find(panel);
  if (found == open_.end()) return;
  const Done done = std::move(found->second.done);
  found->second.panel.release()->deleteLater();
  open_.erase(found);
  done(answer);
}

}  // namespace kestrin
