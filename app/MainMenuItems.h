// The main menu of window mode.
#pragma once

#include <vector>

#include "platform/MainWindow.h"

namespace dormel {

[[nodiscard]] std::vector<Menu> mainMenu();
/// Which of them lists the windows.
inline constexpr std::size_t WINDOWS_MENU = 2;

}  // namespace dormel
