// The effect of a layer that blurs its item by as much as the item it stands in says. That is a deviation; the radius of
// this effect is how far it reaches, which is about twice as much.
import QtQuick
import Qt5Compat.GraphicalEffects

FastBlur {
    radius: 2 * (parent?.blurRadius ?? 0)
    transparentBorder: true
}
