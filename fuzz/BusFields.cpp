// Calls with any arguments, sent over a socket as the bus would hand them on: both programs take
// exactly what docs/bus.md gives them, and refuse all else in words.
#include <systemd/sd-bus.h>

#include <QtCore/QCoreApplication>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusServer>
#include <QtDBus/QDBusVirtualObject>

#include "Trial.h"
#include "core/loop/MessageCodes.h"
#include "programs/background/BusFields.h"
#include "session/BusMessages.h"
#include "session/BusNames.h"
#include "session/FileUri.h"

namespace kestrin {
namespace {

/// What the call's fields say to who reads them one after another.
struct Said {
  std::optional<int32> late, when, since;
  bool badLate = false, badMoment = false;
};

class Caller {
 public:
  Caller(FuzzedDataProvider& in, sd_bus* bus) : in_(in) {
    static const char* const interfaces[] = {MessagesInterface, ApplicationInterface, "x.y"};
    const char* const members[] = {"Post", "Activate", "Open", "ActivateAction", "Other"};
    const size_t which = in.ConsumeIntegralInRange<size_t>(0, 4);
    sd_bus_message_new_method_call(
        bus, &call_, nullptr, ApplicationObject,
        in.ConsumeBool() ? interfaces[which != 0] : in.PickValueInArray(interfaces),
        members[which]);
    static const char* const signatures[] = {"ua{sv}", "a{sv}", "asa{sv}", "sava{sv}", ""};
    if (in.ConsumeIntegralInRange(0, 7) != 0)
      Append(signatures[which], 0);
    else
      for (int most = 4; most > 0 && in.remaining_bytes() > 0; --most) Append(OneType(), 0);
    sd_bus_message_set_expect_reply(call_, false);
    Demand(sd_bus_message_seal(call_, 1, 0) >= 0, "the call is whole");
  }
  ~Caller() { sd_bus_message_unref(call_); }
  Caller(const Caller&) = delete;
  Caller& operator=(const Caller&) = delete;

  sd_bus_message* Call() const { return call_; }
  const Said& Fields() const { return said_; }

 private:
  const char* OneType() {
    static const char* const types[] = {"i", "u", "b", "s", "x",  "d",
                                        "y", "o", "g", "v", "as", "a{sv}"};
    return in_.PickValueInArray(types);
  }
  std::string Text() {
    static const char* const texts[] = {"When",
                                        "Since",
                                        "Late",
                                        "Full",
                                        "new-event-set",
                                        "activation-token",
                                        "vnd.ZR.background",
                                        "file:///a%20b"};
    std::string text = in_.ConsumeBool() ? in_.PickValueInArray(texts) : "";
    if (text.empty() || in_.ConsumeBool()) text += in_.ConsumeRandomLengthString(40);
    for (char& c : text) c = c > 0 ? c : 'x';
    return text;
  }

  void Append(const std::string& signature, int depth) {
    for (size_t at = 0; at < signature.size(); ++at) {
      const bool isList = signature[at] == 'a', isMap = signature.compare(at, 5, "a{sv}") == 0;
      if (isMap)
        AppendMap(depth), at += 4;
      else if (isList)
        AppendList(signature[++at], depth);
      else
        AppendOne(signature[at], depth);
    }
  }
  void AppendMap(int depth) {
    sd_bus_message_open_container(call_, 'a', "{sv}");
    while (depth < 4 && in_.remaining_bytes() > 0 && in_.ConsumeIntegralInRange(0, 3) != 0) {
      sd_bus_message_open_container(call_, 'e', "sv");
      const std::string name = Text();
      sd_bus_message_append_basic(call_, 's', name.c_str());
      const char* const type = in_.ConsumeBool() ? "i" : OneType();
      last_.reset();
      AppendVariant(type, depth);
      if (depth == 0) Note(name, std::string_view(type) == "i");
      sd_bus_message_close_container(call_);
    }
    sd_bus_message_close_container(call_);
  }
  void Note(const std::string& name, bool isInt) {
    if (name == "Late") said_.badLate = !isInt, said_.late = last_;
    if (name != "When" && name != "Since") return;
    if (!said_.badMoment) (name == "When" ? said_.when : said_.since) = last_;
    said_.badMoment |= !isInt;
  }
  void AppendVariant(const std::string& type, int depth) {
    sd_bus_message_open_container(call_, 'v', type.c_str());
    Append(type, depth + 1);
    sd_bus_message_close_container(call_);
  }
  void AppendList(char type, int depth) {
    sd_bus_message_open_container(call_, 'a', std::string(1, type).c_str());
    while (in_.remaining_bytes() > 0 && in_.ConsumeBool()) AppendOne(type, depth);
    sd_bus_message_close_container(call_);
  }
  void AppendOne(char type, int depth) {
    if (type == 'v') return AppendVariant(depth < 4 ? OneType() : "i", depth);
    if (type == 'o') return void(sd_bus_message_append_basic(call_, 'o', "/a"));
    if (type == 'g') return void(sd_bus_message_append_basic(call_, 'g', "a{sv}"));
    if (type == 's') return void(sd_bus_message_append_basic(call_, 's', Text().c_str()));
    static const uint32 codes[] = {DELIVER_EVENTS, QUIT_REQUESTED, NEXT_EVENT_MESSAGE};
    union {
      int64 number;
      uint32 code;
      int32 truth;
    } value{in_.ConsumeIntegral<int64>()};
    if (type == 'u' && in_.ConsumeBool()) value.code = in_.PickValueInArray(codes);
    if (type == 'b') value.truth &= 1;
    if (type == 'i') last_ = value.truth;
    sd_bus_message_append_basic(call_, type, &value);
  }

