#include "platform/linux/systemd/UnitText.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>

#include "platform/linux/jobs/StartCalendar.h"

namespace dormel::jobs::systemd {
namespace {

std::string calendarTime(std::time_t moment) {
  std::tm local{};
  localtime_r(&moment, &local);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &local);
  return text.data();
}

std::string restartLines(Restart restart) {
  switch (restart) {
    case Restart::never:
      return "Restart=no\n";
    // "on-failure" would let a process go that an ordinary signal ended.
    case Restart::unlessSuccessful:
      return "Restart=always\nRestartPreventExitStatus=0\nRestartSec=1\n";
    case Restart::always:
      return "Restart=always\nRestartSec=1\n";
  }
  return {};
}

/// A command line as far as the program's name. The colon keeps "$" an ordinary character in all of it.
std::string commandStart(const std::string& program) {
  // As arguments these are welcome; in the name of what is to be executed they are refused, quoted or not.
  if (program.find_first_of("'\"\\") == std::string::npos) return ":" + commandWord(program);
  return ":/bin/sh -c " + commandWord("exec \"$0\" \"$@\"") + " " + commandWord(program);
}

std::string pathOrDash(const std::string& path) { return path.empty() ? "-" : path; }

}  // namespace

std::string commandWord(std::string_view text) {
  std::string word = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7f) {
      std::array<char, 8> escape{};
      std::snprintf(escape.data(), escape.size(), "\\x%02x", byte);
      word += escape.data();
      continue;
    }
    if (c == '"' || c == '\\') word += '\\';
    word += c;
    if (c == '%') word += '%';
  }
  return word + '"';
}

std::string plainValue(std::string_view text) {
  std::string value;
  for (const char c : text) {
    value += c;
    if (c == '%') value += '%';
  }
  return value;
}

std::vector<std::string> environmentIn(std::string_view service) {
  constexpr std::string_view LEAD = "\nEnvironment=\"";
  std::vector<std::string> entries;
  for (std::size_t at = service.find(LEAD); at != service.npos; at = service.find(LEAD, at)) {
    at += LEAD.size();
    std::string entry;
    for (; at < service.size() && service[at] != '"' && service[at] != '\n'; ++at) {
      if ((service[at] == '\\' || service[at] == '%') && at + 1 < service.size()) ++at;  // the second one is meant
      entry += service[at];
    }
    entries.push_back(std::move(entry));
  }
  return entries;
}

std::string calendarLine(StartTime start, const std::string& zone) {
  return "OnCalendar=*-*-* " + clockText(start) + ":00" + (zone.empty() ? "" : " " + zone) + "\n";
}

std::string zoneNamed(const std::string& tz) {
  const std::string name = tz.starts_with(':') ? tz.substr(1) : tz;
  const auto isOfNames = [](unsigned char c) {
    return std::isalnum(c) != 0 || c == '_' || c == '+' || c == '-' || c == '/';
  };
  if (name.empty() || name.front() == '/' || !std::all_of(name.begin(), name.end(), isOfNames)) return {};
  struct stat info {};
  return ::stat(("/usr/share/zoneinfo/" + name).c_str(), &info) == 0 && S_ISREG(info.st_mode) ? name : "";
}

std::string serviceUnit(const Job& job, const std::string& launcher, const std::vector<std::string>& environment) {
  const std::string launch = commandStart(launcher);
  std::string condition = launch + " permit " + commandWord(job.label) + " " + commandWord(job.propertyList) + " " +
                          commandWord(job.program());
  std::string command = launch + " exec " + commandWord(pathOrDash(job.standardOutput)) + " " +
                        commandWord(pathOrDash(job.standardError));
  for (const std::string& argument : job.arguments) command += " " + commandWord(argument);
  std::string variables;
  for (const std::string& entry : environment) {
    variables += entry.find('=') == std::string::npos ? "UnsetEnvironment=" + entry + "\n"
                                                      : "Environment=" + commandWord(entry) + "\n";
  }
  return "# Derived from the property list named below; changes made here are overwritten.\n"
         "[Unit]\n"
         "Description=" +
         plainValue(job.displayName()) +
         "\n"
         "SourcePath=" +
         plainValue(job.propertyList) +
         "\n"
         "StartLimitIntervalSec=0\n"
         "\n"
         "[Service]\n"
         "Type=exec\n" +
         variables + "ExecCondition=" + condition +
         "\n"
         "ExecStart=" +
         command + "\n" + restartLines(job.restart) +
         // Programs that the job opened for its user are the user's.
         "KillMode=process\n"
         "IgnoreSIGPIPE=no\n"
         "TimeoutStopSec=5\n";
}

std::string timerUnit(const Job& job, const std::vector<std::time_t>& displaced, const std::string& zone) {
  std::string text =
      "# Derived from the property list named below; changes made here are overwritten.\n"
      "[Unit]\n"
      "Description=Start time of " +
      plainValue(job.displayName()) +
      "\n"
      "SourcePath=" +
      plainValue(job.propertyList) +
      "\n"
      "\n"
      "[Timer]\n" +
      calendarLine(job.start.value_or(StartTime{}), zone);
  for (const std::time_t moment : displaced) {
    text += "OnCalendar=" + calendarTime(moment) + (zone.empty() ? "" : " " + zone) + "\n";
  }
  return text +
         "AccuracySec=1us\n"
         "Persistent=true\n"
         "\n"
         "[Install]\n"
         "WantedBy=timers.target\n";
}

}  // namespace dormel::jobs::systemd
