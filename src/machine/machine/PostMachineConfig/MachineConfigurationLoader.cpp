#include "machine/machine/PostMachineConfig/MachineConfigurationLoader.h"

#include <climits>
#include <cstring>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "machine/machine/PostMachineConfig/Axis.h"
#include "machine/machine/PostMachineConfig/MachineConfiguration.h"
#include "machine/machine/PostMachineConfig/Range.h"
#include "machine/machine/PostMachineConfig/UnitStringParser.h"
#include "machine/machine/PostMachineConfig/Vector.h"
#include "nc/MachinePartId.h"
#include "util/utility/DOM/Document.h"
#include "util/utility/DOM/Element.h"
#include "util/utility/FileInputStream.h"
#include "util/utility/FileSystem.h"
#include "util/utility/Format.h"
#include "util/utility/Messages.h"
#include "util/utility/ParseException.h"
#include "util/utility/ScriptException.h"
#include "util/utility/Variant.h"
#include "util/utility/WideStringParser.h"

namespace com {
namespace vantora {
namespace post {

namespace {

using Orvo::DOM::Element;

// A failure text, with the axis id for the texts that name one. The
// substitution is made only when the failure happens.
struct Failure {
  wchar_t const* text;
  std::wstring const* axisId = nullptr;

  std::wstring message() const {
    if (!axisId) return text;
    return Orvo::Variant::getSubstitution(text, {Orvo::Variant(*axisId)});
  }
};

[[noreturn]] __attribute__((cold)) void fail(Failure const& failure) {
  throw Orvo::ScriptException(failure.message());
}

[[noreturn]] __attribute__((cold)) void fail(wchar_t const* text) { throw Orvo::ScriptException(text); }

// Values that have no failure text of their own (the machining time ratio
// and tool change time, an axis's cyclic and tcp flags) fail with the
// reader's general one.
constexpr wchar_t kGeneralFailure[] = L"Failed to load machine configuration.";
// The most extruders a document may declare. The configuration keeps an
// offset for each, so a hostile "max_extruders" of four billion would ask
// for some hundred gigabytes; no printer comes near this many.
constexpr unsigned int kMaximumExtruders = 1024;

// Whether two names are the same. Names are short and most differ in their
// first character, so an inline loop beats a call of strcmp.
inline bool sameName(char const* a, char const* b) noexcept {
  while (*a != '\0' && *a == *b) ++a, ++b;
  return *a == *b;
}

// A name to look up among an element's attributes: its text, and a key of
// its length and first character, so that most attributes are passed over
// by one comparison of integers.
struct AttributeName {
  template <std::size_t N>
  constexpr AttributeName(char const (&name)[N]) noexcept  // NOLINT: made from literals at each call
      : text(name), length(N - 1), key(keyOf(N - 1, name[0])) {}

  static constexpr std::uint32_t keyOf(std::size_t length, char first) noexcept {
    return static_cast<std::uint32_t>(length) << 8 | static_cast<unsigned char>(first);
  }

  char const* text;
  std::size_t length;
  std::uint32_t key;
};

// The attributes of one element, taken in one walk and then looked up by
// their UTF-8 names. Values stay the document's UTF-8: most are numbers,
// words or units, which need no wide copy.
class Attributes {
public:
  explicit Attributes(Element const& element) noexcept : m_element(element) {
    m_count = element.getAttributesUtf8(m_attributes, kCapacity);
    std::size_t const count = m_count < kCapacity ? m_count : kCapacity;
    for (std::size_t i = 0; i < count; ++i) {
      char const* const name = m_attributes[i].name;
      std::size_t length = 0;
      while (name[length] != '\0') ++length;
      m_keys[i] = AttributeName::keyOf(length, name[0]);
    }
    // The keys are compared four at a time; those past the last attribute
    // are 0, which no name has (none is empty).
    for (std::size_t i = count; i % 4 != 0; ++i) m_keys[i] = 0;
  }
  Attributes(Attributes const&) = delete;
  Attributes& operator=(Attributes const&) = delete;

