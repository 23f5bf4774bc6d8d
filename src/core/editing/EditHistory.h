// What a person did to a set while its window is open, to be taken back and done again.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/editing/EditStep.h"
#include "core/events/EditRecorder.h"
#include "core/events/Event.h"

namespace kestrin {

class EventSet;

/// A step of the history, as it is told to the person.
struct ToldStep {
  EditKind kind;
  std::string name;  ///< of the first event, as it is called now
  size_t count;      ///< of events
};

/// The set's recorder while it lives; cleared before the set goes. Edits that follow one another in
/// the same field of one event are one step, until the sitting ends. Main thread, no lock held.
class EditHistory final : public EditRecorder {
 public:
  explicit EditHistory(EventSet& set);
  ~EditHistory() override;

  /// Called whenever another step than before would be taken back or done again; may be null.
  std::function<void()> Changed;

  /// Adds them at the end of the set, as one step. A null one is a new event.
  std::vector<Event*> Add(std::vector<std::unique_ptr<Event>> events, EditKind kind);
  /// Closes their editors and takes them out of the set.
  void Remove(const std::vector<Event*>& events, EditKind kind);
  /// Those that are not so already.
  void SetActive(const std::vector<Event*>& events, bool active);

  struct Done {
    ToldStep step;
    std::vector<Event*> events;  ///< in the set, that were changed or have come
    std::string hasPassed;       ///< the name of one whose moment has passed by now, or empty
  };
  /// Both hand over first what is being typed. Nothing when there is no step left; one whose events
  /// deliveries have deleted is passed over.
  std::optional<Done> Undo();
  std::optional<Done> Redo();
  std::optional<ToldStep> NextUndo() const;
  std::optional<ToldStep> NextRedo() const;

  /// The next edit is a step of its own.
  void EndSitting() { sitting_ = false; }
  /// Forgets everything; the set is about to go.
  void Clear();

  void Edited(Event& event, const EditedState& before) override;
  void HandlerShown(Event& event) override;
  void HandlerChanged(Event& event) override;
  void ChangedUnseen() override;
  void Saved() override;

 private:
  class EventsByHandle;
  struct Block {
    int32 handler = 0;
    std::string bytes;
  };

  void Note(Event& event, std::vector<FieldChange> fields);
  bool JoinWithLast(const Event& event, const std::vector<FieldChange>& fields);
  void Push(EditStep step);
  void DropSteps(size_t from);
  bool IsPossible(const EditStep& step, bool undo) const;
  ToldStep Told(const EditStep& step) const;
  Done Apply(EditStep& step, bool undo);
  void ApplyChanges(EditStep& step, bool undo, Done& done);
  void PutBack(EditStep& step, Done& done);
  void TakeOut(EditStep& step);
  void TellChanged();
  void CompareWithSaved();

  EventSet* set_;
  std::deque<EditStep> steps_;
  size_t position_ = 0;              ///< steps before it are done
  std::optional<size_t> saved_ = 0;  ///< the position at which the file holds everything
  bool sitting_ = false;
  bool applying_ = false;
  std::unordered_map<uint64, Block> blocks_;  ///< of handlers that are being edited, by event
};

}  // namespace kestrin
