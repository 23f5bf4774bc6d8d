#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include "programs/background/BackgroundDeliverer.h"

int main(int argc, char** argv) {
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
