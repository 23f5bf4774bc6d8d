// File panels of the desktop's portal, org.freedesktop.portal.FileChooser.
#pragma once

#include <QtDBus/QDBusConnection>
#include <chrono>
#include <map>
#include <memory>

#include "core/ports/FilePanels.h"

namespace kestrin {

class PortalPanel;

/// Nothing here blocks. A portal that does not say within `patience` that it shows a panel counts
/// as none; once it does, the person has all the time there is.
class PortalFilePanels final : public DesktopFilePanels {
 public:
  static constexpr std::chrono::milliseconds Patience{5000};

  explicit PortalFilePanels(QDBusConnection bus, std::chrono::milliseconds patience = Patience);
  ~PortalFilePanels() override;

  uint64 Ask(const FilePanelRequest& request, Done done) override;
  void Withdraw(uint64 panel) override;

 private:
  void Answered(uint64 panel, const FilePanelAnswer& answer);

  struct Open {
    std::unique_ptr<PortalPanel> panel;
    Done done;
  };
  QDBusConnection bus_;
  std::chrono::milliseconds patience_;
  std::map<uint64, Open> open_;
  uint64 next_ = 1;
};

}  // namespace kestrin
