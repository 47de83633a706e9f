#include "ui/qml/UiModule.h"

#include "ui/qml/Typeface.h"

// Generated beside this file. Naming it keeps the registration in a statically linked program.
void qml_register_types_Dormel_Ui();

namespace dormel {

void loadUiModule() {
  [[maybe_unused]] static void (*volatile const keep)() = &qml_register_types_Dormel_Ui;
  Typeface::load();
}

}  // namespace dormel
