// Reading attributes of the XML form: each element's attributes are taken in
// one walk and read from the document's UTF-8. What a document means does not
// depend on that: the first of two same-named attributes counts, an element
// with many attributes reads every one, text outside ASCII reads as it always
// has, and where several attributes are bad the reader's own order, not the
// document's, decides which failure is reported.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "machine/machine/PostMachineConfig/MachineConfiguration.h"
#include "support/ScriptFailureText.h"

using com::vantora::post::MachineConfiguration;
using mtkit_test::scriptFailure;

namespace {

std::unique_ptr<MachineConfiguration> inMachine(std::wstring const& body) {
  return std::unique_ptr<MachineConfiguration>(
      MachineConfiguration::createFromXML(L"<machine version=\"1.0\">" + body + L"</machine>"));
}

std::wstring failureOf(std::wstring const& body) {
  return scriptFailure([&] { inMachine(body); });
}

// `count` attributes that no element of the format knows.
std::wstring unknownAttributes(int count) {
  std::wstring text;
  for (int i = 0; i < count; ++i) text += L" unknown" + std::to_wstring(i) + L"=\"" + std::to_wstring(i) + L"\"";
  return text;
}

TEST(MachineConfigurationXmlAttributes, TheFirstOfTwoAttributesWithTheSameNameCounts) {
  // The parser keeps both; the reader takes the first, as a search by name does.
  auto const c = inMachine(L"<dimensions width=\"2m\" width=\"-1\"/>");
  EXPECT_DOUBLE_EQ(2000.0, c->getWidth());
  EXPECT_EQ(L"Width cannot be negative in machine configuration.",
            failureOf(L"<dimensions width=\"-1\" width=\"2m\"/>"));
}

TEST(MachineConfigurationXmlAttributes, TheFirstOfTwoAttributesCountsWhereverEachStands) {
  // Attributes are searched four at a time: the two in one group of four, in
  // two groups, and the second in the first group after the first.
  for (int before : {0, 1, 2, 3, 4, 5, 7, 8}) {
    for (int between : {0, 1, 2, 3, 4, 9}) {
      auto const c = inMachine(L"<dimensions" + unknownAttributes(before) + L" width=\"2m\"" +
                               unknownAttributes(between) + L" width=\"-1\"/>");
      EXPECT_DOUBLE_EQ(2000.0, c->getWidth()) << before << " " << between;
    }
  }
}

TEST(MachineConfigurationXmlAttributes, ANameOfTheSameLengthAndFirstLetterIsAnotherAttribute) {
  // "wxdth" and "width" share their length and first letter.
  auto const c = inMachine(L"<dimensions wxdth=\"-5\" widtH=\"-6\" width=\"3m\" depth=\"1m\" dxpth=\"x\"/>");
  EXPECT_DOUBLE_EQ(3000.0, c->getWidth());
  EXPECT_DOUBLE_EQ(1000.0, c->getDepth());
}

TEST(MachineConfigurationXmlAttributes, AnElementWithManyAttributesReadsEveryOne) {
  for (int count : {0, 31, 32, 33, 100}) {
    auto const c = inMachine(L"<dimensions" + unknownAttributes(count) + L" width=\"2m\"" + unknownAttributes(3) +
                             L" depth=\"30cm\"/>");
    EXPECT_DOUBLE_EQ(2000.0, c->getWidth()) << count;
    EXPECT_DOUBLE_EQ(300.0, c->getDepth()) << count;
    EXPECT_EQ(L"Invalid depth in machine configuration.",
              failureOf(L"<dimensions" + unknownAttributes(count) + L" depth=\"3 cm\"/>"))
        << count;
  }
  // An axis far past the usual count of attributes, the same.
  auto const c = inMachine(L"<axis id=\"U\"" + unknownAttributes(40) +
                           L" axis=\"0 0 1\" range=\"-90 90\" coordinate=\"C\"/>");
  ASSERT_TRUE(c->getAxisU().isEnabled());
  EXPECT_DOUBLE_EQ(3.141592653589793 / 2, c->getAxisU().getRange().getMaximum());
}

TEST(MachineConfigurationXmlAttributes, TextOutsideAsciiReadsAsBefore) {
  auto const c = inMachine(
      L"<vendor>F\u00fcr \u00e9t\u00e9</vendor>"
      L"<spindle collectChuck=\"HSK-\u00c463\"/>"
      L"<axis id=\"U\" name=\"Dreh\u00e9\" axis=\"0 0 1\" coordinate=\"C\"/>");
  EXPECT_EQ(L"F\u00fcr \u00e9t\u00e9", c->getVendor());
  EXPECT_EQ(L"HSK-\u00c463", c->getCollectChuck());
  EXPECT_EQ(L"Dreh\u00e9", c->getAxisU().getName());
  // No unit, number or space outside ASCII: a micro sign, Arabic-Indic
  // digits, a no-break space.
  EXPECT_EQ(L"Invalid width in machine configuration.", failureOf(L"<dimensions width=\"2\u00b5m\"/>"));
  EXPECT_EQ(L"Invalid width in machine configuration.", failureOf(L"<dimensions width=\"\u0662\"/>"));
  EXPECT_EQ(L"Invalid width in machine configuration.", failureOf(L"<dimensions width=\"2mm\u00a0\"/>"));
  EXPECT_EQ(L"Invalid range for axis 'U' in machine configuration.",
            failureOf(L"<axis id=\"U\" axis=\"0 0 1\" coordinate=\"C\" range=\"-90\u00a090\"/>"));
  EXPECT_EQ(L"Invalid number of tools in machine configuration.", failureOf(L"<tooling numberOfTools=\"\u0664\"/>"));
  EXPECT_EQ(L"Invalid milling capability option in machine configuration.",
            failureOf(L"<machining milling=\"y\u00e9s\"/>"));
  EXPECT_EQ(L"Invalid coordinate for axis 'U' in machine configuration.",
            failureOf(L"<axis id=\"U\" axis=\"0 0 1\" coordinate=\"\u00c7\"/>"));
}

TEST(MachineConfigurationXmlAttributes, TheReadersOrderNotTheDocumentsDecidesWhichFailureIsReported) {
  // Width is read before weight, the actuator before the offset, and the
  // range after the feeds, wherever they stand in the document.
  EXPECT_EQ(L"Invalid width in machine configuration.", failureOf(L"<dimensions weight=\"-1\" width=\"x\"/>"));
  EXPECT_EQ(L"Invalid actuator option for axis 'U' in machine configuration.",
            failureOf(L"<axis offset=\"x\" actuator=\"bogus\" id=\"U\"/>"));
  EXPECT_EQ(L"Maximum feed rate cannot be negative for axis 'U' in machine configuration.",
            failureOf(L"<axis range=\"x\" maximumFeed=\"-1\" id=\"U\" axis=\"0 0 1\"/>"));
  // The id comes first of all.
  EXPECT_EQ(L"Invalid Axis in machine configuration.", failureOf(L"<axis actuator=\"bogus\" id=\"Q\"/>"));
  // A failure in the multi-axis feed wins over one in the singularity
  // settings written before it.
  EXPECT_EQ(L"Invalid multi-axis feedrate method option in machine configuration.",
            failureOf(L"<multiAxis method=\"bogus\" cone=\"-1\" feedrateMethod=\"bogus\"/>"));
}

TEST(MachineConfigurationXmlAttributes, AnAxisReadTwiceIsTheDuplicate) {
  // The axes are made in place as they are read; the second U still fails.
  EXPECT_EQ(L"Machine configuration has duplicate axis.",
            failureOf(L"<axis id=\"U\" axis=\"0 0 1\" coordinate=\"C\"/>"
                      L"<axis id=\"V\" axis=\"1 0 0\" coordinate=\"A\"/>"
                      L"<axis id=\"U\" axis=\"0 1 0\" coordinate=\"B\"/>"));
  // Six axes, all read; a seventh with an id already read is the duplicate.
  auto const c = inMachine(
      L"<axis id=\"X\" actuator=\"linear\" coordinate=\"X\"/><axis id=\"Y\" actuator=\"linear\" coordinate=\"Y\"/>"
      L"<axis id=\"Z\" actuator=\"linear\" coordinate=\"Z\"/><axis id=\"U\" axis=\"1 0 0\" coordinate=\"A\"/>"
      L"<axis id=\"V\" axis=\"0 1 0\" coordinate=\"B\"/><axis id=\"W\" axis=\"0 0 1\" coordinate=\"C\"/>");
  EXPECT_EQ(6u, c->getNumberOfAxes());
  EXPECT_EQ(L"Machine configuration has duplicate axis.",
            failureOf(L"<axis id=\"X\" actuator=\"linear\" coordinate=\"X\"/>"
                      L"<axis id=\"Y\" actuator=\"linear\" coordinate=\"Y\"/>"
                      L"<axis id=\"Z\" actuator=\"linear\" coordinate=\"Z\"/>"
                      L"<axis id=\"U\" axis=\"1 0 0\" coordinate=\"A\"/><axis id=\"V\" axis=\"0 1 0\" coordinate=\"B\"/>"
                      L"<axis id=\"W\" axis=\"0 0 1\" coordinate=\"C\"/><axis id=\"X\" actuator=\"linear\" coordinate=\"X\"/>"));
}

}  // namespace
