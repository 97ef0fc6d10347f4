#include "ConfigCommand.h"

#include <fstream>
#include <memory>
#include <ostream>
#include <string>

#include "ScriptConfiguration.h"
#include "util/utility/Messages.h"
#include "util/utility/ScriptException.h"

namespace mtkit_tool {
namespace {

struct ConfigOptions {
  std::string file;
  std::string output;
};

int runConfig(ConfigOptions const& options, std::ostream& out, std::ostream& err) {
  ScriptConfiguration const loaded = loadScriptConfiguration("config", options.file, err);
  if (!loaded.configuration) return kExitFailure;
  com::vantora::post::MachineConfiguration const& configuration = *loaded.configuration;

  out << "configuration:  " << options.file << " ("
      << (loaded.source == "configuration XML" ? "read from its XML" : "made from the " + loaded.source) << ")\n";
  std::string const vendor = Orvo::Messages::wideToUtf8(configuration.getVendor());
  std::string const model = Orvo::Messages::wideToUtf8(configuration.getModel());
  if (!vendor.empty() || !model.empty())
    out << "machine:        " << vendor << (vendor.empty() || model.empty() ? "" : " ") << model << "\n";
  std::string const control = Orvo::Messages::wideToUtf8(configuration.getControl());
  if (!control.empty()) out << "control:        " << control << "\n";
  out << "kind:           " << kindText(configuration) << "\n";
  out << "axes:\n" << axesText(configuration);
  int const status = configuration.getValidityStatus();
  out << "status:         "
      << (status == 0 ? std::string("supported")
                      : Orvo::Messages::wideToUtf8(com::vantora::post::MachineConfiguration::getStatusDescription(status)))
      << "\n";

  if (!options.output.empty()) {
    std::string xml;
    try {
      xml = Orvo::Messages::wideToUtf8(configuration.getXML());
    } catch (Orvo::ScriptException const& e) {
      err << "mtkit config: cannot write the configuration as XML: " << e.what() << "\n";
      return kExitFailure;
    }
    std::ofstream file(options.output, std::ios::binary);
    if (file) file << xml;
    if (!file) {
      err << "mtkit config: cannot write '" << options.output << "'\n";
      return kExitFailure;
    }
    out << "written:        " << options.output << " (" << xml.size() << " bytes)\n";
  }
  return status == 0 ? kExitOk : kExitFailure;
}

}  // namespace

Command addConfigCommand(CLI::App& app) {
  auto options = std::make_shared<ConfigOptions>();
  CLI::App* const sub = app.add_subcommand(
      "config", "the script-facing configuration of a machine: its kind, axes and ranges, and its XML");
  sub->add_option("FILE", options->file, "a machine file, an MTK file, or a configuration XML file (*.xml)")
      ->type_name("")
      ->required();
  sub->add_option("-o,--output", options->output, "write the configuration as XML to OUT")->type_name("OUT");
  sub->footer(
      "A machine file or an MTK file goes through the bridge from a machine definition; a *.xml file is\n"
      "read by the configuration reader (files it inherits from are taken relative to it). Rotary axes are\n"
      "named by their coordinate (A, B, C), with their slot (U, V, W). Exit status 1 when the file cannot\n"
      "be read or made into a configuration, or the configuration is not supported.");
  return {sub, [options](std::ostream& out, std::ostream& err) { return runConfig(*options, out, err); }};
}

}  // namespace mtkit_tool
