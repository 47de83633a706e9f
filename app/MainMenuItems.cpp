#include "app/MainMenuItems.h"

#include "platform/Texts.h"

namespace dormel {

std::vector<Menu> mainMenu() {
  using enum MenuCommand;
  const MenuItem line{separator, ""};
  return {
      {"Dormel",
       {{about, translate("About Dormel")},
        line,
        {hide, translate("Hide Dormel"), "h"},
        {hideOthers, translate("Hide Others"), "h", false, true},
        {showAll, translate("Show All")},
        line,
        {quit, translate("Quit Dormel"), "q"}}},
      {translate("Edit"),
       {{undo, translate("Undo"), "z"},
        {redo, translate("Redo"), "z", true},
        line,
        {cut, translate("Cut"), "x"},
        {copy, translate("Copy"), "c"},
        {paste, translate("Paste"), "v"},
        {deleteSelection, translate("Delete")},
        line,
        {selectAll, translate("Select All"), "a"}}},
      {translate("Window"), {{closeWindow, translate("Close"), "w"}, {minimizeWindow, translate("Minimize"), "m"}}},
  };
}

}  // namespace dormel
