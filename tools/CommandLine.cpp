#include "CommandLine.h"

#include <ostream>
#include <utility>
#include <vector>

#include "CheckCommand.h"
#include "CollisionsCommand.h"
#include "CommandSupport.h"
#include "ConfigCommand.h"
#include "DemoCommand.h"
#include "FkCommand.h"
#include "IkCommand.h"
#include "MotionsCommand.h"
#include "OrientCommand.h"
#include "ShowCommand.h"
#include "SimulateCommand.h"
#include "Version.h"

namespace mtkit_tool {

namespace {

char const* const kDescription =
    "mtkit: machine tool kinematics for CAM. Reads machine files and MTK files, moves the machine,\n"
    "solves for a tool tip and replays recorded post-processor streams.\n"
    "Lengths are in mm, angles in degrees.";

char const* const kFooter =
    "Exit status: 0 done; 1 a file could not be read or used, or the machine cannot do\n"
    "what was asked; 2 a usage error. 'mtkit COMMAND --help' shows a command's arguments.";

CLI::Validator makeValidator(std::function<std::string(std::string const&)> check, std::string const& description) {
  return CLI::Validator([check = std::move(check)](std::string& text) { return check(text); }, description);
}

/// The command line as CLI11 sees it, with the action of each command.
struct Registry {
  CLI::App app{kDescription, "mtkit"};
  std::vector<Command> commands;

  void add(Command (*addCommand)(CLI::App&)) { commands.push_back(addCommand(app)); }

  Command const* selected() const {
    for (Command const& command : commands)
      if (command.subcommand->parsed()) return &command;
    return nullptr;
  }

  /// The command being parsed when an error came, or empty.
  std::string commandName() const {
    Command const* const command = selected();
    return command ? command->subcommand->get_name() : std::string();
  }
};

Command addVersionCommand(CLI::App& app) {
  Command command;
  command.subcommand = app.add_subcommand("version", "print the version of the tool and library");
  command.action = [](std::ostream& out, std::ostream&) {
    out << "mtkit " << versionString() << "\n";
    return kExitOk;
  };
  return command;
}

}  // namespace

void warn(std::ostream& err, std::string const& command, std::string const& text) {
  err << "mtkit " << command << ": warning: " << text << "\n";
}

CLI::Validator finiteNumberValidator() {
  return makeValidator(
      [](std::string const& text) -> std::string {
        return parseNumber(text) ? "" : "'" + text + "' is not a finite number";
      },
      "");
}

CLI::Validator nonNegativeNumberValidator() {
  return makeValidator(
      [](std::string const& text) -> std::string {
        auto const value = parseNumber(text);
        return value && *value >= 0 ? "" : "'" + text + "' is not a number not below 0";
      },
      "");
}

CLI::Validator countValidator() {
  return makeValidator(
      [](std::string const& text) -> std::string {
        auto const value = parseNumber(text);
        bool const ok = value && *value >= 0 && *value <= 2147483647.0 && *value == static_cast<double>(static_cast<long>(*value));
        return ok ? "" : "'" + text + "' is not a count (a whole number not below 0)";
      },
      "");
}

CLI::Validator axisWordValidator() {
  return makeValidator(
      [](std::string const& word) -> std::string {
        auto const eq = word.find('=');
        if (eq == std::string::npos || eq == 0) return "expected AXIS=VALUE, got '" + word + "'";
        std::string const number = word.substr(eq + 1);
        if (!parseNumber(number)) return "'" + number + "' is not a number (in '" + word + "')";
        return "";
      },
      "");
}

CLI::Validator pointValidator() {
  return makeValidator(
      [](std::string const& text) -> std::string {
        return parsePoint(text) ? "" : "'" + text + "' is not a point X,Y,Z of three finite numbers";
      },
      "");
}

int runCommandLine(int argc, char const* const* argv, std::ostream& out, std::ostream& err) {
  Registry registry;
  CLI::App& app = registry.app;
  app.footer(kFooter);
  app.set_version_flag("--version", std::string("mtkit ") + versionString(), "print the version and stop");
  app.require_subcommand(1);
  app.get_formatter()->column_width(34);

  registry.add(addVersionCommand);
  registry.add(addCheckCommand);
  registry.add(addShowCommand);
  registry.add(addDemoCommand);
  registry.add(addFkCommand);
  registry.add(addIkCommand);
  registry.add(addSimulateCommand);
  registry.add(addMotionsCommand);
  registry.add(addCollisionsCommand);
  registry.add(addConfigCommand);
  registry.add(addOrientCommand);

  // "mtkit help [COMMAND]": the help of the tool or of one command.
  std::string helpTopic;
  CLI::App* const help = app.add_subcommand("help", "this help, or with COMMAND that command's help");
  help->add_option("COMMAND", helpTopic, "a command")->type_name("");

  // The tool's own help, whichever command was parsed (App::help() would give
  // that command's).
  auto const toolHelp = [&app]() { return app.get_formatter()->make_help(&app, "mtkit", CLI::AppFormatMode::Normal); };

  if (argc <= 1) {
    err << toolHelp();
    return kExitUsage;
  }
  // The first word is a command or one of the tool's own options; CLI11 would
  // report anything else as a missing command.
  std::string const first = argv[1];
  bool known = first == "-h" || first == "--help" || first == "--version" || first == "help";
  for (Command const& command : registry.commands) known = known || command.subcommand->get_name() == first;
  if (!known) {
    err << "mtkit: "
        << (first.rfind('-', 0) == 0 ? "The following argument was not expected: " + first
                                     : "there is no command '" + first + "'")
        << "\nRun 'mtkit --help' for the commands.\n";
    return kExitUsage;
  }
  try {
    app.parse(argc, argv);
  } catch (CLI::ParseError const& e) {
    if (e.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
      app.exit(e, out, err);  // --help and --version
      return kExitOk;
    }
    std::string const command = registry.commandName();
    err << "mtkit" << (command.empty() ? "" : " " + command) << ": " << e.what() << "\n"
        << "Run 'mtkit" << (command.empty() ? "" : " " + command) << " --help' for "
        << (command.empty() ? "the commands" : "its arguments") << ".\n";
    return kExitUsage;
  }
  if (help->parsed()) {
    if (helpTopic.empty()) {
      out << toolHelp();
      return kExitOk;
    }
    for (Command const& command : registry.commands)
      if (command.subcommand->get_name() == helpTopic) {
        out << command.subcommand->help("mtkit");
        return kExitOk;
      }
    err << "mtkit help: there is no command '" << helpTopic << "'\nRun 'mtkit --help' for the commands.\n";
    return kExitUsage;
  }
  Command const* const command = registry.selected();
  if (!command) {
    err << toolHelp();
    return kExitUsage;
  }
  return command->action(out, err);
}

}  // namespace mtkit_tool