  // The value of the first attribute called `name`, as the document's own
  // search would find it; absent when there is none.
  std::optional<std::string_view> find(AttributeName const& name) const noexcept {
    if (m_count > kCapacity) {
      // More attributes than any element of the format has: searched by name.
      char const* const value = m_element.getAttributeUtf8(name.text);
      if (!value) return std::nullopt;
      return std::string_view(value);
    }
#if defined(__SSE2__)
    // Four keys at a time, the matches taken in document order.
    __m128i const key = _mm_set1_epi32(static_cast<int>(name.key));
    for (std::size_t i = 0; i < m_count; i += 4) {
      __m128i const keys = _mm_load_si128(reinterpret_cast<__m128i const*>(m_keys + i));
      auto matches = static_cast<unsigned int>(_mm_movemask_ps(_mm_castsi128_ps(_mm_cmpeq_epi32(keys, key))));
      for (; matches != 0; matches &= matches - 1) {
        std::size_t const j = i + static_cast<std::size_t>(__builtin_ctz(matches));
        if (std::memcmp(m_attributes[j].name, name.text, name.length) == 0)
          return std::string_view(m_attributes[j].value);
      }
    }
#else
    for (std::size_t i = 0; i < m_count; ++i)
      if (m_keys[i] == name.key && std::memcmp(m_attributes[i].name, name.text, name.length) == 0)
        return std::string_view(m_attributes[i].value);
#endif
    return std::nullopt;
  }

private:
  static constexpr std::size_t kCapacity = 32;
  Element m_element;
  std::size_t m_count = 0;
  alignas(16) std::uint32_t m_keys[kCapacity];
  Element::AttributeUtf8 m_attributes[kCapacity];
};

std::wstring widen(std::string_view utf8) {
  std::wstring wide;
  Orvo::Messages::appendUtf8AsWide(utf8, wide);
  return wide;
}

// Whether an element's name, as the document holds it, is `name`.
bool isNamed(Element const& element, char const* name) noexcept {
  return sameName(element.getNameUtf8(), name);
}

// Reads a value of one kind from UTF-8 text; false when the text is not one.
using Parser = bool (*)(std::string_view, double&);

template <UnitStringParser::Kind kind>
bool readQuantity(std::string_view text, double& value) {
  return UnitStringParser::parse(kind, text, value) == UnitStringParser::OK;
}

// A plain number, no unit.
bool readNumber(std::string_view text, double& value) {
  try {
    value = Orvo::Format::parseDouble(text);
    return true;
  } catch (Orvo::ParseException const&) {
    return false;
  }
}

constexpr Parser kLength = &readQuantity<UnitStringParser::SPATIAL>;
constexpr Parser kAngle = &readQuantity<UnitStringParser::ANGULAR>;
constexpr Parser kFeed = &readQuantity<UnitStringParser::SPATIAL_FEEDRATE>;
constexpr Parser kAngularFeed = &readQuantity<UnitStringParser::ANGULAR_FEEDRATE>;
constexpr Parser kPower = &readQuantity<UnitStringParser::POWER>;
constexpr Parser kTime = &readQuantity<UnitStringParser::TIME>;
constexpr Parser kWeight = &readQuantity<UnitStringParser::WEIGHT>;
constexpr Parser kSpindleSpeed = &readQuantity<UnitStringParser::SPINDLE_SPEED>;
constexpr Parser kNumber = &readNumber;

// A value whose text the parser refuses, or that does not fit a double (a
// huge number times its unit, "nan"), is invalid.
double parseWith(Parser parse, std::string_view text, Failure const& invalid) {
  double value = 0;
  if (!parse(text, value) || !std::isfinite(value)) fail(invalid);
  return value;
}

// "yes" or "no", nothing else.
std::optional<bool> yesNo(Attributes const& a, AttributeName const& name, Failure const& invalid) {
  std::optional<std::string_view> const text = a.find(name);
  if (!text) return std::nullopt;
  if (*text == "yes") return true;
  if (*text == "no") return false;
  fail(invalid);
}

std::optional<unsigned int> unsignedValue(Attributes const& a, AttributeName const& name, Failure const& invalid) {
  std::optional<std::string_view> const text = a.find(name);
  if (!text) return std::nullopt;
  try {
    return Orvo::Format::parseUnsigned(*text);
  } catch (Orvo::ParseException const&) {
    fail(invalid);
  }
}

// A number in the kind that `parse` reads, refused when negative unless
// `negative` is null.
std::optional<double> quantity(Attributes const& a, AttributeName const& name, Parser parse, Failure const& invalid,
                               Failure const* negative) {
  std::optional<std::string_view> const text = a.find(name);
  if (!text) return std::nullopt;
  double const value = parseWith(parse, *text, invalid);
  if (negative && value < 0) fail(*negative);
  return value;
}

std::optional<double> quantity(Attributes const& a, AttributeName const& name, Parser parse, Failure const& invalid,
                               Failure const& negative) {
  return quantity(a, name, parse, invalid, &negative);
}

// The words of a text between spaces: the first N of them into `words`;
// returns how many there are.
template <std::size_t N>
std::size_t splitWords(std::string_view text, std::string_view (&words)[N]) noexcept {
  std::size_t count = 0;
  std::size_t i = 0;
  while (i < text.size()) {
    while (i < text.size() && Orvo::WideStringParser::isSpace(text[i])) ++i;
    std::size_t const start = i;
    while (i < text.size() && !Orvo::WideStringParser::isSpace(text[i])) ++i;
    if (i > start) {
      if (count < N) words[count] = text.substr(start, i - start);
      ++count;
    }
  }
  return count;
}

// Three values separated by spaces, each read by `parse`. A missing or bad
// value is invalid; a fourth is one too many.
Vector threeValues(std::string_view text, Parser parse, Failure const& invalid, Failure const& tooMany) {
  std::string_view values[3];
  std::size_t const count = splitWords(text, values);
  double v[3] = {0, 0, 0};
  for (std::size_t i = 0; i < 3; ++i) {
    if (i >= count) fail(invalid);
    v[i] = parseWith(parse, values[i], invalid);
  }
  if (count > 3) fail(tooMany);
  return Vector(v[0], v[1], v[2]);
}

std::optional<Vector> vector(Attributes const& a, AttributeName const& name, Failure const& invalid,
                             Failure const& tooMany) {
  std::optional<std::string_view> const text = a.find(name);
  if (!text) return std::nullopt;
  return threeValues(*text, kLength, invalid, tooMany);
}

// The text of a leaf element such as <vendor>Acme</vendor>.
std::wstring textOf(Element const& element) { return element.getTextContent(); }

// A number held as the text of the child element `name` of `parent`, with
// spaces around it allowed; absent when there is no such child.
std::optional<double> childNumber(Element const& parent, wchar_t const* name, Failure const& invalid) {
  Element const child = parent.getFirstChildElement(name);
  if (child.isNull()) return std::nullopt;
  // Back to UTF-8 for the parser: only ASCII can be part of a number, and
  // ASCII comes through the round trip unchanged.
  std::string const text = Orvo::Messages::wideToUtf8(textOf(child));
  std::string_view words[1];
  if (splitWords(text, words) != 1) fail(invalid);
  return parseWith(kNumber, words[0], invalid);
}

// One axis element, read in full, under the slot of its id. The axis is
// made in place: every Axis made or copied takes the program-wide lock.
struct AxisElement {
  AxisElement(int slot, bool table, Vector const& direction, Vector const& offset, int coordinate,
              Range const& range)
      : slot(slot), axis(table, direction, offset, coordinate, range) {}

