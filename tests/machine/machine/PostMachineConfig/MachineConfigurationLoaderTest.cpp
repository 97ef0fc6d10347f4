// Configurations read from files: the loader, inheritance across files, the
// security gate and the hooks a host installs.

#include "machine/machine/PostMachineConfig/MachineConfigurationLoader.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "machine/machine/PostMachineConfig/MachineConfiguration.h"
#include "machine/machine/PostMachineConfig/SecurityWrapperBase.h"
#include "support/AssertRecorder.h"
#include "support/ScriptFailureText.h"

using com::vantora::post::MachineConfiguration;
using com::vantora::post::MachineConfigurationLoader;
using com::vantora::post::SecurityWrapperBase;
using mtkit_test::scriptFailure;

namespace {

namespace fs = std::filesystem;

/// A folder of its own in the temporary directory, removed with all it holds.
class TempFolder {
public:
  explicit TempFolder(std::string const& name)
      : m_path(fs::temp_directory_path() / ("mtkit_" + name + "_" + std::to_string(::getpid()))) {
    fs::remove_all(m_path);
    fs::create_directories(m_path);
  }
  ~TempFolder() {
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
  }
  TempFolder(TempFolder const&) = delete;
  TempFolder& operator=(TempFolder const&) = delete;

  fs::path const& path() const noexcept { return m_path; }

  /// Writes `bytes` to the file `name` (folders made as needed) and returns
  /// its full path.
  std::wstring write(std::string const& name, std::string const& bytes) const {
    fs::path const file = m_path / name;
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
    return file.wstring();
  }

private:
  fs::path m_path;
};

class Gate : public SecurityWrapperBase {
public:
  explicit Gate(bool allowed) : m_allowed(allowed) {}
  bool isAllowed() override {
    ++asked;
    return m_allowed;
  }
  int asked = 0;

private:
  bool m_allowed;
};

/// A loader that counts its calls and may answer some paths itself.
class CountingLoader : public MachineConfigurationLoader {
public:
  std::unique_ptr<MachineConfiguration> load(std::wstring const& path, unsigned int depth) override {
    paths.push_back(path);
    depths.push_back(depth);
    if (path.size() >= nullName.size() && !nullName.empty() &&
        path.compare(path.size() - nullName.size(), nullName.size(), nullName) == 0)
      return nullptr;
    if (path.size() >= inchName.size() && !inchName.empty() &&
        path.compare(path.size() - inchName.size(), inchName.size(), inchName) == 0) {
      auto inch = std::make_unique<MachineConfiguration>();
      inch->setInchMode(true);
      inch->setVendor(L"Inch base");
      return inch;
    }
    return MachineConfigurationLoader::load(path, depth);
  }
  std::vector<std::wstring> paths;
  std::vector<unsigned int> depths;
  std::wstring nullName;  // a path ending so gets null
  std::wstring inchName;  // a path ending so gets an inch-mode configuration
};

/// Installs the default loader and no security wrapper for each test, and
/// leaves the same behind.
class MachineConfigurationLoaderTest : public ::testing::Test {
protected:
  void SetUp() override { reset(); }
  void TearDown() override { reset(); }

  static void reset() {
    MachineConfiguration::setMachineLoader(std::make_shared<MachineConfigurationLoader>());
    // Uninstalling the wrapper is a broken precondition, collected here.
    mtkit_test::AssertRecorder recorder;
    MachineConfiguration::setSecurityWrapper(nullptr);
    EXPECT_EQ(recorder.takeTexts(), std::vector<std::string>{"EXPECTS:impl.get() != nullptr"});
  }

