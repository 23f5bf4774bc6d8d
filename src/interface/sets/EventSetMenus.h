// The menus of an event set window.
#pragma once

#include <QObject>
#include <vector>

#include "kestrin/Types.h"

class QMenuBar;

namespace kestrin {

class MessageQueue;

/// Each item is a command: a number that goes to the window or, as a message, to the application.
class EventSetMenus final : public QObject {
  Q_OBJECT

 public:
  EventSetMenus(QMenuBar& bar, MessageQueue& application);

 signals:
  void Chosen(kestrin::uint32 command);

 private:
  struct Item;
  void AddMenu(QMenuBar& bar, const char* title, const std::vector<Item>& items);

  MessageQueue& application_;
};

}  // namespace kestrin
