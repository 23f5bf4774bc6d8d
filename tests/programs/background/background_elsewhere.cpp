// The deliverer with another folder to watch for the time zone: background_elsewhere ZONE_FOLDER
#include <stdlib.h>

#include "programs/background/BackgroundDeliverer.h"

int main(int argc, char** argv) {
  if (argc != 2) return 1;
  kestrin::BackgroundSurroundings surroundings;
  surroundings.runtimeFolder = getenv("XDG_RUNTIME_DIR");
  surroundings.zoneFolder = argv[1];
  return kestrin::BackgroundDeliverer(surroundings).Run();
}
