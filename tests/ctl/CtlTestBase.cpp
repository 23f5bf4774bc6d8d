#include "ctl/CtlTestBase.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "core/AppState.h"
#include "core/EventSetFile.h"
#include "core/HandlerTable.h"
#include "core/VirtualEngine.h"
#include "handlers/LoadEventHandlers.h"

namespace kestrin {

namespace {

constexpr rlim_t Memory = rlim_t{512} << 20, Seconds = 10;
constexpr size_t HeaderBytes = 9, LayoutBytes = 118;

void Limit(int resource, rlim_t value) {
  const rlimit both{value, value};
  setrlimit(static_cast<__rlimit_resource>(resource), &both);
}

void Redirect(const std::string& path, int to) {
  dup2(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), to);
}

std::string WrittenSet(const std::string& path, const std::vector<EventRecord>& records) {
  {
    VirtualEngine engine;
    LoadBuiltInHandlers(engine.context);
    EventSet set(engine.context, path);
    for (const EventRecord& record : records) {
      auto event = std::make_unique<Event>(set, record);
      event->SetSelectedHandler(MessageHandler);
      set.AddEvent(std::move(event));
    }
    EXPECT_TRUE(set.SaveData()) << path;
  }
  ResetProcessState();
  return BytesOf(path);
}

}  // namespace

std::string BytesOf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  EXPECT_TRUE(in) << path;
  return {std::istreambuf_iterator<char>(in), {}};
}

void PutBytes(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

std::string SetOfRecords(size_t count, const std::function<void(std::string& all)>& appendRecords) {
  std::string all = BytesOf(DataFolder + "golden/no-events.kestrin");
  const std::string layout = all.substr(HeaderBytes);
  all.resize(HeaderBytes);
  const auto number = static_cast<int32>(count);
  std::memcpy(all.data() + HeaderBytes - sizeof number, &number, sizeof number);
  appendRecords(all);
  return all + layout;
}

std::string RecordBytes(const EventRecord& record) {
  char path[] = "/tmp/kestrin-record-XXXXXX";
  close(mkstemp(path));
  const std::string bytes = WrittenSet(path, {record});
  unlink(path);
  const std::string end = std::string("Message") + std::string(5, '\0');
  const size_t size = bytes.size() - HeaderBytes - LayoutBytes;
  EXPECT_TRUE(std::string_view(bytes).substr(0, HeaderBytes + size).ends_with(end));
  return bytes.substr(HeaderBytes, size - end.size()) + std::string(5, '\0');
}

CtlTest::CtlTest() {
  char name[] = "/tmp/kestrin-ctl-XXXXXX";
  Folder = mkdtemp(name);
}

CtlTest::~CtlTest() { std::filesystem::remove_all(Folder); }

Ran CtlTest::Run(std::vector<std::string> arguments, bool keepOutput) const {
  arguments.insert(arguments.begin(), KESTRINCTL);
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  const std::string out = keepOutput ? Path(".out") : "/dev/null", err = Path(".err");
  const pid_t child = fork();
  if (child == 0) {
    setenv("TZ", Zone.c_str(), 1);
    Limit(RLIMIT_CPU, IsSanitized ? 9 * Seconds : Seconds);
    if (!IsSanitized) Limit(RLIMIT_AS, Memory);
    Redirect(out, STDOUT_FILENO);
    Redirect(err, STDERR_FILENO);
    if (chdir(Folder.c_str()) == 0) execv(argv[0], argv.data());
    _exit(127);
  }
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status),
          keepOutput ? BytesOf(out) : "", BytesOf(err)};
}

nlohmann::json CtlTest::RunJson(const std::vector<std::string>& arguments) const {
  const Ran ran = Run(arguments);
  EXPECT_EQ(ran.status, 0);
  EXPECT_EQ(ran.err, "");
  return nlohmann::json::parse(ran.out, nullptr, false);
}

void CtlTest::ExpectRefused(const std::vector<std::string>& arguments, const std::string& file,
                            const std::string& fault) const {
  const Ran ran = Run(arguments);
  SCOPED_TRACE(testing::PrintToString(arguments));
  EXPECT_EQ(ran.status, 2);
  EXPECT_EQ(ran.out, "");
  EXPECT_EQ(std::count(ran.err.begin(), ran.err.end(), '\n'), 1);
  EXPECT_TRUE(ran.err.starts_with("kestrinctl: " + file + ": ") && ran.err.ends_with('\n'))
      << ran.err;
  EXPECT_THAT(ran.err, testing::HasSubstr(fault));
}

void CtlTest::MakeSet(const std::string& name, const std::vector<EventRecord>& records) const {
  WrittenSet(Path(name), records);
}

}  // namespace kestrin
