// The desktop's file panels, against a stand-in for its portal on a bus of the test's own.
#include "session/PortalFilePanels.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusVirtualObject>

#include "session/SessionBus.h"

namespace kestrin {
namespace {

using testing::ElementsAre;
using Kind = FilePanelAnswer::Kind;

constexpr char PortalName[] = "org.freedesktop.portal.Desktop";

/// Keeps the calls and answers when the test says so.
class Portal final : public QDBusVirtualObject {
 public:
  explicit Portal(QDBusConnection bus) : bus_(std::move(bus)) {
    bus_.registerVirtualObject("/org/freedesktop/portal/desktop", this, QDBusConnection::SubPath);
    bus_.registerService(PortalName);
  }
  bool handleMessage(const QDBusMessage& call, const QDBusConnection& connection) override {
    Calls.push_back(call);
    if (!Answers || call.member() == "Close") return true;
    const auto options = qdbus_cast<QVariantMap>(call.arguments().value(2));
    const QString sender = call.service().mid(1).replace(u'.', u'_');
    Request = "/org/freedesktop/portal/desktop/request/" + sender + '/' +
              options["handle_token"].toString();
    connection.send(call.createReply(QVariant::fromValue(QDBusObjectPath(Request))));
    return true;
  }
  QString introspect(const QString&) const override { return {}; }
  void Respond(uint outcome, const QStringList& uris) {
    auto signal = QDBusMessage::createSignal(Request, "org.freedesktop.portal.Request", "Response");
    signal << outcome << QVariantMap{{"uris", uris}};
    bus_.send(signal);
  }

  std::vector<QDBusMessage> Calls;
  QString Request;
  bool Answers = true;

 private:
  QDBusConnection bus_;
};

class PortalFilePanelsTest : public SessionBus {
 protected:
  PortalFilePanelsTest() {
    request_.What = FilePanelRequest::Kind::Save;
    request_.Folder = "/home/f\xc3\xbcr";
    request_.Name = "Tea.kestrin";
    request_.Filters = {{"Sets", "*.kestrin *.old"}};
    request_.BoxLabel = "Remember for delivery";
    request_.BoxTicked = true;
  }
  ~PortalFilePanelsTest() override { EndPortal(); }
  void StartPortal() {
    portal_ = std::make_unique<Portal>(
        QDBusConnection::connectToBus(QString::fromStdString(Bus().Address()), "portal"));
  }
  void EndPortal() {
    portal_.reset();
    QDBusConnection::disconnectFromBus("portal");
  }
  uint64 Ask(std::chrono::milliseconds patience = std::chrono::minutes(1)) {
    panels_ = std::make_unique<PortalFilePanels>(Client(), patience);
    return panels_->Ask(request_,
                        [this](const FilePanelAnswer& answer) { answers_.push_back(answer); });
  }
  bool Answered() {
    return RunUntil([this] { return !answers_.empty(); });
  }
  bool Asked() {
    return RunUntil([this] { return !portal_->Request.isEmpty(); });
  }

  FilePanelRequest request_;
  std::unique_ptr<Portal> portal_;
  std::unique_ptr<PortalFilePanels> panels_;
  std::vector<FilePanelAnswer> answers_;
};

TEST_F(PortalFilePanelsTest, AnExistingNameComesBackByteForByte) {
  StartPortal();
  Ask();
  ASSERT_TRUE(Asked());
  const QDBusMessage call = portal_->Calls.at(0);
  EXPECT_EQ(call.member(), "SaveFile");
  EXPECT_EQ(call.signature(), "ssa{sv}");
  const auto options = qdbus_cast<QVariantMap>(call.arguments().value(2));
  EXPECT_EQ(options["current_folder"].toByteArray(), QByteArray("/home/f\xc3\xbcr", 11));
  EXPECT_EQ(options["current_name"], "Tea.kestrin");
  EXPECT_EQ(options["choices"].value<QDBusArgument>().currentSignature(), "a(ssa(ss)s)");
  EXPECT_EQ(options["filters"].value<QDBusArgument>().currentSignature(), "a(sa(us))");
  portal_->Respond(0, {"file:///home/a%20b/%FFTea%25.kestrin"});
  ASSERT_TRUE(Answered());
  EXPECT_EQ(answers_[0].What, Kind::Chosen);
  EXPECT_THAT(answers_[0].Files, ElementsAre("/home/a b/\xffTea%.kestrin"));
  portal_->Respond(0, {"file:///late"});
  Settle();
  EXPECT_EQ(answers_.size(), 1u);
}

TEST_F(PortalFilePanelsTest, CancelDeathSilenceAndAbsenceEachEndTheQuestionOnce) {
  Ask();
  ASSERT_TRUE(Answered());
  EXPECT_EQ(answers_[0].What, Kind::Unavailable) << "there is no portal";

  answers_.clear();
  StartPortal();
  Ask();
  ASSERT_TRUE(Asked());
  portal_->Respond(1, {});
  ASSERT_TRUE(Answered());
  EXPECT_EQ(answers_[0].What, Kind::Cancelled);

  answers_.clear();
  portal_->Request.clear();
  Ask();
  ASSERT_TRUE(Asked());
  EndPortal();
  ASSERT_TRUE(Answered());
  EXPECT_EQ(answers_[0].What, Kind::Cancelled) << "it died";

  answers_.clear();
  StartPortal();
  portal_->Answers = false;
  Ask(std::chrono::milliseconds(1));
  ASSERT_TRUE(Answered());
  EXPECT_EQ(answers_[0].What, Kind::Unavailable) << "it never said that it shows anything";
}

TEST_F(PortalFilePanelsTest, AWithdrawnPanelIsClosedAndCallsNobody) {
  StartPortal();
  const uint64 panel = Ask();
  ASSERT_TRUE(Asked());
  panels_->Withdraw(panel);
  ASSERT_TRUE(RunUntil([this] { return portal_->Calls.back().member() == "Close"; }));
  portal_->Respond(0, {"file:///late"});
  Settle();
  EXPECT_TRUE(answers_.empty());
}

}  // namespace
}  // namespace kestrin
