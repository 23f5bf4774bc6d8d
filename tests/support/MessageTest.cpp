#include "support/Message.h"

#include <gtest/gtest.h>

#include <bit>
#include <limits>
#include <random>

namespace kestrin {
namespace {

TEST(Message, EveryContentSurvivesTheJourney) {
  std::string allBytes;
  for (int i = 0; i < 256; ++i) allBytes += static_cast<char>(i);
  Message message(FourCharCode("SetE"));
  EXPECT_EQ(message.what, 0x53657445u);
  message.Set("b", true);
  message.Set("c", int8{-128});
  message.Set("When", std::numeric_limits<int32>::min());
  message.Set("long", std::numeric_limits<int64>::min());
  message.Set("longer", std::numeric_limits<int64>::max());
  message.Set("text", std::string("\xE2\x82\xAC \"\\\n"));
  message.Set("nul", std::string("a\0b", 3));
  message.Set("latin", std::string("\xE9t\xE9"));
  message.Set(allBytes, allBytes);
  message.Set("", std::string());
  message.Set("frame", Rect{0.1f, -0.0f, 1e30f, std::numeric_limits<float>::infinity()});
  message.Set("raw", RawData{FourCharCode("ICON"), allBytes});
  EXPECT_EQ(Message::Unflatten(message.Flatten()), message);

  Message strange;
  const float nan = std::bit_cast<float>(0x7fc12345u);
  strange.Set("frame", Rect{nan, 0, 0, 0});
  const auto frame = Message::Unflatten(strange.Flatten())->Get<Rect>("frame");
  EXPECT_EQ(std::bit_cast<uint32>(frame->left), 0x7fc12345u);
}

TEST(Message, AFieldIsReplacedInItsPlaceAndGivenOnlyAsItsOwnType) {
  Message message;
  for (const char* name : {"a", "b"}) message.Set(name, 1);
  message.Set("a", int64{3});
  EXPECT_EQ(message.Fields()[0].first, "a");
  EXPECT_EQ(message.Fields().size(), 2u);
  EXPECT_EQ(message.Get<int64>("a"), 3);
  EXPECT_EQ(message.Get<int32>("a"), std::nullopt);
  EXPECT_FALSE(message.Has("c"));
}

std::string Field(const std::string& type, const std::string& value) {
  return R"({"what":1,"fields":[{"name":"a","type":")" + type + R"(","value":)" + value + "}]}";
}

TEST(Message, RefusesEverythingElse) {
  ASSERT_TRUE(Message::Unflatten(Field("int8", "-128")));
  ASSERT_TRUE(Message::Unflatten(Field("raw", R"({"code":4294967295,"bytes":"00ff"})")));
  const std::string refused[] = {
      R"({"what":1})",
      R"({"what":4294967296,"fields":[]})",
      R"({"what":1,"fields":[]} more)",
      R"({"what":1,"fields":[{"name":"a","type":"bool"}]})",
      R"({"what":1,"fields":[{"name":"a","type":"int8","value":1},)"
      R"({"name":"a","type":"int8","value":1}]})",
      Field("int8", "128"),
      Field("int64", "9223372036854775808"),
      Field("int64", "1e3"),
      Field("int32", "true"),
      Field("bool", "1"),
      Field("string", "\"\xE9\""),
      Field("string", R"({"bytes":"0"})"),
      Field("rect", "[1,2,3]"),
      Field("rect", "[1,2,3,1e300]"),
      Field("raw", R"({"code":4294967296,"bytes":""})"),
      Field("double", "1"),
      "\xFF",
      std::string(1000000, '['),
  };
  for (const std::string& text : refused)
    EXPECT_FALSE(Message::Unflatten(text)) << text.substr(0, 100);
}

TEST(Message, RefusesWhatWouldTakeFarMoreRoomThanItsText) {
  for (const size_t deep : {7, 8})
    EXPECT_EQ(Message::Unflatten(R"({"what":1,"fields":[],"extra":)" + std::string(deep, '[') +
                                 std::string(deep, ']') + "}")
                  .has_value(),
              deep == 7);
  const auto withExtra = [](int elements) {
    std::string text = R"({"what":1,"fields":[],"extra":[0)";
    for (int i = 1; i < elements; ++i) text += ",0";
    return text + "]}";
  };
  EXPECT_TRUE(Message::Unflatten(withExtra(50000)));
  EXPECT_FALSE(Message::Unflatten(withExtra(150000)));
}

TEST(Message, DamagedTextIsRefusedOrAMessage) {
  const std::string whole = Field("raw", R"({"code":1,"bytes":"00ff"})");
  std::mt19937 random(3);
  for (int i = 0; i < 20000; ++i) {
    std::string damaged = whole;
    for (auto n = 1 + random() % 3; n > 0; --n)
      damaged[random() % damaged.size()] = "{}[]\",:0-e\x80"[random() % 11];
    const auto read = Message::Unflatten(damaged);
    ASSERT_TRUE(!read || Message::Unflatten(read->Flatten()) == read) << damaged;
  }
}

}  // namespace
}  // namespace kestrin
