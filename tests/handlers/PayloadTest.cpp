// The bytes of the built-in handlers' payloads, read in both byte orders and written back.
#include <algorithm>
#include <optional>

#include "HandlerTestBase.h"
#include "support/Opened.h"

namespace kestrin {
namespace {

using namespace std::string_literals;

const std::string Long(91, 'x');                              // more than the buffer holds
using Content = std::pair<std::string, std::optional<bool>>;  ///< text, whether to ask

Content ContentOf(const EventAddOnData& data) {
  if (const auto* message = dynamic_cast<const MessageDataHandler*>(&data))
    return {message->GetMessage(), std::nullopt};
  if (const auto* command = dynamic_cast<const CommandDataHandler*>(&data))
    return {command->GetCommand(), command->GetVerify()};
  if (const auto* file = dynamic_cast<const ActOnFileDataHandler*>(&data))
    return {file->GetFileName(), file->GetVerify()};
  return {};
}

struct Payload {
  uint32 Count;
  std::string Rest;

  std::string Bytes(bool bigEndian) const {
    std::string number;
    for (int i = 0; i < 4; ++i) number += static_cast<char>(Count >> (8 * i));
    if (bigEndian) std::reverse(number.begin(), number.end());
    return number + Rest;
  }
};

class PayloadTest : public HandlerTestBase {
 protected:
  std::unique_ptr<EventAddOnData> Read(const char* handler, const std::string& bytes,
                                       bool bigEndian, bool& ok) {
    Disk.Put("/sets/payload", std::string(1, bigEndian ? '\1' : '\0') + bytes);
    Opened<EndianIndependentFile> file(Disk, "/sets/payload", OpenReadOnly, 64);
    auto data =
        World.Handlers.MakeAddOnData(World.Handlers.Find(handler), Subject, &file, &ok, nullptr);
    left_ = file.BytesLeft();
    Opened<EndianIndependentFile> passed(Disk, "/sets/payload", OpenReadOnly, 64);
    const auto pass = World.Handlers.PassDataOf(World.Handlers.Find(handler));
    EXPECT_TRUE(!pass || (pass(passed) == ok && (!ok || passed.BytesLeft() == left_))) << handler;
    return data;
  }
  std::string Written(EventAddOnData& data) {
    Opened<EndianIndependentFile> file(Disk, "/sets/out", OpenWriteOnly | OpenCreate | OpenErase,
                                       64);
    EXPECT_TRUE(data.SaveData(&file));
    file.FlushBuffer();
    return Disk.Bytes("/sets/out").value_or("?").substr(1);
  }
  static bool HostIsBigEndian() {
    const uint32 one = 1;
    return *reinterpret_cast<const uint8*>(&one) == 0;
  }

  int64 left_ = 0;
};

TEST_F(PayloadTest, EveryFormIsReadAndWrittenBackInBothByteOrders) {
  const struct {
    const char* Handler;
    Payload Stored;
    int64 Left;  ///< bytes the handler does not read
    Content Shown;
    Payload Saved;
  } rows[] = {
      {"Message", {0, "next"}, 4, {"", {}}, {0, ""}},
      {"Message", {4, "tea\0next"s}, 4, {"tea", {}}, {4, "tea\0"s}},
      {"Message", {99, "te\0a\0\xff\0b"s + Long}, 0, {"te", {}}, {99, "te\0a\0\xff\0b"s + Long}},
      {"Command", {0, "\0next"s}, 4, {"", false}, {0, "\0"s}},
      {"Command", {0, "\1next"s}, 4, {"", true}, {0, "\1"s}},
      {"Command", {2, "\1\0next"s}, 4, {"", true}, {2, "\1\0"s}},
      {"Command", {4, "\0ls\0"s}, 0, {"ls", false}, {4, "\0ls\0"s}},
      {"Command", {4, "\x80ls\0"s}, 0, {"ls", true}, {4, "\1ls\0"s}},
      {"Act on file", {6, "\1/a b\0"s}, 0, {"/a b", true}, {6, "\1/a b\0"s}},
      {"Do nothing", {7, "next"}, 4, {}, {0, ""}},
      {"Unknown", {3, "\0\1\2next"s}, 4, {}, {3, "\0\1\2"s}},
  };
  for (const auto& row : rows)
    for (const bool bigEndian : {false, true}) {
      SCOPED_TRACE(row.Handler + testing::PrintToString(row.Stored.Bytes(bigEndian)));
      bool ok = false;
      const auto data = Read(row.Handler, row.Stored.Bytes(bigEndian), bigEndian, ok);
      ASSERT_TRUE(ok && data);
      EXPECT_EQ(left_, row.Left);
      EXPECT_EQ(ContentOf(*data), row.Shown);
      EXPECT_EQ(Written(*data), row.Saved.Bytes(HostIsBigEndian()));
      const std::string whole = row.Stored.Bytes(bigEndian);
      for (int64 length = static_cast<int64>(whole.size()) - row.Left - 1; length >= 0; --length) {
        Read(row.Handler, whole.substr(0, static_cast<size_t>(length)), bigEndian, ok);
        EXPECT_FALSE(ok) << "of " << length << " bytes";
      }
    }
}

TEST_F(PayloadTest, AHugeCountIsRefusedBeforeAnythingIsAllocated) {
  bool ok = false;
  for (const char* handler : {"Message", "Command", "Act on file", "Unknown"}) {
    ok = true;
    const auto data = Read(handler, "\xff\xff\xff\x7f\1tea", false, ok);
    EXPECT_FALSE(ok) << handler;
    EXPECT_EQ(data ? ContentOf(*data).first : "", "");
  }
  EXPECT_EQ(World.Handlers.MakeAddOnData(UnknownHandler, Subject, nullptr, &ok, nullptr), nullptr);
  EXPECT_TRUE(ok) << "it cannot be chosen fresh";
}

TEST_F(PayloadTest, ASetTextIsCutAndMarksTheEventWhileTheVerifyFlagMarksNothing) {
  auto& command = Select<CommandDataHandler>("Command");
  Set->SaveData();
  command.SetVerify(true);
  EXPECT_FALSE(Set->HasBeenModified());
  command.SetCommand(nullptr);
  EXPECT_TRUE(Set->HasBeenModified());
  std::string umlauts;
  for (int i = 0; i < 3000; ++i) umlauts += "ü";
  command.SetCommand(umlauts.c_str());
  EXPECT_EQ(command.GetCommand(), umlauts.substr(0, 4094)) << "cut within a character";
}

}  // namespace
}  // namespace kestrin
