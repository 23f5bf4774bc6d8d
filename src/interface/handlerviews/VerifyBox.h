// The check box that makes a handler ask before it acts.
#pragma once

#include <QCheckBox>

#include "core/events/EventSet.h"

namespace kestrin {

/// For a handler with GetVerify and SetVerify, which outlives the box. The handler itself does not
/// count the flag as a change of the event; but then it would be lost when nothing else changes, so
/// the box marks the event modified.
template <typename Handler>
QCheckBox* NewVerifyBox(const char* objectName, const QString& label, Handler& handler) {
  auto* box = new QCheckBox(label);
  box->setObjectName(objectName);
  box->setChecked(handler.GetVerify());
  QObject::connect(box, &QCheckBox::clicked, box, [&handler](bool on) {
    Event& event = *handler.GetAttachedTo();
    const AutoLock lock(event.GetProtectionSemaphore());
    handler.SetVerify(on);
    event.HandlerChanged();
  });
  return box;
}

}  // namespace kestrin
