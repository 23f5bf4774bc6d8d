#include "Trial.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  kestrin::TryInput(in);
  return 0;
}
