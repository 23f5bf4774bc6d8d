// What an event set window can be told to do.
#pragma once

#include "support/Message.h"

namespace kestrin {

/// Numbers of menu items that go to the window. The numbers below 100 and the four-character codes
/// are fixed.
enum SetCommand : uint32 {
  SAVE_SET = FourCharCode("SAVE"),
  SAVE_SET_AS = 10,
  REMEMBER_SET = 11,
  PAGE_SETUP = 12,
  PRINT_SET = 13,
  PRINT_EVENT = 14,
  CUT_EVENT = FourCharCode("CCUT"),
  COPY_EVENT = FourCharCode("COPY"),
  PASTE_EVENT = FourCharCode("PSTE"),
  UNDO_EDIT = FourCharCode("UNDO"),
  REDO_EDIT = FourCharCode("REDO"),
  DUPLICATE_EVENT = FourCharCode("DUPL"),
  RENAME_EVENT = FourCharCode("RENA"),
  ACTIVATE_EVENT = FourCharCode("ACTV"),
  DEACTIVATE_EVENT = FourCharCode("DACT"),
  DELETE_FINISHED = FourCharCode("DFIN"),
  NEW_EVENT = 15,
  EVENT_SELECTED = 16,
  EDIT_EVENT = 17,
  DELETE_EVENT = 18,
  SHOW_VIEW_MODE = 19,
  SHOW_ICONS = 20,
  SHOW_NAME = 21,
  SHOW_STATUS = 22,
  SHOW_EVENT_TIME = 23,
  SHOW_NEXT_TIME = 24,
  SHOW_HANDLER = 25,
};

}  // namespace kestrin