  static std::unique_ptr<MachineConfiguration> fromPath(std::wstring const& path) {
    return std::unique_ptr<MachineConfiguration>(MachineConfiguration::createFromPath(path));
  }
};

std::string const kAxes =
    "<axis id=\"X\" actuator=\"linear\" coordinate=\"X\"/>"
    "<axis id=\"Y\" actuator=\"linear\" coordinate=\"Y\"/>"
    "<axis id=\"Z\" actuator=\"linear\" coordinate=\"Z\"/>"
    "<axis id=\"U\" coordinate=\"A\" axis=\"1 0 0\" link=\"table\"/>";

/// The file of one link of a chain: it names its level and inherits the
/// next one, unless it is the last.
std::string chainLink(int level, bool inherits) {
  std::string text = "<machine version=\"1.0\"";
  if (inherits) text += " inherit=\"level" + std::to_string(level + 1) + ".xml\"";
  text += "><description>level " + std::to_string(level) + "</description>";
  if (!inherits) text += "<vendor>deepest</vendor>";
  return text + "</machine>";
}

/// A chain of `count` files, level1.xml inheriting level2.xml and so on;
/// the path of level1.xml.
std::wstring writeChain(TempFolder const& folder, int count) {
  for (int level = 1; level <= count; ++level)
    folder.write("level" + std::to_string(level) + ".xml", chainLink(level, level < count));
  return (folder.path() / "level1.xml").wstring();
}

}  // namespace

TEST_F(MachineConfigurationLoaderTest, AChainOf65FilesEachInheritingTheNextStillReadsAt66LevelsTheFailureIsMaximumInheritanceRecursionExceeded) {
  TempFolder const folder("xml_chain");
  auto const c = fromPath(writeChain(folder, 65));
  ASSERT_NE(c, nullptr);
  // Each file wrote its description over the one it inherited; the vendor
  // came from the deepest.
  EXPECT_EQ(c->getDescription(), L"level 1");
  EXPECT_EQ(c->getVendor(), L"deepest");

  TempFolder const longer("xml_chain_66");
  EXPECT_EQ(scriptFailure([&] { fromPath(writeChain(longer, 66)); }), L"Maximum inheritance recursion exceeded.");
}

TEST_F(MachineConfigurationLoaderTest, TheLoaderIsAskedWithTheDepthOfEachLevel) {
  TempFolder const folder("xml_depths");
  auto loader = std::make_shared<CountingLoader>();
  MachineConfiguration::setMachineLoader(loader);
  fromPath(writeChain(folder, 3));
  ASSERT_EQ(loader->depths.size(), 3u);
  EXPECT_EQ(loader->depths, (std::vector<unsigned int>{0, 1, 2}));
  EXPECT_EQ(loader->paths[1], (folder.path() / "level2.xml").wstring());
}

TEST_F(MachineConfigurationLoaderTest, AnInheritingFileThatHasNoAxisElementEndsUpWithNoAxesAtAll) {
  TempFolder const folder("xml_no_axes");
  folder.write("base.xml", "<machine><vendor>Base</vendor><model>B</model>" + kAxes + "</machine>");
  std::wstring const child = folder.write("child.xml", "<machine inherit=\"base.xml\"><model>C</model></machine>");
  // The base on its own has its four axes.
  EXPECT_EQ(fromPath((folder.path() / "base.xml").wstring())->getNumberOfAxes(), 4u);
  auto const c = fromPath(child);
  for (auto id : {MachineConfiguration::AXIS_X, MachineConfiguration::AXIS_Y, MachineConfiguration::AXIS_Z,
                  MachineConfiguration::AXIS_U, MachineConfiguration::AXIS_V, MachineConfiguration::AXIS_W}) {
    EXPECT_FALSE(c->hasAxis(id));
    EXPECT_FALSE(c->getAxisById(id).isEnabled());
  }
  EXPECT_FALSE(c->hasRotational());
  // Every other inherited value stays until overwritten.
  EXPECT_EQ(c->getVendor(), L"Base");
  EXPECT_EQ(c->getModel(), L"C");
}

TEST_F(MachineConfigurationLoaderTest, AnInheritingFileBringsItsOwnAxes) {
  TempFolder const folder("xml_own_axes");
  folder.write("base.xml", "<machine>" + kAxes + "<tooling numberOfTools=\"12\"/></machine>");
  std::wstring const child = folder.write(
      "child.xml",
      "<machine inherit=\"base.xml\"><axis id=\"X\" actuator=\"linear\" coordinate=\"X\" range=\"0 10\"/></machine>");
  auto const c = fromPath(child);
  EXPECT_TRUE(c->hasAxis(MachineConfiguration::AXIS_X));
  EXPECT_FALSE(c->hasAxis(MachineConfiguration::AXIS_Y));
  EXPECT_FALSE(c->getAxisU().isEnabled());
  EXPECT_EQ(c->getAxisX().getRange().getMaximum(), 10);
  EXPECT_EQ(c->getNumberOfTools(), 12u);
}

