// The fiscal configuration files: what each printer type writes and reads
// back, hand-edited files, and the lookups of VAT rates and document flags.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "base/mazovia.h"
#include "fiscal/fiscalconfig.h"
#include "fiscal/posnet.h"
#include "fiscal/serial.h"

namespace {

FiscalConfig Sample(int type) {
  FiscalConfig c;
  c.printerType = type;
  c.port = type == kFiscalServer ? 3 : kFiscalOtherPort;
  c.devicePath = "/dev/ttyUSB0";
  c.documentFlags[0] = 1;
  c.documentFlags[2] = 1;
  const char* names[] = {"23", "8", "5", "0", "zwol.", "", ""};
  for (int i = 0; i < kFiscalVatRows; ++i) c.vatName[i] = names[i];
  for (int i = 0; i < 5; ++i) c.vatCode[i] = type == kFiscalElzab ? i + 1 : "ABCDZ"[i];
  c.describeDiscount = type == kFiscalElzab;
  c.displayType = type == kFiscalElzab ? 1 : 0;
  c.otherThanPosnet = type == kFiscalPosnet24;
  c.firmware = type == kFiscalPosnet24 ? kFirmwareOld : kFirmwareNew;
  c.drawer = type != kFiscalServer;
  c.computerNumbers = 1;
  c.serverRow = type == kFiscalServer ? ShortText("2,1,srvfisk\\3,,1") : ShortText();
  return c;
}

void ExpectSame(const FiscalConfig& a, const FiscalConfig& b) {
  EXPECT_EQ(a.printerType, b.printerType);
  EXPECT_EQ(a.port, b.port);
  EXPECT_EQ(a.devicePath, b.devicePath);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(a.documentFlags[i], b.documentFlags[i]) << i;
  for (int i = 0; i < kFiscalVatRows; ++i) {
    EXPECT_EQ(a.vatName[i], b.vatName[i]) << i;
    EXPECT_EQ(a.vatCode[i], b.vatCode[i]) << i;
  }
  EXPECT_EQ(a.describeDiscount, b.describeDiscount);
  EXPECT_EQ(a.displayType, b.displayType);
  EXPECT_EQ(a.otherThanPosnet, b.otherThanPosnet);
  EXPECT_EQ(a.firmware, b.firmware);
  EXPECT_EQ(a.drawer, b.drawer);
  EXPECT_EQ(a.computerNumbers, b.computerNumbers);
  EXPECT_EQ(a.serverRow, b.serverRow);
  EXPECT_EQ(a.helperScript, b.helperScript);
  EXPECT_EQ(a.elzabDelay, b.elzabDelay);
}

FiscalConfig Parsed(const std::vector<ShortText>& lines) {
  FiscalConfig c;
  ParseFiscalConfig(lines, c);
  return c;
}

TEST(FiscalConfig, EveryTypeReadsBackWhatItWrote) {
  // Line counts: 1 + port + 4 flags + (2 + 14 VAT) + type settings + 4 closing.
  const struct { int type; std::size_t lines; } cases[] = {
      {kFiscalElzab, 1 + 1 + 4 + 16 + 3 + 4 + 3 + 3 + 4},
      {kFiscalPosnet, 1 + 1 + 4 + 16 + 3 + 4 + 3 + 3 + 4},
      {kFiscalPosnet24, 1 + 1 + 4 + 16 + 3 + 4 + 3 + 3 + 4},
      {kFiscalServer, 1 + 1 + 4 + 16 + 3 + 3 + 4},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.type);
    const FiscalConfig written = Sample(c.type);
    const std::vector<ShortText> lines = FormatFiscalConfig(written);
    EXPECT_EQ(lines.size(), c.lines);
    EXPECT_EQ(lines[0].Copy(1, 25), ShortText(std::to_string(c.type) + " - typ drukarki fiskalne"));
    ExpectSame(Parsed(lines), written);
  }
}

TEST(FiscalConfig, HandEditedAndDamagedFiles) {
  EXPECT_EQ(FormatFiscalConfig(FiscalConfig{}).size(), 1u);  // type 0 rewrites to one line
  for (const std::vector<ShortText>& lines : {std::vector<ShortText>{"0"}, {}, {"9 - typ"}, {"x"}})
    EXPECT_EQ(Parsed(lines).printerType, kFiscalNone) << lines.size();

  // A row of four fields means a server on another computer.
  FiscalConfig server = Sample(kFiscalServer);
  server.serverRow = "2,1,srvfisk\\3,";
  EXPECT_TRUE(Parsed(FormatFiscalConfig(server)).serverRow.Empty());

  // Firmware other than 1 reads as 2; non-zero flags read as 1; a bad display as 0.
  std::vector<ShortText> lines = FormatFiscalConfig(Sample(kFiscalPosnet));
  const std::size_t firmware = 1 + 1 + 4 + 16 + 3 + 3, other = 1 + 1 + 4 + 16 + 2;
  lines[firmware] = "0 - nowy z rabatami";
  lines[other] = "7";
  const FiscalConfig c = Parsed(lines);
  EXPECT_EQ(c.firmware, kFirmwareNew);
  EXPECT_EQ(c.otherThanPosnet, 1);
  std::vector<ShortText> elzab = FormatFiscalConfig(Sample(kFiscalElzab));
  elzab[1 + 1 + 4 + 16 + 3 + 3] = "brak";
  EXPECT_EQ(Parsed(elzab).displayType, 0);
  // A truncated file keeps what it has and reads the rest as empty.
  lines.resize(9);
  EXPECT_EQ(Parsed(lines).printerType, kFiscalPosnet);
  EXPECT_EQ(Parsed(lines).vatName[0], "23");
  EXPECT_TRUE(Parsed(lines).vatName[1].Empty());
}

