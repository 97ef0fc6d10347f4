// `mtkit simulate` as installed, on the installed machines and streams.
// Cases of the summary, --strict and travel belong here too.

#include "cli/CliSupport.h"

using namespace mtkit_cli;

TEST(Simulate, ReplaysTheInstalledExampleStream) {
  std::string const machine = example("machines/trunnion_5axis.json");
  std::string const stream = example("streams/trunnion_5axis_swarf.txt");
  ToolRun const r = run("simulate " + quoted(machine) + " " + quoted(stream) + " --solver-only --poses 1");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.err, "");
  EXPECT_EQ(r.out.rfind("machine:        " + machine + " (X Y Z A C)\n", 0), 0u) << r.out;
  EXPECT_TRUE(contains(r.out, "\nchain:          solver only\n")) << r.out;
  EXPECT_TRUE(contains(r.out, "\nfirst poses:\n  line ")) << r.out;
}

TEST(Simulate, TakesAnMtkFileForTheMachine) {
  std::string const mtk = example("mtk/trunnion_5axis.mtk");
  std::string const stream = example("streams/trunnion_5axis_swarf.txt");
  ToolRun const r = run("simulate " + quoted(mtk) + " " + quoted(stream) + " --solver-only --poses 0");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out.rfind("machine:        " + mtk + " (X Y Z A C)\n", 0), 0u) << r.out;
}
