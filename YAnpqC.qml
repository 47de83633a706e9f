import QtQuick
    Item { required property var view; implicitWidth: 100; implicitHeight: 50
           TextInput { focus: true; text: "good night" } }