TEST(FiscalConfig, ServerFileAndFilesOnDisk) {
  FiscalConfig c;
  ParseFiscalServerConfig({"", "abc"}, c);
  EXPECT_EQ(c.elzabDelay, kDefaultElzabDelay);
  ParseFiscalServerConfig({"skrypt.sh", "250 - opoznienie"}, c);
  EXPECT_EQ(c.helperScript, "skrypt.sh");
  EXPECT_EQ(c.elzabDelay, 250);

  // Directories on disk are lower case: the name holds no capitals.
  const std::string dir = "/tmp/fiscalcfg-" + std::to_string(::getpid());
  ASSERT_EQ(std::system(("mkdir -p " + dir).c_str()), 0);
  const ShortText d = ShortText(dir) + "/";
  EXPECT_EQ(ReadFiscalConfig(d).printerType, kFiscalNone);  // no file: no printer
  FiscalConfig written = Sample(kFiscalElzab);
  written.helperScript = "pomoc.sh";
  written.elzabDelay = 300;
  ASSERT_EQ(WriteFiscalConfig(d, written), 0);
  ExpectSame(ReadFiscalConfig(d), written);
  EXPECT_NE(WriteFiscalConfig(d + "brak/", written), 0);
  EXPECT_EQ(std::system(("rm -rf " + dir).c_str()), 0);
}

TEST(FiscalConfig, VatLookup) {
  const FiscalConfig c = Sample(kFiscalPosnet);
  const struct { const char* rate; bool mapped; int code; } cases[] = {
      {"23", true, 'A'},   {"23.00", true, 'A'}, {" 8", true, 'B'}, {"5", true, 'C'},
      {"0", true, 'D'},    {"-3", true, 'D'},    {"zwol.", true, 'Z'},
      {"7", false, 'A'},   {"", false, 'A'},     {"np", false, 'A'},
  };
  for (const auto& k : cases) {
    EXPECT_EQ(VatIsMapped(c, k.rate), k.mapped) << k.rate;
    EXPECT_EQ(VatToPrinterCode(c, k.rate), k.code) << k.rate;
  }
  EXPECT_EQ(NormalisedVatName("22.50"), "22.5");
  EXPECT_EQ(VatLetterOfCode('Z'), "Z");
  EXPECT_TRUE(VatLetterOfCode(0).Empty());
}

TEST(FiscalConfig, DocumentFlagsByTypeAndMode) {
  FiscalConfig c = Sample(kFiscalPosnet);  // flags 1 and 3 set
  const struct { int type, mode; bool fiscal; } rows[] = {
      {kFiscalPosnet, kFiscalModeRetail, true},      {kFiscalPosnet, kFiscalModePrivate, true},
      {kFiscalPosnet, kFiscalModeAnyCustomer, false}, {kFiscalPosnet, kFiscalModeNone, false},
      {kFiscalElzab, kFiscalModeRetail, false}};  // another type
  for (const auto& r : rows) EXPECT_EQ(DocumentIsFiscal(c, r.type, r.mode), r.fiscal) << r.type << "/" << r.mode;
  c.documentFlags[3] = 1;
  EXPECT_TRUE(DocumentIsFiscal(c, kFiscalPosnet, kFiscalModeAnyCustomer));
}

TEST(FiscalConfig, DriverSettingsComeFromTheFile) {
  FiscalConfig c = Sample(kFiscalPosnet24);
  ApplyFiscalConfigToDrivers(c);
  EXPECT_TRUE(PosnetConfig().oldFirmware);
  EXPECT_EQ(PosnetConfig().otherThanPosnet, 1);
  EXPECT_EQ(PosnetDeviceName(kFiscalOtherPort), "/dev/ttyUSB0");
  c.port = 1;
  ApplyFiscalConfigToDrivers(c);
  EXPECT_EQ(PosnetDeviceName(kFiscalOtherPort), "");  // the device named only for that port
  ApplyFiscalConfigToDrivers(FiscalConfig{});
  PosnetConfig() = {};
}

}  // namespace
