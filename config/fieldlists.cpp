// The list files of field captions and the check that no two captions of one
// record are the same.
#include "config/fieldlists.h"

#include <algorithm>

#include "base/csv.h"
#include "base/filevar.h"
#include "base/mazovia.h"
#include "base/numbers_format.h"
#include "tui/msgbox.h"

namespace {

const ShortText kUnset = "??";

ConfigFieldLists& Lists() {
  static ConfigFieldLists lists = DefaultFieldLists();
  return lists;
}

// Quotes outside and inside fields pair up in a list that parses.
bool QuotesBalanced(const ShortText& line) {
  return std::count(line.View().begin(), line.View().end(), '"') % 2 == 0;
}

// The first line of a list file; false when the file cannot be opened.
bool FirstLine(const ShortText& path, ShortText& line) {
  FileVar file;
  AssignFile(file, path);
  if (file.Reset(kFileModeReadOnly) != 0) return false;
  line.Clear();
  (void)file.ReadLine(line);
  return true;
}

void ReadListFile(const ShortText& path, std::span<ShortText> captions) {
  ShortText line;
  if (!FirstLine(path, line)) return;
  if (!ParseCaptionList(line, captions)) (void)MessageBox("Niepoprawna lista:@"_mz + line, 0);
}

ShortText PositionText(int position) { return IntText(position, 0); }

bool ReportRepeat(std::span<const ShortText> captions, const ShortText& record) {
  const CaptionRepeat repeat = FindRepeatedCaption(captions);
  if (repeat.first == 0) return true;
  const ShortText text = "Błąd konfiguracji.@─────────────────@Nazwy pól w opisie "_mz + record + "@" +
                         captions[repeat.first - 1] + "(poz." + PositionText(repeat.first) + ") i " +
                         captions[repeat.second - 1] + "(poz." + PositionText(repeat.second) + ")" +
                         " powtarzają się.@"_mz + "Taka sytuacja jest niedopuszczalna.@"_mz +
                         "Program nie może działać."_mz;
  (void)MessageBox(text, 0);
  return false;
}

}  // namespace

ConfigFieldLists DefaultFieldLists() {
  ConfigFieldLists lists;
  lists.item = {"m.w mag."_mz, "SWW/KU"_mz, "il.w op."_mz, "gr.sp.1"_mz, "gr.sp.2"_mz,
                "l.sp.1"_mz,   "l.sp.2"_mz, "l.sp.3"_mz,   "l.sp.4"_mz};
  lists.item2.fill(kUnset);
  lists.contractor = {"wiek"_mz, "płeć"_mz, "wykształcenie"_mz, "zawód"_mz};
  return lists;
}

const ConfigFieldLists& ConfigLists() { return Lists(); }

bool ParseCaptionList(const ShortText& line, std::span<ShortText> captions) {
  const int count = CsvFieldCount(line);
  if (!QuotesBalanced(line) || count > static_cast<int>(captions.size())) return false;
  for (int i = 0; i < static_cast<int>(captions.size()); ++i) {
    const ShortText field = i < count ? CsvField(line, i + 1) : ShortText();
    captions[i] = field.Empty() ? kUnset : field;
  }
  return true;
}

void ConfigReadLists() {
  ConfigFieldLists& lists = Lists();
  lists = DefaultFieldLists();
  ReadListFile("dane\\lista_in.txt", lists.item);
  ReadListFile("dane\\lista_i2.txt", lists.item2);
  ReadListFile("dane\\list_c_k.txt", lists.contractor);
}

CaptionRepeat FindRepeatedCaption(std::span<const ShortText> captions) {
  for (size_t second = 1; second < captions.size(); ++second) {
    if (captions[second] == kUnset) continue;
    for (size_t first = 0; first < second; ++first)
      if (captions[first] == captions[second])
        return {static_cast<int>(first) + 1, static_cast<int>(second) + 1};
  }
  return {};
}

bool ConfigCheckFieldNames() {
  const ConfigFieldLists& lists = Lists();
  std::array<ShortText, kItemCaptions + kItemCaptions2> items;
  std::copy(lists.item.begin(), lists.item.end(), items.begin());
  std::copy(lists.item2.begin(), lists.item2.end(), items.begin() + kItemCaptions);
  return ReportRepeat(items, "towaru"_mz) && ReportRepeat(lists.contractor, "kontrahenta"_mz);
}