  int slot;
  Axis axis;
};

class Reader {
public:
  explicit Reader(MachineConfiguration& configuration) : m_configuration(configuration) {
    // As many as a configuration takes, so that no axis is copied on the way.
    m_axes.reserve(6);
  }

  void read(Element const& root) {
    for (Element child = root.getFirstChildElement(); child; child = child.getNextSiblingElement())
      readChild(child);

    // The axes, in file order, each id once.
    for (std::size_t i = 0; i < m_axes.size(); ++i)
      for (std::size_t j = 0; j < i; ++j)
        if (m_axes[i].slot == m_axes[j].slot) fail(L"Machine configuration has duplicate axis.");
    for (AxisElement& element : m_axes) m_configuration.addAxis(std::move(element.axis));

    for (Element const& additive : m_additive) readAdditive(additive);

    // The home position goes to the axes X, Y and Z, so it waits for them.
    if (m_home[0]) m_configuration.setHomePositionX(toXYZSetter(m_configuration.getAxisX(), *m_home[0]));
    if (m_home[1]) m_configuration.setHomePositionY(toXYZSetter(m_configuration.getAxisY(), *m_home[1]));
    if (m_home[2]) m_configuration.setHomePositionZ(toXYZSetter(m_configuration.getAxisZ(), *m_home[2]));
  }

private:
  // Lengths are parsed to millimetres; the setters take the script's unit
  // and map it back, so each length is first mapped out by the consumer
  // whose setter takes it. Feeds are lengths per minute and go the same way.
  static double toXYZSetter(UnitConsumer const& consumer, double millimetres) noexcept {
    return consumer.mapToExternalXYZ(millimetres);
  }
  double toSetter(double millimetres) const noexcept { return toXYZSetter(m_configuration, millimetres); }
  Vector toSetter(Vector const& millimetres) const noexcept {
    return m_configuration.mapToExternalXYZ(millimetres);
  }

  void readChild(Element const& element) {
    char const* const name = element.getNameUtf8();
    MachineConfiguration& c = m_configuration;
    auto const is = [name](char const* wanted) { return sameName(name, wanted); };
    // By the first letter, then the whole name: one element in four is an
    // axis, and most of the rest share no first letter.
    switch (name[0]) {
      case 'a':
        if (is("axis")) {
          readAxis(element);
        } else if (is("additive")) {
          // Read after the axes, every one in file order.
          m_additive.push_back(element);
        }
        break;
      case 'c':
        if (is("control")) {
          c.setControl(textOf(element));
        } else if (is("capabilities")) {
          readCapabilities(element);
        } else if (is("capacities")) {
          readCapacities(element);
        } else if (is("coolant")) {
          readCoolant(element);
        }
        break;
      case 'd':
        if (is("description")) {
          c.setDescription(textOf(element));
        } else if (is("dimensions")) {
          readDimensions(element);
        }
        break;
      case 'h':
        if (is("home")) readHome(element);
        break;
      case 'm':
        if (is("model")) {
          c.setModel(textOf(element));
        } else if (is("machining")) {
          readMachining(element);
        } else if (is("machiningTime")) {
          readMachiningTime(element);
        } else if (is("multiAxis")) {
          readMultiAxis(element);
        }
        break;
      case 'p':
        if (is("post")) readPost(element);
        break;
      case 's':
        if (is("simulation")) {
          readSimulation(element);
        } else if (is("spindle")) {
          readSpindle(element);
        }
        break;
      case 't':
        if (is("tooling")) readTooling(element);
        break;
      case 'v':
        if (is("vendor")) {
          c.setVendor(textOf(element));
        } else if (is("vendorUrl")) {
          c.setVendorUrl(textOf(element));
        }
        break;
      default:
        break;
    }
    // Everything else is passed over: the elements that are accepted and
    // dropped ("png128", "corvex", "custom", "mtk",
    // "controllerConfigurations", "machine_connector") and unknown ones.
  }

  void readPost(Element const& element) {
    // "postProperties", "setupSheetProperties" and "outputFolder" are
    // accepted and dropped, like any other child.
    for (Element child = element.getFirstChildElement(); child; child = child.getNextSiblingElement()) {
      if (isNamed(child, "postProcessor")) {
        m_configuration.setPostProcessor(textOf(child));
      } else if (isNamed(child, "setupSheet")) {
        m_configuration.setSetupSheet(textOf(child));
      }
    }
  }

  void readSimulation(Element const& element) {
    Attributes const a(element);
    if (auto const wcs = vector(a, "wcs", {L"Invalid simulation WCS in machine configuration."},
                                {L"Too many coordinates in simulation WCS in machine configuration."}))
      m_configuration.setWCS(toSetter(*wcs));
    if (auto const v = yesNo(a, "retractOnIndexing", {L"Invalid retract on indexing option in machine configuration."}))
      m_configuration.setRetractOnIndexing(*v);
    if (auto const v = yesNo(a, "shortestAngularRotation",
                             {L"Invalid shortest angular rotation option in machine configuration."}))
      m_configuration.setShortestAngularRotation(*v);
    for (Element child = element.getFirstChildElement(); child; child = child.getNextSiblingElement())
      if (isNamed(child, "machineAssembly")) m_configuration.setMachineAssembly(textOf(child));
  }

  void readDimensions(Element const& element) {
    Attributes const a(element);
    MachineConfiguration& c = m_configuration;
    Parser const length = kLength;
    if (auto const v = quantity(a, "width", length, {L"Invalid width in machine configuration."},
                                {L"Width cannot be negative in machine configuration."}))
      c.setWidth(toSetter(*v));
    if (auto const v = quantity(a, "depth", length, {L"Invalid depth in machine configuration."},
                                {L"Depth cannot be negative in machine configuration."}))
      c.setDepth(toSetter(*v));
    if (auto const v = quantity(a, "height", length, {L"Invalid height in machine configuration."},
                                {L"Height cannot be negative in machine configuration."}))
      c.setHeight(toSetter(*v));
    if (auto const v = quantity(a, "weight", kWeight,
                                {L"Invalid weight in machine configuration."},
                                {L"Weight cannot be negative in machine configuration."}))
      c.setWeight(*v);
  }

