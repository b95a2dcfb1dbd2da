import QtQuick
import Ombrix.Settings
import Ombrix.WidgetWindow

// The glass frame every widget wears. Children go into the content area, inset by 18.
Item {
    id: root
    property color glowColor: "transparent"
    default property alias content: contentArea.data

    anchors.fill: parent

    Item {
        id: contentArea
        anchors.fill: parent
        anchors.margins: 18
    }
}