  FuzzedDataProvider& in_;
  sd_bus_message* call_ = nullptr;
  Said said_;
  std::optional<int32> last_;
};

class Application final : public QDBusVirtualObject {
 public:
  const Said* said = nullptr;  ///< of the call that is on its way
  bool handleMessage(const QDBusMessage& call, const QDBusConnection&) override {
    Look(call);
    said = nullptr;
    return true;
  }
  QString introspect(const QString&) const override { return {}; }

 private:
  void Look(const QDBusMessage& call) const {
    const std::optional<ReadCall> read = ReadApplicationCall(call);
    Demand(read || call.interface() == "x.y", "only calls of other interfaces are left");
    if (!read) return;
    Demand(read->errorName.isEmpty() || (!read->message && !read->errorText.isEmpty()),
           "a refusal has its words and no effect");
    const bool isPost = call.interface() == MessagesInterface && call.member() == "Post";
    if (isPost && call.signature() == "ua{sv}" &&
        call.arguments().at(0).toUInt() == DELIVER_EVENTS) {
      Demand(read->message.has_value() != said->badLate, "lateness is an int32");
      Demand(!read->message || read->message->Get<int32>("Late") == said->late,
             "and taken as it is");
    }
    for (int i = 0; read->message; ++i) {
      const auto path = read->message->Get<std::string>(std::to_string(i));
      if (!path) return;
      Demand(PathOfFileUri(FileUriOf(*path)) == path, "a path is that of its URI");
    }
  }
};

void ReadInDeliverer(const Caller& caller) {
  sd_bus_message* const call = caller.Call();
  sd_bus_message_rewind(call, 1);
  if (!sd_bus_message_has_signature(call, "ua{sv}")) return;
  uint32 what = 0;
  Demand(sd_bus_message_read(call, "u", &what) > 0, "the code comes first");
  NextEventFields fields;
  sd_bus_error error = {};
  const int result = ReadNextEventFields(call, fields, &error);
  Demand((result < 0) == caller.Fields().badMoment && (result < 0) == (error.name != nullptr),
         "moments are int32, and refused in words");
  Demand(result < 0 || (fields.When == caller.Fields().when.value_or(0) &&
                        fields.Since == caller.Fields().since.value_or(0)),
         "and taken as they are");
  sd_bus_error_free(&error);
}

/// The application's end of a socket and a caller's.
struct Line {
  Line() {
    QObject::connect(&server, &QDBusServer::newConnection, [this](const QDBusConnection& one) {
      connection = one;
      connection.registerVirtualObject(ApplicationObject, &application);
    });
    sd_bus_new(&bus);
    sd_bus_set_address(bus, server.address().toUtf8().constData());
    Demand(sd_bus_start(bus) >= 0, "the caller is connected");
    while (!connection.isConnected() || sd_bus_is_ready(bus) <= 0) {
      sd_bus_process(bus, nullptr);
      QCoreApplication::processEvents();
    }
  }
  int arguments = 1;
  char name[5] = "fuzz";
  char* argument = name;
  QCoreApplication toolkit{arguments, &argument};
  QDBusServer server;
  QDBusConnection connection{""};
  Application application;
  sd_bus* bus = nullptr;
};

}  // namespace

void TryInput(FuzzedDataProvider& in) {
  static Line line;
  const Caller caller(in, line.bus);
  ReadInDeliverer(caller);
  line.application.said = &caller.Fields();
  sd_bus_send(line.bus, caller.Call(), nullptr);
  sd_bus_flush(line.bus);
  while (line.application.said) {
    Demand(line.connection.isConnected(), "the call was well made");
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
  }
}

}  // namespace kestrin