  void readCapabilities(Element const& element) {
    Attributes const a(element);
    MachineConfiguration& c = m_configuration;
    Parser const feed = kFeed;
    if (auto const v = quantity(a, "maximumFeedrate", feed, {L"Invalid maximum feed rate in machine configuration."},
                                {L"Maximum feed rate cannot be negative in machine configuration."}))
      c.setMaximumFeedrate(toSetter(*v));
    if (auto const v = quantity(a, "maximumCuttingFeedrate", feed,
                                {L"Invalid maximum cutting feed rate in machine configuration."},
                                {L"Maximum cutting feed rate cannot be negative in machine configuration."}))
      c.setMaximumCuttingFeedrate(toSetter(*v));
    if (auto const v = unsignedValue(a, "maximumBlockProcessingSpeed",
                                     {L"Invalid maximum block processing speed in machine configuration."}))
      c.setMaximumBlockProcessingSpeed(*v);
    if (auto const v = unsignedValue(a, "workOffsets", {L"Invalid number of work offsets in machine configuration."}))
      c.setNumberOfWorkOffsets(*v);
  }

  void readCapacities(Element const& element) {
    Attributes const a(element);
    MachineConfiguration& c = m_configuration;
    Parser const length = kLength;
    if (auto const v = quantity(a, "width", length, {L"Invalid width capacity in machine configuration."},
                                {L"Width capacity cannot be negative in machine configuration."}))
      c.setPartMaximumX(toSetter(*v));
    if (auto const v = quantity(a, "depth", length, {L"Invalid depth capacity in machine configuration."},
                                {L"Depth capacity cannot be negative in machine configuration."}))
      c.setPartMaximumY(toSetter(*v));
    if (auto const v = quantity(a, "height", length, {L"Invalid height capacity in machine configuration."},
                                {L"Height capacity cannot be negative in machine configuration."}))
      c.setPartMaximumZ(toSetter(*v));
    if (auto const v = quantity(a, "weight", kWeight,
                                {L"Invalid weight capacity in machine configuration."},
                                {L"Weight capacity cannot be negative in machine configuration."}))
      c.setWeightCapacity(*v);
  }

  void readTooling(Element const& element) {
    Attributes const a(element);
    MachineConfiguration& c = m_configuration;
    if (auto const v = yesNo(a, "toolChanger", {L"Invalid tool changer option in machine configuration."}))
      c.setToolChanger(*v);
    if (auto const v = yesNo(a, "toolPreload", {L"Invalid tool preload option in machine configuration."}))
      c.setToolPreload(*v);
    if (auto const v = unsignedValue(a, "numberOfTools", {L"Invalid number of tools in machine configuration."}))
      c.setNumberOfTools(*v);
    Parser const length = kLength;
    if (auto const v = quantity(a, "maximumToolLength", length,
                                {L"Invalid maximum tool length in machine configuration."},
                                {L"Maximum tool length cannot be negative in machine configuration."}))
      c.setMaximumToolLength(toSetter(*v));
    if (auto const v = quantity(a, "maximumToolDiameter", length,
                                {L"Invalid maximum tool diameter in machine configuration."},
                                {L"Maximum tool diameter cannot be negative in machine configuration."}))
      c.setMaximumToolDiameter(toSetter(*v));
    if (auto const v = quantity(a, "maximumToolWeight", kWeight,
                                {L"Invalid maximum tool weight in machine configuration."},
                                {L"Maximum tool weight cannot be negative in machine configuration."}))
      c.setMaximumToolWeight(*v);
  }

  void readMachining(Element const& element) {
    Attributes const a(element);
    MachineConfiguration& c = m_configuration;
    if (auto const v = yesNo(a, "milling", {L"Invalid milling capability option in machine configuration."}))
      c.setMilling(*v);
    if (auto const v = yesNo(a, "turning", {L"Invalid turning capability option in machine configuration."}))
      c.setTurning(*v);
    if (auto const v = yesNo(a, "wire", {L"Invalid wire capability option in machine configuration."}))
      c.setWire(*v);
    if (auto const v = yesNo(a, "jet", {L"Invalid jet capability option in machine configuration."}))
      c.setJet(*v);
    if (auto const v = yesNo(a, "inspection", {L"Invalid inspection capability option in machine configuration."}))
      c.setInspection(*v);
  }

  void readMachiningTime(Element const& element) {
    Attributes const a(element);
    if (auto const v = quantity(a, "ratio", kNumber, {kGeneralFailure},
                                {L"Feed rate ratio cannot be negative in machine configuration."}))
      m_configuration.setFeedrateRatio(*v);
    if (auto const v = quantity(a, "toolChangeTime", kTime, {kGeneralFailure},
                                {L"Tool change time cannot be negative in machine configuration."}))
      m_configuration.setToolChangeTime(*v);
  }

