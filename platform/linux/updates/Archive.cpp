#include "platform/linux/updates/Archive.h"

#include <archive.h>
#include <archive_entry.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <map>
#include <memory>
#include <system_error>
#include <utility>

#include "platform/linux/posix/FileDescriptor.h"
#include "platform/linux/posix/PosixFiles.h"

namespace dormel::updates {
namespace {

namespace fs = std::filesystem;

constexpr int MOST_ENTRIES = 20'000;
constexpr std::uint64_t MOST_BYTES = 1024ULL * 1024 * 1024;
constexpr std::size_t LONGEST_NAME = 1024;

struct Fault {
  std::string trouble;
  bool disk = false;
};

[[noreturn]] void refuse(const std::string& what, const std::string& name) { throw Fault{what + ": " + name}; }

[[noreturn]] void failOnDisk(const std::string& path, int error) {
  throw Fault{path + ": " + std::generic_category().message(error), true};
}

struct CloseArchive {
  void operator()(archive* reader) const { archive_read_free(reader); }
};
using Reader = std::unique_ptr<archive, CloseArchive>;

Reader open(std::string_view bytes) {
  Reader reader(archive_read_new());
  for (const auto support :
       {archive_read_support_format_tar, archive_read_support_format_zip, archive_read_support_filter_gzip,
        archive_read_support_filter_xz, archive_read_support_filter_zstd}) {
    support(reader.get());
  }
  if (archive_read_open_memory(reader.get(), bytes.data(), bytes.size()) != ARCHIVE_OK) {
    throw Fault{"this is no archive that we know"};
  }
  return reader;
}

class Unpacking {
 public:
  Unpacking(std::string_view bytes, fs::path folder) : reader_(open(bytes)), folder_(std::move(folder)) {}

  std::string run() {
    archive_entry* entry = nullptr;
    int count = 0;
    for (;;) {
      const int status = archive_read_next_header(reader_.get(), &entry);
      if (status == ARCHIVE_EOF) break;
      if (status != ARCHIVE_OK) throw Fault{"the archive is damaged"};
      if (++count > MOST_ENTRIES) throw Fault{"the archive has too many entries"};
      take(entry);
    }
    if (top_.empty()) throw Fault{"the archive is empty"};
    // Only now: nothing that was unpacked can have been written through one of them.
    for (const auto& [name, target] : links_) makeLink(name, target);
    return (folder_ / top_).string();
  }

 private:
  void take(archive_entry* entry) {
    const char* raw = archive_entry_pathname(entry);
    const fs::path name = checkedName(raw == nullptr ? "" : raw);
    if (name.empty()) {
      // Tools that pack "." put it first.
      if (archive_entry_filetype(entry) == AE_IFDIR) return;
      refuse("a name that is not allowed", ".");
    }
    if (archive_entry_hardlink(entry) != nullptr) refuse("a hard link", name.string());
    switch (archive_entry_filetype(entry)) {
      case AE_IFDIR:
        makeFolders(name);
        break;
      case AE_IFREG:
        makeFolders(name.parent_path());
        makeFile(name, (archive_entry_perm(entry) & S_IXUSR) != 0);
        break;
      case AE_IFLNK: {
        const char* target = archive_entry_symlink(entry);
        makeFolders(name.parent_path());
        if (!links_.emplace(name, checkedTarget(name, target == nullptr ? "" : target)).second) {
          refuse("a name that comes twice", name.string());
        }
        break;
      }
      default:
        refuse("neither file nor folder nor link", name.string());
    }
  }

  /// The entry's place below the folder; empty for the folder itself.
  fs::path checkedName(const std::string& raw) {
    if (raw.empty() || raw.size() > LONGEST_NAME || raw.front() == '/') refuse("a name that is not allowed", raw);
    fs::path name;
    for (const fs::path& part : fs::path(raw)) {
      if (part == "..") refuse("a name that climbs", raw);
      if (part != "." && !part.empty()) name /= part;
    }
    if (name.empty()) return name;
    const std::string top = name.begin()->string();
    if (top_.empty()) top_ = top;
    if (top != top_ || !top.ends_with(".app")) refuse("not a part of the one bundle", raw);
    return name;
  }

  /// A link's target, which has to stay within the bundle wherever the link is followed from.
  static std::string checkedTarget(const fs::path& name, const std::string& target) {
    if (target.empty() || target.size() > LONGEST_NAME || target.front() == '/') {
      refuse("a link that leads out", name.string());
    }
    auto depth = std::distance(name.begin(), name.end()) - 2;  // folders between the bundle and the link
    if (depth < 0) refuse("a link in the bundle's place", name.string());
    // It may climb at its beginning only, where the folders are real ones: behind another link, up is somewhere else.
    bool descends = false;
    for (const fs::path& part : fs::path(target)) {
      descends = descends || part != "..";
      if (part == ".." && (descends || --depth < 0)) refuse("a link that leads out", name.string());
    }
    return target;
  }

  void makeFolders(const fs::path& name) {
    fs::path so;
    for (const fs::path& part : name) {
      so /= part;
      if (links_.contains(so)) refuse("a name that goes through a link", name.string());
      const std::string path = (folder_ / so).string();
      if (::mkdir(path.c_str(), 0755) == 0) continue;
      if (errno != EEXIST) failOnDisk(path, errno);
      if (!fs::is_directory(fs::symlink_status(path))) refuse("a name that comes twice", name.string());
    }
  }

  void makeFile(const fs::path& name, bool isProgram) {
    const std::string path = (folder_ / name).string();
    if (links_.contains(name)) refuse("a name that comes twice", name.string());
    const posix::FileDescriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, isProgram ? 0755 : 0644));
    if (!file.valid()) {
      if (errno == EEXIST) refuse("a name that comes twice", name.string());
      failOnDisk(path, errno);
    }
    std::array<char, 65'536> part{};
    for (;;) {
      const la_ssize_t got = archive_read_data(reader_.get(), part.data(), part.size());
      if (got == 0) return;
      if (got < 0) throw Fault{"the archive is damaged"};
      const auto count = static_cast<std::size_t>(got);
      bytes_ += count;
      if (bytes_ > MOST_BYTES) throw Fault{"the archive is too large"};
      std::string_view bytes(part.data(), count);
      if (!posix::writeAll(file.get(), bytes)) failOnDisk(path, errno);
    }
  }

  void makeLink(const fs::path& name, const std::string& target) const {
    const std::string path = (folder_ / name).string();
    if (::symlink(target.c_str(), path.c_str()) == 0) return;
    if (errno == EEXIST) refuse("a name that comes twice", name.string());
    failOnDisk(path, errno);
  }

  Reader reader_;
  const fs::path folder_;
  std::string top_;
  std::map<fs::path, std::string> links_;
  std::uint64_t bytes_ = 0;
};

}  // namespace

Unpacked unpackBundle(std::string_view archive, const std::string& folder) {
  try {
    return {Unpacking(archive, folder).run()};
  } catch (const Fault& fault) {
    return {{}, fault.trouble, fault.disk};
  }
}

}  // namespace dormel::updates
