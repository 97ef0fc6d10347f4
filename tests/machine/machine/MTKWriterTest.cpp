#include "machine/machine/MTKWriter.h"

#include <gtest/gtest.h>

#include <sstream>
#include <streambuf>

#include "machine/machine/KinematicsDefinition.h"
#include "machine/machine/LinearAxisDefinition.h"
#include "machine/machine/MTKReader.h"
#include "support/AssertRecorder.h"
#include "support/JsonText.h"

using machine::KinematicsDefinition;
using machine::MTKWriter;
using machine::PartDefinition;
using machine::PartType;

namespace {

class FailingBuffer : public std::streambuf {
protected:
  int_type overflow(int_type) override { return traits_type::eof(); }
  std::streamsize xsputn(char const*, std::streamsize) override { return 0; }
};

KinematicsDefinition onePart(std::unique_ptr<PartDefinition> part) {
  std::vector<std::unique_ptr<PartDefinition>> base;
  base.push_back(std::move(part));
  return KinematicsDefinition(std::move(base), machine::MTKIOConverter());
}

std::unique_ptr<machine::AxisDefinition> linearX(machine::ControlType control = machine::ControlType::DRIVEN) {
  return std::make_unique<machine::LinearAxisDefinition>(control, 0.0, 0.0, std::nullopt, std::nullopt,
                                                         Orvo::Vector3D(1, 0, 0), std::nullopt, std::nullopt);
}

}  // namespace

TEST(MTKWriter, WriteGivesStyledDocumentAndEndOfLine) {
  KinematicsDefinition const k = onePart(std::make_unique<PartDefinition>(Orvo::MachinePartId("h"), PartType::HEAD));
  std::ostringstream out;
  machine::WriterStatus const status = MTKWriter::write(out, k);
  EXPECT_FALSE(status.isError());
  EXPECT_EQ(status.getMessage(), "");
  // The document of one head part with the identity attach frame: keys in
  // order, numbers as doubles, in the JSON library's styled layout (a tab per
  // level, one array element a line, a blank after a key whose value opens
  // on the next line), ended by the library's line end and the writer's own.
  EXPECT_EQ(out.str(),
            "{\n"
            "\t\"conventions\" : \n"
            "\t{\n"
            "\t\t\"rotation\" : \"right-handed\"\n"
            "\t},\n"
            "\t\"parts\" : \n"
            "\t[\n"
            "\t\t{\n"
            "\t\t\t\"attach_frame\" : \n"
            "\t\t\t{\n"
            "\t\t\t\t\"point\" : \n"
            "\t\t\t\t[\n"
            "\t\t\t\t\t0.0,\n"
            "\t\t\t\t\t0.0,\n"
            "\t\t\t\t\t0.0\n"
            "\t\t\t\t],\n"
            "\t\t\t\t\"x_direction\" : \n"
            "\t\t\t\t[\n"
            "\t\t\t\t\t1.0,\n"
            "\t\t\t\t\t0.0,\n"
            "\t\t\t\t\t0.0\n"
            "\t\t\t\t],\n"
            "\t\t\t\t\"z_direction\" : \n"
            "\t\t\t\t[\n"
            "\t\t\t\t\t0.0,\n"
            "\t\t\t\t\t0.0,\n"
            "\t\t\t\t\t1.0\n"
            "\t\t\t\t]\n"
            "\t\t\t},\n"
            "\t\t\t\"id\" : \"h\",\n"
            "\t\t\t\"type\" : \"head\"\n"
            "\t\t}\n"
            "\t],\n"
            "\t\"units\" : \n"
            "\t{\n"
            "\t\t\"angle\" : \"degrees\",\n"
            "\t\t\"length\" : \"mm\"\n"
            "\t}\n"
            "}\n"
            "\n");
}

TEST(MTKWriter, FailingStreamWithExceptionsGivesDiscMessage) {
  KinematicsDefinition const k({}, machine::MTKIOConverter());
  FailingBuffer buffer;
  std::ostream out(&buffer);
  out.exceptions(std::ios::badbit | std::ios::failbit);
  machine::WriterStatus const status = MTKWriter::write(out, k);
  EXPECT_TRUE(status.isError());
  EXPECT_EQ(status.getMessage(),
            "Error, couldn't write .MTK file. This may be due to a permission error or if you're out of disc space.");
}

TEST(MTKWriter, FailingStreamWithoutExceptionsIsNotLookedAt) {
  KinematicsDefinition const k({}, machine::MTKIOConverter());
  FailingBuffer buffer;
  std::ostream out(&buffer);
  EXPECT_FALSE(MTKWriter::write(out, k).isError());
  EXPECT_TRUE(out.bad());
}

