import QtQuick
import Ombrix.WidgetViews

// A switch in the panel's accent blue. It reports the user's flip through `toggled` and shows
// whatever `checked` is bound to, so the store stays the one source of truth.
Item {
    id: root
    property bool checked: false
    signal toggled(bool value)
    implicitWidth: 38
    implicitHeight: 22

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
