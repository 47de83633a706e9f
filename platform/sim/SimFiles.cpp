#include "platform/sim/SimFiles.h"

#include <utility>

namespace dormel {
namespace {

constexpr unsigned UMASK = 022;
constexpr unsigned OWNER_READ = 0400;
constexpr unsigned OWNER_WRITE = 0200;
constexpr unsigned OWNER_SEARCH = 0100;

FileResult failure(const char* message) { return FileError{message}; }

const char* const NO_SUCH = "No such file or directory";
const char* const DENIED = "Permission denied";
const char* const NOT_A_FOLDER = "Not a directory";
const char* const IS_A_FOLDER = "Is a directory";
const char* const DISK_FULL = "No space left on device";

std::string parentOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == 0 || slash == std::string::npos ? "/" : path.substr(0, slash);
}

}  // namespace

SimFiles::SimFiles(SimJournal& journal) : journal_(journal) {
  nodes_["/"] = {true, 0755, {}};
  putDirectory(HOME, 0755);
  putDirectory("/Applications", 0755);
}

bool SimFiles::exists(const std::string& path) const { return find(path) != nullptr && !blocked(path, false); }

FileResult SimFiles::createDirectories(const std::string& path, unsigned mode) {
  if (const Node* node = find(path)) return node->isFolder ? FileResult{} : failure("File exists");
  if (auto error = createDirectories(parentOf(path), mode)) return error;
  if (const auto error = blocked(path, true)) return noted("mkdir ", path, error);
  nodes_[path] = {true, mode & ~UMASK, {}};
  return noted("mkdir ", path, {});
}

FileResult SimFiles::setMode(const std::string& path, unsigned mode) {
  if (auto error = blocked(path, false)) return error;
  Node* node = find(path);
  if (node == nullptr) return failure(NO_SUCH);
  if (node->mode != mode) noted("chmod ", path, {});
  node->mode = mode;
  return {};
}

std::optional<unsigned> SimFiles::mode(const std::string& path) const {
  return exists(path) ? std::optional(find(path)->mode) : std::nullopt;
}

std::optional<std::string> SimFiles::read(const std::string& path) const {
  const Node* node = find(path);
  if (node == nullptr || node->isFolder || (node->mode & OWNER_READ) == 0 || blocked(path, false)) return {};
  return node->bytes;
}

FileResult SimFiles::write(const std::string& path, std::string_view bytes, std::optional<unsigned> mode) {
  const char* const verb = "write ";
  Node* node = find(path);
  const bool isNew = node == nullptr;
  if (const auto error = blocked(path, isNew)) return noted(verb, path, error);
  if (!isNew && node->isFolder) return noted(verb, path, failure(IS_A_FOLDER));
  if (!isNew && (node->mode & OWNER_WRITE) == 0) return noted(verb, path, failure(DENIED));
  if (!isNew) giveBack(std::exchange(node->bytes, {}).size());  // truncated first, whatever comes
  if (const auto error = take(bytes.size())) return noted(verb, path, error);
  if (isNew) node = &(nodes_[path] = {false, 0666 & ~UMASK, {}});
  node->bytes = bytes;
  if (mode) node->mode = *mode;
  return noted(verb, path, {});
}

FileResult SimFiles::writeAtomically(const std::string& path, std::string_view bytes) {
  const char* const verb = "write ";
  if (const auto error = blocked(path, true)) return noted(verb, path, error);
  Node* node = find(path);
  if (node != nullptr && node->isFolder) return noted(verb, path, failure(IS_A_FOLDER));
  if (const auto error = take(bytes.size())) return noted(verb, path, error);
  if (node == nullptr) node = &(nodes_[path] = {false, 0666 & ~UMASK, {}});
  giveBack(node->bytes.size());
  node->bytes = bytes;
  return noted(verb, path, {});
}

bool SimFiles::append(const std::string& path, std::string_view bytes) {
  Node* node = find(path);
  if (node == nullptr) return false;
  if (node->isFolder || (node->mode & OWNER_WRITE) == 0 || blocked(path, false)) return true;
  FileResult result = take(bytes.size());
  if (!result) node->bytes += bytes;
  noted("append ", path, std::move(result));
  return true;
}

FileResult SimFiles::rename(const std::string& from, const std::string& to) {
  const char* const verb = "rename ";
  const auto node = nodes_.find(from);
  if (node == nodes_.end()) return noted(verb, to, failure(NO_SUCH));
  if (const auto error = blocked(from, true)) return noted(verb, to, error);
  if (const auto error = blocked(to, true)) return noted(verb, to, error);
  if (node->second.isFolder) return noted(verb, to, failure("Renaming folders is not simulated"));
  if (const Node* target = find(to)) {
    if (target->isFolder) return noted(verb, to, failure(IS_A_FOLDER));
    giveBack(target->bytes.size());
  }
  Node moved = std::move(node->second);
  nodes_.erase(node);
  nodes_[to] = std::move(moved);
  return noted(verb, to, {});
}

