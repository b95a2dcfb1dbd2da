import QtQuick
import Ombrix.WidgetViews

// A checkbox whose box alone flips it; a tap on the label does nothing.
Row {
    id: root
    property string label
    property bool checked
    property alias font: labelText.font
    property color labelColor: Colors.checkboxLabel
    signal toggled(bool value)
    spacing: 6

    Symbol {
        objectName: "box"
        anchors.verticalCenter: parent.verticalCenter
        name: root.checked ? "checkmark.square.fill" : "square"
        size: 14
        color: root.checked ? Colors.accentBlue : Colors.uncheckedBox
        TapHandler { onTapped: root.toggled(!root.checked) }
    }
    Text {
        id: labelText
        objectName: "label"
        anchors.verticalCenter: parent.verticalCenter
        text: root.label
        font.pixelSize: 12
        color: root.labelColor
    }
}
