// "--help" and "--version" of the three programs.
#pragma once

#include <stdio.h>
#include <string.h>

namespace kestrin {

/// What the only argument asks for; null when there is another number of arguments or the argument
/// is neither of the two. Plain C inside: the background deliverer carries no more than it must.
inline const char* AnswerTo(int argc, char** argv, const char* help, const char* version) {
  if (argc != 2) return nullptr;
  if (strcmp(argv[1], "--help") == 0) return help;
  return strcmp(argv[1], "--version") == 0 ? version : nullptr;
}

/// Writes the answer to standard output; the exit status.
inline int Say(const char* answer) {
  return fputs(answer, stdout) < 0 || fflush(stdout) != 0 ? 1 : 0;
}

}  // namespace kestrin
