#include "qto/hosts/embedded/objects/checks/password.hpp"
#include "tests/objects/desk.hpp"

namespace qto::embedded {
namespace {

void protect(const Desk& desk, std::string algorithm, std::string hash, std::string salt = {},
             std::uint32_t spins = 0) {
  sheet_of(desk.sheet).protection = {true, std::move(algorithm), std::move(hash), std::move(salt),
                                     spins};
}

TEST(Protection, KeepsLockedCellsAndHiddenLines) {
  const Desk desk;
  Book& book = book_of(desk.book);
  desk.put("A1", "1");
  desk.put("A2", "2");
  sheet_of(desk.sheet).cells.touch({2, 1}).set_style(book.styles.add("General", false));
  protect(desk, "", "");
  EXPECT_FAILS(desk.put("A1", "5"));
  EXPECT_FAILS(desk.put("Z1", "5"));
  EXPECT_FAILS(desk.put("A1:A2", "5"));
  desk.put("A2", "5");
  EXPECT_EQ(desk.value("A1:A2"), "{1;5}");
  EXPECT_FAILS(desk.at("3:3")->put_Hidden(true));
  EXPECT_FAILS(desk.at("A2")->put_NumberFormat("0.00"));
  desk.sheet->Unprotect("");
  desk.put("A1", "9");
  desk.at("3:3")->put_Hidden(true);
  EXPECT_EQ(desk.value("A1"), "9");
}

TEST(Protection, HidesFormulas) {
  const Desk desk;
  desk.put("A1", "=1+1");
  desk.put("A2", "=1+2");
  sheet_of(desk.sheet)
      .cells.touch({1, 1})
      .set_style(book_of(desk.book).styles.add("General", true, true));
  EXPECT_EQ(desk.at("A1")->Formula(), "=1+1");
  protect(desk, "", "");
  EXPECT_FAILS(desk.at("A1")->Formula());
  EXPECT_FAILS(desk.at("A1")->FormulaLocal());
  std::string out;
  EXPECT_FAILS(desk.sheet->append_cell_formula({1, 1}, out));
  EXPECT_TRUE(desk.at("A1")->HasFormula());
  EXPECT_EQ(desk.at("A2")->Formula(), "=1+2");
}

TEST(Protection, LegacyPasswords) {
  const std::pair<const char*, int> known[] = {
      {"password", 0x83AF}, {"This is a longer phrase", 0xD14E}, {"0", 0xCE2A}, {"012", 0xCF7C}};
  for (const auto& [password, hash] : known) EXPECT_EQ(legacy_password_hash(password), hash);
  const Desk desk;
  protect(desk, "", "83AF");
  EXPECT_FAILS(desk.sheet->Unprotect("Password"));
  EXPECT_FAILS(desk.sheet->Unprotect(""));
  desk.sheet->Unprotect("password");
  desk.sheet->Unprotect("anything");  // not protected any more
  SheetProtection& structure = book_of(desk.book).structure;
  structure.enabled = true;
  structure.hash = "CE2A";
  EXPECT_FAILS(desk.book->AddWorksheet());
  EXPECT_FAILS(desk.book->Unprotect("1"));
  EXPECT_FAILS(desk.book->AddWorksheet());
  desk.book->Unprotect("0");
  desk.book->AddWorksheet();
  protect(desk, "", "nothex");
  EXPECT_FAILS(desk.sheet->Unprotect("password"));
}

TEST(Protection, DigestsOfSaltAndPassword) {
  const Desk desk;
  // SHA-512 over 0x00…0x0F and "pass" in UTF-16, 1,000 rounds.
  const char* salt = "AAECAwQFBgcICQoLDA0ODw==";
  const char* hash =
      "RzqiRiI0+2fYxMn39mMa+A0sdXh2vtYUWoWAuQrBI9zroxYSc7X80RKcjDCoB/U2rAzq/ZvD0DFCMZb2cxQGdw==";
  protect(desk, "SHA-512", hash, salt, 1'000);
  EXPECT_FAILS(desk.sheet->Unprotect("Pass"));
  desk.sheet->Unprotect("pass");
  EXPECT_FALSE(sheet_of(desk.sheet).protection.enabled);
  protect(desk, "SHA-512", hash, salt, 999);
  EXPECT_FAILS(desk.sheet->Unprotect("pass"));
  protect(desk, "SHA-1", "axhKVejNjog56E/6IdO/PhamPf4=", salt, 0);
  desk.sheet->Unprotect("pass");
  for (const char* algorithm : {"NO-SUCH", "SHA-256"}) {
    protect(desk, algorithm, hash, salt, 1'000);
    EXPECT_FAILS(desk.sheet->Unprotect("pass"));
  }
  protect(desk, "SHA-512", hash, "not base64!", 1'000);
  EXPECT_FAILS(desk.sheet->Unprotect("pass"));
  protect(desk, "SHA-512", hash, salt, 4'000'000'000);  // would take an hour
  EXPECT_FAILS(desk.sheet->Unprotect("pass"));
}

}  // namespace
}  // namespace qto::embedded
