// The mtkit command-line tool.

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "CheckCommand.h"
#include "CollisionsCommand.h"
#include "DemoCommand.h"
#include "FkCommand.h"
#include "IkCommand.h"
#include "MotionsCommand.h"
#include "ShowCommand.h"
#include "SimulateCommand.h"
#include "Version.h"

namespace {

void printUsage(std::ostream& out) {
  out << "usage: mtkit <command> [arguments]\n"
         "\n"
         "commands:\n"
         "  version               print the library version\n"
         "  demo [AXIS=VALUE...]  the built-in 5-axis example tree: each axis's\n"
         "                        transformation at the given values\n"
         "  check FILE            read a machine file or an MTK file: a summary, or\n"
         "                        the reader's error and status 1\n"
         "  show FILE             the part tree, head and table, and the features\n"
         "  fk FILE [AXIS=VALUE...]\n"
         "                        move the machine of FILE and print the head attach\n"
         "                        frame in table coordinates, tool tip and tool axis\n"
         "  ik FILE --tip X,Y,Z [AXIS=VALUE...]\n"
         "                        set the named axes, solve the linear ones for the\n"
         "                        tool tip and print every axis and the distance left\n"
         "  simulate MACHINE STREAM [-o OUT] [--csv] [--follow [--idle SECONDS]] [--poses N]\n"
         "           [--tools FILE] [--solver-only] [--motions FILE [--motions-format json|binary]]\n"
         "                        replay a recorded stream text file through the\n"
         "                        standard post chain (catch errors, radius\n"
         "                        compensation, the machine's solver), or the solver\n"
         "                        alone; write the stream that comes out (or its\n"
         "                        poses as CSV) to OUT and print a summary with the\n"
         "                        first N poses; --tools gives each operation its\n"
         "                        tool from a JSON file; --follow reads a file that\n"
         "                        is still being written until it keeps its size for\n"
         "                        the idle time (5 s); --motions writes each\n"
         "                        operation's context and starting pose (JSON, or\n"
         "                        the binary form)\n"
         "  motions FILE          the machine motions of a file that simulate wrote:\n"
         "                        each operation's context and start pose per axis\n"
         "  collisions MACHINE    the interaction pairs generated from the machine's\n"
         "                        kinematics: both solids (part and type) and whether\n"
         "                        the pair is checked for collisions or cuts stock\n"
         "  help                  this text\n";
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> args(argv + 1, argv + argc);
  if (args.empty()) {
    printUsage(std::cerr);
    return 2;
  }
  std::string const command = args.front();
  args.erase(args.begin());
  if (command == "version" || command == "--version") {
    std::cout << "mtkit " << mtkit_tool::versionString() << "\n";
    return 0;
  }
  if (command == "help" || command == "--help" || command == "-h") {
    printUsage(std::cout);
    return 0;
  }
  if (command == "demo") return mtkit_tool::runDemo(args, std::cout, std::cerr);
  if (command == "check") return mtkit_tool::runCheck(args, std::cout, std::cerr);
  if (command == "collisions") return mtkit_tool::runCollisions(args, std::cout, std::cerr);
  if (command == "show") return mtkit_tool::runShow(args, std::cout, std::cerr);
  if (command == "fk") return mtkit_tool::runFk(args, std::cout, std::cerr);
  if (command == "ik") return mtkit_tool::runIk(args, std::cout, std::cerr);
  if (command == "simulate") return mtkit_tool::runSimulate(args, std::cout, std::cerr);
  if (command == "motions") return mtkit_tool::runMotions(args, std::cout, std::cerr);
  std::cerr << "mtkit: unknown command '" << command << "'\n";
  printUsage(std::cerr);
  return 2;
}
