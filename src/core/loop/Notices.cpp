#include "core/loop/Notices.h"

#include <cstdio>
#include <cstdlib>
#include <future>
#include <memory>
#include <string>
#include <utility>

namespace kestrin {

Notices::Notices(AlertDesk& alerts, Holds& holds, UserInterface& ui)
    : alerts_(alerts), holds_(holds), ui_(ui), mainThread_(std::this_thread::get_id()) {}

void Notices::ReportError(std::string_view text) {
  AlertRequest request;
  request.Title = "Kestrin recoverable error";
  request.Text = text;
  request.Buttons = {"Continue"};
  request.Kind = AlertKind::Warning;
  Tell(std::move(request));
}

void Notices::ReportCompoundError(std::string_view a, std::string_view b, std::string_view c) {
  std::string text(a);
  text.append(b).append(c);
  ReportError(text);
}

void Notices::InformUser(std::string_view text) { Inform("Kestrin", text, "OK"); }

void Notices::Inform(std::string_view title, std::string_view text, std::string_view button) {
  AlertRequest request;
  request.Title = title;
  request.Text = text;
  request.Buttons = {std::string(button)};
  Tell(std::move(request));
}

void Notices::HandleErrorAndExit(std::string_view text) {
  const std::string title = "Kestrin error", words(text);
  std::fprintf(stderr, "%s: %s\n", title.c_str(), words.c_str());
  std::fflush(stderr);
  if (ui_.HasScreen()) ui_.WaitForFatalError(title, words, "Quit");
  std::_Exit(0);
}

void Notices::Tell(AlertRequest request) {
  holds_.ProcessHold();
  Holds& holds = holds_;
  if (std::this_thread::get_id() == mainThread_) {
    request.Done = [&holds](int) { holds.ProcessDone(); };
    alerts_.Show(std::move(request));
    return;
  }
  const auto closed = std::make_shared<std::promise<void>>();
  std::future<void> wait = closed->get_future();
  request.Done = [&holds, closed](int) {
    holds.ProcessDone();
    closed->set_value();
  };
  alerts_.Show(std::move(request));
  wait.wait();
}

}  // namespace kestrin
