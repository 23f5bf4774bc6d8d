#include <sys/stat.h>

#include <QBuffer>
#include <QPainter>
#include <QPointer>
#include <QTemporaryDir>

#include "harness/EditorDriver.h"
#include "interface/alerts/AlertWindow.h"
#include "interface/icons/ColourMapped.h"
#include "interface/icons/IconPanel.h"
#include "interface/icons/StandardIcons.h"

namespace kestrin {
namespace {

QImage Picture(const QIcon& icon, int size, const QColor& background, qreal ratio = 1) {
  QImage picture(QSize(size, size) * ratio, QImage::Format_RGB32);
  picture.setDevicePixelRatio(ratio);
  picture.fill(background);
  QPainter painter(&picture);
  icon.paint(&painter, QRect(0, 0, size, size));
  return picture;
}

/// How many of the pixels differ so much that an eye sees it.
double ShareThatDiffers(const QImage& a, const QImage& b) {
  int different = 0;
  for (int y = 0; y < a.height(); ++y)
    for (int x = 0; x < a.width(); ++x) {
      const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
      const int distance = std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) +
                           std::abs(qBlue(p) - qBlue(q));
      different += distance > 96;
    }
  return 1.0 * different / (a.width() * a.height());
}

TEST(StandardIconsTest, AreKnownByTheirBitmapsAndDrawnAnewForDenseScreens) {
  for (int32 i = 0; i < NumberOfStandardIcons; ++i) {
    IconPair icon{StandardLargeIconData(i), StandardMiniIconData(i)};
    EXPECT_EQ(icon.large.size(), size_t{LargeIconBytes});
    EXPECT_EQ(WhichStandardIcon(icon), i);
    icon.mini[100] = static_cast<char>(icon.mini[100] + 1);
    EXPECT_EQ(WhichStandardIcon(icon), -1);
    const QImage plain = Picture(StandardIcon(i), 16, Qt::white);
    const QImage dense = Picture(StandardIcon(i), 16, Qt::white, 3);
    EXPECT_GT(ShareThatDiffers(dense, plain.scaled(48, 48)), 0.02) << "blown up, not drawn";
  }
  for (const int32 none : {-1, 11, INT32_MAX}) EXPECT_TRUE(StandardIcon(none).isNull());
  EXPECT_EQ(StandardIcon(0).pixmap(QSize(16, 16), 2).size(), QSize(32, 32));
}

struct IconViewTest : EditorTest {
  QTemporaryDir folder;

