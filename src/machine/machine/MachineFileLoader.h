#pragma once
// Loads a machine file or an MTK file from disk and builds the moving machine
// it describes, saying in words, naming the file, why a file cannot be used.
// The command-line tool and the Python package load files through it, so that
// both refuse the same files with the same sentences.

#include <memory>
#include <string>

#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/Machine.h"
#include "machine/machine/MachineDefinition.h"
#include "machine/machine/MachineSpecification.h"

namespace machine {

class MachineFileLoader {
public:
  /// The bytes of a file, or why the operating system would not give them.
  struct FileText {
    std::string text;
    /// The errno of the failure (EISDIR for a directory); 0 when read.
    int errorNumber = 0;
    /// "cannot read 'PATH': REASON", REASON being the operating system's
    /// word for errorNumber ("No such file or directory", "Is a directory",
    /// "Permission denied"); empty when read.
    std::string error;

    bool ok() const { return errorNumber == 0; }
  };

  /// A machine file or an MTK file as read.
  struct LoadedFile {
    enum class Kind { MACHINE, MTK };
    /// The path the file was loaded from, named in the messages.
    std::string path;
    Kind kind = Kind::MACHINE;
    /// Set for a machine file read without error.
    std::unique_ptr<MachineDefinition> machine;
    /// Set for an MTK file read without error.
    std::unique_ptr<KinematicsDefinition> kinematics;
    /// The errno when the file could not be read at all; 0 otherwise.
    int errorNumber = 0;
    /// When neither definition is set: what went wrong, in UTF-8, naming the
    /// file, with no line break at its end. The readers' own texts follow on
    /// lines of their own.
    std::string error;

    bool ok() const { return machine || kinematics; }
  };

  /// A moving machine, or why none could be built.
  struct BuiltMachine {
    std::unique_ptr<Machine> machine;
    /// The errno when the file could not be read at all; 0 otherwise.
    int errorNumber = 0;
    /// When no machine is set: the reason, in UTF-8, with no line break at
    /// its end.
    std::string error;

    bool ok() const { return machine != nullptr; }
  };

  MachineFileLoader() = delete;

  /// The whole of the file at `path`. A directory is refused with EISDIR:
  /// it opens for reading, but a parser would see only an empty text.
  static FileText readFile(std::string const& path);

  /// readFile's refusal without reading the file, for a file that another
  /// reader opens itself; empty text and errorNumber 0 when it would be read.
  static FileText checkReadable(std::string const& path);

  /// Reads the file at `path` and loads it as loadText does; an unreadable
  /// file gives readFile's error and errno.
  static LoadedFile load(std::string const& path);

  /// Loads `text`, the content of the file at `path`. A file named *.mtk, or a
  /// JSON object with "units" and without "general", is an MTK file; anything
  /// else goes to the machine file reader, so that a file that isn't JSON at
  /// all gets that reader's error.
  ///
  /// Stricter and more explicit than the readers, which keep their own
  /// behaviour:
  /// - an empty file says so;
  /// - a document nested deeper than the parser's limit says so in words;
  /// - a machine file whose root is not a JSON object is refused (the reader
  ///   takes it for an empty machine);
  /// - a kinematics feature that fails inside a machine file shows the MTK
  ///   reader's own message, where the machine file reader can only pass on
  ///   "Unknown exception".
  static LoadedFile loadText(std::string const& text, std::string const& path);

  /// The machine of a specification: its kinematics checked with
  /// DefinitionCheck, a head and a table required, and the axes ordered by
  /// MachineUtils::chainFirstOrdering. Each message starts with `prefix`
  /// (such as "'m.json': ", or nothing).
  static BuiltMachine build(MachineSpecification const& specification, std::string const& prefix);

  /// The machine of a definition's default kinematics and controller;
  /// `prefix` + "the machine definition has no kinematics" without them.
  static BuiltMachine build(MachineDefinition const& definition, std::string const& prefix);

  /// The machine of a kinematics with the default controller configuration
  /// made from it (the first head and the first table).
  static BuiltMachine build(KinematicsDefinition const& kinematics, std::string const& prefix);

  /// The machine of a loaded file, its messages naming the file ("'PATH' has
  /// no kinematics", "'PATH': the machine has no head"); a file that did not
  /// load passes on its error.
  static BuiltMachine build(LoadedFile const& loaded);

  /// load and build in one.
  static BuiltMachine loadMachine(std::string const& path);
};

}  // namespace machine
