// The demo firm's data. Texts are written here in UTF-8 and turned into the
// program's code page once, when the values are built.
#include "tools/demo-firm/demo_data.h"

#include <array>
#include <iterator>

#include "base/codepage.h"
#include "base/numbers.h"
#include "config/konfigur.h"
#include "documents/dockinds.h"
#include "master/dictionaries.h"

namespace {

ShortText Maz(const char* utf8) { return Utf8ToMaz(ShortText(utf8)); }

Real Grosze(Real value) { return RoundHalfAway(value * 100) / 100; }

struct Place {
  const char* code;
  const char* town;
  const char* street;
};
constexpr std::array<Place, kDemoContractors> kPlaces = {{
    {"00-950", "Warszawa", "ul. Marszałkowska 12"},     {"31-042", "Kraków", "ul. Floriańska 3"},
    {"90-102", "Łódź", "ul. Piotrkowska 104"},          {"50-066", "Wrocław", "ul. Świdnicka 8"},
    {"61-888", "Poznań", "ul. Półwiejska 21"},          {"80-827", "Gdańsk", "ul. Długa 45"},
    {"70-419", "Szczecin", "al. Wojska Polskiego 7"},   {"85-006", "Bydgoszcz", "ul. Gdańska 30"},
    {"20-002", "Lublin", "ul. Krakowskie Przedmieście 15"}, {"15-001", "Białystok", "ul. Lipowa 2"},
    {"40-001", "Katowice", "ul. Mariacka 9"},           {"81-371", "Gdynia", "ul. Świętojańska 60"},
    {"42-200", "Częstochowa", "al. Najświętszej Maryi Panny 33"}, {"26-600", "Radom", "ul. Żeromskiego 5"},
    {"87-100", "Toruń", "ul. Szeroka 11"},              {"25-001", "Kielce", "ul. Sienkiewicza 19"},
    {"35-001", "Rzeszów", "ul. 3 Maja 14"},             {"10-001", "Olsztyn", "ul. Staromiejska 6"},
    {"65-001", "Zielona Góra", "ul. Kupiecka 22"},      {"45-001", "Opole", "ul. Książąt Opolskich 4"},
}};

constexpr std::array<const char*, kDemoContractors> kCustomerNames = {
    "Sklep Spożywczy Grażyna Wójcik", "Piekarnia Złoty Kłos s.c.",      "Bar Mleczny Pod Różą",
    "Hotel Nad Wisłą Sp. z o.o.",     "Delikatesy Łączka",              "Restauracja Smaczny Kąsek",
    "Przedszkole nr 5 w Łodzi",       "Kawiarnia Ptyś Małgorzata Kęska", "Sklep Jędrzej Maćkowiak",
    "Stołówka Zakładowa Świt",        "Pensjonat Góralski Dwór",        "Spółdzielnia Społem Żoliborz",
    "Sklep Agnieszka Ślusarczyk",     "Catering Pyszności Sp. j.",      "Market Ogrodnik Tomasz Żak",
    "Zajazd Pod Świerkami",           "Sklep Ekologiczny Zielony Łan", "Agroturystyka Łąka",
    "Kiosk Paweł Czyż",               "Szkoła Podstawowa nr 12 w Gdańsku",
};

constexpr std::array<const char*, kDemoContractors> kSupplierNames = {
    "Młyn Zbożowy Łowicz Sp. z o.o.",   "Cukrownia Środa Śląska S.A.",      "Olejarnia Kruszwica Sp. z o.o.",
    "Mleczarnia Łaciate Spółdzielnia",  "Zakłady Mięsne Łuków S.A.",        "Piekarnia Przemysłowa Żytnia",
    "Browar Żywiec Dystrybucja",        "Tłocznia Soków Sądecki Sad",       "Chemia Gospodarcza Blask",
    "Papiernia Kłodzko Sp. z o.o.",     "Wytwórnia Makaronu Świętokrzyska", "Przetwórnia Ryb Bałtyk Ustka",
    "Herbaciarnia Dwór Kupiecki",       "Palarnia Kawy Złote Ziarno",       "Cukiernia Wedlowska",
    "Hurtownia Warzyw Łęczyca",         "Drobiarstwo Kurczak Zagrodowy",    "Wydawnictwo Książnica",
    "Rozlewnia Wód Muszyna",            "Poczta Polska Oddział Hurtowy",
};

// One kind of goods, sold in ten variants; base index i is bought from supplier i + 1.
struct GoodsKind {
  const char* name;
  const char* unit;
  const char* vat;
  double buyNet;
};
constexpr std::array<GoodsKind, kDemoContractors> kGoods = {{
    {"Mąka pszenna", "kg", "5", 2.40},       {"Cukier biały", "kg", "5", 3.10},
    {"Olej rzepakowy", "l", "5", 6.90},      {"Mleko 3,2%", "l", "5", 2.80},
    {"Kiełbasa śląska", "kg", "5", 18.50},   {"Chleb żytni", "szt.", "5", 4.20},
    {"Piwo jasne", "szt.", "23", 2.90},      {"Sok jabłkowy", "l", "5", 3.60},
    {"Płyn do naczyń", "szt.", "23", 5.40},  {"Ręcznik papierowy", "szt.", "23", 4.10},
    {"Makaron świderki", "szt.", "5", 3.30}, {"Śledź w oleju", "szt.", "5", 7.80},
    {"Herbata czarna", "szt.", "23", 6.20},  {"Kawa mielona", "szt.", "23", 14.90},
    {"Czekolada gorzka", "szt.", "8", 4.60}, {"Ziemniaki", "kg", "5", 1.50},
    {"Filet z kurczaka", "kg", "5", 17.20},  {"Atlas Polski (eksport)", "szt.", "0", 29.90},
    {"Woda mineralna", "szt.", "8", 1.20},   {"Znaczek pocztowy", "szt.", "zwol.", 3.30},
}};
constexpr std::array<const char*, 10> kVariants = {"Tradycyjny", "Ekonomiczny", "Rodzinny", "Złoty",    "Babuni",
                                                   "Śląski",     "Mazowiecki",  "Górski",   "Pomorski", "Świąteczny"};
constexpr int kVariantCount = static_cast<int>(kVariants.size());

std::string Digits(int64_t value, int width) {
  std::string text = std::to_string(value);
  return std::string(static_cast<std::size_t>(width) - text.size(), '0') + text;
}

// A NIP with a valid check digit for the nine digits of the seed; the seed
// moves on past values whose check would be 10.
ShortText NipForSeed(int64_t seed) {
  for (;; ++seed) {
    const ShortText nip = NipFromDigits(Digits(seed, 9));
    if (!nip.Empty()) return nip;
  }
}

Contractor MakeContractor(int32_t number, const char* name, const Place& place, int64_t nipSeed) {
  Contractor c;
  c.number = number;
  c[KontrahentCol::nazwa] = Maz(name);
  c[KontrahentCol::kod] = ShortText(place.code);
  c[KontrahentCol::miasto] = Maz(place.town);
  c[KontrahentCol::ulica] = Maz(place.street);
  c[KontrahentCol::nip] = NipForSeed(nipSeed);
  c[KontrahentCol::telefony] = ShortText("+48 " + Digits(500100200 + number * 1117, 9));
  return c;
}

}  // namespace

