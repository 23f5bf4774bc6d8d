// Whether a reminder would reach the person, looked at link by link, as a port. Main thread only.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kestrin {

struct ReminderLink {
  std::string Name, Text;  ///< UTF-8
  std::string Mend;        ///< a shell command; empty when the link holds
};

class ReminderCheck {
 public:
  /// `fault` is a sentence for the person when there are no links to show.
  using Done =
      std::function<void(const std::vector<ReminderLink>& links, const std::string& fault)>;
  virtual ~ReminderCheck() = default;
  /// Returns at once; `done` is called once, on a later turn of the event loop, within half a
  /// minute.
  virtual void Look(Done done) = 0;
};

}  // namespace kestrin