TEST(MTKWriter, RotaryPartWithoutRotaryAxisBreaksAssertion) {
  mtkit_test::AssertRecorder rec;
  KinematicsDefinition const k =
      onePart(std::make_unique<PartDefinition>(Orvo::MachinePartId("r"), PartType::ROTARY, std::nullopt, std::nullopt,
                                               std::nullopt, linearX()));
  Json::Value const out = MTKWriter::toJson(k);
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"rotaryAxis != nullptr"});
  EXPECT_FALSE(out["parts"][0].isMember("axis_of_rotation"));
  EXPECT_EQ(out["parts"][0]["control"].asString(), "driven");
}

TEST(MTKWriter, UnknownControlAndPartTypeBreakTheirAssertions) {
  mtkit_test::AssertRecorder rec;
  KinematicsDefinition const k = onePart(std::make_unique<PartDefinition>(
      Orvo::MachinePartId("x"), PartType::LINEAR, std::nullopt, std::nullopt, std::nullopt,
      linearX(static_cast<machine::ControlType>(9))));
  Json::Value const out = MTKWriter::toJson(k);
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"control == ControlType::MANUAL"});
  EXPECT_EQ(out["parts"][0]["control"].asString(), "manual");

  KinematicsDefinition const root = onePart(std::make_unique<PartDefinition>(Orvo::MachinePartId("r"), PartType::ROOT));
  Json::Value const out2 = MTKWriter::toJson(root);
  EXPECT_EQ(rec.takeTexts(), std::vector<std::string>{"partType == PartType::TABLE"});
  EXPECT_EQ(out2["parts"][0]["type"].asString(), "table");
}

TEST(MTKWriter, SpindleDescriptionLeftOutWhenEmptyAndTurretCountUnsigned) {
  auto head = std::make_unique<PartDefinition>(Orvo::MachinePartId("h"), PartType::HEAD);
  head->setSpindleDefinition(machine::SpindleDefinition(10.0, 20000.0, ""));
  head->setTurretDefinition(machine::TurretDefinition(12));
  head->setDisplayName(machine::DisplayName("Main head"));
  KinematicsDefinition const k = onePart(std::move(head));
  Json::Value const out = MTKWriter::toJson(k)["parts"][0];
  EXPECT_EQ(out["spindle"].getMemberNames(), (std::vector<std::string>{"max_speed", "min_speed"}));
  EXPECT_EQ(out["turret"]["index_count"].asUInt(), 12u);
  EXPECT_TRUE(out["turret"]["index_count"].isUInt());
  EXPECT_EQ(out["display_name"].asString(), "Main head");
}

TEST(KinematicsDefinition, JsonConstructorThrowsFullUnitsMessageAndPassesReaderException) {
  try {
    KinematicsDefinition const k("default", mtkit_test::parseJson(R"({"units": {"length": "inch"}})"));
    FAIL();
  } catch (std::runtime_error const& e) {
    EXPECT_STREQ(e.what(),
                 "Error reading Machine Tool Kinematics (MTK) data from machine file:\n\nCan't read the units. All units "
                 "must be specified in \"mm\" or \"degrees\".\n\nCode example:\n\"units\": {\n    \"angle\": "
                 "\"degrees\",\n    \"length\": \"mm\"\n}");
  }
  try {
    KinematicsDefinition const k(
        "default", mtkit_test::parseJson(R"({"units": {"length": "mm", "angle": "degrees"}, "parts": [{"id": 1}]})"));
    FAIL();
  } catch (std::exception const& e) {
    EXPECT_STREQ(e.what(), "Unknown exception");
  }
}

TEST(KinematicsDefinition, JsonConstructorTakesPartsAndConverterAndPersistsThem) {
  Json::Value const data = mtkit_test::parseJson(
      R"({"conventions": {"rotation": "left-handed"}, "units": {"length": "mm", "angle": "degrees"},
          "parts": [{"id": "b", "type": "static", "parts": [{"id": "t", "type": "table"}]}]})");
  KinematicsDefinition const k("second", data);
  EXPECT_EQ(k.featureId(), "second");
  EXPECT_EQ(k.mtkIOConverter().externalHandedness(), machine::Handedness::LEFT_HANDED);
  EXPECT_EQ(k.allParts().size(), 2u);
  EXPECT_EQ((*k.find(Orvo::MachinePartId("t")))->parent(), *k.find(Orvo::MachinePartId("b")));
  // Written back: the static part has no attach frame, the table gets the
  // identity one.
  EXPECT_EQ(k.getPersistData(), mtkit_test::parseJson(R"({
      "conventions": {"rotation": "left-handed"},
      "parts": [{"id": "b", "type": "static",
                 "parts": [{"id": "t", "type": "table",
                            "attach_frame": {"point": [0.0, 0.0, 0.0], "x_direction": [1.0, 0.0, 0.0],
                                             "z_direction": [0.0, 0.0, 1.0]}}]}],
      "units": {"angle": "degrees", "length": "mm"}})"));
  EXPECT_EQ(k.getPersistData()["conventions"]["rotation"].asString(), "left-handed");
}