TEST_F(MachineConfigurationLoaderTest, RelativeInheritPathsAreResolvedAgainstTheInheritingFilesFolder) {
  TempFolder const folder("xml_relative");
  folder.write("shared/base.xml", "<machine><vendor>Shared</vendor></machine>");
  folder.write("machines/mill/family.xml", "<machine inherit=\"../../shared/base.xml\"><model>F</model></machine>");
  std::wstring const child =
      folder.write("machines/mill/child.xml", "<machine inherit=\"family.xml\"><control>K</control></machine>");
  // The working folder is somewhere else altogether.
  fs::path const before = fs::current_path();
  fs::current_path(fs::temp_directory_path());
  std::unique_ptr<MachineConfiguration> c;
  std::wstring const failure = scriptFailure([&] { c = fromPath(child); });
  fs::current_path(before);
  ASSERT_EQ(failure, L"");
  EXPECT_EQ(c->getVendor(), L"Shared");
  EXPECT_EQ(c->getModel(), L"F");
  EXPECT_EQ(c->getControl(), L"K");
  // An absolute path is taken as it is.
  std::wstring const absolute = folder.write(
      "elsewhere/abs.xml",
      "<machine inherit=\"" + (folder.path() / "shared" / "base.xml").string() + "\"><model>A</model></machine>");
  EXPECT_EQ(fromPath(absolute)->getVendor(), L"Shared");
}

TEST_F(MachineConfigurationLoaderTest, AMissingInheritedFileFailsWithFileNotFound) {
  TempFolder const folder("xml_missing_base");
  std::wstring const child = folder.write("child.xml", "<machine inherit=\"nowhere.xml\"/>");
  EXPECT_EQ(scriptFailure([&] { fromPath(child); }), L"File not found.");
}

TEST_F(MachineConfigurationLoaderTest, ANullInheritedConfigurationFailsWithFailedToInherit) {
  TempFolder const folder("xml_null_base");
  std::wstring const child = folder.write("child.xml", "<machine inherit=\"base.xml\"/>");
  auto loader = std::make_shared<CountingLoader>();
  loader->nullName = L"base.xml";
  MachineConfiguration::setMachineLoader(loader);
  EXPECT_EQ(scriptFailure([&] { fromPath(child); }), L"Failed to inherit machine configuration.");
  // The same loader answering null for the first file: a script gets a
  // failure, not a null configuration.
  EXPECT_EQ(scriptFailure([&] { fromPath(L"/any/base.xml"); }), L"Failed to load machine configuration.");
}

TEST_F(MachineConfigurationLoaderTest, AFailureInAnInheritedFileReachesTheCaller) {
  TempFolder const folder("xml_bad_base");
  folder.write("base.xml", "<machine><dimensions width=\"-1\"/></machine>");
  std::wstring const child = folder.write("child.xml", "<machine inherit=\"base.xml\"/>");
  EXPECT_EQ(scriptFailure([&] { fromPath(child); }), L"Width cannot be negative in machine configuration.");
}

TEST_F(MachineConfigurationLoaderTest, AFileThatInheritsItselfStopsAtTheDepthLimit) {
  TempFolder const folder("xml_cycle");
  std::wstring const self = folder.write("self.xml", "<machine inherit=\"self.xml\"/>");
  auto loader = std::make_shared<CountingLoader>();
  MachineConfiguration::setMachineLoader(loader);
  EXPECT_EQ(scriptFailure([&] { fromPath(self); }), L"Maximum inheritance recursion exceeded.");
  // Asked at depths 0 to 64: the file at depth 65 may not inherit.
  EXPECT_EQ(loader->depths.size(), 65u);
  EXPECT_EQ(loader->depths.back(), 64u);
}

