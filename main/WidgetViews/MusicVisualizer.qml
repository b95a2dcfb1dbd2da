import QtQuick
import Ombrix.WidgetViews

// Four bars, standing on a common base line in a row 20 high, that jump to random heights while a
// track plays. The model eases them itself, at a capped frame rate.
Item {
    id: root
    property color color: "white"
    // Bound by the caller to being on screen: the bars tick only then.
    property alias active: bars.active
    property alias model: bars

    implicitWidth: row.implicitWidth
    implicitHeight: 20

    MusicVisualizerModel { id: bars }

    Row {
        id: row
        anchors.bottom: parent.bottom
        spacing: 3.5
        Repeater {
            model: 4
            Rectangle {
                required property int index
                objectName: "bar" + index
                anchors.bottom: parent.bottom
                width: 3.5
                height: bars.heights[index]
                radius: 2
                antialiasing: true
                color: root.color
            }
        }
    }
}
