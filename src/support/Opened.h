// How the application opens a buffered file; add-ons, which are handed theirs, cannot.
#pragma once

#include <utility>

namespace kestrin {

/// `File` is BufferedFile or EndianIndependentFile; the arguments are those of its constructors.
template <typename File>
class Opened final : public File {
 public:
  template <typename... Arguments>
  explicit Opened(Arguments&&... arguments) : File(std::forward<Arguments>(arguments)...) {}
};

}  // namespace kestrin