  void readCoolant(Element const& element) {
    Attributes const a(element);
    std::optional<std::string_view> const options = a.find("options");
    if (!options) return;
    // The names in the order of the coolant modes from COOLANT_FLOOD on. The
    // attribute lists every supported coolant, so the others are not.
    static char const* const kNames[] = {
        "FLOOD", "MIST", "THROUGH_TOOL", "AIR", "AIR_THROUGH_TOOL", "SUCTION", "FLOOD_MIST",
        "FLOOD_THROUGH_TOOL",
    };
    std::vector<bool>& coolants = m_configuration.getCoolants();
    coolants.assign(MachineConfiguration::NUMBER_OF_COOLANT_MODES, false);
    std::size_t start = 0;
    while (start <= options->size()) {
      std::size_t end = options->find(' ', start);
      if (end == std::string_view::npos) end = options->size();
      std::string_view const name = options->substr(start, end - start);
      for (std::size_t i = 0; i < sizeof kNames / sizeof kNames[0]; ++i)
        if (name == kNames[i]) coolants[MachineConfiguration::COOLANT_FLOOD + i] = true;
      start = end + 1;
    }
  }

  void readHome(Element const& element) {
    Attributes const a(element);
    Failure const invalid{L"Invalid home position in machine configuration."};
    Parser const length = kLength;
    if (auto const v = quantity(a, "x", length, invalid, nullptr)) m_home[0] = v;
    if (auto const v = quantity(a, "y", length, invalid, nullptr)) m_home[1] = v;
    if (auto const v = quantity(a, "z", length, invalid, nullptr)) m_home[2] = v;
  }

  void readSpindle(Element const& element) {
    Attributes const a(element);
    MachineConfiguration& c = m_configuration;
    if (std::optional<std::string_view> const text = a.find("axis")) {
      // A direction: plain numbers, no unit and no unit mapping.
      Vector const axis = threeValues(*text, kNumber, {L"Invalid spindle axis in machine configuration."},
                                      {L"Too many coordinates in spindle axis in machine configuration."});
      // Scaled to its largest component first, so that neither a tiny nor a
      // huge vector is lost to the squares of its length.
      double const largest = axis.getAbsolute().getMaximum();
      if (!(largest > 0)) fail(L"Spindle axis cannot be zero in machine configuration.");
      c.setSpindleAxis(Vector(axis.x / largest, axis.y / largest, axis.z / largest).getNormalized());
    }
    if (auto const v = quantity(a, "maximumPower", kPower,
                                {L"Invalid maximum spindle power in machine configuration."},
                                {L"Maximum spindle power cannot be negative in machine configuration."}))
      c.setMaximumSpindlePower(*v);
    if (auto const v = quantity(a, "maximumSpeed", kSpindleSpeed,
                                {L"Invalid maximum spindle speed in machine configuration."},
                                {L"Maximum spindle speed cannot be negative in machine configuration."}))
      c.setMaximumSpindleSpeed(*v);
    if (auto const v = quantity(a, "minimumSpeed", kSpindleSpeed,
                                {L"Invalid minimum spindle speed in machine configuration."},
                                {L"Minimum spindle speed cannot be negative in machine configuration."}))
      c.setMinimumSpindleSpeed(*v);
    if (std::optional<std::string_view> const chuck = a.find("collectChuck")) c.setCollectChuck(widen(*chuck));
    for (Element child = element.getFirstChildElement(); child; child = child.getNextSiblingElement())
      if (isNamed(child, "description")) c.setSpindleDescription(textOf(child));
  }

