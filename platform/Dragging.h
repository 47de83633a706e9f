// Dragging something out of one of our windows into another program's. Main thread only.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Geometry.h"
#include "platform/View.h"

namespace dormel {

/// The type under which a file's address is handed over.
inline constexpr const char* FILE_URL_TYPE = "public.file-url";

enum class DragOperation { none, copy };

struct DragItem {
  /// Where the picture stands at first, in screen coordinates, and what it shows. It keeps its size.
  Rect frame;
  std::shared_ptr<View> picture;
  /// What the receiver may ask for.
  std::vector<std::string> types;
  /// The data of one of the types, asked only when a receiver wants it; nothing for what is not to be had.
  std::function<std::optional<std::string>(const std::string& type)> provide;
};

class Dragging {
 public:
  virtual ~Dragging() = default;

  /// Starts a drag that only offers a copy, out of the handler of a press of the main button, and goes on by itself:
  /// the picture follows the pointer until the button is let go. `onEnd` is called once, in a later turn; when the drop
  /// failed or Escape cancelled it, after the picture has gone back to where it came from. False, and nothing happens,
  /// when the pointer cannot be had.
  virtual bool begin(DragItem item, std::function<void(DragOperation)> onEnd) = 0;
};

}  // namespace dormel
