// What is read from a feed, from an archive and from the helper, and what is not.
#include <archive.h>
#include <archive_entry.h>
#include <gtest/gtest.h>

#include "platform/linux/updates/Address.h"
#include "platform/linux/updates/Archive.h"
#include "platform/linux/updates/BundleExchange.h"
#include "platform/linux/updates/Feed.h"
#include "platform/linux/updates/Signature.h"
#include "platform/linux/updates/UpdateResult.h"
#include "tests/posix/TemporaryHome.h"

namespace dormel::updates {
namespace {

namespace fs = std::filesystem;

TEST(Updates, VersionsAreComparedByTheirNumbers) {
  const char* const rising[] = {"0", "1", "1.0.1", "1.2", "1.10", "2", "2.0.0.1", "9.9", "10", "999999999"};
  for (std::size_t i = 0; i + 1 < std::size(rising); ++i) {
    EXPECT_LT(*BundleVersion::parse(rising[i]), *BundleVersion::parse(rising[i + 1])) << rising[i];
  }
  EXPECT_EQ(BundleVersion::parse("1"), BundleVersion::parse("01.0.0"));
  for (const char* text :
       {"", ".", "1.", ".1", "1..2", "1.2.3.4.5", "1000000000", "-1", "+1", " 1", "1 ", "1a", "1,2"}) {
    EXPECT_FALSE(BundleVersion::parse(text)) << text;
  }
}

TEST(Updates, AddressesAreSecureOrOnThisMachine) {
  for (const char* text : {"https://example.org", "https://example.org:8443/a?b#c", "http://127.0.0.1:80/x",
                           "http://127.9.8.7", "http://[::1]:8080/", "http://localhost/feed.json"}) {
    EXPECT_TRUE(isAllowedAddress(text)) << text;
  }
  for (const char* text :
       {"", "https://", "https:///x", "http://example.org/", "ftp://example.org/", "file:///etc/passwd", "HTTPS://x/",
        "http://127.0.0.1.example.org/", "http://127.0.0.1@example.org/", "http://localhost.example.org/",
        "http://127.1/", "http://127..0.1/", "http://127.0.0.1:x/", "http://[::1/", "http://127.0.0.1\\@example.org/",
        "https://u:p@example.org/", "https://example.org/a b", "https://example.org/\n",
        "https://ex\xC3\xA4mple.org/"}) {
    EXPECT_FALSE(isAllowedAddress(text)) << text;
  }
  EXPECT_FALSE(isAllowedAddress("https://example.org/" + std::string(2048, 'x')));
  EXPECT_TRUE(isAllowedRedirect("http://127.0.0.1/", "http://127.0.0.1/b"));
  EXPECT_TRUE(isAllowedRedirect("https://a.org/", "https://b.org/"));
  EXPECT_FALSE(isAllowedRedirect("https://a.org/", "http://127.0.0.1/")) << "never to a service of this machine";
}

std::string entry(const std::string& key = "", const std::string& value = "") {
  const std::pair<std::string, std::string> fields[] = {{"build", R"("15")"},
                                                        {"version", R"("1.1")"},
                                                        {"url", R"("https://example.org/a.tar.xz")"},
                                                        {"length", "5"},
                                                        {"signature", '"' + std::string(88, 'A') + '"'}};
  std::string text;
  for (const auto& [name, usual] : fields) {
    const std::string& chosen = name == key ? value : usual;
    if (!chosen.empty()) text += (text.empty() ? "\"" : ", \"") + name + "\": " + chosen;
  }
  return "{" + text + "}";
}

TEST(Updates, FeedIsReadWholeOrNotAtAll) {
  const auto feed = [](const std::string& entries) { return R"({"format": 1, "updates": [)" + entries + "]}"; };
  const auto entries = parseFeed(feed(entry() + "," + entry("build", R"("15.1")") + "," + entry("build", R"("9")")));
  ASSERT_TRUE(entries);
  EXPECT_EQ(newest(*entries)->build.text(), "15.1");
  const FeedEntry& first = entries->front();
  EXPECT_EQ(write(*parseEntry(write(first))), write(first));
  EXPECT_EQ(first.length, 5U);
  ASSERT_TRUE(parseFeed(feed("")));
  EXPECT_EQ(newest(*parseFeed(feed(""))), nullptr);
  EXPECT_TRUE(parseFeed(R"({"later": [{}], "format": 1, "updates": []})"));

  const std::pair<const char*, std::vector<const char*>> bad[] = {
      {"build", {"", "15", R"("")", R"("1-2")"}},
      {"version", {"", R"("new <b>")"}},
      {"url", {"", R"("http://example.org/")", "null"}},
      {"length", {"", "0", "-5", "5.0", R"("5")", "134217729", "99999999999999999999"}},
      {"signature", {"", R"("AAAA")"}}};
  for (const auto& [key, values] : bad) {
    for (const char* value : values) {
      EXPECT_FALSE(parseFeed(feed(entry() + "," + entry(key, value)))) << key << ": " << value;
    }
  }
  std::string many = entry();
  for (std::size_t i = 0; i < MOST_ENTRIES; ++i) many += "," + entry();
  for (const std::string& text :
       {std::string(), std::string("null"), std::string("[]"), std::string(R"({"updates": []})"),
        std::string(R"({"format": 2, "updates": []})"), std::string(R"({"format": "1", "updates": []})"),
        std::string(R"({"format": 1, "updates": {}})"), feed("5"), feed(entry()) + "x", feed(many),
        feed(entry("version", "\"\xFF\"")), std::string(500'000, '['), feed("") + std::string(LARGEST_FEED, ' ')}) {
    EXPECT_FALSE(parseFeed(text)) << text.substr(0, 80);
  }
}

TEST(Updates, SignaturesAreThoseOfTheStandard) {
  // RFC 8032, 7.1, test 3: two bytes.
  const auto key = PublicKey::fromBase64("/FHNjmIYoaONpH7QAjDwWAgW7RO6MwOsXeuRFUiQgCU=");
  ASSERT_TRUE(key);
  const std::string right = "YpHWV97sJAJIJ+acOr4BowzlSKKEdDpEXjaA19taw6wY/5tTjRbykK5n92CYTcZZSnwV6XFu0o3AJ77O6h7ECg==";
  EXPECT_TRUE(key->verifies("\xaf\x82", right));
  EXPECT_FALSE(key->verifies("\xaf\x82", right.substr(0, 84) + "Ag=="));
  EXPECT_FALSE(key->verifies("\xaf\x83", right));
  for (const char* text : {"", "AAAA", "/FHNjmIYoaONpH7QAjDwWAgW7RO6MwOsXeuRFUiQgCU", "not base64!"}) {
    EXPECT_FALSE(PublicKey::fromBase64(text)) << text;
  }
}

struct Entry {
  std::string name;
  mode_t type = AE_IFREG;
  std::string text{};  // or the link's target
  mode_t mode = 0644;
};

std::string packed(const std::vector<Entry>& entries, bool zip = false) {
  std::string bytes(1 << 20, '\0');
  std::size_t used = 0;
  archive* writer = archive_write_new();
  zip ? archive_write_set_format_zip(writer) : archive_write_set_format_pax(writer);
  if (!zip) archive_write_add_filter_zstd(writer);
  archive_write_open_memory(writer, bytes.data(), bytes.size(), &used);
  for (const Entry& one : entries) {
    archive_entry* header = archive_entry_new();
    archive_entry_set_pathname(header, one.name.c_str());
    archive_entry_set_perm(header, one.mode);
    archive_entry_set_filetype(header, one.type == AE_IFMT ? AE_IFREG : one.type);
    if (one.type == AE_IFLNK) archive_entry_set_symlink(header, one.text.c_str());
    if (one.type == AE_IFMT) archive_entry_set_hardlink(header, one.text.c_str());
    archive_entry_set_size(header, one.type == AE_IFREG ? static_cast<la_int64_t>(one.text.size()) : 0);
    archive_write_header(writer, header);
    if (one.type == AE_IFREG) archive_write_data(writer, one.text.data(), one.text.size());
    archive_entry_free(header);
  }
  archive_write_close(writer);
  archive_write_free(writer);
  bytes.resize(used);
  return bytes;
}

TEST(Updates, ArchivesAreUnpackedOrRefused) {
  const TemporaryHome home;
  const std::string folder = home.path() + "/to";
  const std::vector<Entry> good{{"./", AE_IFDIR},
                                {"./A.app/Contents/Linux/A", AE_IFREG, "program", 06755},
                                {"A.app/Contents/Info.plist", AE_IFREG, "plist", 0666},
                                {"A.app/Contents/Linux/up", AE_IFLNK, "../Info.plist"},
                                {"A.app/Contents/here", AE_IFLNK, "."}};
  for (const bool zip : {false, true}) {
    fs::create_directory(folder);
    const Unpacked unpacked = unpackBundle(packed(good, zip), folder);
    ASSERT_EQ(unpacked.bundle, folder + "/A.app") << unpacked.trouble;
    EXPECT_EQ(contents(folder + "/A.app/Contents/Linux/up"), "plist");
    EXPECT_EQ(static_cast<int>(fs::status(folder + "/A.app/Contents/Linux/A").permissions()) & 07111, 0111);
    EXPECT_EQ(static_cast<int>(fs::status(folder + "/A.app/Contents/Info.plist").permissions()) & 07133, 0);
    fs::remove_all(folder);
  }
  const std::vector<std::vector<Entry>> bad{
      {},
      {{"/A.app/x"}},
      {{"A.app/../../x"}},
      {{"../A.app/x"}},
      {{"A.app"}, {"B.app"}},
      {{"folder/x"}},
      {{"A.app/x"}, {"A.app/x"}},
      {{"A.app/x"}, {"A.app/x/y"}},
      {{"A.app/x", AE_IFLNK, "/etc"}},
      {{"A.app/x", AE_IFLNK, "../x"}},
      {{"A.app/d/x", AE_IFLNK, "../../x"}},
      {{"A.app", AE_IFLNK, "x.app"}},
      {{"A.app/a/b/l", AE_IFLNK, "../.."}, {"A.app/out", AE_IFLNK, "a/b/l/.."}},
      {{"A.app/l", AE_IFLNK, "."}, {"A.app/l/x"}},
      {{"A.app/l", AE_IFLNK, "x"}, {"A.app/l"}},
      {{"A.app/l"}, {"A.app/l", AE_IFLNK, "x"}},
      {{"A.app/l", AE_IFLNK, "x"}, {"A.app/l", AE_IFLNK, "y"}},
      {{"A.app/x"}, {"A.app/y", AE_IFMT, "A.app/x"}},
      {{"A.app/x", AE_IFCHR}},
      {{"A.app/x", AE_IFIFO}},
      {{"A.app/" + std::string(1100, 'x')}},
  };
  for (std::size_t i = 0; i < bad.size(); ++i) {
    fs::create_directory(folder);
    const Unpacked unpacked = unpackBundle(packed(bad[i]), folder);
    EXPECT_FALSE(unpacked.bundle) << "line " << i + 1;
    EXPECT_FALSE(unpacked.disk) << "line " << i + 1 << ": " << unpacked.trouble;
    EXPECT_FALSE(fs::exists(home.path() + "/x") || fs::exists(folder + "/x")) << "line " << i + 1;
    fs::remove_all(folder);
  }
  const std::string whole = packed(good);
  for (const std::size_t length : {std::size_t{0}, std::size_t{3}, whole.size() / 2}) {
    fs::create_directory(folder);
    EXPECT_FALSE(unpackBundle(whole.substr(0, length), folder).bundle) << length << " bytes of " << whole.size();
    fs::remove_all(folder);
  }
}

TEST(Updates, ExchangesBundlesAndRepairsHalfAnExchange) {
  const TemporaryHome home;
  const std::string old = home.path() + "/A.app", fresh = home.path() + "/new/A.app", aside = home.path() + "/new/old";
  put(old + "/x", "old");
  put(fresh + "/x", "new");
  ASSERT_FALSE(exchangeBundles(fresh, old, aside));
  EXPECT_EQ(contents(old + "/x") + contents(fresh + "/x"), "newold");
  EXPECT_TRUE(exchangeBundles(home.path() + "/missing", old, aside));
  repairExchange(old, aside);
  EXPECT_EQ(contents(old + "/x"), "new") << "nothing to repair";
  fs::rename(old, aside);
  repairExchange(old, aside);
  EXPECT_EQ(contents(old + "/x"), "new");
}

TEST(Updates, VerdictsGoThroughTheirLine) {
  for (int kind = 0; kind <= static_cast<int>(UpdateResult::Kind::broken); ++kind) {
    const UpdateResult result{static_cast<UpdateResult::Kind>(kind), "1.1"};
    EXPECT_EQ(parseResult(write(result)), result);
    EXPECT_EQ(sentence(result, "1.0").find('%'), std::string::npos);
  }
  for (const char* line : {"", "what", "ready ", "ready <b>", "ready  1.1"}) EXPECT_FALSE(parseResult(line)) << line;
}

}  // namespace
}  // namespace dormel::updates
