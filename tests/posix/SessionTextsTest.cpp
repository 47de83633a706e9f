#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <utility>
#include <vector>

#include "platform/linux/posix/SessionTexts.h"
#include "tests/posix/TemporaryHome.h"

namespace dormel {
namespace {

TEST(SessionTexts, AreThoseOfTheFirstLanguageThatIsThereAndWhole) {
  const TemporaryHome home;
  const std::string folder = home.path() + "/texts";
  std::filesystem::copy(DORMEL_TEXTS, folder);
  const std::string german = contents(folder + "/de.mo");
  put(folder + "/nl.mo", german.substr(0, german.size() / 2));
  const struct {
    const char* lang;
    const char* language;
    const char* spoken;
    const char* back;
    std::size_t errors = 0;
  } rows[] = {
      // The C library has no locale "xx_YY", and nobody has translated "xx".
      {"de_DE.UTF-8", "", "de", "Zurück"}, {"xx_YY.UTF-8", "xx:fr", "fr", "Retour"},
      {"sv_SE.UTF-8", "", "en", "Back"},   {"nl_NL.UTF-8", "nl:de", "en", "Back", 1},
      {"C", "de", "en", "Back"},
  };
  for (const char* name : {"LC_ALL", "LC_MESSAGES"}) ::unsetenv(name);
  for (const auto& row : rows) {
    ::setenv("LANG", row.lang, 1);
    ::setenv("LANGUAGE", row.language, 1);
    Recorder output;
    const posix::SessionTexts texts(folder, output);
    for (int time = 0; time < 2; ++time) EXPECT_EQ(texts.translated("Back"), row.back) << row.lang;
    EXPECT_EQ(texts.translated("not a text"), "not a text");
    EXPECT_EQ(texts.translated("one", "many", 2), "many");
    EXPECT_EQ(texts.language(), row.spoken) << row.lang;
    EXPECT_EQ(output.errors.size(), row.errors) << row.lang;
  }
  ::unsetenv("LANG");
  ::unsetenv("LANGUAGE");
}

}  // namespace
}  // namespace dormel
