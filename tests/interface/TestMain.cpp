#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  // The build asks for the names of the tests where there may be no screen.
  if (testing::GTEST_FLAG(list_tests)) return RUN_ALL_TESTS();
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  return RUN_ALL_TESTS();
}
