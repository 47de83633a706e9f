// What a simulated desktop does for applications: folders of them, the trash, copies, opening things, the
// administrator's shell, the login item's switch.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/Workspace.h"
#include "platform/sim/SimFiles.h"
#include "platform/sim/SimJournal.h"

namespace dormel {

class SimWorkspace : public Workspace {
 public:
  SimWorkspace(SimJournal& journal, SimFiles& files) : journal_(journal), files_(files) {}

  [[nodiscard]] std::vector<std::string> applicationsDirectories() const override { return folders_; }
  [[nodiscard]] std::optional<std::string> localApplicationsDirectory() const override { return localFolder_; }
  [[nodiscard]] std::string standardized(const std::string& path) const override;
  [[nodiscard]] bool isOnReadOnlyImage(const std::string& path) const override;
  [[nodiscard]] bool isWritable(const std::string& path) const override { return files_.isWritable(path); }
  [[nodiscard]] bool isDeletable(const std::string& path) const override { return files_.isDeletable(path); }
  [[nodiscard]] bool isSameFile(const std::string& a, const std::string& b) const override;
  FileResult putCopy(const std::string& from, const std::string& to) override { return files_.putCopy(from, to); }
  [[nodiscard]] std::vector<std::string> runningBundles() const override { return running_; }
  [[nodiscard]] std::string iconForFile(const std::string& path) const override { return path + "/icon.png"; }
  bool open(const std::string& pathOrAddress) override;
  [[nodiscard]] std::string adviceFor(const std::string& settingsAddress) const override {
    return "Look for " + settingsAddress.substr(settingsAddress.find('?') + 1) + ".";
  }
  void registerApplication(const std::string& bundle) override;
  void forgetApplication() override;
  /// Only recorded: nothing on the disk changes.
  std::optional<AuthorizationError> runAsAdministrator(const std::string& command) override;

  // The world's side.
  /// Whether this desktop has settings pages that can be opened.
  void setHasSettings(bool has) { hasSettings_ = has; }
  /// Where a program moves itself to; nothing for no such place.
  void setLocalApplicationsDirectory(std::optional<std::string> folder) { localFolder_ = std::move(folder); }
  /// A symbolic link to a folder.
  void link(const std::string& path, const std::string& target) { links_[path] = target; }
  /// The folder's disk is mounted there a second time, which no look at the path tells.
  void mountAgain(const std::string& path, const std::string& folder) { mounts_[path] = folder; }
  /// A read-only disk image is mounted there.
  void mountImage(const std::string& path);
  void setRunningBundles(std::vector<std::string> bundles) { running_ = std::move(bundles); }
  /// The bundle that stands in the desktop's menus; empty for none.
  [[nodiscard]] const std::string& listed() const { return listed_; }
  /// What the administrator's shell answers from now on; nothing when all goes well.
  void setAdministratorAnswer(std::optional<AuthorizationError> answer) { answer_ = std::move(answer); }

 private:
  SimJournal& journal_;
  SimFiles& files_;
  std::vector<std::string> folders_{"/home/user/Applications", "/Applications"};
  std::optional<std::string> localFolder_ = "/Applications";
  std::map<std::string, std::string> links_;
  std::map<std::string, std::string> mounts_;
  std::vector<std::string> images_;
  std::vector<std::string> running_;
  bool hasSettings_ = true;
  std::optional<AuthorizationError> answer_;
  std::string listed_;
};

class SimLoginItems : public LoginItems {
 public:
  explicit SimLoginItems(SimJournal& journal) : journal_(journal) {}

  [[nodiscard]] LoginItemStatus status(const std::string& /*path*/) const override { return status_; }
  bool openSettings() override {
    if (hasSettings_) journal_.note("login items page opened");
    return hasSettings_;
  }
  [[nodiscard]] std::string advice() const override { return "Look among what starts at login."; }

  void setStatus(LoginItemStatus status) { status_ = status; }
  void setHasSettings(bool has) { hasSettings_ = has; }

 private:
  SimJournal& journal_;
  LoginItemStatus status_ = LoginItemStatus::enabled;
  bool hasSettings_ = true;
};

}  // namespace dormel
