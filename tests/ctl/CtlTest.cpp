// kestrinctl as a process, with the golden files of tests/data.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

namespace {

using nlohmann::json;
namespace fs = std::filesystem;

const std::string Data = KESTRIN_SOURCE_DIR "/tests/data/";

std::string Bytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

void Write(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

struct Ran {
  int status = -1;
  std::string out, err;
  json Json() const { return json::parse(out); }
  long Lines() const { return std::count(err.begin(), err.end(), '\n'); }
};

class Ctl : public testing::Test {
 protected:
  Ctl() {
    char name[] = "/tmp/kestrin-ctl-XXXXXX";
    folder_ = std::string(mkdtemp(name)) + "/";
  }
  ~Ctl() override { fs::remove_all(folder_); }

  /// Runs the program in Berlin with at most 512 MB and 10 s, as it promises to need.
  Ran Run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), KESTRINCTL);
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    const std::string out = folder_ + "out", err = folder_ + "err";
    const pid_t child = fork();
    if (child == 0) {
      setenv("TZ", "Europe/Berlin", 1);
      const rlimit time{10, 10}, memory{512 << 20, 512 << 20};
      setrlimit(RLIMIT_CPU, &time);
      if (!Sanitized()) setrlimit(RLIMIT_AS, &memory);
      dup2(open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 1);
      dup2(open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 2);
      execv(argv[0], argv.data());
      _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status), Bytes(out),
            Bytes(err)};
  }

  static bool Sanitized() {
#ifdef __SANITIZE_ADDRESS__
    return true;
#else
    return false;
#endif
  }

  void ExpectRefused(const std::string& file) {
    for (const char* command : {"dump", "next", "agenda", "check"}) {
      const Ran ran = Run({command, file});
      EXPECT_EQ(ran.status, 2) << command << " " << file;
      EXPECT_EQ(ran.out, "") << command;
      EXPECT_EQ(ran.Lines(), 1) << ran.err;
      EXPECT_NE(ran.err.find(file), std::string::npos) << ran.err;
    }
    Write(folder_ + "kept", "earlier");
    EXPECT_EQ(Run({"rewrite", file, folder_ + "kept"}).status, 2);
    EXPECT_EQ(Bytes(folder_ + "kept"), "earlier") << file;
  }

  std::string folder_;
};

TEST_F(Ctl, DumpsTheSameOfEveryVersionAndByteOrder) {
  json first;
  for (const std::string version : {"1.0", "1.1", "1.2"})
    for (const std::string order : {"little", "big"}) {
      const Ran ran = Run({"dump", Data + "set-" + version + "-" + order + ".kestrin"});
      ASSERT_EQ(ran.status, 0) << ran.err;
      json dump = ran.Json();
      EXPECT_EQ(dump["version"], version);
      EXPECT_EQ(dump["byteOrder"], order);
      dump.erase("version");
      dump.erase("byteOrder");
      if (first.is_null()) first = dump;
      EXPECT_EQ(dump, first) << version << " " << order;
    }
  const json& choir = first["events"][0];
  const json expected = {{"Name", "Choir"},
                         {"NextEventTime", 1795721400},
                         {"ActualEventTime", 1795721400},
                         {"Active", true},
                         {"Status", 1},
                         {"PeriodType", 3},
                         {"Multiple", 2},
                         {"TimingType", 2},
                         {"RememberType", 0},
                         {"EventTime", 1795219200},
                         {"DayOfMonth", 31},
                         {"WeekOfMonth", -1},
                         {"DayOfWeek", 4},
                         {"Month", 10},
                         {"MultiStartTime", 1795132800},
                         {"ApplyTime", true},
                         {"TimeToApply", 70200},
                         {"SubIntType", 3},
                         {"ApplyStop", false},
                         {"StopTime", 79200},
                         {"ApplyPrewarn", false},
                         {"PrewarnTime", 1},
                         {"PrewarnType", 2},
                         {"ApplyPrewarnRepeat", false},
                         {"PrewarnRepeatTime", 6},
                         {"PrewarnRepeatType", 3},
                         {"PrewarnMessage", nullptr},
                         {"ApplyNag", true},
                         {"NagRepeatTime", 2},
                         {"NagRepeatType", 2},
                         {"NagMessage", "Again!"},
                         {"DeliverIfMissed", true},
                         {"DeleteOnceDelivered", false},
                         {"Comment", nullptr},
                         {"IconNumber", 0},
                         {"WindowFrame", {40, 60, 407, 450.5}},
                         {"WindowOpen", false},
                         {"TabShown", 4},
                         {"HandlerName", "Message"},
                         {"HandlerData", "4272696e6700"}};
  EXPECT_EQ(choir, expected);
  const std::vector<std::string> data = {"4272696e6700", "", "017472756500", "00", "002f612e6f6473",
                                         "00010203ff",   ""};
  for (size_t i = 0; i < data.size(); ++i) EXPECT_EQ(first["events"][i]["HandlerData"], data[i]);
  EXPECT_EQ(first["events"][5]["HandlerName"], "Water plants");
  EXPECT_EQ(first["events"][6]["Name"], (json{{"bytes", "fffe"}}));
  EXPECT_EQ(first["SortModes"], (json{0, 1, 2, 2, 2}));
}

