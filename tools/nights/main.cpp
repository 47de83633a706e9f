// Random nights on the simulated machine: see `--help`.
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <new>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tools/nights/Shrink.h"

namespace dormel::nights {
namespace {

constexpr const char* HELP =
    R"(Random nights on the simulated machine, each drawn from its seed, under rules that must hold after every event.

  nights --seed S --count N [--jobs J]   nights S to S + N - 1, on J processes; stops at the first that breaks a rule,
                                         shrinks it and prints it as a file for --events
  nights --replay S                      night S with its journal
  nights --events FILE                   a printed night with its journal ("-": standard input)
  nights --rules                         the rules

Exit status: 0 all rules held, 1 one was broken, 64 not understood.
)";

struct Request {
  std::uint64_t seed = 1;
  std::uint64_t count = 10000;
  int jobs = 1;
};

/// Where a job of the run stands, in memory that it shares with its parent: the parent outlives it and tells.
struct Progress {
  std::uint64_t seed;  ///< the night being played
  std::uint64_t done;
};

void print(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stdout); }

std::string told(const Fault& fault) {
  const RuleText& rule = textOf(fault.rule);
  return std::string("  rule   ") + rule.name + ": " + rule.meaning + "\n  seen   " + fault.what + "\n";
}

std::string listed(const RandomNight& night) {
  std::ostringstream text;
  text << "night " << night.seed << "   # " << night.text() << "\n";
  for (const Happening& happening : night.happenings) {
    text << happening.text() << "   # " << meaning(happening.kind) << "\n";
  }
  return text.str();
}

void tellFault(const RandomNight& night, const Fault& fault) {
  const RandomNight small = shrunk(night, fault.rule);
  const Fault last = play(small).fault.value_or(fault);
  print("Night " + std::to_string(night.seed) + " breaks a rule.\n" + told(fault) + "\n" + listed(small) +
        "\n  there  " + last.what + "\n\nAll of it: tools/nights/run --replay " + std::to_string(night.seed) +
        ". These " + std::to_string(small.happenings.size()) + " of " + std::to_string(night.happenings.size()) +
        " happenings: save the list above, tools/nights/run --events FILE.\n");
  std::fflush(stdout);
}

/// Plays every `jobs`th night from `first` on. False after a fault.
bool playNights(const Request& request, std::uint64_t first, Progress& progress) {
  for (std::uint64_t i = first; i < request.count; i += static_cast<std::uint64_t>(request.jobs)) {
    const std::uint64_t seed = request.seed + i;
    progress.seed = seed;
    const RandomNight night = RandomNight::drawn(seed);
    if (const auto fault = play(night).fault) {
      tellFault(night, *fault);
      return false;
    }
    ++progress.done;
  }
  return true;
}

int run(const Request& request) {
  const auto began = std::chrono::steady_clock::now();
  const auto jobs = static_cast<std::size_t>(request.jobs);
  void* memory = ::mmap(nullptr, jobs * sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return 70;
  Progress* const progress = new (memory) Progress[jobs]{};
  std::vector<pid_t> children;
  bool good = true;
  if (jobs == 1) {
    good = playNights(request, 0, progress[0]);
  } else {
    for (std::size_t job = 0; job < jobs; ++job) {
      const pid_t child = ::fork();
      if (child == 0) {
        const bool held = playNights(request, job, progress[job]);
        std::fflush(stdout);
        ::_exit(held ? 0 : 1);
      }
      children.push_back(child);
    }
    for (std::size_t job = 0; job < jobs; ++job) {
      int status = 0;
      ::waitpid(children[job], &status, 0);
      if (status == 0) continue;
      good = false;
      if (WIFEXITED(status) && WEXITSTATUS(status) == 1) continue;
      print("Night " + std::to_string(progress[job].seed) + " ended this process: see above, and --replay it.\n");
    }
  }
  std::uint64_t done = 0;
  for (std::size_t job = 0; job < jobs; ++job) done += progress[job].done;
  const double took = std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
  std::ostringstream line;
  line.precision(3);
  line << done << " nights from seed " << request.seed << " on, " << (good ? "all rules held" : "a rule was broken")
       << "; " << took << " s, " << static_cast<double>(done) / took / request.jobs << " nights/s and process\n";
  print(line.str());
  return good ? 0 : 1;
}

int replay(const RandomNight& night) {
  const Outcome outcome = play(night, true);
  print(listed(night) + "\n");
  for (const std::string& line : outcome.journal) print(line + "\n");
  if (outcome.fault) print("\nA rule was broken.\n" + told(*outcome.fault));
  if (!outcome.fault) print("\nAll rules held.\n");
  return outcome.fault ? 1 : 0;
}

int replayFile(const std::string& path) {
  std::ifstream file;
  if (path != "-") file.open(path);
  std::istream& in = path == "-" ? std::cin : file;
  std::optional<RandomNight> night;
  for (std::string line; std::getline(in, line);) {
    line.erase(std::min(line.find('#'), line.size()));
    if (line.find_first_not_of(" \t") == std::string::npos) continue;
    std::istringstream words(line);
    std::string word;
    std::uint64_t seed = 0;
    if (words >> word >> seed && word == "night") {
      night = RandomNight::drawn(seed);
      night->happenings.clear();
      continue;
    }
    const auto happening = Happening::parsed(line);
    if (!night || !happening) {
      std::cerr << "nights: not understood: " << line << "\n";
      return 64;
    }
    night->happenings.push_back(*happening);
  }
  if (!night) {
    std::cerr << "nights: no night in " << path << "\n";
    return 64;
  }
  return replay(*night);
}

template <typename Number>
bool parse(std::string_view text, Number& number) {
  const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
  return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

int listRules() {
  for (const RuleText& rule : RULES) print(std::string(rule.name) + ": " + rule.meaning + ".\n");
  return 0;
}

int main(const std::vector<std::string>& arguments) {
  Request request;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& name = arguments[i];
    if (name == "--help") return print(HELP), 0;
    if (name == "--rules") return listRules();
    const std::string value = i + 1 < arguments.size() ? arguments[++i] : std::string();
    std::uint64_t seed = 0;
    if (name == "--events" && !value.empty()) return replayFile(value);
    if (name == "--replay" && parse(value, seed)) return replay(RandomNight::drawn(seed));
    const bool understood = (name == "--seed" && parse(value, request.seed)) ||
                            (name == "--count" && parse(value, request.count)) ||
                            (name == "--jobs" && parse(value, request.jobs) && request.jobs >= 1);
    if (!understood) {
      std::cerr << HELP;
      return 64;
    }
  }
  return run(request);
}

}  // namespace
}  // namespace dormel::nights

int main(int argc, char** argv) { return dormel::nights::main({argv + 1, argv + argc}); }
