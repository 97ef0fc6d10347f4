// Wrong arguments for every command: status 2, the command's name, what is
// wrong, and where its help is; --help on every command.

#include "cli/CliSupport.h"

using namespace mtkit_cli;

namespace {

struct UsageCase {
  std::string command;  // whose error it is ("" for the tool's own)
  std::string args;
  std::string error;  // the first line, after "mtkit COMMAND: "
};

std::string machine() { return quoted(example("machines/trunnion_5axis.json")); }
std::string stream() { return quoted(example("streams/trunnion_5axis_swarf.txt")); }

}  // namespace

TEST(Usage, WrongArgumentsForEveryCommandExitWith2AndSayWhatIsWrong) {
  std::vector<UsageCase> const cases = {
      {"version", "version extra", "The following argument was not expected: extra"},
      {"check", "check", "FILE is required"},
      {"check", "check a b", "The following argument was not expected: b"},
      {"check", "check a --fast", "The following argument was not expected: --fast"},
      {"show", "show", "FILE is required"},
      {"show", "show a b", "The following argument was not expected: b"},
      {"demo", "demo X", "AXIS=VALUE: expected AXIS=VALUE, got 'X'"},
      {"demo", "demo X=1e400", "AXIS=VALUE: '1e400' is not a number (in 'X=1e400')"},
      {"fk", "fk", "FILE is required"},
      {"fk", "fk " + machine() + " A=abc", "AXIS=VALUE: 'abc' is not a number (in 'A=abc')"},
      {"fk", "fk " + machine() + " =5", "AXIS=VALUE: expected AXIS=VALUE, got '=5'"},
      {"fk", "fk " + machine() + " --tool-length abc", "--tool-length: 'abc' is not a number not below 0"},
      {"fk", "fk " + machine() + " --tool-length -5", "--tool-length: '-5' is not a number not below 0"},
      {"fk", "fk " + machine() + " A=1 --fast", "The following argument was not expected: --fast"},
      {"ik", "ik", "FILE is required"},
      {"ik", "ik " + machine(), "--tip is required"},
      {"ik", "ik " + machine() + " --tip 1,2", "--tip: '1,2' is not a point X,Y,Z of three finite numbers"},
      {"ik", "ik " + machine() + " --tip a,b,c", "--tip: 'a,b,c' is not a point X,Y,Z of three finite numbers"},
      {"ik", "ik " + machine() + " --tip 1,2,3 A=", "AXIS=VALUE: '' is not a number (in 'A=')"},
      {"simulate", "simulate", "MACHINE is required"},
      {"simulate", "simulate " + machine(), "STREAM is required"},
      {"simulate", "simulate " + machine() + " " + stream() + " extra", "The following argument was not expected: extra"},
      {"simulate", "simulate " + machine() + " " + stream() + " --fast", "The following argument was not expected: --fast"},
      {"simulate", "simulate " + machine() + " " + stream() + " --poses many",
       "--poses: 'many' is not a count (a whole number not below 0)"},
      {"simulate", "simulate " + machine() + " " + stream() + " --poses -1",
       "--poses: '-1' is not a count (a whole number not below 0)"},
      {"simulate", "simulate " + machine() + " " + stream() + " --follow --idle soon",
       "--idle: 'soon' is not a number not below 0"},
      {"simulate", "simulate " + machine() + " " + stream() + " --motions m.json --motions-format xml",
       "--motions-format: 'xml' is not json or binary"},
      {"motions", "motions", "FILE is required"},
      {"motions", "motions a b", "The following argument was not expected: b"},
      {"collisions", "collisions", "MACHINE is required"},
      {"collisions", "collisions a b", "The following argument was not expected: b"},
  };
  for (UsageCase const& c : cases) {
    ToolRun const r = run(c.args);
    EXPECT_EQ(r.status, 2) << c.args << "\n" << r.err;
    EXPECT_EQ(r.out, "") << c.args;
    EXPECT_EQ(r.err, line(c.command, c.error) + helpHint(c.command)) << c.args;
  }
}

TEST(Usage, AnAxisTheMachineDoesNotHaveIsAUsageError) {
  ToolRun r = run("fk " + machine() + " Q=1");
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.err, line("fk", "the machine has no axis named 'Q' (axes: X Y Z A C, or their part ids)"));
  r = run("ik " + machine() + " --tip 0,0,0 B=1");
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.err, line("ik", "the machine has no axis named 'B' (axes: X Y Z A C, or their part ids)"));
  r = run("demo Q=1");
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.err, line("demo", "the example has no axis named 'Q' (axes: X Y Z B C)"));
}

TEST(Usage, NoCommandOrAnUnknownOneExitsWith2) {
  ToolRun r = run("");
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.out, "");
  EXPECT_TRUE(contains(r.err, "simulate")) << r.err;  // the help, with the commands
  r = run("frobnicate");
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.err, "mtkit: there is no command 'frobnicate'\nRun 'mtkit --help' for the commands.\n");
  r = run("--fast");
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.err, "mtkit: The following argument was not expected: --fast\nRun 'mtkit --help' for the commands.\n");
  r = run("help frobnicate");
  EXPECT_EQ(r.status, 2);
  EXPECT_EQ(r.err, "mtkit help: there is no command 'frobnicate'\nRun 'mtkit --help' for the commands.\n");
}

TEST(Usage, EveryCommandHasItsOwnHelp) {
  for (std::string const command :
       {"version", "check", "show", "demo", "fk", "ik", "simulate", "motions", "collisions"}) {
    ToolRun const r = run(command + " --help");
    EXPECT_EQ(r.status, 0) << command << "\n" << r.err;
    EXPECT_EQ(r.err, "") << command;
    EXPECT_TRUE(contains(r.out, "\nUsage: mtkit " + command + " ")) << r.out;
    // "mtkit help COMMAND" says the same.
    EXPECT_EQ(run("help " + command).out, r.out) << command;
  }
  ToolRun const top = run("--help");
  EXPECT_EQ(top.status, 0);
  for (std::string const command : {"check", "show", "demo", "fk", "ik", "simulate", "motions", "collisions"})
    EXPECT_TRUE(contains(top.out, "  " + command + " ")) << command << "\n" << top.out;
  EXPECT_TRUE(contains(top.out, "Exit status: 0 done; 1 a file could not be read or used")) << top.out;
  EXPECT_EQ(run("help").out, top.out);
}

TEST(Usage, OptionsThatDoNothingDrawAWarningAndTheCommandRuns) {
  ToolRun r = run("simulate " + machine() + " " + stream() + " --solver-only --poses 0 --csv");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.err, line("simulate", "warning: --csv does nothing without -o OUT"));
  EXPECT_TRUE(contains(r.out, "poses:")) << r.out;
  r = run("simulate " + machine() + " " + stream() + " --solver-only --poses 0 --idle 1");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.err, line("simulate", "warning: --idle does nothing without --follow"));
  r = run("simulate " + machine() + " " + stream() + " --solver-only --poses 0 --motions-format binary");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.err, line("simulate", "warning: --motions-format does nothing without --motions FILE"));
}
