#include "machine/machine/MachineDefinitionReader.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <streambuf>

#include "machine/machine/ControllerConfiguration.h"
#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/MachineDefinitionWriter.h"
#include "machine/machine/UnknownMachineFeatureDefinition.h"
#include "support/AssertRecorder.h"
#include "support/JsonText.h"
#include "util/utility/JsonUtils.h"

using machine::MachineDefinition;
using machine::MachineDefinitionReader;
using machine::MachineDefinitionReaderResult;
using mtkit_test::parseJson;

namespace {

std::string const kHeading = "Error reading Machine Definition data from machine file:\n\n";
std::string const kMtk = R"({"units": {"length": "mm", "angle": "degrees"}, "parts": [{"id": "t", "type": "table"}]})";
std::string const kController = R"({"parts": {"x": {"home": 5}}})";

MachineDefinitionReaderResult readText(std::string const& text) {
  std::istringstream in(text);
  return MachineDefinitionReader().read(in);
}

std::unique_ptr<MachineDefinition> readOk(std::string const& text) {
  MachineDefinitionReaderResult result = readText(text);
  if (result.isError()) {
    ADD_FAILURE() << result.getReadErrorMessage();
    return nullptr;
  }
  return result.getMachineDefinition();
}

/// The stored message of a failed read, without its heading.
std::string readError(std::string const& text) {
  MachineDefinitionReaderResult const result = readText(text);
  if (!result.isError()) return "<no error>";
  std::string const full = result.getReadErrorMessage();
  EXPECT_EQ(full.rfind(kHeading, 0), 0u);
  return full.substr(kHeading.size());
}

std::vector<std::string> featureKeys(MachineDefinition const& m) {
  std::vector<std::string> out;
  for (auto const& f : m.getFeatures()) out.push_back(f.featureTypeId() + "/" + f.featureId());
  return out;
}

std::string written(MachineDefinition const& m) {
  std::ostringstream out;
  EXPECT_FALSE(machine::MachineDefinitionWriter::write(out, m).isError());
  return out.str();
}

class FailingBuffer : public std::streambuf {
protected:
  int_type overflow(int_type) override { return traits_type::eof(); }
  std::streamsize xsputn(char const*, std::streamsize) override { return 0; }
};

class StringInput : public Orvo::InputStream {
public:
  explicit StringInput(std::string text) : m_text(std::move(text)) {}
  std::size_t read(char* buffer, std::size_t size) override {
    std::size_t const n = std::min(size, m_text.size() - m_pos);
    std::memcpy(buffer, m_text.data() + m_pos, n);
    m_pos += n;
    return n;
  }

private:
  std::string m_text;
  std::size_t m_pos = 0;
};

}  // namespace

// Edge cases of the machine file.

TEST(MachineDefinitionReader, EmptyObjectReadsAsEmptyDefinitionAndWritesGeneralOnly) {
  auto const m = readOk("{}");
  ASSERT_NE(m, nullptr);
  EXPECT_TRUE(m->getFeatures().empty());
  EXPECT_TRUE(m->defaults().empty());
  Json::Value const out = parseJson(written(*m));
  EXPECT_EQ(out, parseJson(R"({"general": {"capabilities": null, "minimumRevision": 45805}})"));
}

TEST(MachineDefinitionReader, UnknownTypeWithTwoMembersGivesTwoUnknownFeaturesWrittenBack) {
  auto const m = readOk(R"({"gizmos": {"left": {"a": 1}, "right": [1, "two", null]}})");
  ASSERT_NE(m, nullptr);
  EXPECT_EQ(featureKeys(*m), (std::vector<std::string>{"gizmos/left", "gizmos/right"}));
  EXPECT_NE(dynamic_cast<machine::UnknownMachineFeatureDefinition const*>(m->getFeature("gizmos", "left")), nullptr);
  Json::Value const out = m->getPersistData();
  EXPECT_EQ(out["gizmos"], parseJson(R"({"left": {"a": 1}, "right": [1, "two", null]})"));
}

TEST(MachineDefinitionReader, NonObjectTypeValueIsDroppedSilentlyKnownOrUnknown) {
  auto const m = readOk(R"({"gizmos": "loose", "kinematics": [1, 2], "controller": 7, "tooling": 4, "gadgets": {"default": 3}})");
  ASSERT_NE(m, nullptr);
  EXPECT_EQ(featureKeys(*m), std::vector<std::string>{"gadgets/default"});
  EXPECT_FALSE(m->getPersistData().isMember("gizmos"));
}

TEST(MachineDefinitionReader, KnownTypeWithEmptyObjectGivesNoFeature) {
  auto const m = readOk(R"({"kinematics": {}, "controller": {}})");
  ASSERT_NE(m, nullptr);
  EXPECT_TRUE(m->getFeatures().empty());
}

