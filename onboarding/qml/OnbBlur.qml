// The effect of a layer that blurs its item by as much as the item it stands in says.
import QtQuick
import Qt5Compat.GraphicalEffects

FastBlur {
    radius: parent?.blurRadius ?? 0
    transparentBorder: true
}
