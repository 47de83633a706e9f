#include <gtest/gtest.h>

#include <tuple>

#include "platform/Alerts.h"
#include "platform/Texts.h"
#include "platform/common/Catalog.h"
#include "platform/linux/DesktopWording.h"
#include "tests/sim/Program.h"

namespace dormel {
namespace {

using Lines = std::vector<std::string>;
using Entries = std::vector<std::pair<std::string, std::string>>;

const std::string GERMAN = "Plural-Forms: nplurals=2; plural=(n != 1);\n";
const std::string FRENCH = "Plural-Forms: nplurals=2; plural=(n > 1);\n";

/// A catalog as msgfmt writes it.
std::string catalogOf(const Entries& entries) {
  const auto number = [](std::size_t value) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
    return bytes;
  };
  const std::size_t tables = 28;
  std::string originals;
  std::string translations;
  std::string texts;
  for (const auto& [original, translation] : entries) {
    for (const auto& [table, text] : {std::pair(&originals, &original), {&translations, &translation}}) {
      *table += number(text->size()) + number(tables + 16 * entries.size() + texts.size());
      texts += *text + '\0';
    }
  }
  return number(0x950412de) + number(0) + number(entries.size()) + number(tables) +
         number(tables + 8 * entries.size()) + number(0) + number(0) + originals + translations + texts;
}

TEST(Catalog, HasTheTextsAndTheFormForEachNumber) {
  const std::string plural = std::string("%1 night") + '\0' + "%1 nights";
  const Entries german{{"", GERMAN}, {"Back", "Zurück"}, {plural, std::string("%1 Nacht") + '\0' + "%1 Nächte"}};
  const auto catalog = Catalog::parse(catalogOf(german));
  ASSERT_TRUE(catalog);
  EXPECT_EQ(*catalog->find("Back"), "Zurück");
  EXPECT_EQ(catalog->find("Bac"), nullptr);
  EXPECT_EQ(catalog->find("%1 night", "%1 night", 1), nullptr);
  for (const auto& [rule, zero] : {std::pair(GERMAN, "%1 Nächte"), {FRENCH, "%1 Nacht"}}) {
    Entries entries = german;
    entries[0].second = rule;
    const auto other = Catalog::parse(catalogOf(entries));
    for (const auto& [count, text] : {std::pair(0, zero), {1, "%1 Nacht"}, {2, "%1 Nächte"}}) {
      EXPECT_EQ(*other->find("%1 night", "%1 nights", count), text) << rule << count;
    }
  }
}

TEST(Catalog, TakesNothingFromADamagedOne) {
  const std::string whole = catalogOf({{"", GERMAN}, {"Locks at %1", "Sperrt um %1"}});
  ASSERT_TRUE(Catalog::parse(whole));
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_FALSE(Catalog::parse(whole.substr(0, length))) << length;
  }
  for (std::size_t at = 0; at < whole.size(); ++at) {  // whatever it makes of it: it stays within its bytes
    std::string other = whole;
    other[at] = '\xff';
    std::ignore = Catalog::parse(other);
  }
  const struct {
    const char* name;
    Entries entries;
  } rows[] = {
      {"a place that is lost", {{"", GERMAN}, {"Locks at %1", "Sperrt"}}},
      {"a place too many", {{"", GERMAN}, {"Back", "Zurück %1"}}},
      {"no UTF-8", {{"", GERMAN}, {"Back", "Zur\xfc"}}},
      {"a rule that is not known", {{"", "plural=(n % 10)"}, {"Back", "Zurück"}}},
      {"a plural with one form", {{"", GERMAN}, {std::string("a") + '\0' + "b", "c"}, {"d", "e"}}},
      {"no text", {{"", GERMAN}}},
  };
  for (const auto& row : rows) EXPECT_FALSE(Catalog::parse(catalogOf(row.entries))) << row.name;
}

TEST(Texts, AreInTheLanguageThatTheSessionAsksFor) {
  const struct {
    LanguageVariables asked;
    Lines wanted;
  } rows[] = {
      {{"", "", "", ""}, {}},
      {{"", "", "", "de_AT.UTF-8@euro"}, {"de_AT", "de"}},
      {{"", "", "fr_FR", "de_DE"}, {"fr_FR", "fr"}},
      {{"", "C.UTF-8", "fr_FR", "de_DE"}, {}},
      {{"de", "", "", "C"}, {}},
      {{"de", "", "", "POSIX"}, {}},
      {{"sv:de:en:fr", "", "", "en_GB.UTF-8"}, {"sv", "de"}},
      {{"de_CH:de", "", "", "fr_CH"}, {"de_CH", "de"}},
      {{"../etc/passwd:xx_YY", "", "", "de_DE"}, {"xx_YY", "xx"}},
      {{"", "", "", "en_US.UTF-8"}, {}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(wantedLanguages(row.asked), row.wanted) << row.asked.language << ' ' << row.asked.lang;
  }
}

TEST(Texts, TakeTheirValuesWhereTheyWantThem) {
  EXPECT_EQ(filledIn("%2, %1; %3 100 % %", {"a%2", "b"}), "b, a%2; %3 100 % %");
}

/// No alert says anything that was not looked up. What scenes draw is seen by the drawn tests.
TEST(Texts, OfEveryAlertAreLookedUp) {
  const DesktopWording wording([] { return DesktopFacts{}; });
  const struct {
    const char* name;
    std::function<void(Program&)> lead;
  } rows[] = {
      {"switched off",
       [](Program& program) {
         program.machine.loginItems.setStatus(LoginItemStatus::requiresApproval);
         program.open();
       }},
      {"not armed",
       [](Program& program) {
         program.machine.scheduler.setBootstrapFailure(5);
         program.open();
       }},
      {"uninstall",
       [](Program& program) {
         program.open();
         program.machine.run([&] { program.delegate().confirmUninstall(); });
       }},
      {"uninstalled",
       [](Program& program) {
         program.open();
         program.machine.run([&] { program.delegate().confirmUninstall(); });
         program.answer("‹Uninstall›");
       }},
      {"in the wrong place",
       [](Program& program) {
         program.place("/home/user/Downloads/Dormel.app");
         program.machine.bundle.setPath("/home/user/Downloads/Dormel.app");
         program.open();
         program.machine.advance(1);
       }},
  };
  for (const auto& row : rows) {
    Program program;
    program.machine.wording.speakAs(wording);
    program.machine.texts.setMarked(true);
    row.lead(program);
    program.machine.settle();
    ASSERT_FALSE(program.machine.alerts.shown().empty()) << row.name;
    const Alert alert = program.machine.alerts.shown().back();
    Lines texts = alert.buttons;
    texts.insert(texts.end(), {alert.message, alert.informativeText});
    for (const std::string& text : texts) {
      EXPECT_TRUE(text.starts_with("‹") && text.ends_with("›")) << row.name << ": " << text;
    }
  }
}

}  // namespace
}  // namespace dormel