TEST_F(MachineConfigurationLoaderTest, UnitsAreMappedForAnInheritedConfigurationInInchMode) {
  TempFolder const folder("xml_inch");
  std::wstring const child = folder.write(
      "child.xml",
      "<machine inherit=\"inch.xml\"><dimensions width=\"25.4mm\" depth=\"1in\" height=\"2\"/>"
      "<capabilities maximumFeedrate=\"254mm/min\"/><simulation wcs=\"25.4 50.8 0\"/>"
      "<multiAxis reconfigure=\"yes\" safeRetractDistance=\"1in\" outputTolerance=\"2.54mm\" feedrateMethod=\"dpm\" "
      "tolerance=\"0.254\"/></machine>");
  auto loader = std::make_shared<CountingLoader>();
  loader->inchName = L"inch.xml";
  MachineConfiguration::setMachineLoader(loader);
  auto const c = fromPath(child);
  ASSERT_TRUE(c->isInchMode());
  EXPECT_EQ(c->getVendor(), L"Inch base");
  // The script sees inches: 25.4 mm and 1 in are both 1, and a bare 2 is
  // 2 mm, 2 / 25.4 in.
  EXPECT_NEAR(c->getWidth(), 1, 1e-15);
  EXPECT_NEAR(c->getDepth(), 1, 1e-15);
  EXPECT_NEAR(c->getHeight(), 2 / 25.4, 1e-15);
  EXPECT_NEAR(c->getMaximumFeedrate(), 10, 1e-13);
  EXPECT_NEAR(c->getWCS().x, 1, 1e-15);
  EXPECT_NEAR(c->getWCS().y, 2, 1e-15);
  EXPECT_NEAR(c->getSafeRetractDistance(), 1, 1e-15);
  EXPECT_NEAR(c->getMultiAxisFeedrateOutputTolerance(), 0.1, 1e-15);
  EXPECT_NEAR(c->getSingularityTolerance(), 0.01, 1e-15);
  // Held in millimetres.
  c->setInchMode(false);
  EXPECT_NEAR(c->getWidth(), 25.4, 1e-13);
  EXPECT_NEAR(c->getDepth(), 25.4, 1e-13);
  EXPECT_NEAR(c->getHeight(), 2, 1e-14);
}

TEST_F(MachineConfigurationLoaderTest, TheDefaultLoaderFailsWithFileNotFound) {
  TempFolder const folder("xml_not_found");
  MachineConfigurationLoader loader;
  EXPECT_EQ(scriptFailure([&] { loader.load((folder.path() / "absent.xml").wstring(), 0); }), L"File not found.");
  // A folder is not a file.
  EXPECT_EQ(scriptFailure([&] { loader.load(folder.path().wstring(), 0); }), L"File not found.");
  EXPECT_EQ(scriptFailure([&] { fromPath((folder.path() / "absent.xml").wstring()); }), L"File not found.");
}

TEST_F(MachineConfigurationLoaderTest, TheDefaultLoaderReadsUtf8WithOrWithoutAByteOrderMark) {
  TempFolder const folder("xml_utf8");
  std::wstring const plain = folder.write("plain.xml", "<machine><vendor>S\xC3\xB6hne</vendor></machine>");
  std::wstring const marked =
      folder.write("marked.xml", "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?><machine><vendor>\xE2\x82\xAC</vendor></machine>");
  EXPECT_EQ(fromPath(plain)->getVendor(), L"S\u00f6hne");
  EXPECT_EQ(fromPath(marked)->getVendor(), L"\u20ac");
}

TEST_F(MachineConfigurationLoaderTest, AMalformedFileFailsWithTheParsersWordsAndPlace) {
  TempFolder const folder("xml_malformed");
  std::wstring const bad = folder.write("bad.xml", "<machine>\n<vendor>A</vendor>\n<model>\n</machine>");
  // The end tag of the root meets the open model element: line 4, after
  // "</".
  EXPECT_EQ(scriptFailure([&] { fromPath(bad); }), L"Malformed XML: Start-end tags mismatch at line 4, column 3.");
  std::wstring const notMachine = folder.write("other.xml", "<configuration/>");
  EXPECT_EQ(scriptFailure([&] { fromPath(notMachine); }), L"Not a valid machine configuration.");
}