  void readMultiAxis(Element const& element) {
    Attributes const a(element);
    MachineConfiguration& c = m_configuration;
    Parser const length = kLength;
    Parser const feed = kFeed;
    Parser const angle = kAngle;

    if (auto const v = yesNo(a, "virtualToolTip", {L"Invalid multi-axis virtual tool tip option in machine configuration."}))
      c.setVirtualTooltip(*v);

    // Feed: the attributes that are absent keep the values there are.
    MultiAxisFeedrate const& current = c.getMultiAxisFeedrate();
    int mode = current.getFeedMode();
    double maximum = current.getMaximumFeedrate();
    double tolerance = current.getDPMOutputTolerance();
    double bpwRatio = current.getDPMPulseWeight();
    bool feedGiven = false;
    if (std::optional<std::string_view> const method = a.find("feedrateMethod")) {
      if (*method == "fpm") {
        mode = MultiAxisFeedrate::FEED_FPM;
      } else if (*method == "inverse") {
        mode = MultiAxisFeedrate::FEED_INVERSE_TIME;
      } else if (*method == "dpm") {
        mode = MultiAxisFeedrate::FEED_DPM;
      } else {
        fail(L"Invalid multi-axis feedrate method option in machine configuration.");
      }
      feedGiven = true;
    }
    if (auto const v = quantity(a, "maximumFeedrate", feed, {L"Invalid multi-axis maximum feedrate in machine configuration."},
                                {L"Multi-axis maximum feedrate cannot be negative in machine configuration."})) {
      maximum = toSetter(*v);
      feedGiven = true;
    }
    // The type's words belong to the feed mode: seconds and minutes to
    // inverse time, standard and combination to DPM. Feed per minute has
    // no type, so any of the four is taken there and has no effect.
    int type = mode == MultiAxisFeedrate::FEED_INVERSE_TIME ? static_cast<int>(current.getInverseTimeUnits())
                                                            : static_cast<int>(current.getDPMType());
    if (std::optional<std::string_view> const text = a.find("feedrateType")) {
      bool const inverse = *text == "seconds" || *text == "minutes";
      bool const dpm = *text == "standard" || *text == "combination";
      if ((mode == MultiAxisFeedrate::FEED_INVERSE_TIME && !inverse) || (mode == MultiAxisFeedrate::FEED_DPM && !dpm) ||
          (!inverse && !dpm)) {
        fail(L"Invalid multi-axis feedrate type option in machine configuration.");
      }
      type = (*text == "minutes" || *text == "combination") ? 1 : 0;
      feedGiven = true;
    }
    if (auto const v = quantity(a, "outputTolerance", length,
                                {L"Invalid multi-axis feedrate output tolerance in machine configuration."},
                                {L"Multi-axis feedrate output tolerance cannot be negative in machine configuration."})) {
      tolerance = toSetter(*v);
      feedGiven = true;
    }
    if (auto const v = quantity(a, "bpwRatio", kNumber, {L"Invalid multi-axis bpw ratio in machine configuration."},
                                {L"Multi-axis bpw ratio cannot be negative in machine configuration."})) {
      bpwRatio = *v;
      feedGiven = true;
    }
    if (feedGiven) c.setMultiAxisFeedrate(mode, maximum, type, tolerance, bpwRatio);

    // Retract and reconfigure.
    if (auto const v = yesNo(a, "reconfigure", {L"Invalid multi-axis reconfigure option in machine configuration."}))
      c.setReconfigure(*v);
    if (auto const v = vector(a, "stockExpansion", {L"Invalid stock expansion vector in machine configuration."},
                              {L"Too many values for stock expansion in machine configuration."}))
      c.setRewindStockExpansion(toSetter(*v));
    if (auto const v = quantity(a, "safeRetractDistance", length,
                                {L"Invalid multi-axis safe retract distance in machine configuration."},
                                {L"Multi-axis safe retract distance cannot be negative in machine configuration."}))
      c.setSafeRetractDistance(toSetter(*v));
    if (auto const v = quantity(a, "safeRetractFeedrate", feed,
                                {L"Invalid multi-axis safe retract feedrate in machine configuration."},
                                {L"Multi-axis safe retract feedrate cannot be negative in machine configuration."}))
      c.setSafeRetractFeedrate(toSetter(*v));
    if (auto const v = quantity(a, "safePlungeFeedrate", feed,
                                {L"Invalid multi-axis safe plunge feedrate in machine configuration."},
                                {L"Multi-axis safe plunge feedrate cannot be negative in machine configuration."}))
      c.setSafePlungeFeedrate(toSetter(*v));

    // Singularities: the same, through the one setter of the group.
    MultiAxisSingularity const& singularity = c.getSingularity();
    bool adjust = singularity.getAdjust();
    int method = singularity.getMethod();
    double cone = singularity.getCone();
    double singularityAngle = singularity.getAngle();
    double singularityTolerance = c.mapToExternalXYZ(singularity.getTolerance());
    double linearizationTolerance = c.mapToExternalXYZ(singularity.getLinearizationTolerance());
    bool singularityGiven = false;
    if (auto const v = yesNo(a, "adjust", {L"Invalid multi-axis singularity adjust option in machine configuration."})) {
      adjust = *v;
      singularityGiven = true;
    }
    if (std::optional<std::string_view> const text = a.find("method")) {
      if (*text == "off") {
        method = MultiAxisSingularity::METHOD_OFF;
      } else if (*text == "linearize linear") {
        method = MultiAxisSingularity::METHOD_LINEARIZE_LINEAR;
      } else if (*text == "linearize rotary") {
        method = MultiAxisSingularity::METHOD_LINEARIZE_ROTARY;
      } else {
        fail(L"Invalid multi-axis singularity method option in machine configuration.");
      }
      singularityGiven = true;
    }
    if (auto const v = quantity(a, "cone", angle, {L"Invalid multi-axis singularity cone in machine configuration."},
                                {L"Multi-axis singularity cone cannot be negative in machine configuration."})) {
      cone = *v;
      singularityGiven = true;
    }
    if (auto const v = quantity(a, "angle", angle, {L"Invalid multi-axis singularity angle in machine configuration."},
                                {L"Multi-axis singularity angle cannot be negative in machine configuration."})) {
      singularityAngle = *v;
      singularityGiven = true;
    }
    if (auto const v = quantity(a, "tolerance", length,
                                {L"Invalid multi-axis singularity tolerance in machine configuration."},
                                {L"Multi-axis singularity tolerance cannot be negative in machine configuration."})) {
      singularityTolerance = toSetter(*v);
      singularityGiven = true;
    }
    if (auto const v = quantity(a, "linearizationTolerance", length,
            {L"Invalid multi-axis singularity linearization tolerance in machine configuration."},
            {L"Multi-axis singularity linearization tolerance cannot be negative in machine configuration."})) {
      linearizationTolerance = toSetter(*v);
      singularityGiven = true;
    }
    if (singularityGiven)
      c.setSingularity(adjust, method, cone, singularityAngle, singularityTolerance, linearizationTolerance);
  }

