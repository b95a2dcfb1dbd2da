import QtQuick
import QtQuick.Layouts
import Ombrix.WidgetViews

RowLayout {
    id: root
    property string label
    property bool value
    signal toggled(bool value)
    Layout.fillWidth: true

    SizedText {
        objectName: "label"
        text: root.label
        size: 12.5
        color: Colors.label
    }
    Item { Layout.fillWidth: true }
    PanelSwitch {
        objectName: "switch"
        checked: root.value
        name: root.label
        scale: 0.85
        onToggled: (v) => root.toggled(v)
    }
}
