#include "interface/common/ShownText.h"

namespace kestrin {

namespace {

constexpr size_t LongestLine = 1000;

}  // namespace

QString ShownText(std::string_view bytes) {
  QString text = QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
  text.remove(QChar::Null);
  return text;
}

QString ShownLine(std::string_view bytes) {
  const bool isCut = bytes.size() > LongestLine;
  if (isCut) {
    size_t end = LongestLine;
    while (end > LongestLine - 4 && (static_cast<unsigned char>(bytes[end]) & 0xC0) == 0x80) --end;
    bytes = bytes.substr(0, end);
  }
  QString line = ShownText(bytes);
  for (QChar& character : line)
    if (character.category() == QChar::Other_Control || character == QChar::LineSeparator ||
        character == QChar::ParagraphSeparator)
      character = u' ';
  if (isCut) line += u'…';
  return line;
}

QString WindowTitle(std::string_view bytes) { return ShownLine(bytes).replace("[*]", "[*][*]"); }

QString WithoutMnemonic(QString text) { return text.replace(u'&', "&&"); }

}  // namespace kestrin
