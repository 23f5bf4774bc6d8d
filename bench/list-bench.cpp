// Processor time that the window of a large set costs: opening and painting it, sorting it by three
// keys, and showing changes. The peer is what the toolkit offers for such a list: a standard model
// behind a sorting proxy, with the same texts.
//
//   list-bench FILE [RUNS]
//
// Prints name, ours and the peer's in microseconds (- where it has no such thing), the best of the
// runs each.
#include <time.h>

#include <QAction>
#include <QApplication>
#include <QHeaderView>
#include <QMouseEvent>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTreeView>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>

#include "core/app/DocumentApp.h"
#include "core/delivery/VirtualEngine.h"
#include "core/events/EventSet.h"
#include "core/events/OpenSets.h"
#include "core/files/StoredSetFile.h"
#include "handlers/LoadEventHandlers.h"
#include "interface/QtUserInterface.h"
#include "interface/list/ListEventView.h"
#include "interface/sets/EventSetWindow.h"
#include "interface/sets/SetCommands.h"

namespace kestrin {
namespace {

enum Figure { Open, Sort, OneChange, ManyChanges, DeleteAll, UndoAll, NumberOfFigures };
constexpr std::array<const char*, NumberOfFigures> Names = {
    "open-and-paint",       "sort-by-three-keys", "one-change",
    "ten-thousand-changes", "delete-all",         "undo-delete-all"};
constexpr int Many = 10000;

double ProcessorMicroseconds() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) / 1e3;
}

struct Best {
  std::array<double, NumberOfFigures> time;
  Best() { time.fill(std::numeric_limits<double>::max()); }
  /// What `work` and the events and paints that follow from it take.
  void Measure(Figure figure, const std::function<void()>& work) {
    const double begun = ProcessorMicroseconds();
    work();
    QCoreApplication::processEvents();
    time[figure] = std::min(time[figure], ProcessorMicroseconds() - begun);
  }
};

void ClickColumn(QTreeView& list, int column, Qt::KeyboardModifiers modifiers) {
  QHeaderView* header = list.header();
  const QPointF at(header->sectionViewportPosition(column) + header->sectionSize(column) / 2.0,
                   header->height() / 2.0);
  const QPointF global = header->viewport()->mapToGlobal(at);
  for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
    QMouseEvent event(type, at, global, Qt::LeftButton,
                      type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, modifiers);
    QCoreApplication::sendEvent(header->viewport(), &event);
  }
}

/// The menu item of that command.
void Choose(const QWidget& window, uint32 command) {
  for (QAction* action : window.findChildren<QAction*>())
    if (action->data().toUInt() == command) action->trigger();
}

class Holder final : public DocumentApp {
 public:
  using DocumentApp::DocumentApp;

 protected:
  bool CloseWindows() override { return true; }
  void QuitAbandoned() override {}
};

bool MeasureOurs(const char* path, Best& best) {
  VirtualEngine engine;
  engine.clock.Time = SystemClock().Now();
  QtUserInterface screen([] {});
  Context context{engine.clock,    engine.files,    engine.queue,    engine.holds,   screen,
                  engine.alerts,   engine.notices,  engine.desktop,  engine.workers, engine.actions,
                  engine.openSets, engine.settings, engine.handlers, Zone(),         1};
  Holder application(engine.holds);
  screen.Connect(context, application);
  LoadBuiltInHandlers(context);
  SetReading reading = ReadSet(context, path);
  if (!reading.Set || reading.Set->CountEvents() < Many) return false;
  engine.openSets.Sets.push_back(std::move(reading.Set));
  EventSet& set = *engine.openSets.Sets.back();

  best.Measure(Open, [&set] { set.OpenWindow(); });
  auto& window = dynamic_cast<EventSetWindow&>(*set.GetWindow());
  ListEventView& list = *window.GetEventsView();
  ClickColumn(list, StatusColumn, Qt::NoModifier);
  ClickColumn(list, HandlerColumn, Qt::ShiftModifier);
  QCoreApplication::processEvents();
  best.Measure(Sort, [&list] { ClickColumn(list, NameColumn, Qt::ShiftModifier); });
  if (list.SortKeys().size() != 3) return false;
  Event& one = *set.Events()[Many / 2];
  best.Measure(OneChange, [&one] { one.SetActive(!one.GetActive()); });
  best.Measure(ManyChanges, [&set] {
    for (int i = 0; i < Many; ++i) set.Events()[static_cast<size_t>(i)]->SetName("Changed");
  });
  list.setFocus();
  best.Measure(DeleteAll, [&window, &list] {
    list.selectAll();
    Choose(window, DELETE_EVENT);
  });
  if (set.CountEvents() != 0) return false;
  best.Measure(UndoAll, [&window] { Choose(window, UNDO_EDIT); });
  if (set.CountEvents() < Many) return false;
  window.CloseNow();
  QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  engine.openSets.Sets.clear();
  return true;
}

void MeasurePeer(int rows, Best& best) {
  QStandardItemModel model(rows, 5);
  for (int row = 0; row < rows; ++row) {
    model.setItem(row, 0, new QStandardItem(QString("Event %1").arg(row * 7919 % rows)));
    model.setItem(row, 1, new QStandardItem("Sun, Nov 22 2026, 08:00:00 AM"));
    model.setItem(row, 2, new QStandardItem("Sun, Nov 22 2026, 08:00:00 AM"));
    model.setItem(row, 3, new QStandardItem(row % 3 == 0 ? "Message" : "Command"));
    model.setItem(row, 4, new QStandardItem("Waiting for event"));
  }
  QSortFilterProxyModel sorted;
  QTreeView view;
  view.setUniformRowHeights(true);
  view.setSortingEnabled(true);
  view.resize(700, 400);
  best.Measure(Open, [&] {
    sorted.setSourceModel(&model);
    view.setModel(&sorted);
    view.show();
  });
  // It sorts by one key only, and is sorted by the name downwards from the start.
  best.Measure(Sort, [&view] { view.sortByColumn(0, Qt::AscendingOrder); });
  QStandardItem* item = model.item(rows / 2, 0);
  best.Measure(OneChange, [item] { item->setText("Changed"); });
}

}  // namespace
}  // namespace kestrin

int main(int argc, char** argv) {
  if (argc < 2 || argc > 3) {
    std::fputs("usage: list-bench FILE [RUNS]\n", stderr);
    return 1;
  }
  QApplication application(argc, argv);
  kestrin::Best ours, peer;
  constexpr int rows = 100000;
  for (int runs = argc > 2 ? std::atoi(argv[2]) : 5; runs > 0; --runs) {
    if (!kestrin::MeasureOurs(argv[1], ours)) {
      std::fprintf(stderr, "list-bench: %s: cannot be measured\n", argv[1]);
      return 2;
    }
    kestrin::MeasurePeer(rows, peer);
  }
  for (size_t i = 0; i < kestrin::NumberOfFigures; ++i) {
    std::printf("%s %.0f ", kestrin::Names[i], ours.time[i]);
    if (i <= kestrin::OneChange)
      std::printf("%.0f\n", peer.time[i]);
    else
      std::puts("-");
  }
  return 0;
}
