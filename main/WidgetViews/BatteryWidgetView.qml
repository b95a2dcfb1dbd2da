import QtQuick
import QtQuick.Layouts
import Ombrix.WidgetViews
import Ombrix.Settings

// The batteries: one large ring for the computer at small size, else a row of up to four rings.
WidgetContainer {
    id: root
    property alias model: battery

    glowColor: battery.glowColor

    BatteryWidgetModel {
        id: battery
        active: root.visible && root.Window.window !== null && root.Window.window.visible
    }

    RowLayout {
        objectName: "rings"
        anchors.fill: parent
        spacing: 12

        Repeater {
            objectName: "ringRepeater"
            model: battery.visibleRings
            // Equal preferred widths: the rings share the row evenly.
            BatteryRingView {
                Layout.fillWidth: true
                Layout.preferredWidth: 1
                Layout.alignment: Qt.AlignVCenter
            }
        }
    }
}