TEST(MachineDefinitionReader, TwoFeatureIdsUnderOneTypeGiveTwoFeaturesAndDefaultsChoose) {
  std::string const text = R"({"kinematics": {"a": )" + kMtk + R"(, "b": )" + kMtk + "}}";
  auto const first = readOk(text);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(featureKeys(*first), (std::vector<std::string>{"kinematics/a", "kinematics/b"}));
  EXPECT_EQ(first->getDefaultFeature("kinematics")->featureId(), "a");
  EXPECT_NE(dynamic_cast<machine::KinematicsDefinition const*>(first->getDefaultFeature("kinematics")), nullptr);
  auto const second = readOk(R"({"defaults": {"kinematics": "b"}, )" + text.substr(1));
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(second->getDefaultFeature("kinematics")->featureId(), "b");
}

TEST(MachineDefinitionReader, DefaultsWithNonStringMemberKeepsOthers) {
  auto const m = readOk(R"({"defaults": {"kinematics": 3, "controller": "fast", "post": null}})");
  ASSERT_NE(m, nullptr);
  EXPECT_EQ(m->defaults(), (MachineDefinition::DefaultMap{{"controller", "fast"}}));
  auto const ignored = readOk(R"({"defaults": ["controller"]})");
  ASSERT_NE(ignored, nullptr);
  EXPECT_TRUE(ignored->defaults().empty());
}

TEST(MachineDefinitionReader, ReadingAndWritingGivesSameDocumentButRevision) {
  std::string const text = R"({
    "general": {"vendor": "Acme", "model": "VM-1", "description": "Test", "capabilities": ["milling", "turning"],
                "minimumRevision": 100},
    "defaults": {"kinematics": "default", "controller": "default"},
    "kinematics": {"default": {"conventions": {"rotation": "right-handed"}, "units": {"length": "mm", "angle": "degrees"},
                   "parts": [{"id": "t", "type": "table", "attach_frame": {"point": [0, 0, 0], "z_direction": [0, 0, 1], "x_direction": [1, 0, 0]}}]}},
    "controller": {"default": )" + mtkit_test::parseJson(kController).toStyledString() + R"(},
    "gadgets": {"default": {"anything": [1, 2, {"goes": true}]}}
  })";
  auto const m = readOk(text);
  ASSERT_NE(m, nullptr);
  Json::Value expected = parseJson(text);
  expected["general"]["minimumRevision"] = 45805;
  // The controller writes its full axis objects; compare it through its own writer.
  expected["controller"]["default"] = m->getFeature("controller", "default")->getPersistData();
  Json::Value const out = parseJson(written(*m));
  EXPECT_TRUE(Orvo::JsonUtils::areEqual(out, expected, 0.0)) << out.toStyledString();
  EXPECT_EQ(out["controller"]["default"]["parts"]["x"]["home"].asDouble(), 5.0);
}

TEST(MachineDefinitionReader, FeaturesFollowKeyOrderOfFile) {
  auto const m = readOk(R"({"zz": {"b": 1, "a": 2}, "kinematics": {"k": )" + kMtk + R"(}, "aa": {"x": 0}})");
  ASSERT_NE(m, nullptr);
  EXPECT_EQ(featureKeys(*m), (std::vector<std::string>{"aa/x", "kinematics/k", "zz/a", "zz/b"}));
}

// Failures.

TEST(MachineDefinitionReader, SyntaxErrorCarriesParserText) {
  std::string const message = readError(R"({"general": )");
  std::string const heading = "The file reader encountered a syntax error:\n\n";
  EXPECT_EQ(message.rfind(heading, 0), 0u);
  EXPECT_GT(message.size(), heading.size());
  EXPECT_EQ(readError("").rfind(heading, 0), 0u);
  EXPECT_EQ(readError(std::string("\x00\xff\xfe binary", 10)).rfind(heading, 0), 0u);
}

TEST(MachineDefinitionReader, GeneralErrorsShowTheirMessages) {
  EXPECT_EQ(readError(R"({"general": {"vendor": 1}})"), "'vendor' is expected to be a string");
  EXPECT_EQ(readError(R"({"general": {"minimumRevision": 45806}})"), "The machine has newer version, and cannot be loaded.");
  EXPECT_EQ(readError(R"({"general": {"capabilities": 5}})"), "Expected string or array node.");
  EXPECT_EQ(readError(R"({"general": {"capabilities": ["milling", "welding"]}})"), "welding is not supported");
}

TEST(MachineDefinitionReader, GeneralThatIsNotAnObjectFailsWithLibraryText) {
  // Only null and objects can be asked for members; the JSON library's own
  // complaint is what the user sees.
  std::string const message = readError(R"({"general": 5})");
  EXPECT_NE(message, "<no error>");
  EXPECT_FALSE(message.empty());
  EXPECT_NE(readOk(R"({"general": null})"), nullptr);
}

TEST(MachineDefinitionReader, NewerRevisionFailsFirstOnFeatureSortingBeforeGeneral) {
  EXPECT_EQ(readError(R"({"general": {"minimumRevision": 99999}, "controller": {"default": {}}})"),
            "Missing parts node in controller configuration node.");
  EXPECT_EQ(readError(R"({"general": {"minimumRevision": 99999}, "kinematics": {"default": {}}})"),
            "The machine has newer version, and cannot be loaded.");
}

