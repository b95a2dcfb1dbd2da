import QtQuick
import Ombrix.WidgetViews

// A thin bar at the right edge of a Flickable, there only while its content is taller than it;
// dragged, it scrolls. Plain items: the panel keeps no Qt Quick Controls.
Rectangle {
    id: bar
    property Flickable flickable
    // On the Flickable itself, not in its content: it stays put while the content moves.
    parent: flickable
    visible: flickable && flickable.contentHeight > flickable.height
    readonly property real travel: flickable ? flickable.height - height - 4 : 0
    readonly property real range: flickable ? Math.max(1, flickable.contentHeight - flickable.height) : 1
    x: flickable ? flickable.width - width - 2 : 0
    y: 2 + (flickable ? travel * Math.min(1, Math.max(0, flickable.contentY / range)) : 0)
    width: drag.containsMouse || drag.pressed ? 8 : 5
    height: flickable ? Math.max(24, flickable.visibleArea.heightRatio * (flickable.height - 4)) : 0
    radius: width / 2
    color: Colors.muted
    opacity: drag.pressed ? 0.9 : flickable && flickable.moving || drag.containsMouse ? 0.7 : 0.4
    Behavior on opacity { NumberAnimation { duration: 150 } }

    MouseArea {
        id: drag
        anchors.fill: parent
        anchors.margins: -3
        hoverEnabled: true
        property real grabY: 0
        onPressed: (mouse) => grabY = mouse.y
        onPositionChanged: (mouse) => {
            if (!pressed || bar.travel <= 0)
                return
            const top = bar.y - 2 + mouse.y - grabY
            bar.flickable.contentY = Math.min(1, Math.max(0, top / bar.travel)) * bar.range
        }
    }
}