  void readAxis(Element const& element) {
    Attributes const a(element);
    static char const* const kIds[] = {"X", "Y", "Z", "U", "V", "W"};
    static wchar_t const* const kWideIds[] = {L"X", L"Y", L"Z", L"U", L"V", L"W"};
    int slot = -1;
    if (std::optional<std::string_view> const text = a.find("id"))
      for (int i = 0; i < 6; ++i)
        if (*text == kIds[i]) slot = i;
    if (slot < 0) fail(L"Invalid Axis in machine configuration.");
    std::wstring const id = kWideIds[slot];
    auto const failure = [&id](wchar_t const* text) { return Failure{text, &id}; };

    // X, Y and Z start along their own unit vectors, U, V and W nowhere.
    Vector direction;
    if (slot < 3) direction.setCoordinate(static_cast<unsigned int>(slot), 1);

    std::optional<std::string_view> const nameText = a.find("name");
    std::wstring name = nameText ? widen(*nameText) : std::wstring(L"unspecified");

    bool linear = false;  // an axis is rotational unless it says otherwise
    if (std::optional<std::string_view> const text = a.find("actuator")) {
      if (*text == "linear") {
        linear = true;
      } else if (*text != "rotational") {
        fail(failure(L"Invalid actuator option for axis '%1' in machine configuration."));
      }
    }

    Vector offset;
    if (auto const v = vector(a, "offset", failure(L"Invalid offset vector for axis '%1' in machine configuration."),
                              failure(L"Too many coordinates in offset vector for axis '%1' in machine configuration.")))
      offset = *v;

    double displacement = 0;
    if (auto const v = quantity(a, "displacement", kLength,
                                failure(L"Invalid displacement for axis '%1' in machine configuration."), nullptr))
      displacement = *v;

    int coordinate = -1;
    if (std::optional<std::string_view> const text = a.find("coordinate")) coordinate = readCoordinate(*text, failure);

    // The id in this text is "X" whatever the axis: the words are kept so.
    if (auto const v = vector(a, "axis", failure(L"Invalid axis vector for axis '%1' in machine configuration."),
                              {L"Too many coordinates in axis vector for axis 'X' in machine configuration."}))
      direction = *v;

    bool table = false;
    if (std::optional<std::string_view> const text = a.find("link")) {
      if (*text == "table") {
        table = true;
      } else if (*text != "head") {
        fail(failure(L"Invalid link option for axis '%1' in machine configuration."));
      }
    }

    // Positions and steps are angles on a rotational axis and lengths on a
    // linear one; so are speeds, per minute.
    Parser const position = linear ? kLength : kAngle;
    Parser const speed =
        linear ? kFeed : kAngularFeed;

    double resolution = 0;
    if (auto const v = quantity(a, "resolution", position,
                                failure(L"Invalid resolution for axis '%1' in machine configuration."),
                                failure(L"Resolution cannot be negative for axis '%1' in machine configuration.")))
      resolution = *v;

    std::optional<double> const homePosition =
        quantity(a, "homePosition", position, failure(L"Invalid home position for axis '%1' in machine configuration."),
                 nullptr);

    int preference = 0;
    if (std::optional<std::string_view> const text = a.find("preference")) {
      if (*text == "positive") {
        preference = 1;
      } else if (*text == "negative") {
        preference = -1;
      } else if (*text != "dont care") {
        fail(failure(L"Invalid preference option for axis '%1' in machine configuration."));
      }
    }

    double maximumFeed = 0;
    if (auto const v = quantity(a, "maximumFeed", speed,
                                failure(L"Invalid maximum feed rate for axis '%1' in machine configuration."),
                                failure(L"Maximum feed rate cannot be negative for axis '%1' in machine configuration.")))
      maximumFeed = *v;
    double rapidFeed = 0;
    if (auto const v = quantity(a, "rapidFeed", speed,
                                failure(L"Invalid rapid feed rate for axis '%1' in machine configuration."),
                                failure(L"Rapid feed rate cannot be negative for axis '%1' in machine configuration.")))
      rapidFeed = *v;

    bool cyclic = false;
    if (auto const v = yesNo(a, "cyclic", {kGeneralFailure})) cyclic = *v;
    bool tcp = true;
    if (auto const v = yesNo(a, "tcp", {kGeneralFailure})) tcp = *v;

    Range range;  // "unbound" and an absent range leave it a non-range
    if (std::optional<std::string_view> const text = a.find("range"); text && *text != "unbound") {
      Failure const invalid = failure(L"Invalid range for axis '%1' in machine configuration.");
      std::string_view limits[2];
      if (splitWords(*text, limits) != 2) fail(invalid);
      double const first = parseWith(position, limits[0], invalid);
      double const second = parseWith(position, limits[1], invalid);
      range = Range(first, second, linear ? Range::LINEAR : Range::ROTATIONAL);
    }

    int reset = 0;
    if (std::optional<std::string_view> const text = a.find("reset")) {
      static char const* const kResets[] = {"previous", "operation", "rewind", "both"};
      reset = -1;
      for (int i = 0; i < 4; ++i)
        if (*text == kResets[i]) reset = i;
      if (reset < 0) fail(failure(L"Invalid reset option for axis '%1' in machine configuration."));
    }

    // The Axis is made with its range, so that the range is in place before
    // the cyclic flag that depends on it. A new axis is in millimetre mode,
    // where the mapping of its lengths to its setters changes nothing; it is
    // kept so that the setters always get the script's unit.
    Axis& axis = m_axes.emplace_back(slot, table, direction, offset, coordinate, range).axis;
    axis.setOffset(axis.mapToExternalXYZ(offset));
    // The constructor made the axis rotational, which is what setCyclic
    // asks for; the actuator comes later.
    if (!range.isNonRange()) axis.setCyclic(cyclic);
    // The part id is the name in UTF-8: the document's own bytes when they
    // are well-formed, which is what the name encodes back to.
    if (nameText && *nameText != "unspecified") {
      axis.setMachinePartId(Orvo::MachinePartId(Orvo::Messages::isValidUtf8(*nameText)
                                                    ? std::string(*nameText)
                                                    : Orvo::Messages::wideToUtf8(name)));
    }
    axis.setName(std::move(name));
    axis.setActuator(linear ? Axis::LINEAR : Axis::ROTATIONAL);
    auto const lengthOrAngle = [&](double value) { return linear ? axis.mapToExternalXYZ(value) : value; };
    axis.setResolution(lengthOrAngle(resolution));
    if (homePosition) axis.setHomePosition(lengthOrAngle(*homePosition));
    axis.setMaximumFeed(lengthOrAngle(maximumFeed));
    axis.setRapidFeed(lengthOrAngle(rapidFeed));
    axis.setPreference(preference);
    axis.setDisplacement(lengthOrAngle(displacement));
    axis.setReset(reset);
    // A linear axis has no tool centre point to follow it (and refuses the
    // flag), so only a rotational one takes it.
    if (!linear) axis.setTCPEnabled(tcp);
    // The read ends here and the axis with it.
    if (!axis.isEnabled()) fail(L"Invalid axis in machine configuration.");
  }

