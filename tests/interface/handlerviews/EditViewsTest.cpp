// The edit views of handlers on the Action page.
#include <QCheckBox>
#include <QClipboard>
#include <QFileDialog>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTemporaryDir>
#include <QVBoxLayout>
#include <QWheelEvent>

#include "core/events/HandlerTable.h"
#include "core/files/EventMessage.h"
#include "handlers/ActOnFileDataHandler.h"
#include "handlers/CommandDataHandler.h"
#include "handlers/UnknownDataHandler.h"
#include "harness/EditorDriver.h"

namespace kestrin {
namespace {

struct PlainData : EventAddOnData {
  using EventAddOnData::EventAddOnData;

  QWidget* CreateEditView(Rect) override { return nullptr; }
  bool SaveData(EndianIndependentFile*) override { return true; }
  void DealWithEvent(bool) override {}
};

struct BrokenViewData final : PlainData {
  using PlainData::PlainData;
  QWidget* CreateEditView(Rect) override { throw std::runtime_error("no view"); }
};

/// Stores its text, as add-ons do, when the field says that editing is finished.
struct DiaryData final : PlainData {
  using PlainData::PlainData;

  QWidget* CreateEditView(Rect frame) override {
    Frame = frame;
    auto* view = new QWidget;
    auto* field = new QLineEdit(view);
    field->setObjectName("addOnField");
    QObject::connect(field, &QLineEdit::editingFinished, field,
                     [this, field] { Text = field->text().toStdString(); });
    (new QVBoxLayout(view))->addWidget(field);
    return view;
  }

