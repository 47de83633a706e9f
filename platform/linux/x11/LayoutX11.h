// What the server's current keyboard layout prints on the keys.
#pragma once

#include <memory>

#include "platform/Keyboard.h"
#include "platform/linux/x11/ServerFeatures.h"

struct xkb_context;
struct xkb_keymap;

namespace dormel::x11 {

class LayoutX11 : public KeyboardLayout {
 public:
  LayoutX11(std::shared_ptr<Connection> connection, const ServerFeatures& features);
  ~LayoutX11() override;

  [[nodiscard]] std::optional<std::string> translate(KeyCode keyCode) const override;
  [[nodiscard]] std::string printedLegend(KeyCode keyCode) const override;

 private:
  struct ContextDeleter {
    void operator()(xkb_context* context) const;
  };
  struct KeymapDeleter {
    void operator()(xkb_keymap* keymap) const;
  };
  void handle(const xcb_generic_event_t& event);
  void fetch() const;
  /// The fetched keymap's number for that key.
  [[nodiscard]] std::uint32_t xkbCode(KeyCode keyCode) const;

  std::shared_ptr<Connection> connection_;
  ServerFeatures features_;
  std::unique_ptr<xkb_context, ContextDeleter> context_;
  // The server's keymap as of the last question, and which of its layouts is in force; dropped when either changes.
  mutable std::unique_ptr<xkb_keymap, KeymapDeleter> keymap_;
  mutable std::uint32_t layout_ = 0;
  Subscription subscription_;
};

}  // namespace dormel::x11