ShortText NipFromDigits(const std::string& nine) {
  constexpr int kWeights[] = {6, 5, 7, 2, 3, 4, 5, 6, 7};
  int sum = 0;
  for (int i = 0; i < 9; ++i) sum += (nine[static_cast<std::size_t>(i)] - '0') * kWeights[i];
  const int check = sum % 11;
  if (check == 10) return ShortText();
  const std::string all = nine + static_cast<char>('0' + check);
  return ShortText(all.substr(0, 3) + "-" + all.substr(3, 3) + "-" + all.substr(6, 2) + "-" + all.substr(8, 2));
}

ShortText Ean13FromDigits(const std::string& twelve) {
  int sum = 0;
  for (int i = 0; i < 12; ++i) sum += (twelve[static_cast<std::size_t>(i)] - '0') * (i % 2 == 0 ? 1 : 3);
  return ShortText(twelve + static_cast<char>('0' + (10 - sum % 10) % 10));
}

std::vector<Contractor> DemoWarehouses() {
  std::vector<Contractor> rows;
  rows.push_back(MakeContractor(1, "Magazyn główny", kPlaces[2], 725100001));
  rows.push_back(MakeContractor(2, "Sklep firmowy Śródmieście", kPlaces[2], 725100001));
  rows[1][KontrahentCol::ulica] = Maz("ul. Żwirki i Wigury 7");
  return rows;
}

std::vector<Contractor> DemoContractors(ContractorKind kind) {
  const bool customers = kind == ContractorKind::kCustomer;
  std::vector<Contractor> rows;
  for (int i = 0; i < kDemoContractors; ++i) {
    const char* name = customers ? kCustomerNames[static_cast<std::size_t>(i)] : kSupplierNames[static_cast<std::size_t>(i)];
    const Place& place = kPlaces[static_cast<std::size_t>(customers ? i : kDemoContractors - 1 - i)];
    rows.push_back(MakeContractor(i + 1, name, place, (customers ? 521300000 : 951200000) + i * 7919));
  }
  return rows;
}

std::vector<DemoVatGroup> DemoVatGroups() {
  return {{ShortText("23"), Maz("stawka podstawowa 23%")},
          {ShortText("8"), Maz("stawka obniżona 8%")},
          {ShortText("5"), Maz("stawka obniżona 5%")},
          {ShortText("0"), Maz("stawka 0%")},
          {ShortText(kExemptGroup), ShortText("TOWARY ZWOLNIONE Z VAT")}};
}

