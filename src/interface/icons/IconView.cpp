#include "interface/icons/IconView.h"

#include <QDragEnterEvent>
#include <QFileDialog>
#include <QImageReader>
#include <QMimeData>

#include "core/events/EventEdit.h"
#include "core/loop/Notices.h"
#include "interface/common/DroppedFiles.h"
#include "interface/common/FilePanels.h"
#include "interface/icons/IconFile.h"
#include "interface/icons/IconMenu.h"
#include "interface/icons/IconPanel.h"
#include "interface/icons/StandardIconShapes.h"
#include "interface/icons/StandardIcons.h"
#include "interface/icons/UserIcons.h"

namespace kestrin {

namespace {

/// The one file of this machine that is dragged, or nothing.
QString DraggedFile(const QMimeData& data) {
  const std::vector<std::string> files = LocalFiles(data);
  return files.size() == 1 ? QFile::decodeName(files.front().c_str()) : QString();
}

/// A picture of a standard icon has its large form; the small one is a drawing of its own.
int32 StandardIconLike(IconPair icon) {
  for (int32 i = 0; i < NumberOfStandardIcons; ++i)
    if (icon.large == StandardLargeIconData(i)) icon.mini = StandardMiniIconData(i);
  return WhichStandardIcon(icon);
}

QString ImageGlobs() {
  QStringList globs;
  for (const QByteArray& format : QImageReader::supportedImageFormats())
    globs << "*." + QString::fromLatin1(format);
  return globs.join(' ');
}

}  // namespace

IconView::IconView(Event& event, QWidget* parent) : QToolButton(parent), event_(&event) {
  setObjectName("eventIcon");
  setIconSize(QSize(LargeIconSize, LargeIconSize));
  setMinimumSize(sizeHint());
  setText("I&con");  // stands there when there is no icon
  setAutoRaise(true);
  setFocusPolicy(Qt::StrongFocus);
  setAcceptDrops(true);
  connect(this, &QToolButton::clicked, this, &IconView::OpenMenu);
}

IconChoice IconView::Now() const {
  const IconPair* own = event_->GetOwnIcon();
  return {event_->Record().IconNumber, own ? *own : IconPair()};
}

void IconView::ShowEvent() {
  if (!event_) return;
  const QString name = "Icon: " + IconName(event_->Record().IconNumber);
  setIcon(EventIcon(*event_));
  setAccessibleName(name);
  setToolTip(name + "\nPress to choose another, or drop an image file here.");
}

void IconView::Forget() {
  event_ = nullptr;
  desktopPanel_.Withdraw();
  // They go on a later turn: then no set is locked and nobody counts windows.
  for (QWidget* opened : std::initializer_list<QWidget*>{menu_, filePanel_, panel_})
    if (opened) opened->close();
}

void IconView::keyPressEvent(QKeyEvent* event) {
  const bool opens = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
                     event->key() == Qt::Key_Down;
  if (opens)
    click();
  else
    QToolButton::keyPressEvent(event);
}

void IconView::OpenMenu() {
  if (menu_ || !event_) return;
  menu_ = new IconMenu(event_->GetOwner()->GetContext().settings, Now(), this);
  connect(menu_, &IconMenu::Chosen, this, &IconView::Choose);
  connect(menu_, &IconMenu::FileWanted, this, &IconView::OpenFilePanel);
  connect(menu_, &IconMenu::PanelWanted, this, &IconView::OpenPanel);
  menu_->OpenAt(*this);
}

void IconView::OpenFilePanel() {
  if (desktopPanel_.IsOpen() || !event_) return;
  if (filePanel_) {
    OpenOwnFilePanel();
    return;
  }
  FilePanelRequest request = RequestFor(this, "Choose image file", {});
  request.Filters = {{"Images", ImageGlobs().toStdString()}, {"All files", "*"}};
  desktopPanel_.Ask(event_->GetOwner()->GetContext().filePanels, request,
                    [this](const FilePanelAnswer& answer) {
                      if (answer.What == FilePanelAnswer::Kind::Unavailable) OpenOwnFilePanel();
                      if (answer.What == FilePanelAnswer::Kind::Chosen)
                        Import(QFile::decodeName(answer.Files.front().c_str()));
                    });
}

void IconView::OpenOwnFilePanel() {
  if (!filePanel_) {
    filePanel_ = new QFileDialog(this, "Choose image file");
    filePanel_->setObjectName("iconFilePanel");
    filePanel_->setAttribute(Qt::WA_DeleteOnClose);
    filePanel_->setFileMode(QFileDialog::ExistingFile);
    SetUpFilePanel(*filePanel_);
    filePanel_->setNameFilters({"Images (" + ImageGlobs() + ')', "All files (*)"});
    connect(filePanel_, &QFileDialog::fileSelected, this, &IconView::Import);
  }
  filePanel_->show();
  filePanel_->raise();
  filePanel_->activateWindow();
}

void IconView::OpenPanel() {
  panel_ = new IconPanel(event_->GetOwner()->GetContext().settings, Now(), window());
  connect(panel_, &IconPanel::Chosen, this, &IconView::Choose);
  connect(panel_, &IconPanel::FileWanted, this, &IconView::OpenFilePanel);
  panel_->Open();
}

void IconView::Choose(const IconChoice& choice) {
  if (!event_ || choice == Now()) return;
  {
    const EventEdit edit(*event_);
    const bool isOwn = choice.index == OwnIconNumber;
    edit->SetIcon(choice.index, isOwn ? std::make_unique<IconPair>(choice.own) : nullptr);
  }
  ShowEvent();
}

void IconView::Import(const QString& path) {
  if (!event_ || path.isEmpty()) return;
  QString fault;
  const std::optional<IconPair> icon = ReadIconFile(path, fault);
  if (!icon) {
    event_->GetOwner()->GetContext().notices.ReportCompoundError(
        "Kestrin: No icon could be made of the image file ", path.toStdString(),
        ": " + fault.toStdString() + ".  The event keeps the icon it has.");
    return;
  }
  if (const int32 standard = StandardIconLike(*icon); standard >= 0) return Choose({standard, {}});
  AddUserIcon(event_->GetOwner()->GetContext().settings, *icon);
  IconPanel::IconsChanged();
  Choose({OwnIconNumber, *icon});
}

void IconView::dragEnterEvent(QDragEnterEvent* event) {
  const QMimeData& dragged = *event->mimeData();
  if (DraggedIcon(dragged) || !DraggedFile(dragged).isEmpty()) AcceptAsCopy(*event);
}

void IconView::dropEvent(QDropEvent* event) {
  if (!event_) return;
  const QMimeData& dragged = *event->mimeData();
  AcceptAsCopy(*event);
  if (const auto icon = DraggedIcon(dragged))
    Choose(*icon);
  else
    Import(DraggedFile(dragged));
}

}  // namespace kestrin
