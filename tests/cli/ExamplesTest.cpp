// The installed tool on the installed examples: every machine and MTK file
// checks and shows; fk and ik name axes either way, check travel and print
// with units; the README's example on the mill-turn.

#include "cli/CliSupport.h"

using namespace mtkit_cli;

namespace {

std::vector<std::string> files(char const* folder) {
  std::vector<std::string> paths;
  for (auto const& entry : std::filesystem::directory_iterator(example(folder))) paths.push_back(entry.path().string());
  return paths;
}

}  // namespace

TEST(Examples, TheExamplesAreInstalled) {
  for (char const* file : {"machines/vmc_3axis.json", "machines/trunnion_5axis.json", "machines/headhead_5axis.json",
                           "machines/headtable_5axis.json", "machines/millturn_turret.json", "mtk/trunnion_5axis.mtk",
                           "mtk/headtable_5axis.mtk", "mtk/millturn_turret.mtk", "streams/trunnion_5axis_swarf.txt",
                           "streams/vmc_3axis_contour_tools.json", "StreamProducer.cpp", "post/post.py",
                           "post/headhead_5axis.csv"})
    EXPECT_TRUE(std::filesystem::is_regular_file(example(file))) << file;
}

TEST(Examples, TheInstalledToolStartsWithoutALibraryPath) {
  ToolRun const r = run("version");
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out, "mtkit 0.1.0\n");
  EXPECT_EQ(run("--version").out, "mtkit 0.1.0\n");
}

TEST(Examples, EveryMachineAndMtkFileChecksAndShows) {
  std::vector<std::string> all = files("machines");
  for (std::string const& mtk : files("mtk")) all.push_back(mtk);
  ASSERT_EQ(all.size(), 8u);
  for (std::string const& file : all) {
    ToolRun r = run("check --strict " + quoted(file));
    EXPECT_EQ(r.status, 0) << file << "\n" << r.err;
    EXPECT_EQ(r.err, "") << file;
    EXPECT_TRUE(contains(r.out, " file OK: ")) << r.out;
    r = run("show " + quoted(file));
    EXPECT_EQ(r.status, 0) << file << "\n" << r.err;
    EXPECT_TRUE(contains(r.out, "\naxes (fk and ik take the name or the part id):\n  name  part id  travel\n")) << r.out;
  }
}

TEST(Examples, ShowListsAxisNamesAndPartIdsSideBySide) {
  ToolRun r = run("show " + quoted(example("machines/trunnion_5axis.json")));
  ASSERT_EQ(r.status, 0) << r.err;
  // A is narrowed by the controller from -120..30 to -110..30; C wraps around.
  EXPECT_TRUE(contains(r.out, "\n  name  part id  travel\n"
                              "  X     x_axis   -325..325 mm\n"
                              "  Y     y_axis   -300..300 mm\n"
                              "  Z     z_axis   -450..50 mm\n"
                              "  A     a_axis   -110..30 deg\n"
                              "  C     c_axis   without limit (deg)\n"))
      << r.out;
  r = run("show " + quoted(example("machines/millturn_turret.json")));
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(contains(r.out, "\n  C     c1_axis  without limit (deg), named C1 in the kinematics\n")) << r.out;
}

TEST(Examples, FkTakesTheNameThePartIdOrTheKinematicsNameOfAnAxis) {
  std::string const millturn = quoted(example("machines/millturn_turret.json"));
  ToolRun const byName = run("fk " + millturn + " C=90");
  ASSERT_EQ(byName.status, 0) << byName.err;
  EXPECT_TRUE(contains(byName.out, "\n  C=90.000000 deg\n")) << byName.out;
  for (std::string const word : {"C1=90", "c1_axis=90"}) {
    ToolRun const r = run("fk " + millturn + " " + word);
    EXPECT_EQ(r.status, 0) << word << "\n" << r.err;
    EXPECT_EQ(r.out, byName.out) << word;
  }
}

