// The mtkit command-line tool.

#include <iostream>

#include "CommandLine.h"

int main(int argc, char** argv) { return mtkit_tool::runCommandLine(argc, argv, std::cout, std::cerr); }
