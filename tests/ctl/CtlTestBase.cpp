#include "ctl/CtlTestBase.h"

#include <algorithm>

#include "core/delivery/VirtualEngine.h"
#include "core/events/EventSet.h"
#include "core/events/HandlerTable.h"
#include "handlers/LoadEventHandlers.h"

namespace kestrin {

Ran CtlTest::Run(std::vector<std::string> arguments, bool keepOutput) const {
  const std::string out = keepOutput ? Path(".out") : "/dev/null";
  const std::string bounds = IsSanitized ? "ulimit -t 90" : "ulimit -t 10 -v 524288";
  const std::string script = bounds + "; exec \"$0\" \"$@\" >" + out;
  arguments.insert(arguments.begin(), {"/bin/bash", "-c", script, KESTRINCTL});
  Child child(std::move(arguments), {{"TZ", Zone}}, home_.path);
  const int status = child.Wait(10 * Patience);
  return {status, keepOutput ? ReadFile(out) : "", child.Errors()};
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
  VirtualEngine engine;
  LoadBuiltInHandlers(engine.context);
  EventSet set(engine.context, Path(name));
  for (const EventRecord& record : records)
    set.AddEvent(std::make_unique<Event>(set, record))->SetSelectedHandler(MessageHandler);
  EXPECT_TRUE(set.SaveData()) << name;
}

}  // namespace kestrin
