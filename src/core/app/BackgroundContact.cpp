#include "core/app/BackgroundContact.h"

namespace kestrin {

namespace {

constexpr char BackgroundSignature[] = "application/x-vnd.ZR-KestrinBackground";
constexpr char BackgroundFile[] = "KestrinBackground";

}  // namespace

void BackgroundContact::LaunchBackgroundApp(const Message* message) {
  background_.Launch(message, folder_ + "/" + BackgroundFile);
}

void BackgroundContact::Launched(const Message& outcome) {
  if (outcome.Get<bool>("inTrash").value_or(false) && !AlreadyToldUser) {
    notices_.ReportError(
        "Please remove KestrinBackground from the trash, the system refuses to launch it from "
        "there.");
    AlreadyToldUser = true;
  }
  if (outcome.Get<bool>("runs").value_or(false)) {
    if (AlreadyToldUser)
      notices_.Inform("Kestrin",
                      "Kestrin successfully started its background executable, and can now "
                      "deliver events normally.",
                      "Continue");
    AlreadyToldUser = false;
  } else if (!AlreadyToldUser) {
    AlreadyToldUser = true;
    notices_.ReportCompoundError(
        "Kestrin was unable to locate its background executable (the file should be named "
        "\"KestrinBackground\", and should have the signature \"",
        BackgroundSignature,
        "\").  Normally, it should be in the same folder as Kestrin.  Without it, Kestrin will be "
        "unable to inform you when events occur, although you can still edit event sets and the "
        "events they contain.");
  }
}

void BackgroundContact::Finish() {
  if (const auto outcome = background_.Finish()) Launched(*outcome);
}

}  // namespace kestrin
