import QtQuick
import QtQuick.Layouts

RowLayout {
    id: root
    property string label
    property bool value
    signal toggled(bool value)
    Layout.fillWidth: true

    Text {
        text: root.label
        font.pixelSize: 13
        color: Qt.rgba(1, 1, 1, 0.8)
    }
    Item { Layout.fillWidth: true }
    PanelSwitch {
        objectName: "switch"
        checked: root.value
        scale: 0.85
        onToggled: (v) => root.toggled(v)
    }
}