std::vector<DocumentKindRow> DemoDocumentKinds() {
  std::vector<DocumentKindRow> kinds;
  for (int kind = kFirstGoodsKind; kind <= kLastGoodsKind; ++kind) {
    const DocumentKind* k = DocumentKindOf(kind);
    ShortText name = ConfigDocumentName(kind);
    if (name.Empty()) name = k->exportText;
    const char letter = k->contractor == ContractorCatalogue::kCustomers   ? 'O'
                        : k->contractor == ContractorCatalogue::kSuppliers ? 'd'
                                                                           : ' ';
    // Goods going out bring money in; goods coming in cost money.
    const bool income = k->effect == StockEffect::kIssue || kind == 16;
    kinds.push_back({static_cast<int16_t>(kind), name, letter, ShortText(), income, ShortText(k->shortCode)});
  }
  const DocumentKindRow payments[] = {
      {101, Maz("KP - wpłata od odbiorcy"), 'O', ShortText("100"), true, ShortText("KP")},
      {102, Maz("KW - wypłata dla odbiorcy"), 'O', ShortText("100"), false, ShortText("KW")},
      {103, Maz("KW - zapłata dostawcy"), 'd', ShortText("100"), false, ShortText("KW")},
      {104, Maz("KP - wpłata od dostawcy"), 'd', ShortText("100"), true, ShortText("KP")},
      {105, Maz("przelew od odbiorcy"), 'O', ShortText("130"), true, ShortText("PO")},
      {106, Maz("przelew do dostawcy"), 'd', ShortText("130"), false, ShortText("PD")},
  };
  kinds.insert(kinds.end(), std::begin(payments), std::end(payments));
  return kinds;
}

std::vector<DemoItem> DemoItems() {
  std::vector<DemoItem> items;
  for (int i = 0; i < kDemoItems; ++i) {
    const int kindIndex = i / kVariantCount;
    const int variant = i % kVariantCount;
    const GoodsKind& kind = kGoods[static_cast<std::size_t>(kindIndex)];
    DemoItem item;
    ItemData& d = item.data;
    d.name = Maz(kind.name);
    d.name2 = Maz(kVariants[static_cast<std::size_t>(variant)]);
    d.vat = ShortText(kind.vat);
    d.vatPayer = ShortText("T");
    d.unit = Maz(kind.unit);
    d.code = Ean13FromDigits("590" + Digits(100000 + i, 9));
    d.digitIndex = 1001 + i;
    d.supplier = kindIndex + 1;
    d.supplierText = Maz(kSupplierNames[static_cast<std::size_t>(kindIndex)]).Copy(1, 20);
    d.place = ShortText("R" + std::to_string(kindIndex + 1) + "-P" + std::to_string(variant + 1));
    d.packQuantity = 1;
    d.buyNet = Grosze(static_cast<Real>(kind.buyNet) * (1 + Real(variant) * 8 / 100));
    d.buyGross = Grosze(GrossFromNet(d.buyNet, d.vat));
    d.saleNet = Grosze(d.buyNet * 125 / 100);
    d.saleGross = Grosze(GrossFromNet(d.saleNet, d.vat));
    item.stock[0] = 10 + (i * 7) % 91;
    item.stock[1] = (i * 13) % 41;
    items.push_back(item);
  }
  return items;
}

std::vector<UserRecord> DemoOperators() {
  using R = UserRight;
  const auto bit = [](R r) { return static_cast<uint16_t>(1u << (static_cast<int>(r) - 1)); };
  UserRecord seller;
  seller.firstName = Maz("Łucja");
  seller.surname = Maz("Kowalczyk");
  seller.rights = bit(R::kOwnDocuments) | bit(R::kCashSummary);
  UserRecord storekeeper;
  storekeeper.firstName = Maz("Grzegorz");
  storekeeper.surname = Maz("Wiśniewski");
  storekeeper.rights = bit(R::kOwnDocuments) | bit(R::kOthersDocuments) | bit(R::kOtherDate) |
                       bit(R::kNotSimpleSale) | bit(R::kPeriodSummaries) | bit(R::kAllAnalyses) |
                       bit(R::kPurchasePrices) | bit(R::kMarkStock);
  return {seller, storekeeper};
}

FiscalConfig DemoFiscalConfig(int serverPrinter) {
  FiscalConfig c;
  c.printerType = kFiscalServer;
  c.port = serverPrinter;
  c.documentFlags[0] = 1;
  c.computerNumbers = 1;
  const std::vector<DemoVatGroup> groups = DemoVatGroups();
  constexpr char kLetters[] = {'A', 'B', 'C', 'D', 'Z'};
  for (std::size_t i = 0; i < groups.size(); ++i) {
    c.vatName[i] = groups[i].group;
    c.vatCode[i] = kLetters[i];
  }
  return c;
}
