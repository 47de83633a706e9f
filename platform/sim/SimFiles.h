// A file system in memory: folders, permissions that are enforced as for an ordinary user, and a disk that fills up.
#pragma once

#include <map>
#include <vector>

#include "platform/Files.h"
#include "platform/sim/SimJournal.h"

namespace dormel {

class SimFiles : public Files {
 public:
  explicit SimFiles(SimJournal& journal);

  [[nodiscard]] std::string homeDirectory() const override { return HOME; }
  [[nodiscard]] bool exists(const std::string& path) const override;
  FileResult createDirectories(const std::string& path, unsigned mode) override;
  FileResult setMode(const std::string& path, unsigned mode) override;
  [[nodiscard]] std::optional<unsigned> mode(const std::string& path) const override;
  [[nodiscard]] std::optional<std::string> read(const std::string& path) const override;
  FileResult write(const std::string& path, std::string_view bytes, std::optional<unsigned> mode) override;
  FileResult writeAtomically(const std::string& path, std::string_view bytes) override;
  bool append(const std::string& path, std::string_view bytes) override;
  FileResult rename(const std::string& from, const std::string& to) override;
  FileResult remove(const std::string& path) override;

  // What a desktop does with files.
  /// Whether this user may change the file, or make entries in the folder.
  [[nodiscard]] bool isWritable(const std::string& path) const;
  /// Whether this user may take it out of its folder.
  [[nodiscard]] bool isDeletable(const std::string& path) const;
  /// A file, or a folder with all it holds. What stood there goes to ~/.Trash, whatever lay there under that name, once
  /// the copy is whole. One that fails changes nothing.
  FileResult putCopy(const std::string& from, const std::string& to);

  // The world's side: no permission is asked, nothing goes into the journal.
  /// Puts a file there, and the folders above it.
  void put(const std::string& path, std::string_view bytes, unsigned mode = 0644);
  void putDirectory(const std::string& path, unsigned mode = 0755);
  void chmod(const std::string& path, unsigned mode);
  void erase(const std::string& path);
  /// What the file holds, whatever its permissions; empty when there is none.
  [[nodiscard]] std::string content(const std::string& path) const;
  /// The names in a folder, sorted.
  [[nodiscard]] std::vector<std::string> names(const std::string& folder) const;
  /// How many more bytes the disk takes; nothing for any number.
  void setFreeBytes(std::optional<std::size_t> bytes) { freeBytes_ = bytes; }

 private:
  struct Node {
    bool isFolder = false;
    unsigned mode = 0;
    std::string bytes;
  };

  static constexpr const char* HOME = "/home/user";

  [[nodiscard]] const Node* find(const std::string& path) const;
  [[nodiscard]] Node* find(const std::string& path);
  /// Why `path` cannot be reached through its folders, or (`toChange`) its folder's entries cannot be changed.
  [[nodiscard]] FileResult blocked(const std::string& path, bool toChange) const;
  [[nodiscard]] FileResult take(std::size_t bytes);
  void moveTree(const std::string& from, const std::string& to);
  void moveToTrash(const std::string& path);
  /// The names of `path` and of all that lies below it.
  [[nodiscard]] std::vector<std::string> tree(const std::string& path) const;
  void giveBack(std::size_t bytes);
  FileResult noted(const char* verb, const std::string& path, FileResult result);
  [[nodiscard]] static std::string shown(const std::string& path);

  SimJournal& journal_;
  std::map<std::string, Node, std::less<>> nodes_;
  std::optional<std::size_t> freeBytes_;
};

}  // namespace dormel
