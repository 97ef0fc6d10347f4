// Every command that reads a machine file, on every kind of bad input: the
// exit status and the whole message, naming the command and the file.

#include <algorithm>
#include <fstream>
#include <functional>

#include "cli/CliSupport.h"

using namespace mtkit_cli;

namespace {

/// A command that takes a machine file, and its command line around it.
struct Form {
  std::string command;
  std::function<std::string(std::string const&)> args;
};

std::vector<Form> const& forms() {
  static std::vector<Form> const all = {
      {"check", [](std::string const& file) { return "check " + quoted(file); }},
      {"show", [](std::string const& file) { return "show " + quoted(file); }},
      {"collisions", [](std::string const& file) { return "collisions " + quoted(file); }},
      {"fk", [](std::string const& file) { return "fk " + quoted(file) + " X=1"; }},
      {"ik", [](std::string const& file) { return "ik " + quoted(file) + " --tip 0,0,0"; }},
      {"simulate",
       [](std::string const& file) {
         return "simulate " + quoted(file) + " " + quoted(example("streams/trunnion_5axis_swarf.txt"));
       }},
  };
  return all;
}

/// Runs every form on `file` and checks status 1, no output, and the error.
void expectFailure(std::string const& file, std::function<std::string(std::string const&)> const& message) {
  for (Form const& form : forms()) {
    ToolRun const r = run(form.args(file));
    EXPECT_EQ(r.status, 1) << form.command << " " << file << "\n" << r.err;
    EXPECT_EQ(r.out, "") << form.command;
    EXPECT_EQ(r.err, message(form.command)) << form.command;
  }
}

std::string const kMachineHeading = "Error reading Machine Definition data from machine file:\n\n";
std::string const kSyntax = "The file reader encountered a syntax error:\n\n";

}  // namespace

TEST(BadInput, AMissingFileGivesTheOperatingSystemsReason) {
  std::string const file = BadInputs::get().missing;
  expectFailure(file, [&](std::string const& c) { return line(c, "cannot read '" + file + "': No such file or directory"); });
}

TEST(BadInput, ADirectoryIsNoFileToRead) {
  std::string const file = BadInputs::get().directory;
  expectFailure(file, [&](std::string const& c) { return line(c, "cannot read '" + file + "': Is a directory"); });
}

TEST(BadInput, AnUnreadableFileGivesPermissionDenied) {
  if (::geteuid() == 0) GTEST_SKIP() << "root reads a file whatever its mode";
  std::string const file = BadInputs::get().dir + "/locked.json";
  std::ofstream(file) << "{}";
  std::filesystem::permissions(file, std::filesystem::perms::none);
  expectFailure(file, [&](std::string const& c) { return line(c, "cannot read '" + file + "': Permission denied"); });
  std::filesystem::remove(file);
}

TEST(BadInput, AnEmptyFileSaysSo) {
  std::string const file = BadInputs::get().empty;
  expectFailure(file, [&](std::string const& c) { return line(c, "'" + file + "' is not a machine file: the file is empty"); });
}

TEST(BadInput, GarbageGetsTheReadersSyntaxErrorAfterTheFileName) {
  std::string const file = BadInputs::get().garbage;
  for (Form const& form : forms()) {
    ToolRun const r = run(form.args(file));
    EXPECT_EQ(r.status, 1) << form.command;
    EXPECT_EQ(r.out, "");
    std::string const start = "mtkit " + form.command + ": '" + file + "' is not a machine file:\n" + kMachineHeading +
                              kSyntax + "* Line 1, Column 1\n";
    EXPECT_EQ(r.err.rfind(start, 0), 0u) << form.command << "\n" << r.err;
  }
}

TEST(BadInput, ATruncatedFileGetsTheReadersSyntaxErrorWithItsPosition) {
  // {"general": {"vendor": "Orvo" is 29 characters: the parser misses a ','
  // or '}' at the 30th.
  std::string const file = BadInputs::get().truncated;
  for (Form const& form : forms()) {
    ToolRun const r = run(form.args(file));
    EXPECT_EQ(r.status, 1) << form.command;
    std::string const start = "mtkit " + form.command + ": '" + file + "' is not a machine file:\n" + kMachineHeading +
                              kSyntax + "* Line 1, Column 30\n";
    EXPECT_EQ(r.err.rfind(start, 0), 0u) << form.command << "\n" << r.err;
  }
}

TEST(BadInput, AnArrayIsNoMachineFile) {
  std::string const file = BadInputs::get().emptyArray;
  expectFailure(file, [&](std::string const& c) {
    return line(c, "'" + file + "' is not a machine file: the document is an array, where a machine file is a JSON object");
  });
}

TEST(BadInput, NestedBracketsSayTheyGoDeeperThanTheReadersLimit) {
  std::string const file = BadInputs::get().nested;
  expectFailure(file, [&](std::string const& c) {
    return line(c, "'" + file +
                       "' is not a machine file: its JSON nests deeper than 1000 levels of arrays and objects, the "
                       "most the reader takes");
  });
}

TEST(BadInput, AnEmptyObjectReadsButHasNoKinematics) {
  std::string const file = BadInputs::get().emptyObject;
  ToolRun r = run("check " + quoted(file));
  EXPECT_EQ(r.status, 0);
  EXPECT_EQ(r.out, file + ": machine file read: 0 features\n");
  EXPECT_EQ(r.err, line("check", "warning: '" + file + "' has no features at all, so no kinematics: fk, ik and simulate "
                                 "cannot move it"));
  r = run("check --strict " + quoted(file));
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out, file + ": machine file read: 0 features\n");
  r = run("show " + quoted(file));
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(contains(r.out, ": machine file\n")) << r.out;
  r = run("collisions " + quoted(file));
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, line("collisions", "'" + file + "' has no kinematics to generate pairs from"));
  for (std::string const command : {"fk", "ik", "simulate"}) {
    Form const& form = *std::find_if(forms().begin(), forms().end(), [&](Form const& f) { return f.command == command; });
    r = run(form.args(file));
    EXPECT_EQ(r.status, 1) << command;
    EXPECT_EQ(r.out, "");
    EXPECT_EQ(r.err, line(command, "'" + file + "' has no kinematics")) << command;
  }
}

TEST(BadInput, AStreamThatCannotBeReadGivesTheReason) {
  ToolRun r = run("simulate " + quoted(example("machines/trunnion_5axis.json")) + " " + quoted(BadInputs::get().missing));
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, line("simulate", "cannot read '" + BadInputs::get().missing + "': No such file or directory"));
  r = run("simulate " + quoted(example("machines/trunnion_5axis.json")) + " " + quoted(BadInputs::get().directory));
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, line("simulate", "cannot read '" + BadInputs::get().directory + "': Is a directory"));
}
