#include "interface/sets/StepTexts.h"

#include "interface/common/ShownText.h"

namespace kestrin {

namespace {

struct Words {
  const char* phrase;
  const char* report;
};

/// By EditKind.
constexpr Words StepWords[] = {
    {"change of", ""},
    {"new event", ""},
    {"pasting of", ""},
    {"duplicating of", ""},
    {"deletion of", "Deleted"},
    {"cutting of", "Deleted"},
    {"activation of", "Activated"},
    {"deactivation of", "Deactivated"},
};

const Words& WordsOf(const ToldStep& step) { return StepWords[static_cast<size_t>(step.kind)]; }

QString Several(const ToldStep& step) { return QString::number(step.count) + " events"; }

}  // namespace

QString StepPhrase(const ToldStep& step) {
  constexpr qsizetype LongestName = 40;
  QString name = ShownLine(step.name);
  if (name.size() > LongestName) name = name.left(LongestName) + u'…';
  return QString(WordsOf(step).phrase) + ' ' +
         (step.count > 1 ? Several(step) : u'\'' + name + u'\'');
}

QString StepReport(const ToldStep& step) {
  QString done = WordsOf(step).report;
  if (done.isEmpty()) return done;
  return done + ' ' + (step.count > 1 ? Several(step) : "“" + ShownLine(step.name) + u'”') + u'.';
}

}  // namespace kestrin
