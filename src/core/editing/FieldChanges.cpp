#include "core/editing/FieldChanges.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "core/events/Event.h"
#include "core/events/EventEdit.h"
#include "core/files/EventFields.h"
#include "core/files/HandlerBlock.h"

namespace kestrin {

namespace {

using FieldPlace = std::variant<bool*, int8*, int32*, uint32*, std::string*>;

/// Behind the fields of the record.
enum OtherField : int32 { LargeIconField = 1000, MiniIconField, HandlerField, HandlerDataField };

/// The fields of a record that a person edits, each under its number.
class EditedFields {
 public:
  explicit EditedFields(EventRecord& record) : record_(record) { VisitEventFields(record, *this); }

  const std::vector<FieldPlace>& All() const { return places_; }
  /// Whether the next time follows from that field.
  bool IsOfRule(size_t number) const {
    const auto place = [](auto* value) -> const void* { return value; };
    const void* const at = std::visit(place, places_[number]);
    return at >= &record_.PeriodType && at <= &record_.PrewarnRepeatType;
  }

  template <typename T>
  void Field(const FieldName&, T& value) {
    const void* const at = &value;
    const bool follows = at == &record_.NextEventTime || at == &record_.ActualEventTime ||
                         at == &record_.Status || at == &record_.TabShown;
    if (!follows) places_.push_back(&value);
  }
  void Field(const FieldName&, Rect&) {}
  void OptionalText(const FieldName&, std::string& text) { places_.push_back(&text); }
  void AfterStatus() {}
  void Icon(int32& number) { places_.push_back(&number); }
  void WindowOpen(bool&) {}

 private:
  EventRecord& record_;
  std::vector<FieldPlace> places_;
};

FieldChange::Value ValueAt(const FieldPlace& place) {
  if (const auto* const text = std::get_if<std::string*>(&place)) return **text;
  return std::visit(
      [](auto* value) -> int64 {
        if constexpr (std::is_same_v<decltype(value), std::string*>)
          return 0;
        else
          return static_cast<int64>(*value);
      },
      place);
}

void PutAt(const FieldPlace& place, const FieldChange::Value& value) {
  std::visit(
      [&value](auto* field) {
        using T = std::remove_pointer_t<decltype(field)>;
        if constexpr (std::is_same_v<T, std::string>)
          *field = std::get<std::string>(value);
        else
          *field = static_cast<T>(std::get<int64>(value));
      },
      place);
}

bool AreEqual(const FieldPlace& a, const FieldPlace& b) {
  return std::visit(
      [](auto* x, auto* y) {
        if constexpr (std::is_same_v<decltype(x), decltype(y)>)
          return *x == *y;
        else
          return false;
      },
      a, b);
}

std::vector<FieldChange>::iterator Find(std::vector<FieldChange>& changes, int32 field) {
  return std::find_if(changes.begin(), changes.end(),
                      [field](const FieldChange& each) { return each.field == field; });
}

}  // namespace

std::vector<FieldChange> ChangesBetween(const EditedState& before, const EditedState& after) {
  EventRecord first = before.record, second = after.record;
  const EditedFields was(first), is(second);
  std::vector<FieldChange> changes;
  for (size_t i = 0; i < was.All().size(); ++i)
    if (!AreEqual(was.All()[i], is.All()[i]))
      changes.push_back({static_cast<int32>(i), ValueAt(was.All()[i]), ValueAt(is.All()[i])});
  if (before.ownIcon != after.ownIcon) {
    const IconPair none, &a = before.ownIcon ? *before.ownIcon : none,
                         &b = after.ownIcon ? *after.ownIcon : none;
    changes.push_back({LargeIconField, a.large, b.large});
    changes.push_back({MiniIconField, a.mini, b.mini});
  }
  if (before.handler != after.handler)
    changes.push_back({HandlerField, int64{before.handler}, int64{after.handler}});
  return changes;
}

bool TouchSameField(const std::vector<FieldChange>& a, const std::vector<FieldChange>& b) {
  return std::any_of(a.begin(), a.end(), [&b](const FieldChange& each) {
    return std::any_of(b.begin(), b.end(),
                       [&each](const FieldChange& other) { return each.field == other.field; });
  });
}

void JoinChanges(std::vector<FieldChange>& first, const std::vector<FieldChange>& then) {
  for (const FieldChange& change : then) {
    const auto found = Find(first, change.field);
    if (found == first.end())
      first.push_back(change);
    else
      found->after = change.after;
  }
  std::erase_if(first, [](const FieldChange& each) { return each.before == each.after; });
}

FieldChange HandlerDataChange(std::string before, std::string after) {
  return {HandlerDataField, std::move(before), std::move(after)};
}

bool PutIntoEvent(const std::vector<FieldChange>& changes, bool before, Event& event) {
  EventRecord record = event.Record();
  const EditedFields fields(record);
  IconPair own = event.GetOwnIcon() ? *event.GetOwnIcon() : IconPair();
  bool ruleChanged = false;
  for (const FieldChange& change : changes) {
    const FieldChange::Value& value = before ? change.before : change.after;
    if (change.field == LargeIconField) {
      own.large = std::get<std::string>(value);
    } else if (change.field == MiniIconField) {
      own.mini = std::get<std::string>(value);
    } else if (change.field == HandlerField) {
      event.SetSelectedHandler(static_cast<int32>(std::get<int64>(value)));
    } else if (change.field == HandlerDataField) {
      auto data = DataFromBlock(event, event.GetSelectedHandler(), std::get<std::string>(value));
      if (data) event.ReplaceAddOnData(std::move(data));
    } else {
      const auto number = static_cast<size_t>(change.field);
      ruleChanged = ruleChanged || fields.IsOfRule(number);
      PutAt(fields.All()[number], value);
    }
  }
  event.TakeFields(std::move(record), ruleChanged,
                   own.large.empty() ? nullptr : std::make_unique<IconPair>(std::move(own)));
  return ruleChanged;
}

}  // namespace kestrin
