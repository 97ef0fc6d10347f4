#include "StrictStreamCheck.h"

#include <locale.h>

#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <optional>

namespace mtkit_tool {
namespace {

enum class Kind { INT, UNSIGNED, DOUBLE, STRING, SECTION };

struct Field {
  char const* name;
  Kind kind;
};

/// A record with a fixed list of fields after its version digit.
struct Record {
  std::string_view keyword;
  std::vector<Field> fields;
};

Field const kX{"x", Kind::DOUBLE}, kY{"y", Kind::DOUBLE}, kZ{"z", Kind::DOUBLE};
Field const kI{"i", Kind::DOUBLE}, kJ{"j", Kind::DOUBLE}, kK{"k", Kind::DOUBLE};
Field const kFeed{"feed", Kind::DOUBLE}, kFlags{"flags", Kind::UNSIGNED};

std::vector<Record> const& records() {
  static std::vector<Record> const table = [] {
    std::vector<Record> t = {
        {"NcOutput", {{"text", Kind::STRING}}},
        {"NcProgramId", {{"program id", Kind::INT}}},
        {"OperationId", {{"operation id", Kind::INT}}},
        {"MachineId", {{"machine id", Kind::INT}}},
        {"Command", {{"command", Kind::INT}}},
        {"PatternOpen", {{"pattern id", Kind::INT}}},
        {"PatternClose", {{"pattern id", Kind::INT}}},
        {"PatternChildInstance", {{"instance", Kind::INT}}},
        {"Section", {{"section type", Kind::SECTION}}},
        {"SectionEnd", {}},
        {"WorkOffset", {{"work offset", Kind::INT}}},
        {"Warning", {{"code", Kind::INT}, {"message", Kind::STRING}}},
        {"Error", {{"code", Kind::INT}, {"message", Kind::STRING}}},
        {"NCContext", {}},
        {"NCTool", {}},
        {"SimGroup", {{"name", Kind::STRING}}},
        {"SimGroupEnd", {{"name", Kind::STRING}}},
        {"TaggedFrame",
         {{"tag", Kind::STRING},
          {"base frame tag", Kind::STRING},
          {"origin x", Kind::DOUBLE},
          {"origin y", Kind::DOUBLE},
          {"origin z", Kind::DOUBLE},
          {"x axis x", Kind::DOUBLE},
          {"x axis y", Kind::DOUBLE},
          {"x axis z", Kind::DOUBLE},
          {"z axis x", Kind::DOUBLE},
          {"z axis y", Kind::DOUBLE},
          {"z axis z", Kind::DOUBLE}}},
        {"Linear", {kX, kY, kZ, kFeed, kFlags}},
        {"Rapid", {kX, kY, kZ, kFlags}},
        {"Linear5D", {kX, kY, kZ, kI, kJ, kK, kFeed, kFlags}},
        {"Rapid5D", {kX, kY, kZ, kI, kJ, kK, kFlags}},
        {"SpindleSpeed", {{"speed", Kind::DOUBLE}}},
    };
    // The helix: centre, normal, x axis and y axis as vectors, then radius,
    // height and swept angle; then the end point, feed and flags.
    static char const* const helix[] = {"centre x", "centre y", "centre z", "normal x", "normal y",
                                        "normal z", "x axis x", "x axis y", "x axis z", "y axis x",
                                        "y axis y", "y axis z", "radius", "height", "sweep"};
    Record helical{"Helical", {}};
    for (char const* name : helix) helical.fields.push_back({name, Kind::DOUBLE});
    for (Field const& f : {Field{"end x", Kind::DOUBLE}, Field{"end y", Kind::DOUBLE}, Field{"end z", Kind::DOUBLE},
                           kFeed, kFlags})
      helical.fields.push_back(f);
    t.push_back(std::move(helical));
    return t;
  }();
  return table;
}

/// What separates fields, as the library's reader has it for strings.
bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\v' || c == '\r'; }

/// The fields of one line, taken from the left.
class Cursor {
public:
  explicit Cursor(std::string_view text) : m_text(text) {}