FileResult SimFiles::remove(const std::string& path) {
  if (find(path) == nullptr) return failure(NO_SUCH);
  if (const auto error = blocked(path, true)) return noted("remove ", path, error);
  erase(path);
  return noted("remove ", path, {});
}

bool SimFiles::isWritable(const std::string& path) const { return (mode(path).value_or(0) & OWNER_WRITE) != 0; }

bool SimFiles::isDeletable(const std::string& path) const { return find(path) != nullptr && !blocked(path, true); }

FileResult SimFiles::putCopy(const std::string& from, const std::string& to) {
  const char* const verb = "copy to ";
  if (!exists(from)) return noted(verb, to, failure(NO_SUCH));
  if (const auto error = blocked(to, true)) return noted(verb, to, error);
  const std::string staging = to + ".copy";
  for (const std::string& path : tree(from)) {
    Node node = *find(path);
    if (const auto error = take(node.bytes.size())) {
      erase(staging);
      return noted(verb, to, error);
    }
    node.mode |= node.isFolder ? OWNER_WRITE | OWNER_SEARCH : OWNER_WRITE;
    nodes_[staging + path.substr(from.size())] = node;
  }
  if (find(to) != nullptr) moveToTrash(to);
  moveTree(staging, to);
  return noted(verb, to, {});
}

void SimFiles::moveTree(const std::string& from, const std::string& to) {
  for (const std::string& name : tree(from)) {
    auto node = nodes_.extract(name);
    node.key() = to + name.substr(from.size());
    nodes_.insert(std::move(node));
  }
}

void SimFiles::moveToTrash(const std::string& path) {
  const std::string trash = std::string(HOME) + "/.Trash";
  const std::string to = trash + path.substr(path.rfind('/'));
  putDirectory(trash, 0700);
  erase(to);
  moveTree(path, to);
  noted("trash ", path, {});
}

void SimFiles::put(const std::string& path, std::string_view bytes, unsigned mode) {
  putDirectory(parentOf(path));
  nodes_[path] = {false, mode, std::string(bytes)};
}

void SimFiles::putDirectory(const std::string& path, unsigned mode) {
  if (find(path) != nullptr) return;
  putDirectory(parentOf(path));
  nodes_[path] = {true, mode, {}};
}

void SimFiles::chmod(const std::string& path, unsigned mode) {
  if (Node* node = find(path)) node->mode = mode;
}

void SimFiles::erase(const std::string& path) {
  const std::string below = path + "/";
  for (auto it = nodes_.lower_bound(path); it != nodes_.end();) {
    if (it->first == path || it->first.starts_with(below)) {
      giveBack(it->second.bytes.size());
      it = nodes_.erase(it);
    } else if (it->first > below && !it->first.starts_with(path)) {
      break;
    } else {
      ++it;
    }
  }
}

std::string SimFiles::content(const std::string& path) const {
  const Node* node = find(path);
  return node == nullptr ? std::string() : node->bytes;
}

std::vector<std::string> SimFiles::names(const std::string& folder) const {
  std::vector<std::string> found;
  for (const auto& [path, node] : nodes_) {
    if (path != "/" && parentOf(path) == folder) found.push_back(path.substr(path.rfind('/') + 1));
  }
  return found;
}

const SimFiles::Node* SimFiles::find(const std::string& path) const {
  const auto it = nodes_.find(path);
  return it == nodes_.end() ? nullptr : &it->second;
}

SimFiles::Node* SimFiles::find(const std::string& path) { return const_cast<Node*>(std::as_const(*this).find(path)); }

FileResult SimFiles::blocked(const std::string& path, bool toChange) const {
  const std::string parent = parentOf(path);
  for (std::string folder = parent;; folder = parentOf(folder)) {
    const Node* node = find(folder);
    if (node == nullptr) return failure(NO_SUCH);
    if (!node->isFolder) return failure(NOT_A_FOLDER);
    if ((node->mode & OWNER_SEARCH) == 0) return failure(DENIED);
    if (toChange && folder == parent && (node->mode & OWNER_WRITE) == 0) return failure(DENIED);
    if (folder == "/") return {};
  }
}

std::vector<std::string> SimFiles::tree(const std::string& path) const {
  std::vector<std::string> found;
  for (const auto& [name, node] : nodes_) {
    if (name == path || name.starts_with(path + "/")) found.push_back(name);
  }
  return found;
}

FileResult SimFiles::take(std::size_t bytes) {
  if (!freeBytes_) return {};
  if (bytes > *freeBytes_) return failure(DISK_FULL);
  *freeBytes_ -= bytes;
  return {};
}

void SimFiles::giveBack(std::size_t bytes) {
  if (freeBytes_) *freeBytes_ += bytes;
}

FileResult SimFiles::noted(const char* verb, const std::string& path, FileResult result) {
  if (result) {
    journal_.note(verb, shown(path), ": ", result->message);
  } else {
    journal_.note(verb, shown(path));
  }
  return result;
}

std::string SimFiles::shown(const std::string& path) {
  const std::string home = HOME;
  return path.starts_with(home + "/") ? "~" + path.substr(home.size()) : path;
}

}  // namespace dormel
