#include "platform/linux/systemd/UnitText.h"

#include <array>
#include <cstdio>

namespace dormel::jobs::systemd {
namespace {

std::string twoDigits(int number) { return (number < 10 ? "0" : "") + std::to_string(number); }

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

std::string serviceUnit(const Job& job, const std::string& launcher) {
  const std::string launch = commandStart(launcher);
  std::string condition = launch + " permit " + commandWord(job.label) + " " + commandWord(job.propertyList) + " " +
                          commandWord(job.program());
  std::string command = launch + " exec " + commandWord(pathOrDash(job.standardOutput)) + " " +
                        commandWord(pathOrDash(job.standardError));
  for (const std::string& argument : job.arguments) command += " " + commandWord(argument);
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
         "Type=exec\n"
         "ExecCondition=" +
         condition +
         "\n"
         "ExecStart=" +
         command + "\n" + restartLines(job.restart) +
         // Programs that the job opened for its user are the user's.
         "KillMode=process\n"
         "IgnoreSIGPIPE=no\n"
         "TimeoutStopSec=5\n";
}

std::string timerUnit(const Job& job, const std::vector<std::time_t>& displaced) {
  const StartTime start = job.start.value_or(StartTime{});
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
      "[Timer]\n"
      "OnCalendar=*-*-* " +
      twoDigits(start.hour) + ":" + twoDigits(start.minute) + ":00\n";
  for (const std::time_t moment : displaced) text += "OnCalendar=" + calendarTime(moment) + "\n";
  return text +
         "AccuracySec=1us\n"
         "Persistent=true\n"
         "\n"
         "[Install]\n"
         "WantedBy=timers.target\n";
}

}  // namespace dormel::jobs::systemd
