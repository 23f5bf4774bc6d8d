#include <gmock/gmock.h>

#include <QPainter>
#include <QtTest/QTest>

#include "interface/ScreenContext.h"
#include "interface/icons/ColourMapped.h"
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

IconPair Striped(char colour) {
  IconPair icon{std::string(LargeIconBytes, colour), std::string(MiniIconBytes, colour)};
  icon.large.replace(0, 512, 512, static_cast<char>(TransparentPixel));
  return icon;
}

TEST(StandardIconsTest, CanBeToldApartAndSeenOnEveryBackground) {
  const QColor backgrounds[] = {Qt::white, QColor(0x23, 0x26, 0x29), QColor(0x3d, 0xae, 0xe9)};
  for (const int size : {MiniIconSize, LargeIconSize})
    for (const QColor& background : backgrounds)
      for (int32 i = 0; i < NumberOfStandardIcons; ++i) {
        const QImage picture = Picture(StandardIcon(i), size, background);
        EXPECT_GT(ShareThatDiffers(picture, Picture(QIcon(), size, background)), 0.2)
            << IconName(i).toStdString() << " on " << background.name().toStdString();
        for (int32 j = 0; j < i; ++j)
          EXPECT_GT(ShareThatDiffers(picture, Picture(StandardIcon(j), size, background)), 0.25)
              << IconName(i).toStdString() << " and " << IconName(j).toStdString() << " at "
              << size;
      }
}

TEST(StandardIconsTest, AreDrawnAnewForDenseScreens) {
  for (int32 i = 0; i < NumberOfStandardIcons; ++i) {
    const QImage plain = Picture(StandardIcon(i), 16, Qt::white);
    const QImage dense = Picture(StandardIcon(i), 16, Qt::white, 3);
    ASSERT_EQ(dense.size(), QSize(48, 48));
    EXPECT_GT(ShareThatDiffers(dense, plain.scaled(48, 48)), 0.02) << "blown up, not drawn";
  }
  EXPECT_EQ(StandardIcon(0).pixmap(QSize(16, 16), 2).size(), QSize(32, 32));
  EXPECT_TRUE(StandardIcon(11).isNull());
  EXPECT_TRUE(StandardIcon(-1).isNull());
  EXPECT_TRUE(StandardIcon(INT32_MAX).isNull());
}

TEST(StandardIconsTest, AreKnownByTheirBitmaps) {
  for (int32 i = 0; i < NumberOfStandardIcons; ++i) {
    IconPair icon{StandardLargeIconData(i), StandardMiniIconData(i)};
    ASSERT_EQ(icon.large.size(), size_t{LargeIconBytes});
    EXPECT_EQ(WhichStandardIcon(icon), i);
    icon.mini[100] = static_cast<char>(icon.mini[100] + 1);
    EXPECT_EQ(WhichStandardIcon(icon), -1);
  }
}

struct EventIconTest : testing::Test {
  ScreenContext context;
  EventSet& set = context.NewSet();
  Event& event = AppendEvent(set, "Tea");
};

TEST_F(EventIconTest, IsTheStandardOneTheEventsOwnOrNone) {
  EXPECT_FALSE(EventIcon(event).isNull()) << "number 0";
  event.SetIcon(NoIconNumber, nullptr);
  EXPECT_TRUE(EventIcon(event).isNull());
  event.SetIcon(4711, nullptr);
  EXPECT_TRUE(EventIcon(event).isNull());
  const auto red = static_cast<char>(IndexOfColour({255, 0, 0, 255}));
  event.SetIcon(OwnIconNumber, std::make_unique<IconPair>(Striped(red)));
  const QImage large = Picture(EventIcon(event), LargeIconSize, Qt::green);
  EXPECT_EQ(large.pixelColor(5, 5), QColor(Qt::green)) << "transparent";
  EXPECT_EQ(large.pixelColor(5, 25), QColor(Qt::red));
  EXPECT_EQ(Picture(EventIcon(event), MiniIconSize, Qt::green).pixelColor(5, 5), QColor(Qt::red));
  const QImage dense = Picture(EventIcon(event), MiniIconSize, Qt::green, 2);
  EXPECT_EQ(dense.pixelColor(5, 5), QColor(Qt::green)) << "the larger one has the pixels for it";
}

TEST_F(EventIconTest, StandsInTheList) {
  AppendEvent(set, "Coffee").SetIcon(NoIconNumber, nullptr);
  EventSetWindow& window = context.OpenWindow(set);
  auto* list = window.findChild<ListEventView*>();
  const QModelIndex tea = list->model()->index(0, 0);
  EXPECT_EQ(tea.data(Qt::AccessibleTextRole), "Bell");
  EXPECT_EQ(tea.siblingAtRow(1).data(Qt::AccessibleTextRole), "No icon");
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
  const QRect place = list->visualRect(tea), below = list->visualRect(tea.siblingAtRow(1));
  const QImage shown = list->viewport()->grab().toImage();
  EXPECT_NE(shown.copy(place), shown.copy(below));
}

}  // namespace
}  // namespace kestrin
