import QtQuick
import Ombrix.WidgetViews

// Four bars, standing on a common base line in a row 20 high, that jump to random heights while a
// track plays. The model eases them itself, at a capped frame rate.
Item {
    id: root
    property color color: "white"
    // Bound by the caller to being on screen: the bars tick only then.
    property alias active: heights.active
    property alias model: heights

    implicitWidth: bars.implicitWidth
    implicitHeight: bars.implicitHeight

    MusicVisualizerModel { id: heights }

    VisualizerBars {
        id: bars
        objectName: "bars"
        anchors.fill: parent
        model: heights
        color: root.color
    }
}