  template <typename MakeFailure>
  static int readCoordinate(std::string_view text, MakeFailure const& failure) {
    if (text.size() == 1) {
      switch (text[0]) {
        case 'X': case 'x': case 'A': case 'a': return 0;
        case 'Y': case 'y': case 'B': case 'b': return 1;
        case 'Z': case 'z': case 'C': case 'c': return 2;
        default: break;
      }
    }
    try {
      // A number beyond C makes an axis that is not enabled, which the axis
      // check refuses; beyond the range of int it wraps to one.
      return static_cast<int>(Orvo::Format::parseUnsigned(text));
    } catch (Orvo::ParseException const&) {
      fail(failure(L"Invalid coordinate for axis '%1' in machine configuration."));
    }
  }

  void readAdditive(Element const& element) {
    MachineConfiguration& c = m_configuration;
    Attributes const a(element);
    // Plain numbers, as the additive setters take them.
    Failure const center{L"Invalid additive center position in machine configuration."};
    if (auto const v = quantity(a, "centerx", kNumber, center, nullptr)) c.setCenterPositionX(*v);
    if (auto const v = quantity(a, "centery", kNumber, center, nullptr)) c.setCenterPositionY(*v);
    if (auto const v = quantity(a, "centerz", kNumber, center, nullptr)) c.setCenterPositionZ(*v);

    Element const fff = element.getFirstChildElement(L"fff_settings");
    if (fff.isNull()) return;
    c.setAdditiveFFF(true);
    Failure const invalidExtruders{L"Invalid number of extruders in machine configuration."};
    if (auto const v = unsignedValue(Attributes(fff), "max_extruders", invalidExtruders)) {
      if (*v > kMaximumExtruders) fail(invalidExtruders);
      c.setNumberExtruders(*v);
    }

    if (Element const offsets = fff.getFirstChildElement(L"extruder_offsets")) {
      Failure const invalid{L"Invalid additive extruder offset in machine configuration."};
      unsigned int number = 0;
      for (Element item = offsets.getFirstChildElement(); item; item = item.getNextSiblingElement()) {
        if (!isNamed(item, "item")) continue;
        ++number;
        if (auto const v = childNumber(item, L"x", invalid)) c.setExtruderOffsetX(number, *v);
        if (auto const v = childNumber(item, L"y", invalid)) c.setExtruderOffsetY(number, *v);
        if (auto const v = childNumber(item, L"z", invalid)) c.setExtruderOffsetZ(number, *v);
      }
    }
    if (Element const home = fff.getFirstChildElement(L"home_position")) {
      Failure const invalid{L"Invalid additive home position in machine configuration."};
      if (auto const v = childNumber(home, L"x", invalid)) c.setHomePositionX(*v);
      if (auto const v = childNumber(home, L"y", invalid)) c.setHomePositionY(*v);
      if (auto const v = childNumber(home, L"z", invalid)) c.setHomePositionZ(*v);
    }
    // Its attribute "type" is the writer's and is not read.
    if (Element const park = fff.getFirstChildElement(L"park_position")) {
      Failure const invalid{L"Invalid additive park position in machine configuration."};
      if (auto const v = childNumber(park, L"x", invalid)) c.setParkPositionX(*v);
      if (auto const v = childNumber(park, L"y", invalid)) c.setParkPositionY(*v);
      if (auto const v = childNumber(park, L"z", invalid)) c.setParkPositionZ(*v);
    }
  }

  MachineConfiguration& m_configuration;
  std::vector<AxisElement> m_axes;
  std::vector<Element> m_additive;
  std::optional<double> m_home[3];
};

}  // namespace

MachineConfigurationLoader::~MachineConfigurationLoader() = default;

std::unique_ptr<MachineConfiguration> MachineConfigurationLoader::load(std::wstring const& path, unsigned int depth) {
  if (!Orvo::FileSystem::isFile(path)) fail(L"File not found.");
  std::string bytes;
  {
    Orvo::FileInputStream input(path);
    if (!input.isOpen()) fail(kGeneralFailure);
    bytes = input.readAll();
    if (!input.error().empty()) fail(kGeneralFailure);
  }
  Orvo::DOM::Document document;
  if (!document.create()) fail(L"Failed to create DOM document.");
  try {
    document.loadFromUtf8(bytes);
  } catch (Orvo::ParseException const& e) {
    // The parser's own words, which end with the line and column.
    throw Orvo::ScriptException(Orvo::Messages::utf8ToWide(e.what()));
  }
  return read(document.getRoot(), path, depth);
}

std::unique_ptr<MachineConfiguration> MachineConfigurationLoader::read(Element const& root,
                                                                       std::optional<std::wstring> const& path,
                                                                       unsigned int depth) {
  if (root.isNull() || !isNamed(root, "machine")) fail(L"Not a valid machine configuration.");
  if (char const* const version = root.getAttributeUtf8("version"); version && std::strcmp(version, "1.0") != 0)
    fail(L"Unsupported version of machine configuration.");
  if (depth < UINT_MAX) ++depth;

  std::unique_ptr<MachineConfiguration> configuration;
  if (path) {
    if (std::optional<std::wstring> const inherit = root.getAttribute(L"inherit")) {
      if (depth > MAXIMUM_INHERITANCE_DEPTH) fail(L"Maximum inheritance recursion exceeded.");
      std::wstring const inherited =
          Orvo::FileSystem::getCombinedPath(Orvo::FileSystem::getFolderFromPath(*path), *inherit);
      configuration = load(inherited, depth);
      if (!configuration) fail(L"Failed to inherit machine configuration.");
    }
  }
  // Inherited axes go; every other inherited value stays until this file
  // sets it. A new configuration starts without them.
  if (configuration) {
    configuration->removeAllAxes();
  } else {
    configuration.reset(new MachineConfiguration(MachineConfiguration::WithoutAxes{}));
  }
  Reader(*configuration).read(root);
  return configuration;
}

}  // namespace post
}  // namespace vantora
}  // namespace com
