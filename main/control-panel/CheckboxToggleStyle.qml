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
    activeFocusOnTab: true
    Keys.onPressed: (event) => {
        if (event.key === Qt.Key_Space || event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
            root.toggled(!root.checked)
            event.accepted = true
        }
    }
    Accessible.role: Accessible.CheckBox
    Accessible.name: root.label
    Accessible.checkable: true
    Accessible.checked: root.checked
    Accessible.onToggleAction: root.toggled(!root.checked)
    Accessible.onPressAction: root.toggled(!root.checked)
    FocusRing {}

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