TEST_F(MachineConfigurationLoaderTest, TheSecurityWrapperRefusingStopsCreateFromPathBeforeAnyFileIsRead) {
  TempFolder const folder("xml_refused");
  std::wstring const file = folder.write("m.xml", "<machine/>");
  auto loader = std::make_shared<CountingLoader>();
  MachineConfiguration::setMachineLoader(loader);
  auto gate = std::make_shared<Gate>(false);
  MachineConfiguration::setSecurityWrapper(gate);
  EXPECT_EQ(scriptFailure([&] { fromPath(file); }),
            L"The following function is disabled in safe mode - 'MachineConfiguration::createFromPath()'.");
  EXPECT_EQ(gate->asked, 1);
  EXPECT_TRUE(loader->paths.empty());
  // Reading from text touches no file and asks no one.
  EXPECT_NE(std::unique_ptr<MachineConfiguration>(MachineConfiguration::createFromXML(L"<machine/>")), nullptr);
  EXPECT_EQ(gate->asked, 1);
}

TEST_F(MachineConfigurationLoaderTest, TheSecurityWrapperAllowingLetsTheLoaderRead) {
  TempFolder const folder("xml_allowed");
  std::wstring const file = folder.write("m.xml", "<machine><model>M</model></machine>");
  auto gate = std::make_shared<Gate>(true);
  MachineConfiguration::setSecurityWrapper(gate);
  EXPECT_EQ(fromPath(file)->getModel(), L"M");
  EXPECT_EQ(gate->asked, 1);
}

TEST_F(MachineConfigurationLoaderTest, WithoutASecurityWrapperFileAccessIsAllowed) {
  TempFolder const folder("xml_no_gate");
  std::wstring const file = folder.write("m.xml", "<machine><model>M</model></machine>");
  EXPECT_EQ(fromPath(file)->getModel(), L"M");
}

TEST_F(MachineConfigurationLoaderTest, WithoutALoaderCreateFromPathIsAProgrammingErrorAndAScriptFailure) {
  mtkit_test::AssertRecorder recorder;
  MachineConfiguration::setMachineLoader(nullptr);
  EXPECT_EQ(recorder.takeTexts(), std::vector<std::string>{"EXPECTS:impl.get() != nullptr"});
  EXPECT_EQ(scriptFailure([] { fromPath(L"/any/machine.xml"); }), L"No machine configuration loader is installed.");
  EXPECT_EQ(recorder.takeTexts(), std::vector<std::string>{"s_machineLoader != nullptr"});
}

TEST_F(MachineConfigurationLoaderTest, TheSecurityWrapperIsAskedBeforeTheLoaderIsLookedFor) {
  mtkit_test::AssertRecorder recorder;
  MachineConfiguration::setMachineLoader(nullptr);
  recorder.take();
  MachineConfiguration::setSecurityWrapper(std::make_shared<Gate>(false));
  EXPECT_EQ(scriptFailure([] { fromPath(L"/any/machine.xml"); }),
            L"The following function is disabled in safe mode - 'MachineConfiguration::createFromPath()'.");
  EXPECT_TRUE(recorder.take().empty());
}

TEST_F(MachineConfigurationLoaderTest, TheHooksAssertANonNullArgument) {
  mtkit_test::AssertRecorder recorder;
  MachineConfiguration::setMachineLoader(std::make_shared<MachineConfigurationLoader>());
  MachineConfiguration::setSecurityWrapper(std::make_shared<Gate>(true));
  EXPECT_TRUE(recorder.take().empty());
  MachineConfiguration::setMachineLoader(nullptr);
  MachineConfiguration::setSecurityWrapper(nullptr);
  EXPECT_EQ(recorder.takeTexts(),
            (std::vector<std::string>{"EXPECTS:impl.get() != nullptr", "EXPECTS:impl.get() != nullptr"}));
}

TEST(SecurityWrapperBase, TheDefaultAnswerLetsFileAccessThrough) {
  struct Plain : SecurityWrapperBase {};
  Plain plain;
  EXPECT_TRUE(plain.isAllowed());
}
