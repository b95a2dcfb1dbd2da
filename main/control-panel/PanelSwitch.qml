import QtQuick
import Ombrix.WidgetViews

// A switch in the panel's accent blue. It reports the user's flip through `toggled` and shows
// whatever `checked` is bound to, so the store stays the one source of truth.
Item {
    id: root
    property bool checked: false
    // What a screen reader calls it: the card's title or the row's label.
    property string name
    signal toggled(bool value)
    implicitWidth: 38
    implicitHeight: 22
    activeFocusOnTab: true
    Keys.onPressed: (event) => {
        if (event.key === Qt.Key_Space || event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
            root.toggled(!root.checked)
            event.accepted = true
        }
    }
    // Qt 6.4 has no switch role: a check box is what a screen reader can say of it.
    Accessible.role: Accessible.CheckBox
    Accessible.name: root.name
    Accessible.checkable: true
    Accessible.checked: root.checked
    Accessible.onToggleAction: root.toggled(!root.checked)
    Accessible.onPressAction: root.toggled(!root.checked)
    FocusRing { radius: root.height / 2 + 3 }

    Rectangle {
        anchors.fill: parent
        radius: height / 2
        color: root.checked ? Colors.accentBlue : Colors.switchOff
        Rectangle {
            width: parent.height - 4; height: width; radius: width / 2
            y: 2
            x: root.checked ? parent.width - width - 2 : 2
            color: Colors.white
            Behavior on x { NumberAnimation { duration: 120; easing.type: Easing.InOutQuad } }
        }
    }
    TapHandler { onTapped: root.toggled(!root.checked) }
}
