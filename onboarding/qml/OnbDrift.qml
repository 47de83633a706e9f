// An item that stands `offset` points below its place, out of focus by `blurRadius`.
//
// The blur is a shader and needs the graphics card; without one the item is sharp, and moves by whole pixels, because
// there text and shapes would each go to their own nearest pixel and come apart.
import QtQuick
import Dormel.Ui

Item {
    id: root

    property real offset: 0
    property real blurRadius: 0
    default property alias content: body.data

    readonly property bool drawnByGpu: GraphicsInfo.api !== GraphicsInfo.Software && GraphicsInfo.api !== GraphicsInfo.Unknown

    Item {
        id: body
        y: Motion.isReduced ? 0 : root.drawnByGpu ? root.offset : Math.round(root.offset * Screen.devicePixelRatio) / Screen.devicePixelRatio
        width: root.width
        height: root.height

        readonly property real blurRadius: root.blurRadius
        // Named by its address, so that where it cannot be had nothing but the blur is missing. In the software scene
        // graph an item with an effect would vanish.
        readonly property Component blur: root.drawnByGpu ? Qt.createComponent("OnbBlur.qml") : null
        readonly property bool isBlurred: root.drawnByGpu && !Motion.isReduced && root.blurRadius > 0 && blur?.status === Component.Ready

        layer.enabled: isBlurred
        layer.effect: isBlurred ? blur : null
    }
}
