#include "interface/common/FoldedText.h"

#include <QString>
#include <algorithm>

#include "support/OwnedText.h"

namespace kestrin {

std::string FoldedText(std::string_view text) {
  const auto isAscii = [](char character) { return static_cast<unsigned char>(character) < 0x80; };
  if (!std::all_of(text.begin(), text.end(), isAscii) && IsUtf8(text))
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()))
        .toCaseFolded()
        .toStdString();
  std::string folded(text);
  for (char& character : folded)
    if (character >= 'A' && character <= 'Z') character = static_cast<char>(character - 'A' + 'a');
  return folded;
}

}  // namespace kestrin
