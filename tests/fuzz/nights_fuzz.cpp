// The record of the nights: any file is read or replaced, tonight is recorded once, and any two logs make ninety
// nights.
#include "core/AppSupport.h"
#include "core/Config.h"
#include "engine/NightLog.h"
#include "engine/NightReport.h"
#include "platform/sim/SimMachine.h"
#include "tests/fuzz/FuzzInput.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace dormel;
  SimMachine machine;
  machine.files.put(AppSupport::url("nights.json"), fuzz::text(data, size));
  machine.files.put(Config::unlockLogPath(), fuzz::text(data, size));
  NightHistory history;
  machine.run([&] { history = NightHistory::read(machine.clock.now()); });
  fuzz::require(history.nights.size() == NightHistory::NIGHTS, "there are ninety nights");
  fuzz::require(!NightReport::text(history, {}, true).empty() && !NightReport::json(history).empty(), "they are told");
  fuzz::require(machine.files.content(AppSupport::url("nights.json")) == fuzz::text(data, size),
                "looking changes nothing");
  bool first = false;
  bool second = false;
  machine.run([&] {
    first = NightLog::recordDormelFired(machine.clock.now(), 0.0);
    second = NightLog::recordDormelFired(machine.clock.now(), 0.0);
  });
  const std::string kept = machine.files.content(AppSupport::url("nights.json"));
  fuzz::require(!second, "a night is recorded once");
  fuzz::require(kept.find(NightLog::nightKey(machine.clock.now())) != std::string::npos, "tonight is in the record");
  fuzz::require(first || kept == fuzz::text(data, size), "what needs no change stays as it is");
  return 0;
}