TEST_F(Ctl, RewritesEveryVersionToTheSameBytes) {
  for (const std::string version : {"1.0", "1.1", "1.2"})
    for (const std::string order : {"little", "big"}) {
      const std::string in = Data + "set-" + version + "-" + order + ".kestrin";
      ASSERT_EQ(Run({"rewrite", in, folder_ + "out.kestrin"}).status, 0);
      EXPECT_EQ(Bytes(folder_ + "out.kestrin"), Bytes(Data + "set-1.2-little.kestrin")) << in;
    }
  const Ran ran = Run({"rewrite", Data + "empty-1.2-little.kestrin", folder_ + "no/such/folder"});
  EXPECT_EQ(ran.status, 2);
  EXPECT_NE(ran.err.find("no/such/folder"), std::string::npos);
}

/// The dump on the page is the golden file, byte for byte.
TEST_F(Ctl, TheDumpOnThePageIsTheFile) {
  std::istringstream page(Bytes(KESTRIN_SOURCE_DIR "/docs/file-format.md"));
  std::string bytes;
  for (std::string line; std::getline(page, line);) {
    if (line.size() < 8 || line.find("  ") != 4 || line.find_first_not_of("0123456789abcdef") != 4)
      continue;
    EXPECT_EQ(std::stoul(line.substr(0, 4), nullptr, 16), bytes.size()) << line;
    const std::string columns = line.substr(6, 47);
    for (size_t at = 0; at + 1 < columns.size() && columns[at] != ' '; at += 3)
      bytes += static_cast<char>(std::stoi(columns.substr(at, 2), nullptr, 16));
  }
  EXPECT_EQ(bytes, Bytes(Data + "one-1.2-little.kestrin"));
}

TEST_F(Ctl, RefusesDamagedFilesWithOneLine) {
  const std::string good = Bytes(Data + "set-1.2-little.kestrin");
  const auto patched = [&](size_t at, const std::string& with) {
    std::string bytes = good;
    return bytes.replace(at, with.size(), with);
  };
  const size_t block = good.find("Message") + 8;
  const std::vector<std::pair<const char*, std::string>> damaged = {
      {"empty", ""},
      {"marker-alone", good.substr(0, 1)},
      {"unknown-version", patched(1, "1.3")},
      {"version-without-end", std::string(1, '\0') + std::string(30, '1')},
      {"negative-count", patched(5, "\xff\xff\xff\xff")},
      {"huge-count", patched(5, "\xff\xff\xff\x7f")},
      {"endless-name", good.substr(0, 9) + std::string(5000, 'n')},
      {"huge-block", patched(block, "\xff\xff\xff\xff")},
      {"block-past-the-end", patched(block, "\xff\xff\x0f\x00")},
      {"without-layout", good.substr(0, good.size() - 118)},
      {"without-last-byte", good.substr(0, good.size() - 1)},
  };
  for (const auto& [name, bytes] : damaged) {
    Write(folder_ + name, bytes);
    ExpectRefused(folder_ + name);
  }
  ExpectRefused(folder_ + "missing");
  ExpectRefused(folder_);
  mkfifo((folder_ + "pipe").c_str(), 0600);
  ExpectRefused(folder_ + "pipe");
  // Cut anywhere: refused, never a crash.
  for (size_t length = 0; length < 300; length += 7) {
    Write(folder_ + "cut", good.substr(0, length));
    EXPECT_EQ(Run({"dump", folder_ + "cut"}).status, 2) << length;
  }
  std::ofstream(folder_ + "large").close();
  fs::resize_file(folder_ + "large", (int64_t{64} << 20) + 10);
  ExpectRefused(folder_ + "large");
}

