#include "tools/nights/Happening.h"

#include <algorithm>
#include <sstream>
#include <vector>

namespace dormel::nights {
namespace {

constexpr std::int64_t SECOND = 1000;
constexpr std::int64_t MINUTE = 60 * SECOND;
constexpr std::int64_t HOUR = 60 * MINUTE;

/// From `low` to `high`, even or (with `spread`) as many short ones as long ones.
struct Range {
  std::int64_t low = 0;
  std::int64_t high = 0;
  bool spread = false;
  [[nodiscard]] std::int64_t drawn(Dice& dice) const {
    return spread ? dice.spread(low, high) : dice.between(low, high);
  }
};

struct Row {
  Kind kind;
  const char* name;
  const char* meaning;
  int weight;        // in a scheduled run
  int openedWeight;  // in an opened program
  std::array<Range, 3> ranges;
};

constexpr Range SPELL{50, 20 * MINUTE, true};

const std::vector<Row> ROWS{
    {Kind::hold,
     "hold",
     "how long all five keys on the screen are held, between two presses, order and manner",
     30,
     30,
     {{{200, 75 * SECOND}, {1, 400, true}, {0, 1023}}}},
    {Kind::fumble,
     "fumble",
     "a held key goes up for so long, which one, 1: its going up is not heard",
     8,
     8,
     {{{1, 3 * SECOND, true}, {0, 9}, {0, 3}}}},
    {Kind::key, "key", "which key, how long", 12, 12, {{{0, 62}, {1, 5 * SECOND, true}, {}}}},
    {Kind::drop, "drop", "a held key goes up unheard: which one", 3, 3, {{{0, 9}, {}, {}}}},
    {Kind::letGo, "letgo", "all keys go up", 4, 4, {}},
    {Kind::repeat,
     "repeat",
     "a held key repeats: which one, how often, 1: the tap hears it too",
     4,
     2,
     {{{0, 9}, {1, 50}, {0, 1}}}},
    {Kind::touch, "touch", "the mouse moves", 3, 1, {}},
    {Kind::plug, "plug", "a screen at place, width, height", 6, 3, {{{0, 3}, {640, 3840}, {480, 2160}}}},
    {Kind::pull, "pull", "the screen at place", 6, 3, {{{0, 3}, {}, {}}}},
    {Kind::resize, "resize", "the screen at place, width, height", 5, 2, {{{0, 3}, {640, 3840}, {480, 2160}}}},
    {Kind::shift,
     "shift",
     "all screens, so many pixels to the right and down: as they did when another one went",
     3,
     1,
     {{{-5000, 5000}, {-2000, 2000}, {}}}},
    {Kind::scale,
     "scale",
     "quarters of a pixel to the point, 1: the screens' pixels with it",
     3,
     1,
     {{{4, 12}, {0, 1}, {}}}},
    {Kind::notice, "notice", "something about the screens changed that is not seen here", 2, 1, {}},
    {Kind::focus, "focus", "another application takes the focus", 4, 2, {}},
    {Kind::quit, "quit", "a quit request", 4, 1, {}},
    {Kind::launch, "launch", "somebody starts a scheduled run by hand", 3, 0, {}},
    {Kind::sleep, "sleep", "so long", 5, 2, {{{SECOND, 9 * HOUR, true}, {}, {}}}},
    {Kind::clock, "clock", "the wall clock is set on by so much", 4, 1, {{{-10 * HOUR, 10 * HOUR}, {}, {}}}},
    {Kind::stall, "stall", "the main thread does nothing for so long", 6, 3, {{{1, 90 * SECOND, true}, {}, {}}}},
    {Kind::permission,
     "permission",
     "1: granted, 0: gone; and the other way round after so long (0: stays)",
     6,
     2,
     {{{0, 1}, {10, 10 * MINUTE, true}, {}}}},
    {Kind::deny, "deny", "another program has the keyboard for so long", 5, 2, {{SPELL, {}, {}}}},
    {Kind::loseTap, "losetap", "the system disables the tap", 5, 2, {}},
    {Kind::noTaps, "notaps", "no tap can be made for so long", 3, 1, {{SPELL, {}, {}}}},
    {Kind::terminate, "term", "the termination signal", 4, 1, {}},
    {Kind::kill, "kill", "the signal that no process survives", 4, 1, {}},
    {Kind::crash, "crash", "dies with the signal", 3, 1, {{{4, 11}, {}, {}}}},
    {Kind::full, "full", "the disk takes so many more bytes, for so long", 5, 1, {{{0, 300}, SPELL, {}}}},
    {Kind::folder,
     "folder",
     "0: the logs' folder, 1: the records'; gets this mode for so long",
     5,
     1,
     {{{0, 1}, {0, 1}, SPELL}}},
    {Kind::hang, "hang", "the disk answers nobody for so long", 3, 1, {{SPELL, {}, {}}}},
    {Kind::painter, "painter", "0: dies, 1: stands still, 2: lies in this way", 8, 3, {{{0, 2}, {0, 11}, {}}}},
    {Kind::noPainter,
     "nopainter",
     "for so long, painters 0: die, 1: stand still, 2: cannot be started, 3: say what means nothing",
     3,
     1,
     {{SPELL, {0, 3}, {}}}},
    {Kind::settings, "unwritable", "settings cannot be written for so long", 1, 1, {{SPELL, {}, {}}}},
    {Kind::hours, "hours", "another process sets the hours: start, end", 3, 1, {{{0, 23}, {0, 23}, {}}}},
    {Kind::flag,
     "flag",
     "another process sets 0: enabled, 1: set up, 2: 24-hour clock, 3: debug log; to",
     4,
     2,
     {{{0, 3}, {0, 1}, {}}}},
    {Kind::steal, "steal", "the compositor hands the keyboard to somebody else", 0, 0, {}},
    {Kind::otherLock, "otherlock", "another program locks the session for so long", 0, 0, {{SPELL, {}, {}}}},
    {Kind::compositor, "compositor", "the compositor ends, and another one comes up", 0, 0, {}},
    {Kind::gone, "gone", "killed, and the program is deleted for so long", 0, 0, {{SPELL, {}, {}}}},
    {Kind::both, "both", "killed together with what watches over the lock", 0, 0, {}},
    {Kind::runtime, "runtime", "the runtime folder takes nothing for so long", 0, 0, {{SPELL, {}, {}}}},
    {Kind::extension, "extension", "the shell's extension is off for so long", 0, 0, {{SPELL, {}, {}}}},
    {Kind::socket, "socket", "its socket takes nobody new for so long", 0, 0, {{SPELL, {}, {}}}},
    {Kind::lockScreen, "lockscreen", "the desktop's own lock screen is up for so long", 0, 0, {{SPELL, {}, {}}}},
    {Kind::test, "test", "the user starts a test run", 0, 25, {}},
    {Kind::demo, "demo", "the demo starts", 0, 15, {}},
};

const Row& rowOf(Kind kind) {
  return *std::find_if(ROWS.begin(), ROWS.end(), [&](const Row& row) { return row.kind == kind; });
}

Happening drawnOf(const std::array<Kind, 9>& kinds, Dice& dice, std::int64_t at) {
  const Kind kind = kinds.at(static_cast<std::size_t>(dice.between(0, static_cast<std::int64_t>(kinds.size()) - 1)));
  return {at, kind, {rowOf(kind).ranges[0].drawn(dice)}};
}

/// People hold on until something happens, or give up at any moment.
std::int64_t drawnHold(Dice& dice, bool opened) {
  const std::int64_t enough = opened ? (dice.percent(50) ? 5 : 12) : (dice.percent(50) ? 30 : 60);
  if (dice.percent(60)) return enough * SECOND + dice.between(-500, 3000);
  return dice.between(200, 75 * SECOND);
}

}  // namespace

std::string Happening::text() const {
  std::ostringstream line;
  line << at << ' ' << rowOf(kind).name;
  std::size_t used = n.size();
  while (used > 0 && n.at(used - 1) == 0) --used;
  for (std::size_t i = 0; i < used; ++i) line << ' ' << n.at(i);
  return line.str();
}

std::optional<Happening> Happening::parsed(const std::string& line) {
  std::istringstream in(line);
  Happening happening;
  std::string name;
  if (!(in >> happening.at >> name)) return {};
  const auto row = std::find_if(ROWS.begin(), ROWS.end(), [&](const Row& r) { return name == r.name; });
  if (row == ROWS.end()) return {};
  happening.kind = row->kind;
  for (std::int64_t& number : happening.n) {
    if (!(in >> number)) number = 0;
  }
  return happening;
}

const char* meaning(Kind kind) { return rowOf(kind).meaning; }

Happening drawnWaylandHappening(Dice& dice, std::int64_t at) {
  constexpr std::array<Kind, 9> KINDS{Kind::steal, Kind::steal, Kind::otherLock, Kind::compositor, Kind::gone,
                                      Kind::gone,  Kind::both,  Kind::kill,      Kind::runtime};
  return drawnOf(KINDS, dice, at);
}

Happening drawnGnomeHappening(Dice& dice, std::int64_t at) {
  constexpr std::array<Kind, 9> KINDS{Kind::extension,  Kind::extension,  Kind::extension,
                                      Kind::socket,     Kind::lockScreen, Kind::steal,
                                      Kind::compositor, Kind::kill,       Kind::gone};
  return drawnOf(KINDS, dice, at);
}

Happening drawnHappening(Dice& dice, std::int64_t at, bool opened) {
  const auto weight = [opened](const Row& row) { return opened ? row.openedWeight : row.weight; };
  std::int64_t all = 0;
  for (const Row& row : ROWS) all += weight(row);
  std::int64_t left = dice.between(1, all);
  auto row = ROWS.begin();
  while ((left -= weight(*row)) > 0) ++row;
  Happening drawn{at, row->kind, {}};
  for (std::size_t i = 0; i < drawn.n.size(); ++i) drawn.n.at(i) = row->ranges.at(i).drawn(dice);
  if (drawn.kind == Kind::hold) drawn.n[0] = drawnHold(dice, opened);
  if (drawn.kind == Kind::key && dice.percent(50)) drawn.n[0] = dice.percent(60) ? 49 : 53;  // Space, Escape
  if (drawn.kind == Kind::permission && dice.percent(20)) drawn.n[1] = 0;
  if (drawn.kind == Kind::hours && dice.percent(60)) drawn.n[1] = 6;
  if (drawn.kind == Kind::flag && dice.percent(50)) drawn.n[1] = 1;
  if (drawn.kind == Kind::clock && dice.percent(30)) drawn.n[0] = dice.between(-2, 2) * HOUR;
  return drawn;
}

}  // namespace dormel::nights
