#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "tools/ToolRunner.h"

using mtkit_test::quoted;
using mtkit_test::readWhole;
using mtkit_test::runTool;
using mtkit_test::writeTemp;

namespace {

std::filesystem::path example(char const* relative) { return std::filesystem::path(MTKIT_EXAMPLES_DIR) / relative; }

bool contains(std::string const& text, std::string const& part) { return text.find(part) != std::string::npos; }

std::filesystem::path tempXml(char const* name) {
  return std::filesystem::temp_directory_path() /
         ("mtkit_config_" + std::to_string(::getpid()) + "_" + name + ".xml");
}

}  // namespace

TEST(ConfigCommand, ShowsTheBridgedConfigurationOfAMachineFile) {
  // The trunnion: X and Y move the table against their letter (so the
  // scripted axes are +X and +Y), Z the head; A about X and C about Z on the
  // table, whose scripted axes are the definition's negated.
  auto const r = runTool("config " + quoted(example("machines/trunnion_5axis.json")));
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.err, "");
  EXPECT_TRUE(contains(r.out, "(made from the machine file)\n")) << r.out;
  EXPECT_TRUE(contains(r.out, "kind:           5 axes, table-table\n")) << r.out;
  EXPECT_TRUE(contains(r.out,
                       "  X      linear  table  axis (1, 0, 0)  range -325 to 325 mm  part x_axis\n"
                       "  Y      linear  table  axis (0, 1, 0)  range -300 to 300 mm  part y_axis\n"
                       "  Z      linear  head   axis (0, 0, 1)  range -450 to 50 mm  part z_axis\n"
                       "  A (U)  rotary  table  axis (-1, 0, 0)  range -110 to 30 deg, prefers negative, TCP  part "
                       "a_axis\n"
                       "  C (V)  rotary  table  axis (0, 0, -1)  range 0 to 360 deg, cyclic, TCP  part c_axis\n"))
      << r.out;
  EXPECT_TRUE(contains(r.out, "status:         supported\n")) << r.out;
}

TEST(ConfigCommand, WritesTheXmlAndReadsItBack) {
  auto const xml = tempXml("written");
  auto const made = runTool("config " + quoted(example("machines/headhead_5axis.json")) + " -o " + quoted(xml));
  ASSERT_EQ(made.status, 0) << made.err;
  std::string const text = readWhole(xml);
  EXPECT_EQ(text.rfind("<?xml version=\"1.0\"?>\n<machine version=\"1.0\">\n", 0), 0u) << text;
  EXPECT_TRUE(contains(made.out, "written:        " + xml.string() + " (" + std::to_string(text.size()) + " bytes)\n"))
      << made.out;

  auto const read = runTool("config " + quoted(xml));
  std::filesystem::remove(xml);
  ASSERT_EQ(read.status, 0) << read.err;
  EXPECT_TRUE(contains(read.out, "(read from its XML)\n")) << read.out;
  // The same axes; the XML form keeps an axis's name, which becomes its part
  // id on reading ("B" rather than "b_axis").
  EXPECT_TRUE(contains(read.out, "kind:           5 axes, head-head\n")) << read.out;
  EXPECT_TRUE(contains(read.out, "  B (U)  rotary  head   axis (0, -1, 0)  range -105 to 105 deg, prefers positive, TCP  part B\n"))
      << read.out;
  EXPECT_TRUE(contains(read.out, "status:         supported\n")) << read.out;
}

TEST(ConfigCommand, ABadXmlFileGivesTheReadersWords) {
  auto const bad = writeTemp("config_bad.xml", "<machine version=\"2.0\"/>");
  auto const r = runTool("config " + quoted(bad));
  std::filesystem::remove(bad);
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out, "");
  EXPECT_EQ(r.err, "mtkit config: '" + bad.string() + "': Unsupported version of machine configuration.\n");

  auto const malformed = writeTemp("config_malformed.xml", "<machine>\n  <axis id=\"X\">\n</machine>");
  auto const m = runTool("config " + quoted(malformed));
  std::filesystem::remove(malformed);
  EXPECT_EQ(m.status, 1);
  EXPECT_TRUE(contains(m.err, "Start-end tags mismatch at line 3, column 3.")) << m.err;
}

TEST(ConfigCommand, AMissingFileSaysWhy) {
  auto const r = runTool("config /nonexistent/machine.json");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "mtkit config: cannot read '/nonexistent/machine.json': No such file or directory\n");
}
