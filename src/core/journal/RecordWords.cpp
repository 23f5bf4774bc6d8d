#include "core/journal/RecordWords.h"

#include <array>
#include <cstring>

#include "core/timing/DateTimeText.h"
#include "core/timing/EventTiming.h"

namespace kestrin {

namespace {

constexpr std::array<const char*, 3> KindWords = {"Prewarning", "Event", "Nag"};
constexpr int32 FirstSignal = 128;  // the status of what a signal has ended begins there

/// So that it can stand within a sentence.
std::string InSentence(std::string words) {
  const auto lower = [](char& c) {
    c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  };
  for (const char* const first : {"Late. ", "Trial. "})
    if (const size_t at = words.find(first); at != std::string::npos) {
      const size_t end = at + std::strlen(first);
      words[end - 2] = ',';
      if (end < words.size()) lower(words[end]);
    }
  if (!words.empty()) lower(words[0]);
  return words;
}

class Teller {
 public:
  Teller(const PastDelivery& past, const Zone& zone, bool use24Hours)
      : record_(past.Record), past_(past), zone_(zone), use24Hours_(use24Hours) {}

  std::string Date(int64 time) const {
    return GetShortDateTime(static_cast<int32>(time), true, zone_, use24Hours_);
  }
  /// Of a prewarning and a nag their own moment, not the event's.
  std::string Due() const {
    if (!record_.From) return "";
    return Date(record_.From->Next != 0 ? record_.From->Next : record_.From->Actual);
  }
  bool WasDelivered() const {
    return record_.Act != ActStage::Missed && record_.Act != ActStage::Passed;
  }
  std::string Outcome() const {
    std::string words = Alert();
    const std::string act = Act();
    words += words.empty() || act.empty() ? act : "; " + InSentence(act);
    if (words.empty()) words = "Delivered";
    if (record_.Missed) words = "Late. " + words;
    if (record_.Trial) words = "Trial. " + words;
    return words;
  }

 private:
  std::string Because() const { return record_.Why.empty() ? "" : ": " + record_.Why; }

  std::string Alert() const {
    switch (record_.AlertIs) {
      case AlertStage::None:
        return "";
      case AlertStage::Shown:
        return "Shown, and not answered yet";
      case AlertStage::PutOff:
        return past_.Returns ? "Put off until " + Date(past_.Returns->In(zone_)) : "Put off";
      case AlertStage::Answered:
        break;
    }
    if (record_.PutOffs == 0) return Answered();
    const std::string times =
        record_.PutOffs == 1 ? "" : " " + std::to_string(record_.PutOffs) + " times";
    return "Put off" + times + ", then " + InSentence(Answered());
  }

  std::string Answered() const {
    if (record_.Answer.empty()) return "Replaced by a later one";
    std::string words = "Answered “" + record_.Answer + "”";
    if (record_.Answered == 0) return words;
    if (!IsSameDay(record_.Answered, record_.At, zone_))
      return words + " on " + Date(record_.Answered);
    const int32 seconds = GetSecondsIntoDay(static_cast<int32>(record_.Answered), zone_);
    return words + " at " + ClockTimeText(seconds, use24Hours_, HourDigits::Two);
  }

  std::string Act() const {
    switch (record_.Act) {
      case ActStage::Reading:
        return "Its handler read its data";
      case ActStage::Queued:
        return "Waits for its turn";
      case ActStage::Missed:
        return "Missed" + Because();
      case ActStage::Passed:
        return "Passed over" + Because();
      case ActStage::Failed:
        return "Failed" + Because();
      case ActStage::Acting:
        return record_.AlertIs == AlertStage::None ? "Begun, and not ended yet" : "";
      default:
        return Work();
    }
  }

  /// Of a command or a file; whether a question led to it, its answer tells.
  std::string Work() const {
    const bool waits = record_.AlertIs != AlertStage::None && !record_.Exit;
    if ((record_.Run.empty() && record_.Open.empty()) || waits) return "";
    if (!record_.Open.empty()) return "Opened " + record_.Open;
    if (!record_.Exit) return "Started the command";
    if (*record_.Exit == 0) return "The command ended well";
    if (*record_.Exit > FirstSignal)
      return "The command was ended by signal " + std::to_string(*record_.Exit - FirstSignal);
    return "The command ended with exit status " + std::to_string(*record_.Exit);
  }

  const JournalRecord& record_;
  const PastDelivery& past_;
  const Zone& zone_;
  bool use24Hours_;
};

std::string LeafName(const std::string& path) {
  const size_t slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace

RecordWords WordsOf(const PastDelivery& past, const Zone& zone, bool use24Hours) {
  const JournalRecord& record = past.Record;
  const Teller teller(past, zone, use24Hours);
  RecordWords words;
  words.Due = teller.Due();
  if (teller.WasDelivered() && record.At != 0) words.Delivered = teller.Date(record.At);
  words.Kind = KindWords[static_cast<size_t>(record.Kind)];
  words.Set = LeafName(record.Set);
  words.Outcome = teller.Outcome();
  return words;
}

std::string WhySentence(const std::string& name, const PastDelivery* last, const ComesNext& next,
                        const Zone& zone, bool use24Hours) {
  std::string sentence = "\"" + name + "\" ";
  if (last) {
    const Teller teller(*last, zone, use24Hours);
    const bool rang = teller.WasDelivered() && last->Record.Act != ActStage::Failed;
    sentence +=
        rang ? "rang on " + teller.Date(last->Record.At) : "did not ring on " + teller.Due();
    sentence += " (" + InSentence(teller.Outcome()) + ")";
  } else {
    sentence += "has not rung as far as is known";
  }
  if (next.Time == 0)
    return sentence + ", and does not ring again" +
           (next.WhyNever.empty() ? "" : ", since it " + next.WhyNever) + ".";
  sentence += ", and rings next on " + GetShortDateTime(next.Time, next.WithTime, zone, use24Hours);
  return sentence + (next.Unless.empty() ? "" : ", but " + next.Unless) + ".";
}

}  // namespace kestrin