  std::string Path(const char* name) const { return folder.filePath(name).toStdString(); }
  QString Put(const char* name, const QByteArray& bytes) const {
    QFile file(folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    return file.fileName();
  }
  QString Put(const char* name, const QImage& image) const {
    EXPECT_TRUE(image.save(folder.filePath(name)));
    return folder.filePath(name);
  }
  bool DropFile(const QString& path) const {
    QMimeData dragged;
    dragged.setUrls({QUrl::fromLocalFile(path)});
    return Drop("eventIcon", dragged);
  }
  /// A menu of icons that stands open, with the given icon under the pointer.
  void ClickIcon(const char* shownIn, int row) const {
    auto* grid = Find(shownIn).findChild<IconGrid*>();
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {},
                      grid->visualItemRect(grid->item(row)).center());
  }
  static QImage HalfRed(int width, int height) {
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter(&image).fillRect(0, height / 2, width, height, Qt::red);
    return image;
  }
};

TEST_F(IconViewTest, AnIconIsChosenByMouseAndByKeys) {
  OpenNew(ActionTab);
  QWidget& button = Find("eventIcon");
  Click("eventIcon");
  const QImage before = button.grab().toImage();
  ClickIcon("iconMenu", 6);
  EXPECT_EQ(Record().IconNumber, 6);
  EXPECT_NE(button.grab().toImage(), before) << "it is drawn";
  EXPECT_EQ(button.accessibleName(), "Icon: Heart");
  EXPECT_FALSE(Find("iconMenu").isVisible());
  DeleteClosed();
  button.setFocus();
  QTest::keyClick(&button, Qt::Key_Space);
  auto& icons = *Find("iconMenu").findChild<IconGrid*>();
  EXPECT_EQ(icons.currentItem()->data(Qt::AccessibleTextRole), "Heart") << "where it is now";
  QTest::keyClick(&icons, Qt::Key_Right);
  QTest::keyClick(&icons, Qt::Key_Return);
  EXPECT_EQ(Record().IconNumber, 7);
  DeleteClosed();
  QTest::keyClick(&button, Qt::Key_Return);
  Click("noIcon");
  EXPECT_EQ(Record().IconNumber, NoIconNumber);
  DeleteClosed();
  QTest::keyClick(&button, Qt::Key_Down);
  QTest::keyClick(&Find("iconMenu"), Qt::Key_Escape);
  EXPECT_FALSE(Find("iconMenu").isVisible());
  EXPECT_TRUE(window->isVisible()) << "only the menu closes";
}

TEST_F(IconViewTest, AnImageBecomesTheEventsOwnIconAndOneOfTheUsers) {
  OpenNew(ActionTab);
  ASSERT_TRUE(DropFile(Put("wide.png", HalfRed(300, 150))));
  ASSERT_EQ(Record().IconNumber, OwnIconNumber);
  const QImage large = Picture(EventIcon(*event), LargeIconSize, Qt::green);
  EXPECT_EQ(large.pixelColor(16, 4), QColor(Qt::green)) << "not square: it stands in the middle";
  EXPECT_EQ(large.pixelColor(16, 10), QColor(Qt::green)) << "its alpha is kept";
  EXPECT_EQ(large.pixelColor(16, 20), QColor(Qt::red));
  EXPECT_EQ(Picture(EventIcon(*event), MiniIconSize, Qt::green).pixelColor(8, 10), QColor(Qt::red));
  ASSERT_TRUE(DropFile(Put("plain.png", HalfRed(32, 32))));
  ASSERT_TRUE(DropFile(folder.filePath("wide.png")));
  EXPECT_EQ(context.Settings.NumberOfUserIcons, 2) << "the same is not kept twice";
  EXPECT_EQ(context.Settings.UserLargeIcons[0], event->GetOwnIcon()->large);
  EXPECT_EQ(context.Settings.UserMiniIcons[0], event->GetOwnIcon()->mini);
  Click("eventIcon");
  ClickIcon("iconMenu", NumberOfStandardIcons + 1);
  EXPECT_EQ(event->GetOwnIcon()->large, context.Settings.UserLargeIcons[1]);
  EXPECT_EQ(AlertTexts(), "");
}

TEST_F(IconViewTest, AnImageLikeAStandardIconIsThatIcon) {
  OpenNew(ActionTab);
  ASSERT_TRUE(DropFile(Put("star.png", ImageOfBitmap(StandardLargeIconData(8), LargeIconSize))));
  EXPECT_EQ(Record().IconNumber, 8);
  EXPECT_EQ(context.Settings.NumberOfUserIcons, 0);
  QMimeData dragged;
  dragged.setData(DraggedIconType, QByteArray(1, 9));
  ASSERT_TRUE(Drop("eventIcon", dragged));
  EXPECT_EQ(Record().IconNumber, 9);
  dragged.setData(DraggedIconType, QByteArray(1, 11));
  EXPECT_FALSE(Drop("eventIcon", dragged));
  dragged.setData(DraggedIconType, QByteArray(1279, 0));
  EXPECT_FALSE(Drop("eventIcon", dragged));
}

TEST_F(IconViewTest, AFileThatGivesNoIconChangesNothingAndIsNamed) {
  OpenNew(ActionTab);
  SaveSet();
  QImage blank(64, 64, QImage::Format_ARGB32);
  blank.fill(Qt::transparent);
  QByteArray png;
  QBuffer buffer(&png);
  HalfRed(64, 64).save(&buffer, "PNG");
  ASSERT_EQ(mkfifo(Path("pipe.png").c_str(), 0600), 0);
  const std::pair<QString, const char*> cases[] = {
      {Put("text.png", QByteArray("no image at all")), "no image of a kind that is known"},
      {Put("empty.png", QByteArray()), "no image of a kind that is known"},
      {Put("cut.png", png.left(png.size() / 3)), "damaged"},
      {Put("vast.ppm", QByteArray("P6 16000 16000 255\n")), "too large"},
      {Put("wider.ppm", QByteArray("P6 40000 1 255\n")), "too large"},
      {Put("blank.png", blank), "nothing of it can be seen"},
      {folder.filePath("pipe.png"), "not a file"},
      {folder.filePath("gone.png"), "does not exist"},
      {folder.path(), "not a file"},
  };
  for (const auto& [path, fault] : cases) {
    DropFile(path);
    const std::string said = AlertTexts();
    EXPECT_THAT(said, testing::HasSubstr(path.toStdString()));
    EXPECT_THAT(said, testing::HasSubstr(fault)) << path.toStdString();
    EXPECT_EQ(Record().IconNumber, 0);
    for (QWidget* widget : QApplication::topLevelWidgets())
      if (qobject_cast<AlertWindow*>(widget)) widget->close();
  }
  EXPECT_EQ(context.Settings.NumberOfUserIcons, 0);
  EXPECT_FALSE(set->HasBeenModified());
}

TEST_F(IconViewTest, ThePanelStaysOpenWhereItWasPut) {
  context.Settings.IconPanelLocation = {210, 220};
  OpenNew(ActionTab);
  DropFile(Put("own.png", HalfRed(32, 32)));
  Click("eventIcon");
  Click("openIconPanel");
  QPointer<IconPanel> panel = &Find<IconPanel>("iconPanel");
  EXPECT_EQ(panel->geometry().topLeft(), QPoint(210, 220));
  ASSERT_TRUE(QTest::qWaitForWindowExposed(panel));
  ClickIcon("iconPanel", 3);
  EXPECT_EQ(Record().IconNumber, 3);
  ClickIcon("iconPanel", NumberOfStandardIcons);
  EXPECT_EQ(Record().IconNumber, OwnIconNumber);
  auto& icons = *panel->findChild<IconGrid*>();
  QTest::keyClick(&icons, Qt::Key_Delete);
  EXPECT_EQ(context.Settings.NumberOfUserIcons, 0);
  EXPECT_EQ(icons.count(), NumberOfStandardIcons);
  EXPECT_TRUE(event->GetOwnIcon()) << "the event keeps its own";
  panel->setGeometry(140, 150, panel->width(), panel->height());
  EXPECT_TRUE(QTest::qWaitFor([this] { return context.Settings.IconPanelLocation.x == 140; }));
  EXPECT_EQ(context.Settings.IconPanelLocation.y, 150);
  OpenNew(ActionTab);
  Click("eventIcon");
  Click("openIconPanel");
  DeleteClosed();
  EXPECT_FALSE(panel) << "one at a time";
  ClickIcon("iconPanel", 5);
  EXPECT_EQ(Record().IconNumber, 5) << "of the event it was opened for";
  panel = &Find<IconPanel>("iconPanel");
  set->RemoveEvent(event);
  EXPECT_FALSE(panel && panel->isVisible());
}

}  // namespace
}  // namespace kestrin