TEST(MachineDefinitionReader, KinematicsUnitsShowFullMessageOtherMtkErrorsUnknownException) {
  EXPECT_EQ(readError(R"({"kinematics": {"default": {"units": {"length": "inch"}}}})"),
            "Error reading Machine Tool Kinematics (MTK) data from machine file:\n\nCan't read the units. All units "
            "must be specified in \"mm\" or \"degrees\".\n\nCode example:\n\"units\": {\n    \"angle\": "
            "\"degrees\",\n    \"length\": \"mm\"\n}");
  EXPECT_EQ(readError(R"({"kinematics": {"default": {"units": {"length": "mm", "angle": "degrees"}, "parts": [{"id": "a", "type": "bogus"}]}}})"),
            "Unknown exception");
}

TEST(MachineDefinitionReader, FeatureConstructorFailureEndsWholeRead) {
  EXPECT_EQ(readError(R"({"controller": {"default": {"parts": {"x": {}}, "tcp_rapid_interpolation_mode": "Fast"}}})"),
            "Fast is no supported");
}

TEST(MachineDefinitionReader, NonObjectRootGivesEmptyMachineAndEmptySectionsSucceed) {
  for (char const* text : {"[]", "3", "\"text\"", "null", "[{\"general\": {\"vendor\": 1}}]"}) {
    auto const m = readOk(text);
    ASSERT_NE(m, nullptr) << text;
    EXPECT_TRUE(m->getFeatures().empty());
  }
  auto const m = readOk(R"({"general": {}, "defaults": {}})");
  ASSERT_NE(m, nullptr);
  EXPECT_EQ(m->vendor(), "");
}

TEST(MachineDefinitionReader, InputStreamEntryPointReadsTheSame) {
  std::string const text = R"({"general": {"vendor": "Acme"}, "kinematics": {"default": )" + kMtk + "}}";
  StringInput in(text);
  MachineDefinitionReaderResult result = MachineDefinitionReader().read(in);
  ASSERT_FALSE(result.isError());
  auto const m = result.getMachineDefinition();
  EXPECT_EQ(m->vendor(), "Acme");
  EXPECT_EQ(featureKeys(*m), std::vector<std::string>{"kinematics/default"});
  StringInput bad("{");
  MachineDefinitionReaderResult const failed = MachineDefinitionReader().read(bad);
  ASSERT_TRUE(failed.isError());
  EXPECT_EQ(failed.getReadErrorMessage().rfind(kHeading + "The file reader encountered a syntax error:\n\n", 0), 0u);
}

TEST(MachineDefinitionReader, DeeplyNestedFileFailsWithoutCrashing) {
  std::string const deep = "{\"x\": {\"y\": " + std::string(200000, '[') + std::string(200000, ']') + "}}";
  EXPECT_TRUE(readText(deep).isError());
}

TEST(MachineDefinitionReader, CopiedReaderReadsKnownTypes) {
  MachineDefinitionReader const original;
  MachineDefinitionReader copy(original);
  copy = original;
  std::istringstream in(R"({"kinematics": {"default": )" + kMtk + "}}");
  MachineDefinitionReaderResult result = copy.read(in);
  ASSERT_FALSE(result.isError());
  EXPECT_NE(dynamic_cast<machine::KinematicsDefinition const*>(result.getMachineDefinition()->getDefaultFeature("kinematics")),
            nullptr);
}

TEST(MachineDefinitionReaderResult, ContractAssertions) {
  mtkit_test::AssertRecorder rec;
  MachineDefinitionReaderResult null{std::unique_ptr<MachineDefinition>()};
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"m_machineDefinition"});
  MachineDefinitionReaderResult ok{std::make_unique<MachineDefinition>()};
  ok.getReadErrorMessage();
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"EXPECTS:isError()"});
  MachineDefinitionReaderResult failed{std::string("bad")};
  EXPECT_EQ(failed.getMachineDefinition(), nullptr);
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"EXPECTS:!isError()"});
  EXPECT_EQ(failed.getReadErrorMessage(), kHeading + "bad");
}

TEST(MachineDefinitionWriter, FailingStreamWithExceptionsGivesMessage) {
  MachineDefinition const m;
  FailingBuffer buffer;
  std::ostream out(&buffer);
  out.exceptions(std::ios::badbit | std::ios::failbit);
  machine::WriterStatus const status = machine::MachineDefinitionWriter::write(out, m);
  EXPECT_TRUE(status.isError());
  EXPECT_EQ(status.getMessage(),
            "Couldn't write Machine Definition file. This may be due to a permission error or if you're out of disc "
            "space.");
  std::ostringstream good;
  EXPECT_FALSE(machine::MachineDefinitionWriter::write(good, m).isError());
  EXPECT_EQ(good.str(), m.getPersistData().toStyledString() + "\n");
}
