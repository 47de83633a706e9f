// What must hold on every night, whatever happens: the rules that the watch looks after.
//
// Where the challenge's own algorithm allows an exception, the rule says so; "working time" leaves out what the main
// thread was stuck.
#pragma once

#include <array>
#include <cstddef>

namespace dormel::nights {

enum class Rule {
  lock,
  cover,
  black,
  picture,
  options,
  tap,
  keys,
  free,
  challenge,
  earned,
  letOut,
  grace,
  hours,
  status,
  restart,
  unlockLog,
  records,
  history,
  epochs,
  timers,
  owner,
  nothing,
  rehearsal,
  sound,
};

struct RuleText {
  const char* name;
  const char* meaning;
};

inline constexpr std::array<RuleText, 24> RULES{{
    {"lock",
     "a scheduled run inside the hours, set up, switched on and permitted, locks at once; without the permission it "
     "shows its card and locks within 3 s of getting it; any other ends with status 0, or is started again if the "
     "hours begin while it ends, and nothing was seen of it"},
    {"cover",
     "while locked, every screen has exactly one blocker on it, black, above everything, and pixel for pixel as "
     "large as the screen, and there is no other; a screen that comes or changes has it within 0.1 s of working time"},
    {"black",
     "a blocker is opaque 2.5 s of working time after the lock began; until it is lifted no screen that stays as it is "
     "gets any less black, not even inside one step"},
    {"picture",
     "while locked, every blocker shows what is true, the keys that are asked for above all: 3.3 s of working time "
     "after something changed its picture says so, by the painter's hand or in plain lines, whatever the painter does"},
    {"options",
     "the presentation options are the lockdown set exactly from the lock's beginning until its overlay has gone, and "
     "are never touched by a night without the permission or by a rehearsal"},
    {"tap",
     "a lock that got its tap has the keyboard, and has it back within 5 s of working time when it was lost; a lock "
     "that got none when it began says so and tries again when the permission returns, or at the next lock"},
    {"keys",
     "nobody else receives a key while the keyboard is taken; a lock that had it keeps it for the 2 s after it was "
     "lifted, in which five keys are let go"},
    {"free", "the keyboard is free 2 s after the overlay has gone, and whenever nothing is locked"},
    {"challenge",
     "five keys are asked for: a left and a right modifier of different kinds, two different letters of the left hand, "
     "one of the right; not the same for three locks running. Until the next lock they change once for each time that "
     "Space goes down, within 1.1 s of working time, and never else"},
    {"earned",
     "a grace begins only after the five keys on the screen were down together, by the hardware, for 30 s (60 from "
     "the second time on) without a break. Not noticed are: a key that is down again within 0.05 s of working time; "
     "the going up of a modifier of which the program was not told, or not told the side; a sleep in which the main "
     "thread was stuck; a Space in the very turn that completes the hold"},
    {"let-out",
     "five keys that went down after the challenge appeared, of which the program was told, and that stay down for the "
     "required time, are answered by a grace 0.2 s of working time later at most"},
    {"grace",
     "a grace lasts 300 s and not a tenth longer, in working time without sleep; its overlay is there for 2.5 s and "
     "has "
     "gone after 3.7 s; from then on the pill is all there is. A stuck main thread does not count ticks: the grace is "
     "longer by that"},
    {"hours", "outside the hours the process has ended after 10 s, and the screens are free, whatever is stuck"},
    {"status",
     "status 0 exactly for planned ends (nothing to lock, the hours over, quit while nothing is locked), 1 after the "
     "termination signal, when the hours begin in a run's last moments, or when the main thread is stuck in a "
     "rehearsal "
     "10 s beyond its time, and no end that nobody asked for"},
    {"restart", "a scheduled run that ended in any other way runs again after a second"},
    {"unlock-log",
     "every unlock adds its line, with its number, its hold and its moment, in order; nothing else ever changes in "
     "that "
     "file. A full or unwritable disk, or a kill before the line was written, may cost that line and no other"},
    {"records",
     "a lock that began at a used computer adds the record of its night if the night has none; records older than 90 "
     "days go then, younger ones stay, and nothing else ever changes. A full, unwritable or hanging disk may cost the "
     "new record only; records that cannot be read or decoded are replaced"},
    {"history",
     "what --nights tells of the last ninety nights is what was seen: each evening once, its lock and its unlocks, and "
     "figures that fit. An unlock under other hours than the present ones may be told on the evening beside its own"},
    {"epochs", "the generation of the overlay only grows, and does so with every lock and every unlock"},
    {"timers",
     "no timer survives its owner: as many repeat as the present state needs, and not one more, 0.25 s after anything"},
    {"owner",
     "where the desktop has a session lock, or a shell that covers, it is up 2 s of working time after the blockers "
     "are "
     "opaque, and gone with them; a killed program's is up until that runs again, and a shell's until that covers, "
     "too; "
     "none is without an owner for longer than 15 s, or than the 2 min that a shell was told, and none of ours is up "
     "15 "
     "s after the hours (20 s where it was told that end)"},
    {"nothing", "without a process there is no window, and the keyboard is free"},
    {"rehearsal",
     "a rehearsal ends by itself 90 s after its last step, and at once at Escape; it leaves no window, no tap, no "
     "timer, "
     "no record, no line in the unlock log"},
    {"sound", "no exception leaves the program, and it ends only in an orderly way or by a signal"},
}};

[[nodiscard]] inline const RuleText& textOf(Rule rule) { return RULES.at(static_cast<std::size_t>(rule)); }

}  // namespace dormel::nights