TEST(Examples, FkSaysWhenAValueIsOutOfTravel) {
  ToolRun const r = run("fk " + quoted(example("machines/trunnion_5axis.json")) + " A=200");
  EXPECT_EQ(r.status, 1);
  EXPECT_TRUE(contains(r.out, "\n  A=200.000000 deg (out of travel: -110..30 deg)\n")) << r.out;
  EXPECT_TRUE(contains(r.out, "\ntool tip: ")) << r.out;  // the pose is still shown
  // The same words as simulate's over-travel issue.
  EXPECT_EQ(r.err, "mtkit fk: Axis A is out of travel: 200 deg is outside -110 to 30 deg.\n");
  // On the MTK file the default controller narrows nothing: -115 is inside
  // the physical -120..30, which the machine file's controller narrows to
  // -110..30.
  EXPECT_EQ(run("fk " + quoted(example("mtk/trunnion_5axis.mtk")) + " A=-115").status, 0);
  EXPECT_EQ(run("fk " + quoted(example("machines/trunnion_5axis.json")) + " A=-115").status, 1);
  // The edge of the travel is inside it, and so is a millionth beyond, as
  // for simulate; a hundred-thousandth is not.
  EXPECT_EQ(run("fk " + quoted(example("machines/trunnion_5axis.json")) + " A=30 X=-325").status, 0);
  EXPECT_EQ(run("fk " + quoted(example("machines/trunnion_5axis.json")) + " A=30.000001 X=-325.000001").status, 0);
  ToolRun const past = run("fk " + quoted(example("machines/trunnion_5axis.json")) + " A=30.00001");
  EXPECT_EQ(past.status, 1);
  EXPECT_EQ(past.err, "mtkit fk: Axis A is out of travel: 30.00001 deg is outside -110 to 30 deg.\n");
}

TEST(Examples, IkSaysWhenTheAnswerIsOutOfTravel) {
  // The head's attach point stands 250 above Z, and X moves the table the
  // other way (-X), so that the tip (10000, 0, 0) needs X = 10000 and
  // Z = -250, on an X of -325..325.
  ToolRun const r = run("ik " + quoted(example("machines/trunnion_5axis.json")) + " --tip 10000,0,0");
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out,
            "axes:\n"
            "  X=10000.000000 mm (out of travel: -325..325 mm)\n"
            "  Y=0.000000 mm\n"
            "  Z=-250.000000 mm\n"
            "  A=0.000000 deg\n"
            "  C=0.000000 deg\n"
            "tool length: 0.000000 mm\n"
            "tool tip: 10000.000000 0.000000 0.000000 mm\n"
            "tool axis: 0.000000 0.000000 1.000000\n"
            "distance left: 0.000000 mm\n");
  EXPECT_EQ(r.err, "mtkit ik: the answer: Axis X is out of travel: 10000 mm is outside -325 to 325 mm.\n");
}

TEST(Examples, FkAndIkReadMtkFilesAndPrintTheSameWay) {
  std::string const mtk = quoted(example("mtk/trunnion_5axis.mtk"));
  ToolRun const ik = run("ik " + mtk + " --tip 10,20,30 A=-30 --tool-length 100");
  ASSERT_EQ(ik.status, 0) << ik.err;
  ToolRun const fk = run("fk " + mtk + " X=10 Y=92.320508 Z=-150.096189 A=-30 --tool-length 100");
  ASSERT_EQ(fk.status, 0) << fk.err;
  // A = -30 turns the table about X through (0, 0, -120): the tip (10, 20, 30)
  // is then (10 - X, 92.320508 - Y, -0.096189) in the machine, X and Y moving
  // the table along -X and -Y; a 100 mm tool below the head (whose Z points
  // up the tool into the spindle) puts the head's attach point, 250 above
  // Z, 100 higher: Z = -250.096189 + 100.
  EXPECT_EQ(ik.out.substr(0, ik.out.find("tool tip")),
            "axes:\n  X=10.000000 mm\n  Y=92.320508 mm\n  Z=-150.096189 mm\n  A=-30.000000 deg\n  C=0.000000 deg\n"
            "tool length: 100.000000 mm\n");
  EXPECT_EQ(fk.out.substr(0, fk.out.find("head attach frame")), ik.out.substr(0, ik.out.find("tool tip")));
  EXPECT_TRUE(contains(ik.out, "tool tip: 10.000000 20.000000 30.000000 mm\n")) << ik.out;
  EXPECT_TRUE(contains(fk.out, "tool tip: 10.000000 20.000000 30.000000 mm\n")) << fk.out;
}

TEST(Examples, DemoPrintsEachAxisWithItsUnitAndTransformation) {
  ToolRun const r = run("demo B=90");
  ASSERT_EQ(r.status, 0) << r.err;
  // B turns about +Y through (0, 0, 150): X goes to -Z, Z to +X, and the
  // pivot stays, so the translation is (0, 0, 150) - R (0, 0, 150).
  EXPECT_TRUE(contains(r.out, "      z (linear) axis Z = 0 mm  range [-100, 600] mm\n")) << r.out;
  EXPECT_TRUE(contains(r.out,
                       "        b (rotary) axis B = 90 deg  range [-110, 110] deg\n"
                       "            [  0.000000   0.000000   1.000000 |  -150.000000]\n"
                       "            [  0.000000   1.000000   0.000000 |     0.000000]\n"
                       "            [ -1.000000   0.000000   0.000000 |   150.000000]\n"))
      << r.out;
}
