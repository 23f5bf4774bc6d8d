// An add-on with an edit view of its own: a note for each event. With THROWING_VIEW it fails to
// make one.
#include <kestrin/EndianIndependentFile.h>
#include <kestrin/EventAddOnData.h>
#include <kestrin/EventServices.h>

#include <QLineEdit>
#include <QVBoxLayout>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

class NoteData : public kestrin::EventAddOnData {
 public:
  using EventAddOnData::EventAddOnData;

  bool Read(kestrin::EndianIndependentFile& file) {
    kestrin::uint32 count = 0;
    if (file.ReadNumber(&count, 4, 1) != 1 || count > file.BytesLeft()) return false;
    note_.resize(count);
    return file.ReadRaw(note_.data(), count) == static_cast<kestrin::int32>(count);
  }
  bool SaveData(kestrin::EndianIndependentFile* file) override {
    auto count = static_cast<kestrin::uint32>(note_.size());
    return file->WriteNumber(&count, 4, 1) == 1 &&
           file->WriteRaw(note_.data(), count) == static_cast<kestrin::int32>(count);
  }
  QWidget* CreateEditView([[maybe_unused]] kestrin::Rect frame) override {
#ifdef THROWING_VIEW
    throw std::runtime_error("no view today");
#else
    auto view = std::make_unique<QWidget>();
    view->setProperty("offered",
                      QRectF(QPointF(frame.left, frame.top), QPointF(frame.right, frame.bottom)));
    auto* field = new QLineEdit(QString::fromStdString(note_));
    field->setObjectName("note");
    QObject::connect(field, &QLineEdit::editingFinished, field, [this, field] { Take(*field); });
    (new QVBoxLayout(view.get()))->addWidget(field);
    return view.release();
#endif
  }
  void DealWithEvent(bool) override {}

 private:
  void Take(const QLineEdit& field) {
    if (!field.isModified()) return;
    kestrin::Event* const event = GetAttachedTo();
    kestrin::LockEvent(event);
    note_ = field.text().toStdString();
    kestrin::SetEventModified(event);
    kestrin::UnlockEvent(event);
  }

  std::string note_;
};

}  // namespace

extern "C" {

const char* InitializeAddOn() { return NAME; }

kestrin::EventAddOnData* NewAddOnData(kestrin::Event* event, kestrin::EndianIndependentFile* file,
                                      bool* ok) {
  auto data = std::make_unique<NoteData>(event);
  *ok = !file || data->Read(*file);
  return data.release();
}
}