  std::string Text;
  Rect Frame;
};

template <typename Data>
EventAddOnData* New(Event* event, EndianIndependentFile*, bool*) {
  return new Data(event);
}
EventAddOnData* NewNothing(Event*, EndianIndependentFile*, bool*) { return nullptr; }

struct EditViewsTest : EditorTest {
  EditViewsTest() {
    AddRow("Diary", New<DiaryData>);
    AddRow("Plain & simple", New<PlainData>);
    AddRow("Broken data", NewNothing);
    AddRow("Broken view", New<BrokenViewData>);
  }
  void AddRow(const char* name, NewAddOnDataFunction factory) {
    context.Handlers.Add({name, factory});
  }
  template <typename Data>
  Data& DataOf() const {
    return *dynamic_cast<Data*>(event->GetAddOnData());
  }
};

TEST_F(EditViewsTest, ACommandIsStoredOnReturnOnLeavingAndWhenTheWindowCommits) {
  OpenNew(ActionTab);
  ASSERT_TRUE(Choose("handler", "Command"));
  Enter("command", "beep");
  EXPECT_STREQ(DataOf<CommandDataHandler>().GetCommand(), "beep");
  Type("command", "beep -l");
  QTest::keyClick(&Find("command"), Qt::Key_Tab);
  EXPECT_STREQ(DataOf<CommandDataHandler>().GetCommand(), "beep -l");
  EXPECT_TRUE(Find("verifyCommand").hasFocus());
  Type("command", "beep -f 440");
  window->CommitEdits();
  EXPECT_STREQ(DataOf<CommandDataHandler>().GetCommand(), "beep -f 440");
  window->close();
  Open(*event, ActionTab);
  EXPECT_EQ(FieldText("command"), "beep -f 440");
  Find<QLineEdit>("command").setFocus();
  QTest::keyClick(&Find("command"), Qt::Key_End);
  QApplication::clipboard()->setText(QString(5000, u'x'));
  QTest::keyClick(&Find("command"), Qt::Key_V, Qt::ControlModifier);
  EXPECT_THAT(Complaint(), HasSubstr("4095 bytes")) << "the window says what its edit view says";
  ASSERT_TRUE(Choose("handler", "Message"));
  EXPECT_EQ(Complaint(), "");
}

TEST_F(EditViewsTest, AnAskingBoxIsKeptThoughNothingElseChanges) {
  OpenNew(ActionTab);
  for (const auto& [handler, box] :
       {std::pair("Command", "verifyCommand"), std::pair("Act on file", "verifyFile")}) {
    ASSERT_TRUE(Choose("handler", handler));
    SaveSet();
    Click(box);
    EXPECT_TRUE(set->HasBeenModified()) << box;
    EXPECT_EQ(Find("handler").accessibleDescription(), "Event handler");
  }
  Message copied;
  ASSERT_TRUE(GenerateMessageForEvent(*event, &copied));
  const auto pasted = EventFromMessage(*set, copied).NewEvent;
  EXPECT_TRUE(dynamic_cast<ActOnFileDataHandler&>(*pasted->GetAddOnData()).GetVerify());
  EXPECT_TRUE(DataOf<ActOnFileDataHandler>().GetVerify());
  ASSERT_TRUE(Choose("handler", "Command"));
  EXPECT_TRUE(DataOf<CommandDataHandler>().GetVerify());
  EXPECT_TRUE(Find<QCheckBox>("verifyCommand").isChecked());
}

TEST_F(EditViewsTest, AFileIsChosenInThePanelOrDropped) {
  const QTemporaryDir folder;
  for (const char* name : {"a file.txt", "another.txt"})
    ASSERT_TRUE(QFile(folder.filePath(name)).open(QIODevice::WriteOnly));
  OpenNew(ActionTab);
  ASSERT_TRUE(Choose("handler", "Act on file"));
  QMimeData dragged;
  dragged.setUrls({QUrl("file:///tmp/caf%E9.txt")});
  EXPECT_TRUE(Drop("editView", dragged));
  EXPECT_STREQ(DataOf<ActOnFileDataHandler>().GetFileName(), "/tmp/caf\xE9.txt");
  dragged.setUrls({QUrl::fromLocalFile(folder.filePath("a file.txt"))});
  EXPECT_TRUE(Drop("editView", dragged));
  EXPECT_EQ(TextOf("fileName"), "File: " + folder.filePath("a file.txt").toStdString());
  Click("selectFile");
  auto& panel = Find<QFileDialog>("filePanel");
  EXPECT_FALSE(panel.isModal()) << "other windows go on";
  EXPECT_EQ(panel.directory().path(), folder.path());
  auto* files = panel.findChild<QListView*>("listView");
  QModelIndex wanted;
  ASSERT_TRUE(QTest::qWaitFor([&] {
    for (int row = 0; row < files->model()->rowCount(files->rootIndex()); ++row)
      if (const auto it = files->model()->index(row, 0, files->rootIndex());
          it.data().toString() == "another.txt")
        wanted = it;
    return wanted.isValid() && !files->visualRect(wanted).isEmpty();
  }));
  QTest::mouseClick(files->viewport(), Qt::LeftButton, {}, files->visualRect(wanted).center());
  QTest::keyClick(files, Qt::Key_Return);
  EXPECT_EQ(DataOf<ActOnFileDataHandler>().GetFileName(),
            folder.filePath("another.txt").toStdString());
}

TEST_F(EditViewsTest, TheMissingHandlerIsNamedAndCanBeLeftAndTakenAgain) {
  auto data = std::make_unique<UnknownDataHandler>(&AppendEvent(*set, "Tea"));
  data->SetOriginalHandler("Play a <b>song</b>");
  Event& tea = *set->Events().back();
  tea.AdoptAddOnData(UnknownHandler, std::move(data));
  Open(tea, ActionTab);
  EXPECT_EQ(TextOf("missingHandler"), "Missing handler: Play a <b>song</b>");
  EXPECT_EQ(Find<QComboBox>("handler").currentText(), "Unknown");
  EXPECT_THAT(Find("handler").toolTip().toStdString(), HasSubstr("&lt;b&gt;"));
  ASSERT_TRUE(Choose("handler", "Do nothing"));
  EXPECT_FALSE(window->findChild<QLabel*>("missingHandler"));
  ASSERT_TRUE(Choose("handler", "Unknown"));
  EXPECT_EQ(event->GetHandlerName(), "Play a <b>song</b>");
  OpenNew(ActionTab);
  EXPECT_FALSE(Choose("handler", "Unknown")) << "nothing to hand over to it";
}

TEST_F(EditViewsTest, AnAddOnBringsItsOwnView) {
  OpenNew(ActionTab);
  ASSERT_TRUE(Choose("handler", "Diary"));
  QPointer<QWidget> view = &Find("editView");
  EXPECT_EQ(event->GetAddOnData()->GetEditView(), view);
  const Rect& frame = DataOf<DiaryData>().Frame;  // its sides are pixels of it
  EXPECT_EQ(QSizeF(frame.right - frame.left, frame.bottom - frame.top),
            Find("editViewFrame").size() - QSize(1, 1));
  window->close();
  Open(*event, ActionTab);
  view = &Find("editView");
  EXPECT_EQ(QSizeF(frame.right - frame.left, frame.bottom - frame.top),
            Find("editViewFrame").size() - QSize(1, 1))
      << "at first too";
  Find("tryNow").setFocus();
  QTest::keyClick(&Find("tryNow"), Qt::Key_Tab);
  EXPECT_TRUE(Find("addOnField").hasFocus()) << "it comes after the row of the menu";
  QTest::keyClicks(&Find("addOnField"), "Dear diary");
  window->CommitEdits();
  EXPECT_EQ(DataOf<DiaryData>().Text, "Dear diary");
  EXPECT_TRUE(Find("addOnField").hasFocus()) << "and the person may go on typing";
  QTest::keyClick(&Find("addOnField"), Qt::Key_Tab);
  EXPECT_TRUE(Find("deleteOnceDelivered").hasFocus());
  ASSERT_TRUE(Choose("handler", "Plain & simple"));
  EXPECT_FALSE(view);
  EXPECT_EQ(event->GetAddOnData(context.Handlers.Find("Diary"))->GetEditView(), nullptr);
  EXPECT_FALSE(event->GetAddOnData()->GetEditView());
  EXPECT_EQ(AlertTexts(), "");
}

TEST_F(EditViewsTest, AnAddOnWithoutDataIsReportedAndNotTaken) {
  OpenNew(ActionTab);
  Choose("handler", "Broken view");
  EXPECT_EQ(event->GetHandlerName(), "Broken view");
  EXPECT_THAT(AlertTexts(), HasSubstr("\"Broken view\" failed to make its edit view"));
  Choose("handler", "Message");
  Choose("handler", "Broken data");
  EXPECT_EQ(event->GetSelectedHandler(), MessageHandler) << "as it was";
  EXPECT_EQ(Find<QComboBox>("handler").currentText(), "Message");
  EXPECT_THAT(AlertTexts(), HasSubstr("\"Broken data\" could not make its data"));
  EXPECT_TRUE(window->findChild<QWidget*>("messageText"));
}

}  // namespace
}  // namespace kestrin
