// The QML module Dormel.Ui. Main thread only.
#pragma once

namespace dormel {

/// Makes the module importable and its typeface known. To be called before the first scene that imports it loads.
void loadUiModule();

}  // namespace dormel
