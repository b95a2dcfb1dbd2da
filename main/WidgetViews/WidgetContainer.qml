import QtQuick
import Ombrix.Settings
import Ombrix.WidgetViews

// The glass frame every widget wears. Children go into the content area, inset by 18.
Item {
    id: root
    property color glowColor: "transparent"
    default property alias content: contentArea.data
    readonly property string theme: Settings.glassTheme

    anchors.fill: parent

    GlassFrame { objectName: "glass"; anchors.fill: parent; theme: root.theme; glowColor: root.glowColor }

    Item {
        id: contentArea
        anchors.fill: parent
        anchors.margins: 18
    }
}
