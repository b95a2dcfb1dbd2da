import QtQuick
import Ombrix.WidgetViews

// Where the keyboard is: a blue ring around the focused control.
Rectangle {
    anchors.fill: parent
    anchors.margins: -3
    radius: 6
    color: "transparent"
    border.color: Colors.accentBlue
    border.width: 2
    visible: parent.activeFocus
}
