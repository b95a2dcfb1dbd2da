import QtQuick
import Ombrix.Settings
import Ombrix.WidgetViews
import Ombrix.WidgetWindow

// The glass frame every widget wears. Children go into the content area, inset by 18.
Item {
    id: root
    property color glowColor: "transparent"
    default property alias content: contentArea.data
    readonly property string theme: Settings.glassTheme

    anchors.fill: parent

    VisualEffectView {
        objectName: "blur"
        anchors.fill: parent
        material: tint.material
        blendingMode: 0
        state: 1
        cornerRadius: 28
    }
    GlassLayer { id: tint; objectName: "tint"; anchors.fill: parent; kind: GlassLayer.Tint; theme: root.theme }
    GlassLayer { objectName: "sheen"; anchors.fill: parent; kind: GlassLayer.Sheen; theme: root.theme }
    Loader {
        objectName: "glow"
        anchors.fill: parent
        // Absent, not merely invisible, while the colour is clear.
        active: root.glowColor.a > 0
        sourceComponent: GlassLayer { kind: GlassLayer.Glow; theme: root.theme; glowColor: root.glowColor }
    }
    GlassLayer { objectName: "border"; anchors.fill: parent; kind: GlassLayer.Border; theme: root.theme }

    Item {
        id: contentArea
        anchors.fill: parent
        anchors.margins: 18
    }
}
