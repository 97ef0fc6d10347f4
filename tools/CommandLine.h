#pragma once
// The tool's command line: one CLI11 subcommand for each command, each with
// its own --help, the validators the commands share, and the exit statuses.
//
// Exit statuses, the same for every command:
//   0  done;
//   1  a file could not be read or used, or the machine cannot do what was
//      asked (a pose out of travel, a stream that fails);
//   2  a usage error: an unknown command or option, a missing or surplus
//      argument, a value of the wrong form, an axis the machine does not have.
// An option that does nothing in the given combination (--csv without -o) is
// a warning on the error stream, and the command runs.

#include <CLI/CLI.hpp>

#include <functional>
#include <iosfwd>
#include <string>

namespace mtkit_tool {

constexpr int kExitOk = 0;
constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;

/// What a subcommand does once its command line has been parsed: its exit
/// status, with the output on `out` and messages on `err`.
using CommandAction = std::function<int(std::ostream& out, std::ostream& err)>;

/// A command on the command line: its CLI11 subcommand and what it does.
/// Each command's add...Command(app) adds its subcommand, options and help
/// to the application and returns this.
struct Command {
  CLI::App* subcommand = nullptr;
  CommandAction action;
};

/// Parses `argc`/`argv`, runs the command named and returns its exit status.
/// --help on the tool or on any command prints the help on `out` (status 0);
/// a usage error prints "mtkit COMMAND: what is wrong" and where to find the
/// help on `err` (status 2).
int runCommandLine(int argc, char const* const* argv, std::ostream& out, std::ostream& err);

/// "mtkit COMMAND: warning: TEXT" on `err`.
void warn(std::ostream& err, std::string const& command, std::string const& text);

/// A value that is a finite number, the whole of the text ("1e400", "inf" and
/// "1,5" are not).
CLI::Validator finiteNumberValidator();
/// A finite number not below 0.
CLI::Validator nonNegativeNumberValidator();
/// A whole number not below 0 that fits an int.
CLI::Validator countValidator();
/// AXIS=VALUE with a name and a finite number.
CLI::Validator axisWordValidator();
/// X,Y,Z: three finite numbers.
CLI::Validator pointValidator();

}  // namespace mtkit_tool