/// A daily event at 09:00, a silent one, a one-time event that deletes itself: from a patched
/// golden file of one weekly event.
TEST_F(Ctl, NextFollowsTheZoneAndBothFormsOfTime) {
  const std::string file = Data + "one-1.2-little.kestrin";
  // Thursday 22 October 2026 19:30 in Berlin is summer time, a week later is not.
  const json summer = Run({"next", "--json", "--at", "1792670000", file}).Json();
  EXPECT_EQ(summer[0], (json{{"Name", "Choir"},
                             {"ActualEventTime", 1792690200},
                             {"NextEventTime", 1792690200},
                             {"Status", 1}}));
  const json winter = Run({"next", "--json", "--at", "2026-10-23 12:00", file}).Json();
  EXPECT_EQ(winter[0]["ActualEventTime"], 1792690200 + 7 * 86400 + 3600);
  const Ran table = Run({"next", "--at", "1792670000", file});
  EXPECT_NE(table.out.find("Thu, Oct 22 2026, 07:30:00 PM"), std::string::npos) << table.out;
}

TEST_F(Ctl, AgendaRunsFromTheFirstSecondUpToTheLast) {
  const std::string file = Data + "one-1.2-little.kestrin";
  const auto agenda = [&](std::vector<std::string> extra) {
    std::vector<std::string> arguments = {"agenda", "--json"};
    arguments.insert(arguments.end(), extra.begin(), extra.end());
    arguments.push_back(file);
    return Run(arguments).Json();
  };
  const std::string at = "1792690200", behind = "1792690201", before = "1792690199";
  EXPECT_EQ(agenda({"--from", before, "--to", at}).size(), 0u);
  const json once = agenda({"--from", before, "--to", behind});
  ASSERT_EQ(once.size(), 1u);
  EXPECT_EQ(once[0], (json{{"time", 1792690200},
                           {"kind", "event"},
                           {"event", "Choir"},
                           {"set", file},
                           {"missed", false}}));
  // It nags every two days until it is answered otherwise.
  const json week = agenda({"--from", before});
  ASSERT_EQ(week.size(), 4u);
  for (size_t i = 1; i < 4; ++i) {
    EXPECT_EQ(week[i]["kind"], "nag");
    EXPECT_EQ(week[i]["time"], 1792690200 + static_cast<int>(i) * 2 * 86400);
  }
  // Stored for 26 November, found a day later: missed, and the same file twice is one set.
  const json late = Run({"agenda", "--json", "--startup", "--from", "1795807800", "--to",
                         "1795807801", file, file})
                        .Json();
  ASSERT_EQ(late.size(), 1u);
  EXPECT_EQ(late[0]["missed"], true);
  EXPECT_EQ(late[0]["time"], 1795807800);
}

TEST_F(Ctl, TellsWrongUsage) {
  for (const std::vector<std::string>& wrong :
       std::vector<std::vector<std::string>>{{},
                                             {"frob"},
                                             {"dump"},
                                             {"dump", "a", "b"},
                                             {"next", "--at"},
                                             {"next", "--at", "never", "a"},
                                             {"next", "--to", "1", "a"},
                                             {"rewrite", "a"}}) {
    const Ran ran = Run(wrong);
    EXPECT_EQ(ran.status, 1);
    EXPECT_EQ(ran.out, "");
    EXPECT_NE(ran.err.find("usage: kestrinctl"), std::string::npos);
  }
}

/// 64 MiB of the smallest records, each with the rule that takes longest: the last Thursday of
/// every month since 1901, reckoned from a month that is longer than most.
TEST_F(Ctl, TheLargestAndSlowestSetStaysInItsBounds) {
  const std::string golden = Bytes(Data + "one-1.2-little.kestrin");
  const size_t begin = 9, end = golden.find("Bring") + 6;
  std::string record = golden.substr(begin, end - begin);
  record.replace(0, 5, "");                           // no name
  record.replace(record.find("Again!"), 6, "");       // no nag text
  record = record.substr(0, record.find("Message"));  // another handler, an empty block
  record += std::string("\0\0\0\0\0", 5);
  const auto number = [&](size_t at, int32_t value) { std::memcpy(&record[at], &value, 4); };
  number(15, 8);          // every N months
  number(19, 1);          // N = 1
  record[36] = 4;         // the last
  record[38] = 0;         // January
  number(39, INT32_MIN);  // since 1901
  const size_t count = ((size_t{64} << 20) - 200) / record.size();
  std::string file = golden.substr(0, 5);
  const auto events = static_cast<int32_t>(count);
  file.append(reinterpret_cast<const char*>(&events), 4);
  for (size_t i = 0; i < count; ++i) file += record;
  Write(folder_ + "slow", file + golden.substr(end));
  for (const char* command : {"check", "next", "dump"}) {
    const Ran ran = Run({command, folder_ + "slow"});
    EXPECT_EQ(ran.status, 0) << command << " " << ran.err;
  }
}

}  // namespace
