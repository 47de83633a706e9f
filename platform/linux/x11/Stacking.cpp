#include "platform/linux/x11/Stacking.h"

#include <algorithm>
#include <utility>

#include "platform/common/PixelRect.h"
#include "platform/linux/x11/Reply.h"

namespace dormel::x11 {
namespace {

constexpr int LATER_MILLISECONDS = 100;

}  // namespace

Stacking::Stacking(std::shared_ptr<Connection> connection, const Clock& clock)
    : connection_(std::move(connection)),
      screenSaverBudget_(clock, 50, 1.0),
      floatingBudget_(clock, 4, 2.0),
      later_(
          connection_->loop(), [this] { check(); }, LATER_MILLISECONDS) {
  connection_->selectOnRoot(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
  subscription_ = connection_->subscribe([this](const xcb_generic_event_t& event) { handle(event); });
}

bool Stacking::isOurs(xcb_window_t window) const {
  return std::any_of(kept_.begin(), kept_.end(), [&](const Kept& k) { return k.window == window; });
}

bool Stacking::hasBlockers() const { return !kept_.empty() && kept_.back().level == WindowLevel::screenSaver; }

void Stacking::raise(xcb_window_t window, WindowLevel level) {
  remove(window);
  const auto above = std::find_if(kept_.begin(), kept_.end(), [&](const Kept& k) { return k.level > level; });
  if (above == kept_.end()) {
    const std::uint32_t mode = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(*connection_, window, XCB_CONFIG_WINDOW_STACK_MODE, &mode);
  } else {
    const std::uint32_t values[] = {above->window, XCB_STACK_MODE_BELOW};
    xcb_configure_window(*connection_, window, XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, values);
  }
  kept_.insert(above, {window, level});
}

void Stacking::remove(xcb_window_t window) {
  std::erase_if(kept_, [&](const Kept& k) { return k.window == window; });
}

void Stacking::handle(const xcb_generic_event_t& event) {
  if (kept_.empty()) return;
  xcb_window_t moved = XCB_NONE;
  switch (event.response_type & 0x7f) {
    case XCB_MAP_NOTIFY:
      moved = reinterpret_cast<const xcb_map_notify_event_t&>(event).window;
      break;
    case XCB_CONFIGURE_NOTIFY:
      moved = reinterpret_cast<const xcb_configure_notify_event_t&>(event).window;
      break;
    case XCB_CIRCULATE_NOTIFY:
      moved = reinterpret_cast<const xcb_circulate_notify_event_t&>(event).window;
      break;
    case XCB_REPARENT_NOTIFY:
      moved = reinterpret_cast<const xcb_reparent_notify_event_t&>(event).window;
      break;
    default:
      return;
  }
  if (moved != connection_->root() && !isOurs(moved)) check();
}

Stacking::Foreign Stacking::foreignAbove() {
  Foreign found;
  Connection& c = *connection_;
  const auto tree = owned(xcb_query_tree_reply(c, xcb_query_tree(c, c.root()), nullptr));
  if (!tree) return found;
  const xcb_window_t* const begin = xcb_query_tree_children(tree.get());
  const xcb_window_t* const end = begin + xcb_query_tree_children_length(tree.get());
  const auto* const lowest = std::find_if(begin, end, [this](xcb_window_t w) { return isOurs(w); });

  struct Question {
    xcb_window_t window;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
  };
  std::vector<Question> questions;
  for (const auto* w = lowest; w != end; ++w) {
    questions.push_back({*w, xcb_get_window_attributes(c, *w), xcb_get_geometry(c, *w)});
  }
  std::vector<PixelRect> floatingBelow;
  bool screenSaverBelow = false;
  for (const Question& q : questions) {
    const auto attributes = owned(xcb_get_window_attributes_reply(c, q.attributes, nullptr));
    const auto geometry = owned(xcb_get_geometry_reply(c, q.geometry, nullptr));
    if (!attributes || !geometry) continue;  // gone meanwhile
    const PixelRect area{geometry->x, geometry->y, geometry->width, geometry->height};
    const auto own = std::find_if(kept_.begin(), kept_.end(), [&](const Kept& k) { return k.window == q.window; });
    if (own != kept_.end()) {
      if (own->level == WindowLevel::screenSaver) {
        screenSaverBelow = true;
      } else {
        floatingBelow.push_back(area);
      }
      continue;
    }
    if (attributes->map_state != XCB_MAP_STATE_VIEWABLE || attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY) continue;
    found.aboveScreenSaver |= screenSaverBelow;
    found.aboveFloating |= std::any_of(floatingBelow.begin(), floatingBelow.end(),
                                       [&](const PixelRect& f) { return !intersection(f, area).empty(); });
  }
  return found;
}

void Stacking::check() {
  if (kept_.empty()) return;
  const Foreign foreign = foreignAbove();
  bool postponed = false;
  // Floating first: raising the others then puts them on top again.
  if (foreign.aboveFloating) {
    if (floatingBudget_.spend()) {
      raiseAll(false);
    } else {
      postponed = true;
    }
  }
  if (foreign.aboveScreenSaver) {
    if (screenSaverBudget_.spend()) {
      raiseAll(true);
    } else {
      postponed = true;
    }
  }
  if (postponed) later_.ask();
  connection_->flush();
}

void Stacking::raiseAll(bool screenSavers) {
  const auto screenSaver =
      std::find_if(kept_.begin(), kept_.end(), [](const Kept& k) { return k.level == WindowLevel::screenSaver; });
  for (auto own = kept_.begin(); own != kept_.end(); ++own) {
    if ((own->level == WindowLevel::screenSaver) != screenSavers) continue;
    if (!screenSavers && screenSaver != kept_.end()) {
      const std::uint32_t values[] = {screenSaver->window, XCB_STACK_MODE_BELOW};
      xcb_configure_window(*connection_, own->window, XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, values);
    } else {
      const std::uint32_t mode = XCB_STACK_MODE_ABOVE;
      xcb_configure_window(*connection_, own->window, XCB_CONFIG_WINDOW_STACK_MODE, &mode);
    }
  }
}

}  // namespace dormel::x11
