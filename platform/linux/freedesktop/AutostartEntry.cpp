#include "platform/linux/freedesktop/AutostartEntry.h"

#include <unistd.h>

#include "platform/linux/freedesktop/BaseDirectories.h"
#include "platform/linux/freedesktop/TextFile.h"

namespace dormel::freedesktop {
namespace {

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

/// The command as every reader takes it: service managers that turn entries into units refuse a program whose name
/// holds a quotation mark, but not an argument that does.
std::vector<std::string> readable(std::vector<std::string> command) {
  if (command.front().find_first_of("'\"") != std::string::npos) command.insert(command.begin(), "/usr/bin/env");
  return command;
}

}  // namespace

AutostartEntry::AutostartEntry(std::string_view label)
    : path_(freedesktop::configHome() + "/autostart/" + std::string(label) + ".desktop") {}

AutostartEntry::Switch AutostartEntry::state() const {
  const auto text = readTextFile(path_);
  return text ? switchInDesktopEntry(*text) : Switch::absent;
}

FileResult AutostartEntry::write(const Content& content) const {
  const std::string text =
      "[Desktop Entry]\n"
      "Type=Application\n"
      "Name=" +
      desktopEntryString(content.name) +
      "\n"
      "Exec=" +
      desktopEntryExec(readable(content.command)) +
      "\n"
      "TryExec=" +
      desktopEntryString(content.command.front()) +
      "\n"
      "Terminal=false\n"
      "StartupNotify=false\n"
      "X-GNOME-Autostart-enabled=true\n";
  if (readTextFile(path_) == text) return {};
  return replaceTextFile(path_, text);
}

bool AutostartEntry::removeUnlessSwitchedOff() const {
  if (state() == Switch::off) return false;
  return ::unlink(path_.c_str()) == 0;
}

AutostartEntry::Switch switchInDesktopEntry(std::string_view text) {
  bool inGroup = false;
  while (!text.empty()) {
    const auto end = text.find('\n');
    const std::string_view line = trimmed(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.starts_with('[')) inGroup = line == "[Desktop Entry]";
    const auto equals = line.find('=');
    if (!inGroup || equals == std::string_view::npos) continue;
    const std::string_view key = trimmed(line.substr(0, equals));
    const std::string_view value = trimmed(line.substr(equals + 1));
    // Booleans were once written as figures, and readers still take them.
    if (key == "Hidden" && (value == "true" || value == "1")) return AutostartEntry::Switch::off;
    // Written by GNOME, MATE and others, each with its own name in it.
    if (key.starts_with("X-") && key.ends_with("-Autostart-enabled") && (value == "false" || value == "0")) {
      return AutostartEntry::Switch::off;
    }
  }
  return AutostartEntry::Switch::on;
}

std::string desktopEntryString(std::string_view text) {
  std::string escaped;
  for (std::size_t i = 0; i < text.size(); ++i) {
    switch (text[i]) {
      case '\\':
        escaped += "\\\\";
        break;
      case '\n':
        escaped += "\\n";
        break;
      case '\r':
        escaped += "\\r";
        break;
      case '\t':
        escaped += "\\t";
        break;
      // Readers drop spaces after the equals sign; elsewhere a space is a space.
      case ' ':
        escaped += i == 0 ? "\\s" : " ";
        break;
      default:
        escaped += text[i];
    }
  }
  return escaped;
}

std::string desktopEntryExec(const std::vector<std::string>& command) {
  std::string line;
  for (const std::string& argument : command) {
    if (!line.empty()) line += ' ';
    line += '"';
    for (const char c : argument) {
      if (c == '"' || c == '`' || c == '$' || c == '\\') line += '\\';
      line += c;
      if (c == '%') line += '%';  // a field code otherwise
    }
    line += '"';
  }
  // Quoting comes first; the rules for strings then hold for the quoted text as for any other.
  return desktopEntryString(line);
}

}  // namespace dormel::freedesktop
