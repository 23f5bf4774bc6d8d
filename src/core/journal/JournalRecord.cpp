#include "core/journal/JournalRecord.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "core/journal/EventStateText.h"

namespace kestrin {

namespace {

constexpr std::array<const char*, 8> ActNames = {"",      "reading", "queued", "acting",
                                                 "acted", "missed",  "passed", "failed"};
constexpr std::array<const char*, 4> AlertNames = {"", "shown", "answered", "putoff"};
constexpr std::array<const char*, 3> KindNames = {"prewarning", "event", "nag"};
constexpr char Joint = '\x1f';
constexpr char GoneText[] = "gone";

template <typename Stage, size_t N>
Stage StageOf(const std::array<const char*, N>& names, const std::string& text, Stage otherwise) {
  const auto found = std::find(names.begin(), names.end(), text);
  return found == names.end() ? otherwise : static_cast<Stage>(found - names.begin());
}

int32 SmallNumber(const RecordReader& fields, std::string_view key) {
  const int64 number = fields.Number(key).value_or(0);
  constexpr int64 least = std::numeric_limits<int32>::min();
  constexpr int64 most = std::numeric_limits<int32>::max();
  return number < least || number > most ? 0 : static_cast<int32>(number);
}

std::vector<std::string> Split(const std::string& joined) {
  std::vector<std::string> parts;
  for (size_t at = 0; at <= joined.size();) {
    const size_t end = std::min(joined.find(Joint, at), joined.size());
    parts.push_back(joined.substr(at, end - at));
    at = end + 1;
  }
  return parts;
}

ProcessOwner OwnerOf(const std::string& text) {
  ProcessOwner owner;
  const size_t second = text.rfind('/');
  if (second == std::string::npos || second == 0) return owner;
  const size_t first = text.rfind('/', second - 1);
  if (first == std::string::npos) return owner;
  owner.Boot = text.substr(0, first);
  owner.Process =
      NumberOf(std::string_view(text).substr(first + 1, second - first - 1)).value_or(0);
  owner.Started = NumberOf(std::string_view(text).substr(second + 1)).value_or(0);
  return owner;
}

KeptAlert AlertOfFields(const RecordReader& fields) {
  KeptAlert alert;
  const int32 role = SmallNumber(fields, "role");
  if (role >= 0 && role <= static_cast<int32>(AlertRole::Prompt))
    alert.Role = static_cast<AlertRole>(role);
  if (fields.Number("warning") == 1) alert.Kind = AlertKind::Warning;
  alert.Title = fields.Text("title");
  alert.Text = fields.Text("text");
  alert.Buttons = Split(fields.Text("buttons"));
  alert.HarmlessButton = SmallNumber(fields, "harmless");
  alert.DefaultButton = SmallNumber(fields, "default");
  alert.Icon = fields.Text("icon");
  return alert;
}

/// The number, and for an event's own icon its bitmaps.
std::string TextOfIcon(const AlertFace& face) {
  const std::string number = std::to_string(face.IconNumber);
  return face.OwnIcon.large.empty() ? number
                                    : number + ":" + face.OwnIcon.large + face.OwnIcon.mini;
}

AlertFace FaceOf(const std::string& icon) {
  AlertFace face;
  face.IconNumber = icon.empty() ? -1 : std::atoi(icon.c_str());
  const size_t bitmaps = icon.find(':');
  if (bitmaps != std::string::npos &&
      icon.size() - bitmaps - 1 == size_t{LargeIconBytes} + size_t{MiniIconBytes})
    face.OwnIcon = {icon.substr(bitmaps + 1, LargeIconBytes),
                    icon.substr(bitmaps + 1 + LargeIconBytes)};
  return face;
}

}  // namespace

const char* NameOf(ActStage stage) { return ActNames[static_cast<size_t>(stage)]; }
const char* NameOf(AlertStage stage) { return AlertNames[static_cast<size_t>(stage)]; }
const char* NameOf(RecordKind kind) { return KindNames[static_cast<size_t>(kind)]; }

KeptAlert KeepAlert(const AlertRequest& request) {
  return {request.Role,    request.Kind,           request.Title,         request.Text,
          request.Buttons, request.HarmlessButton, request.DefaultButton, TextOfIcon(request.Face)};
}

AlertRequest AlertOf(const KeptAlert& kept) {
  AlertRequest request;
  request.Role = kept.Role;
  request.Kind = kept.Kind;
  request.Title = kept.Title;
  request.Text = kept.Text;
  if (!kept.Buttons.empty()) request.Buttons = kept.Buttons;
  const auto within = [&](int which) {
    return which >= 0 && which < static_cast<int>(request.Buttons.size()) ? which : 0;
  };
  request.HarmlessButton = within(kept.HarmlessButton);
  request.DefaultButton = within(kept.DefaultButton);
  request.Face = FaceOf(kept.Icon);
  return request;
}

std::string TextOf(const EventState& state) {
  if (state.Gone) return GoneText;
  return std::to_string(state.Actual) + "," + std::to_string(state.Next) + "," +
         std::to_string(state.Status);
}

std::optional<EventState> EventStateOf(const std::string& text) {
  EventState state;
  if (text == GoneText) {
    state.Gone = true;
    return state;
  }
  const char *at = text.data(), *const end = at + text.size();
  for (int32* const number : {&state.Actual, &state.Next, &state.Status}) {
    if (number != &state.Actual && (at == end || *at++ != ',')) return std::nullopt;
    const auto [stopped, error] = std::from_chars(at, end, *number);
    if (error != std::errc()) return std::nullopt;
    at = stopped;
  }
  return at == end ? std::optional(state) : std::nullopt;
}

std::string TextOf(const ProcessOwner& owner) {
  return owner.Boot + "/" + std::to_string(owner.Process) + "/" + std::to_string(owner.Started);
}

namespace {

void AddAlert(RecordFields& fields, const KeptAlert& alert) {
  fields.Add("role", static_cast<int64>(alert.Role));
  if (alert.Kind == AlertKind::Warning) fields.Add("warning", int64{1});
  if (!alert.Title.empty()) fields.Add("title", alert.Title);
  fields.Add("text", alert.Text);
  std::string buttons;
  for (const std::string& button : alert.Buttons)
    buttons += (&button == &alert.Buttons.front() ? "" : std::string(1, Joint)) + button;
  fields.Add("buttons", buttons);
  fields.Add("harmless", int64{alert.HarmlessButton});
  fields.Add("default", int64{alert.DefaultButton});
  if (!alert.Icon.empty()) fields.Add("icon", alert.Icon);
}

}  // namespace

RecordFields FieldsOf(const KeptAlert& alert) {
  RecordFields fields;
  AddAlert(fields, alert);
  return fields;
}

RecordFields FieldsOf(const JournalRecord& record) {
  RecordFields fields;
  fields.Add("by", TextOf(record.By));
  fields.Add("set", record.Set);
  fields.Add("name", record.Event.Name);
  fields.Add("handler", record.Event.Handler);
  fields.Add("place", int64{record.Event.Place});
  if (record.Rule != 0) fields.Add("rule", int64{record.Rule});
  fields.Add("kind", NameOf(record.Kind));
  if (record.From) fields.Add("from", TextOf(*record.From));
  if (record.To) fields.Add("to", TextOf(*record.To));
  fields.Add("at", record.At);
  if (record.Looked != 0) fields.Add("looked", record.Looked);
  if (record.Missed) fields.Add("missed", int64{1});
  if (record.Trial) fields.Add("trial", int64{1});
  if (record.Act != ActStage::None) fields.Add("act", NameOf(record.Act));
  if (!record.Why.empty()) fields.Add("why", record.Why);
  if (!record.Run.empty()) fields.Add("run", record.Run);
  if (!record.Open.empty()) fields.Add("open", record.Open);
  if (record.Exit) fields.Add("exit", int64{*record.Exit});
  if (record.AlertIs != AlertStage::None) {
    fields.Add("alert", NameOf(record.AlertIs));
    AddAlert(fields, record.Alert);
  }
  if (record.PutOffs != 0) fields.Add("putoffs", int64{record.PutOffs});
  if (record.Button) fields.Add("button", int64{*record.Button});
  if (!record.Answer.empty()) fields.Add("answer", record.Answer);
  if (record.Answered != 0) fields.Add("answered", record.Answered);
  if (!record.Of.empty()) fields.Add("of", record.Of);
  return fields;
}

JournalRecord RecordOf(const std::string& id, const RecordFields& all) {
  const RecordReader fields(all);
  JournalRecord record;
  record.Id = id;
  record.By = OwnerOf(fields.Text("by"));
  record.Set = fields.Text("set");
  record.Event = {fields.Text("name"), fields.Text("handler"), SmallNumber(fields, "place")};
  record.Rule = static_cast<uint32>(fields.Number("rule").value_or(0));
  record.Kind = StageOf(KindNames, fields.Text("kind"), RecordKind::Event);
  record.From = EventStateOf(fields.Text("from"));
  record.To = EventStateOf(fields.Text("to"));
  record.At = fields.Number("at").value_or(0);
  record.Looked = fields.Number("looked").value_or(0);
  record.Missed = fields.Number("missed") == 1;
  record.Trial = fields.Number("trial") == 1;
  record.Act = StageOf(ActNames, fields.Text("act"), ActStage::None);
  record.Why = fields.Text("why");
  record.Run = fields.Text("run");
  record.Open = fields.Text("open");
  if (fields.Has("exit")) record.Exit = SmallNumber(fields, "exit");
  record.AlertIs = StageOf(AlertNames, fields.Text("alert"), AlertStage::None);
  record.Alert = AlertOfFields(fields);
  record.PutOffs = SmallNumber(fields, "putoffs");
  if (fields.Has("button")) record.Button = SmallNumber(fields, "button");
  record.Answer = fields.Text("answer");
  record.Answered = fields.Number("answered").value_or(0);
  record.Of = fields.Text("of");
  return record;
}

std::string TextOf(Civil time) {
  const CivilFields at = ToFields(time);
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", static_cast<int>(at.year),
                static_cast<int>(at.month + 1), static_cast<int>(at.day), static_cast<int>(at.hour),
                static_cast<int>(at.minute), static_cast<int>(at.second));
  return text;
}

std::optional<Civil> CivilOf(const std::string& text) {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
  char rest = 0;
  if (std::sscanf(text.c_str(), "%d-%d-%d %d:%d:%d%c", &year, &month, &day, &hour, &minute, &second,
                  &rest) != 6 ||
      year < 1 || year > 9999)
    return std::nullopt;
  return ToCivil({year, month - 1, day, hour, minute, second, 0});
}

}  // namespace kestrin
