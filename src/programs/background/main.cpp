#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include "programs/Asked.h"
#include "programs/background/BackgroundDeliverer.h"

namespace {

constexpr char Help[] =
    "usage: KestrinBackground\n"
    "       KestrinBackground --help | --version\n"
    "\n"
    "Keeps the time of the next event and wakes kestrin when it has come. The session bus starts\n"
    "it; it takes no arguments.\n";
constexpr char Version[] = "KestrinBackground " KESTRIN_VERSION "\n";

}  // namespace

int main(int argc, char** argv) {
  if (const char* const answer = kestrin::AnswerTo(argc, argv, Help, Version))
    return kestrin::Say(answer);
  if (argc > 1) {
    fprintf(stderr, "KestrinBackground: takes no arguments, got \"%s\"\n", argv[1]);
    return 1;
  }
  // Stays for days: it must not hold on to the folder it happened to be started in.
  if (chdir("/") != 0) perror("KestrinBackground: cannot leave the folder it was started in");

  kestrin::BackgroundSurroundings surroundings;
  surroundings.runtimeFolder = getenv("XDG_RUNTIME_DIR");
  return kestrin::BackgroundDeliverer(surroundings).Run();
}
