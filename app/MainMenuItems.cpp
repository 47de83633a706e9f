#include "app/MainMenuItems.h"

namespace dormel {

std::vector<Menu> mainMenu() {
  using enum MenuCommand;
  const MenuItem line{separator, ""};
  return {
      {"Dormel",
       {{about, "About Dormel"},
        line,
        {hide, "Hide Dormel", "h"},
        {hideOthers, "Hide Others", "h", false, true},
        {showAll, "Show All"},
        line,
        {quit, "Quit Dormel", "q"}}},
      {"Edit",
       {{undo, "Undo", "z"},
        {redo, "Redo", "z", true},
        line,
        {cut, "Cut", "x"},
        {copy, "Copy", "c"},
        {paste, "Paste", "v"},
        {deleteSelection, "Delete"},
        line,
        {selectAll, "Select All", "a"}}},
      {"Window", {{closeWindow, "Close", "w"}, {minimizeWindow, "Minimize", "m"}}},
  };
}

}  // namespace dormel
