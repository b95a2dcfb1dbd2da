import QtQuick
import Ombrix.ControlPanel

Item {
    id: root
    property ControlPanelModel model: ControlPanelModel {}
    width: 420
    height: 600
    Rectangle { anchors.fill: parent; color: "#202024" }
}
