// A small heading above a scene.
import QtQuick
import Dormel.Ui

PlainText {
    font: Typeface.spaced(11, Font.DemiBold, 0.6)
    color: AppPalette.secondary

    Accessible.role: Accessible.Heading
}
