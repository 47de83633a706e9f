// The program's mark.
import QtQuick
import Dormel.Ui

Logo {
    color: AppPalette.text
    // Finer where it is large.
    stroke: width > 48 ? 1.1 : 1.6

    Accessible.role: Accessible.Graphic
    Accessible.name: "Dormel"
}
