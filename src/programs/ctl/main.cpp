// kestrinctl: the engine of Kestrin without a screen.
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "core/events/AddOnServices.h"
#include "core/ports/Clock.h"
#include "core/timing/DateTimeText.h"
#include "handlers/LoadEventHandlers.h"
#include "programs/Asked.h"
#include "programs/ctl/Commands.h"

namespace {

using kestrin::CtlArguments;
using kestrin::VirtualEngine;

constexpr char Version[] = "kestrinctl " KESTRIN_VERSION "\n";

constexpr char Usage[] =
    "usage: kestrinctl dump FILE                      everything in an event set, as JSON\n"
    "       kestrinctl next [--json] [--at TIME] FILE  when each event occurs next\n"
    "       kestrinctl show [--at TIME] FILE          each event's rule in words, with its next "
    "dates\n"
    "       kestrinctl agenda [--json] [--startup] [--later] [--from TIME] [--to TIME] FILE...\n"
    "                                                 what would be delivered in a stretch of "
    "time\n"
    "       kestrinctl history [--json]               what was delivered, newest first\n"
    "       kestrinctl why FILE EVENT                 why an event did or did not ring, and "
    "when it does next\n"
    "       kestrinctl check FILE...                  whether files can be read\n"
    "       kestrinctl rewrite IN OUT                 save IN again as OUT, in today's format\n"
    "       kestrinctl status [--json]                link by link, whether a reminder would reach "
    "you\n"
    "       kestrinctl --help | --version\n"
    "\n"
    "TIME is a number of seconds since 1970, or a date as you would type it: \"tomorrow 9am\".\n"
    "agenda begins now and ends 7 days on.\n";

struct Command {
  std::string_view name;
  int (*run)(VirtualEngine&, const CtlArguments&);
  std::string_view options;  ///< separated by blanks
  size_t fewestFiles, mostFiles;
};

constexpr size_t AnyNumber = ~size_t{0};
constexpr int64_t Week = 7 * kestrin::SecondsPerDay;

constexpr Command Commands[] = {
    {"dump", kestrin::Dump, "", 1, 1},
    {"next", kestrin::Next, "--json --at", 1, 1},
    {"show", kestrin::Show, "--at", 1, 1},
    {"agenda", kestrin::AgendaCommand, "--json --startup --later --from --to", 1, AnyNumber},
    {"check", kestrin::Check, "", 1, AnyNumber},
    {"rewrite", kestrin::Rewrite, "", 2, 2},
    {"history", kestrin::HistoryCommand, "--json", 0, 0},
    {"why", kestrin::Why, "", 2, 2},
    {"status", kestrin::Status, "--json", 0, 0},
};

int Wrong(const std::string& what) {
  std::fprintf(stderr, "kestrinctl: %s\n%s", what.c_str(), Usage);
  return kestrin::ExitUsage;
}

bool Admits(std::string_view options, std::string_view option) {
  while (!options.empty()) {
    const size_t end = std::min(options.find(' '), options.size());
    if (options.substr(0, end) == option) return true;
    options.remove_prefix(std::min(end + 1, options.size()));
  }
  return false;
}

bool ParseTime(std::string_view text, int64_t now, const kestrin::Zone& zone, int64_t& time) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), time);
  if (error == std::errc() && end == text.data() + text.size()) return kestrin::FitsTime(time);
  const kestrin::TypedDate date = kestrin::ReadTypedDate(text, now, zone);
  time = date.moment;
  return date.kind == kestrin::TypedDate::Kind::Date;
}

/// Fills `arguments` from what follows the command. Empty, or what is wrong.
std::string Parse(const Command& command, int argc, char** argv, int64_t now,
                  const kestrin::Zone& zone, CtlArguments& arguments) {
  bool toGiven = false;
  bool optionsEnded = false;
  arguments.at = arguments.from = now;
  for (int i = 2; i < argc; ++i) {
    const std::string text = argv[i];
    if (optionsEnded || text.size() < 2 || text[0] != '-') {
      arguments.files.push_back(text);
    } else if (text == "--") {
      optionsEnded = true;
    } else if (!Admits(command.options, text)) {
      return std::string(command.name) + " does not know the option " + text;
    } else if (text == "--json") {
      arguments.json = true;
    } else if (text == "--startup") {
      arguments.startup = true;
    } else if (text == "--later") {
      arguments.later = true;
    } else {
      int64_t& time = text == "--at"   ? arguments.at
                      : text == "--to" ? arguments.to
                                       : arguments.from;
      if (i + 1 == argc) return text + " wants a time after it";
      if (!ParseTime(argv[++i], now, zone, time))
        return std::string("\"") + argv[i] + "\" is not a time that can be used";
      toGiven |= text == "--to";
    }
  }
  if (!toGiven) arguments.to = arguments.from + Week;
  if (arguments.files.size() < command.fewestFiles || arguments.files.size() > command.mostFiles)
    return std::string(command.name) + " wants " +
           (command.run == kestrin::Why      ? "a file and an event's name"
            : command.mostFiles == 0         ? "no file"
            : command.fewestFiles == 2       ? "two files"
            : command.mostFiles == AnyNumber ? "at least one file"
                                             : "one file");
  return "";
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view name = argc > 1 ? argv[1] : "";
  if (const char* const answer = kestrin::AnswerTo(argc, argv, Usage, Version))
    return kestrin::Say(answer);
  const auto* command = std::find_if(std::begin(Commands), std::end(Commands),
                                     [&](const Command& each) { return each.name == name; });
  if (command == std::end(Commands))
    return Wrong(argc > 1 ? "there is no command \"" + std::string(name) + "\"" : "no command");
  VirtualEngine engine;
  const kestrin::ServesAddOns serves(engine.context);
  CtlArguments arguments;
  const std::string wrong =
      Parse(*command, argc, argv, kestrin::SystemClock().Now(), engine.context.zone, arguments);
  if (!wrong.empty()) return Wrong(wrong);
  kestrin::LoadBuiltInHandlers(engine.context);
  const int status = command->run(engine, arguments);
  // The system takes a large set's memory back at once; freeing it event by event takes as long as
  // reading it did.
  std::fflush(nullptr);
  std::_Exit(status);
}
