#pragma once
// Reads the XML form of a MachineConfiguration: a document whose root is
// `machine`, version "1.0", which may inherit another such file through its
// attribute `inherit`.
//
// A host installs a loader through MachineConfiguration::setMachineLoader;
// createFromPath and inheritance go through its `load`. The default `load`
// reads a file of UTF-8 text; a host that keeps configurations elsewhere
// overrides it and hands the root element it found to `read`.
//
// Every failure is an Orvo::ScriptException with a fixed English sentence,
// and no partly read configuration ever reaches the caller.

#include <memory>
#include <optional>
#include <string>

namespace Orvo {
namespace DOM {
class Element;
}
}  // namespace Orvo

namespace com {
namespace vantora {
namespace post {

class MachineConfiguration;

/// The format's namespace URI. Elements are matched by name alone: the
/// reader does not test it and the writer does not write it. The host is in
/// the reserved top-level domain "invalid", so the URI never resolves and
/// names no one's site.
inline constexpr wchar_t MACHINE_CONFIGURATION_NAMESPACE[] = L"http://mtkit.invalid/xml/2009/machine";

class MachineConfigurationLoader {
public:
  /// A file read at a depth above this may not inherit another: counting the
  /// file that createFromPath asks for, 65 files can stand in one chain.
  static constexpr unsigned int MAXIMUM_INHERITANCE_DEPTH = 64;

  MachineConfigurationLoader() = default;
  MachineConfigurationLoader(MachineConfigurationLoader const&) = default;
  MachineConfigurationLoader& operator=(MachineConfigurationLoader const&) = default;
  virtual ~MachineConfigurationLoader();

  /// The configuration in the file at `path`, read at inheritance depth
  /// `depth` (0 for the file a script asks for), or null when there is
  /// none. The default reads the file as UTF-8 and hands its root to `read`;
  /// it fails with "File not found." when `path` names no file, with
  /// "Failed to load machine configuration." when the file cannot be read,
  /// and with the XML parser's text (which gives line and column) when the
  /// file is not well-formed XML. It never returns null.
  virtual std::unique_ptr<MachineConfiguration> load(std::wstring const& path, unsigned int depth);

  /// The configuration that the document `root` describes. `path` is the
  /// file the document came from: without it `inherit` has no effect, and
  /// with it an inherited file is found relative to that file's folder and
  /// read through `load` at the next depth. Never null.
  std::unique_ptr<MachineConfiguration> read(Orvo::DOM::Element const& root,
                                             std::optional<std::wstring> const& path, unsigned int depth);
};

}  // namespace post
}  // namespace vantora
}  // namespace com