  void skipSpace() {
    while (m_at < m_text.size() && isSpace(m_text[m_at])) ++m_at;
  }
  bool atEnd() {
    skipSpace();
    return m_at >= m_text.size();
  }
  /// The next blank-separated token; empty at the end.
  std::string_view token() {
    skipSpace();
    std::size_t const start = m_at;
    while (m_at < m_text.size() && !isSpace(m_text[m_at])) ++m_at;
    return m_text.substr(start, m_at - start);
  }
  /// A string field, quoted or bare; false for a quoted one that the line
  /// ends inside.
  bool string() {
    skipSpace();
    if (m_at >= m_text.size() || m_text[m_at] != '"') {
      token();
      return true;
    }
    ++m_at;
    while (m_at < m_text.size()) {
      char const c = m_text[m_at];
      if (c == '"') {
        ++m_at;
        return true;
      }
      m_at += c == '\\' ? 2 : 1;
    }
    m_at = m_text.size();
    return false;
  }
  std::string_view rest() {
    skipSpace();
    return m_text.substr(m_at);
  }

private:
  std::string_view m_text;
  std::size_t m_at = 0;
};

std::string quote(std::string_view token) {
  constexpr std::size_t kShown = 40;
  std::string text(token.substr(0, kShown));
  if (token.size() > kShown) text += "...";
  return "'" + text + "'";
}

/// Why `token` is no decimal integer of the kind, or nothing.
std::optional<std::string> integerProblem(std::string_view token, bool isUnsigned) {
  std::size_t at = 0;
  bool negative = false;
  if (!isUnsigned && at < token.size() && (token[at] == '+' || token[at] == '-')) negative = token[at++] == '-';
  if (at == token.size()) return quote(token) + (isUnsigned ? " is not an unsigned integer" : " is not an integer");
  unsigned long long value = 0;
  bool overflow = false;
  for (; at < token.size(); ++at) {
    char const c = token[at];
    if (c < '0' || c > '9') return quote(token) + (isUnsigned ? " is not an unsigned integer" : " is not an integer");
    value = value * 10 + static_cast<unsigned>(c - '0');
    if (value > 0xFFFFFFFFull) overflow = true;
  }
  if (isUnsigned ? overflow : (overflow || value > (negative ? 2147483648ull : 2147483647ull)))
    return quote(token) + (isUnsigned ? " is beyond the range of a 32-bit unsigned integer"
                                      : " is beyond the range of a 32-bit integer");
  return std::nullopt;
}

locale_t cLocale() {
  static locale_t const locale = newlocale(LC_NUMERIC_MASK, "C", locale_t());
  return locale;
}

/// Why `token` is no number that strtod takes whole, or nothing.
std::optional<std::string> numberProblem(std::string_view token) {
  std::string const text(token);
  char* end = nullptr;
  errno = 0;
  double const value = strtod_l(text.c_str(), &end, cLocale());
  if (end == text.c_str() || *end != '\0') return quote(token) + " is not a number";
  if (errno == ERANGE) {
    if (std::isinf(value)) return quote(token) + " is beyond the range of a double";
    if (value == 0.0) return quote(token) + " is too small for a double and reads as 0";
  }
  return std::nullopt;
}

bool isSectionWord(std::string_view word) {
  return word == "Operation" || word == "BeforeOperation" || word == "AfterOperation" || word == "NoTool";
}

/// Checks `field` at the cursor; false when the line has ended before it.
bool checkField(Cursor& cursor, char const* name, Kind kind, std::vector<std::string>& problems) {
  if (cursor.atEnd()) return false;
  if (kind == Kind::STRING) {
    if (!cursor.string()) problems.push_back(std::string(name) + ": the string has no closing quote");
    return true;
  }
  std::string_view const token = cursor.token();
  std::optional<std::string> problem;
  switch (kind) {
    case Kind::INT: problem = integerProblem(token, false); break;
    case Kind::UNSIGNED: problem = integerProblem(token, true); break;
    case Kind::DOUBLE: problem = numberProblem(token); break;
    case Kind::SECTION:
      if (!isSectionWord(token))
        problem = quote(token) + " is not Operation, BeforeOperation, AfterOperation or NoTool, so no section opens";
      break;
    case Kind::STRING: break;
  }
  if (problem) problems.push_back(std::string(name) + ": " + *problem);
  return true;
}

/// "a, b, c: missing" for the fields from `first` to `total`; a long run
/// shows its ends and its length.
void missing(std::function<std::string(std::size_t)> const& nameOf, std::size_t first, std::size_t total,
             std::vector<std::string>& problems) {
  if (first >= total) return;
  constexpr std::size_t kListed = 8;
  std::string text;
  if (total - first <= kListed) {
    for (std::size_t i = first; i < total; ++i) text += (i == first ? "" : ", ") + nameOf(i);
    problems.push_back(text + ": missing");
  } else {
    problems.push_back(nameOf(first) + " to " + nameOf(total - 1) + ": missing (" + std::to_string(total - first) +
                       " fields)");
  }
}

void missing(std::vector<std::string> const& names, std::size_t first, std::vector<std::string>& problems) {
  missing([&names](std::size_t i) { return names[i]; }, first, names.size(), problems);
}

/// A leading integer field that decides how the record reads on (a version
/// or a count); empty, after a problem, when the record cannot be read on.
std::optional<long> checkLeading(Cursor& cursor, char const* name, std::vector<std::string>& problems) {
  if (cursor.atEnd()) {
    problems.push_back(std::string(name) + ": missing");
    return std::nullopt;
  }
  std::string_view const token = cursor.token();
  if (auto problem = integerProblem(token, false)) {
    problems.push_back(std::string(name) + ": " + *problem);
    return std::nullopt;
  }
  return std::atol(std::string(token).c_str());
}

/// The version digit; empty, after a problem, when the record is not read.
std::optional<long> checkVersion(Cursor& cursor, std::initializer_list<long> accepted,
                                 std::vector<std::string>& problems) {
  auto const version = checkLeading(cursor, "version", problems);
  if (!version) return std::nullopt;
  for (long v : accepted)
    if (v == *version) return version;
  problems.push_back("version " + std::to_string(*version) + " is not read; the record is skipped");
  return std::nullopt;
}

void checkTail(Cursor& cursor, std::vector<std::string>& problems) {
  if (!cursor.atEnd()) problems.push_back("unexpected " + quote(cursor.rest()) + " after the last field");
}

}  // namespace

std::string StrictStreamCheck::MalformedLine::text() const {
  std::string text = record + ":";
  for (std::size_t i = 0; i < problems.size(); ++i) text += (i == 0 ? " " : "; ") + problems[i];
  return text;
}

void StrictStreamCheck::record(long line, std::string_view text, std::vector<std::string> problems) {
  ++m_count;
  if (m_lines.size() >= kLinesKept) return;
  Cursor cursor(text);
  std::string keyword(cursor.token());
  if (!keyword.empty() && keyword.back() == ':') keyword.pop_back();
  m_lines.push_back(MalformedLine{line, keyword, std::move(problems)});
}

std::vector<std::string> StrictStreamCheck::checkLine(std::string_view line) {
  std::vector<std::string> problems;
  Cursor cursor(line);
  std::string_view const keyword = cursor.token();
  if (keyword.empty()) return problems;  // a blank line says nothing
  if (keyword.back() != ':') {
    problems.push_back("not a record; the line is skipped");
    return problems;
  }
  std::string_view const name = keyword.substr(0, keyword.size() - 1);

  if (name == "ApiVersion") {
    std::size_t i = 0;
    std::vector<std::string> const names = {"major", "minor"};
    for (; i < names.size(); ++i)
      if (!checkField(cursor, names[i].c_str(), Kind::INT, problems)) break;
    missing(names, i, problems);
    checkTail(cursor, problems);
    return problems;
  }

  if (name == "AxisOrdering") {
    auto const version = checkVersion(cursor, {1, 2}, problems);
    if (!version) return problems;
    auto const count = checkLeading(cursor, "count", problems);
    if (!count) return problems;
    if (*count <= 0) {
      problems.push_back("count: " + std::to_string(*count) + " axes; the record is skipped");
      return problems;
    }
    // A name for each axis, and with version 2 its part id.
    std::size_t const perAxis = *version == 2 ? 2 : 1;
    std::size_t const total = static_cast<std::size_t>(*count) * perAxis;
    auto const nameOf = [perAxis](std::size_t i) {
      std::string const axis = std::to_string(i / perAxis + 1);
      return perAxis == 2 && i % 2 == 1 ? "part id " + axis : "name " + axis;
    };
    std::vector<std::string> names;
    std::size_t i = 0;
    for (; i < total; ++i) {
      std::string_view const before = cursor.rest();
      if (!checkField(cursor, nameOf(i).c_str(), Kind::STRING, problems)) break;
      if (i % perAxis == 0) {
        // The name as written, for naming the values of later axis values.
        std::string_view taken = before.substr(0, before.size() - cursor.rest().size());
        while (!taken.empty() && isSpace(taken.back())) taken.remove_suffix(1);
        if (taken.size() >= 2 && taken.front() == '"' && taken.back() == '"') taken = taken.substr(1, taken.size() - 2);
        names.emplace_back(taken);
      }
    }
    missing(nameOf, i, total, problems);
    checkTail(cursor, problems);
    m_axisNames = std::move(names);
    return problems;
  }

  if (name == "AxisValues") {
    if (!checkVersion(cursor, {1}, problems)) return problems;
    auto const count = checkLeading(cursor, "count", problems);
    if (!count) return problems;
    if (*count <= 0) {
      problems.push_back("count: " + std::to_string(*count) + " values; the record is skipped");
      return problems;
    }
    std::size_t const total = static_cast<std::size_t>(*count);
    bool const named = total == m_axisNames.size();
    if (!m_axisNames.empty() && !named)
      problems.push_back("count: " + std::to_string(total) + " values for an ordering of " +
                         std::to_string(m_axisNames.size()) + " axes");
    auto const nameOf = [this, named](std::size_t k) {
      return named && !m_axisNames[k].empty() ? m_axisNames[k] : "value " + std::to_string(k + 1);
    };
    std::size_t i = 0;
    for (; i < total; ++i)
      if (!checkField(cursor, nameOf(i).c_str(), Kind::DOUBLE, problems)) break;
    missing(nameOf, i, total, problems);
    checkTail(cursor, problems);
    return problems;
  }

  for (Record const& record : records()) {
    if (record.keyword != name) continue;
    if (!checkVersion(cursor, {1}, problems)) return problems;
    std::size_t i = 0;
    for (; i < record.fields.size(); ++i)
      if (!checkField(cursor, record.fields[i].name, record.fields[i].kind, problems)) break;
    std::vector<std::string> names;
    for (Field const& field : record.fields) names.push_back(field.name);
    // A section with no word is read as an Operation section, on purpose.
    if (!(record.keyword == "Section" && i == 0)) missing(names, i, problems);
    checkTail(cursor, problems);
    return problems;
  }
  problems.push_back("unknown record; it is skipped");
  return problems;
}

bool StrictStreamCheck::checkFile(std::filesystem::path const& path) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (!file) return false;
  std::string line;
  char buffer[1 << 16];
  std::size_t got;
  auto finishLine = [&](bool hasLineFeed) {
    ++m_lineCount;
    if (m_lineCount == 1) return;  // the header is the reader's to judge
    std::vector<std::string> problems = checkLine(line);
    if (!hasLineFeed)
      problems.push_back("the line has no line feed: the file ends in the middle of it, and it is not read");
    if (!problems.empty()) record(m_lineCount, line, std::move(problems));
  };
  while ((got = std::fread(buffer, 1, sizeof buffer, file)) > 0) {
    char const* start = buffer;
    char const* const end = buffer + got;
    while (start < end) {
      auto const* const lineFeed = static_cast<char const*>(std::memchr(start, '\n', static_cast<std::size_t>(end - start)));
      if (!lineFeed) {
        line.append(start, end);
        break;
      }
      line.append(start, lineFeed);
      finishLine(true);
      line.clear();
      start = lineFeed + 1;
    }
  }
  std::fclose(file);
  if (!line.empty()) finishLine(false);
  return true;
}

}  // namespace mtkit_tool
