// The pure core of the main configuration: the line table, reading a file
// image line by line, and writing it back byte for byte.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "base/expect_rows.h"
#include "config/konfigur.h"

namespace {

using test_rows::ExpectRows;

// Lines of an image, split at LF (a CR before it kept).
std::vector<std::string> Lines(const std::string& image) {
  std::vector<std::string> lines;
  std::istringstream in(image);
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

// An image whose first lines are the given texts and nothing more.
std::string Image(const std::vector<std::string>& lines) {
  std::string out;
  for (const std::string& line : lines) out += line + "\n";
  return out;
}

// Line n of an image of 235 lines, each "0 - x" or "# - x" by kind, with
// line n replaced by the given text.
std::string ImageWithLine(int n, const std::string& text) {
  std::vector<std::string> lines;
  for (int line = 1; line <= kConfigLineCount; ++line)
    lines.push_back(line == n ? text : (ConfigLineInfo(line)->kind == ConfigKind::kText ? "# - x" : "0 - x"));
  return Image(lines);
}

TEST(ConfigLineTable, KindsAndDescriptionsTheReaderCanCut) {
  int reals = 0;
  for (int line = 1; line <= kConfigLineCount; ++line) {
    const ConfigLineDef* def = ConfigLineInfo(line);
    ASSERT_NE(def, nullptr);
    EXPECT_EQ(def->line, line);
    EXPECT_FALSE(def->description.empty()) << line;
    // A '#' in a description would move the end of a text value.
    EXPECT_EQ(def->description.find('#'), std::string_view::npos) << line;
    reals += def->kind == ConfigKind::kReal;
  }
  EXPECT_EQ(reals, 1);
  EXPECT_EQ(ConfigLineInfo(7)->kind, ConfigKind::kReal);
  EXPECT_EQ(ConfigLineInfo(0), nullptr);
  EXPECT_EQ(ConfigLineInfo(236), nullptr);
}

TEST(ConfigLineTable, DescriptionsInMazoviaBytes) {
  // "nie płacącego VAT": ł is 0x92 and ą is 0x86 in Mazovia.
  EXPECT_EQ(ConfigLineInfo(223)->description, "nazwa dokumentu zakupu - rachunku od nie p\x92" "ac\x86" "cego VAT");
  EXPECT_EQ(ConfigLineInfo(32)->description,
            "jakie menu dokument\xa2w ma zglaszac program: 0-KLOTE/Orbel 1-klasyczne");
  EXPECT_TRUE(ConfigLineInfo(171)->description.find("C:\\TMP [0-nie") != std::string_view::npos);
}

struct LineCase {
  const char* name;
  int line;
  std::string text;
  int16_t number;
  const char* value;
  Real real = 0;
};

TEST(ConfigParse, EachKindOfLine) {
  const LineCase cases[] = {
      {"integer", 2, "1 - opis", 1, ""}, {"negative with blanks", 24, "  -12 - opis", -12, ""},
      {"16-bit limit", 23, "-32768 - opis", -32768, ""}, {"out of range", 23, "40000 - opis", 0, ""},
      {"garbage after digits", 2, "12abc - opis", 0, ""}, {"letters", 2, "tak - opis", 0, ""},
      {"empty number line", 2, "", 0, ""}, {"fraction in an integer", 2, "1.5 - opis", 0, ""},
      {"text", 1, "1,2,3# - opis", 0, "1,2,3"}, {"text without #", 1, "bez znaku", 0, "bez znaku"},
      {"cut at the last #", 1, "a#b#c", 0, "a#b"}, {"trailing blanks kept", 234, "Mm +  # - opis", 0, "Mm +  "},
      {"document name cut at 30", 217, std::string(40, 'x') + "# - opis", 0, "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxx"},
      {"real", 7, "0.25 - opis", 0, "", 0.25L}, {"negative real", 7, "-1.5 - opis", 0, "", -1.5L},
      {"whole real", 7, "3 - opis", 0, "", 3}, {"comma in a real", 7, "1,5 - opis", 0, ""},
      {"letters in a real", 7, "x - opis", 0, ""}, {"empty real line", 7, "", 0, ""},
  };
  for (const LineCase& c : cases) {
    ConfigValues values;
    ParseKonfigur(ImageWithLine(c.line, c.text), values);
    EXPECT_EQ(values.Number(c.line), c.number) << c.name;
    EXPECT_EQ(values.Text(c.line).Str(), c.value) << c.name;
    EXPECT_EQ(values.RealValue(c.line), c.real) << c.name;
  }
}

TEST(ConfigParse, EmptyImageLeavesEveryValueAtZero) {
  ConfigValues values;
  EXPECT_EQ(ParseKonfigur("", values).linesFound, 0);
  EXPECT_EQ(values, ConfigValues());
}

TEST(ConfigNormalize, PaymentListGetsOnlyTheMissingFields) {
  const std::pair<const char*, const char*> cases[] = {
      {"\" gotówką\"", "\" gotówką\",\" przelewem\",\"przel.dla odb.\""}, {"a,b", "a,b,\"przel.dla odb.\""},
      {"a,b,c", "a,b,c"}, {"a,b,c,d", "a,b,c,d"},
      {"znakiem \"", "znakiem \""},  // an open quote would take the tail in
  };
  for (const auto& [before, after] : cases) {
    ConfigValues values;
    values.SetText(138, before);
    NormalizeConfig(values);
    EXPECT_EQ(values.Text(138), after) << before;
  }
}

TEST(ConfigFormat, LayoutOfTheWholeFile) {
  ConfigValues values = ConfigValues::Defaults();
  values.SetText(1, "2,3");
  values.SetNumber(24, -1);
  values.SetReal(7, 0.5L);
  const std::vector<std::string> lines = Lines(FormatKonfigur(values, false));
  ASSERT_EQ(lines.size(), 235u + 2u + 6u);
  const auto described = [](const char* value, int line) { return value + std::string(ConfigLineInfo(line)->description); };
  ExpectRows<std::string>({{lines[0], described("2,3# - ", 1)}, {lines[23], described("-1 - ", 24)},
                           {lines[6], described("0.50 - ", 7)}, {lines[189], described("13 - ", 190)},
                           {lines[192].substr(0, 8), "# - list"}, {lines[235], ""}, {lines[236], ""},
                           {lines[237], "UWAGA - wszelkie wykonywane bez pelnego zrozumienia i wiedzy zmiany"},
                           {lines[242], "wystepuje juz raz w linii."}});
}

TEST(ConfigFormat, ValuesCannotBreakTheLineStructure) {
  ConfigValues values;
  values.SetText(1, "a\nb\rc");
  ConfigValues read;
  ParseKonfigur(FormatKonfigur(values, false), read);
  EXPECT_EQ(read.Text(1), "a b c");
  EXPECT_EQ(read.Number(2), 0);
}

TEST(ConfigFormat, FillerReplacesOnlyStandingPlaceholders) {
  std::vector<std::pair<int, int>> asked;
  const ConfigDescriptionFiller filler = [&asked](int line, int n) {
    asked.emplace_back(line, n);
    return ShortText("<#" + std::to_string(n) + ">");
  };
  const std::vector<std::string> lines = Lines(FormatKonfigur(ConfigValues(), false, filler));
  EXPECT_EQ(lines[21], "0 - < 1>");                               // line 22 is all placeholder
  EXPECT_NE(lines[52].find("ogr_cenymax1...typ_dokN"), std::string::npos);  // an ellipsis in words stays
  EXPECT_EQ(std::count(asked.begin(), asked.end(), std::make_pair(133, 6)), 1);
  EXPECT_EQ(std::count(asked.begin(), asked.end(), std::make_pair(133, 7)), 0);
  ConfigValues read;
  EXPECT_EQ(ParseKonfigur(Image(lines), read).linesFound, 235);
  EXPECT_EQ(read, ConfigValues());
}

TEST(ConfigParse, ArbitraryBytesNeverFail) {
  std::mt19937 random(7);
  const std::string alphabet = "0123456789-+. #\r\n\tab\x80\xff";
  for (int round = 0; round < 300; ++round) {
    std::string bytes(random() % 3000, '\0');
    for (char& c : bytes) c = alphabet[random() % alphabet.size()];
    ConfigValues values;
    const ConfigParseResult result = ParseKonfigur(bytes, values);
    EXPECT_LE(result.linesFound, kConfigLineCount);
    NormalizeConfig(values);
    // What was read is written in its settled form, which reads back to itself.
    const std::string image = FormatKonfigur(values, false);
    ConfigValues again;
    ParseKonfigur(image, again);
    EXPECT_EQ(FormatKonfigur(again, false), image);
  }
}

}  // namespace
