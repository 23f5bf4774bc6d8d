// An add-on whose action is a notification of the desktop: an urgency and a text, both chosen in a
// view of its own.
#include <kestrin/EndianIndependentFile.h>
#include <kestrin/EventAddOnData.h>
#include <kestrin/EventServices.h>

#include <QComboBox>
#include <QFormLayout>
#include <QPlainTextEdit>
#include <memory>
#include <string>
#include <utility>

namespace {

using kestrin::int32;
using kestrin::uint32;
using kestrin::uint8;

/// The payload is the urgency in one byte, then the text, without an end of its own.
class NotificationData final : public kestrin::EventAddOnData {
 public:
  using EventAddOnData::EventAddOnData;

  bool Read(kestrin::EndianIndependentFile& file) {
    uint32 count = 0;
    if (file.ReadNumber(&count, 4, 1) != 1 || count > file.BytesLeft()) return false;
    if (count == 0) return true;  // pasted without its data
    std::string payload(count, '\0');
    if (file.ReadRaw(payload.data(), count) != static_cast<int32>(count)) return false;
    urgency_ = static_cast<uint8>(payload[0]);
    text_ = payload.substr(1);
    return true;
  }

  bool SaveData(kestrin::EndianIndependentFile* file) override {
    const std::string payload = static_cast<char>(urgency_) + text_;
    auto count = static_cast<uint32>(payload.size());
    return file->WriteNumber(&count, 4, 1) == 1 &&
           file->WriteRaw(payload.data(), count) == static_cast<int32>(count);
  }

  QWidget* CreateEditView(kestrin::Rect frame) override {
    auto view = std::make_unique<QWidget>();
    auto* form = new QFormLayout(view.get());
    form->setContentsMargins(0, 0, 0, 0);
    form->addRow("&Urgency:", MakeUrgencyMenu());
    form->addRow("Te&xt:", MakeTextField());
    view->resize(static_cast<int>(frame.right - frame.left) + 1,
                 static_cast<int>(frame.bottom - frame.top) + 1);
    return view.release();
  }

  void DealWithEvent(bool missed) override {
    ProcessHold();  // the notification gives it back when it is answered
    kestrin::DeliverEventNotification(GetAttachedTo(), missed, urgency_,
                                      text_.empty() ? "" : "\n\n", text_.c_str(), nullptr, nullptr,
                                      nullptr);
  }

 private:
  /// An urgency that a later version has stored shows no item, and is kept.
  QWidget* MakeUrgencyMenu() {
    auto* menu = new QComboBox;
    menu->setObjectName("notificationUrgency");
    menu->addItems({"Low", "Normal", "Critical"});
    menu->setCurrentIndex(urgency_ < menu->count() ? urgency_ : -1);
    QObject::connect(menu, &QComboBox::activated,
                     [this](int index) { Change(urgency_, static_cast<uint8>(index)); });
    return menu;
  }

  QWidget* MakeTextField() {
    auto* field = new QPlainTextEdit(QString::fromStdString(text_));
    field->setObjectName("notificationText");
    field->setTabChangesFocus(true);
    field->setPlaceholderText("What the notification says besides the event's name");
    QObject::connect(field, &QPlainTextEdit::textChanged,
                     [this, field] { Change(text_, field->toPlainText().toStdString()); });
    return field;
  }

  template <typename T>
  void Change(T& member, T value) {
    if (member == value) return;
    kestrin::LockEvent(GetAttachedTo());
    member = std::move(value);
    kestrin::SetEventModified(GetAttachedTo());
    kestrin::UnlockEvent(GetAttachedTo());
  }

  uint8 urgency_ = kestrin::UrgencyNormal;
  std::string text_;
};

}  // namespace

extern "C" {

const char* InitializeAddOn() { return "Notification"; }

kestrin::EventAddOnData* NewAddOnData(kestrin::Event* event, kestrin::EndianIndependentFile* file,
                                      bool* ok) {
  auto data = std::make_unique<NotificationData>(event);
  *ok = !file || data->Read(*file);
  return data.release();
}
}
