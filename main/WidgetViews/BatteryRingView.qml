import QtQuick
import Ombrix.WidgetViews
import Ombrix.Settings

// One device: its ring with the percent or its icon inside, the bolt while charging, and two
// labels below. The numbers differ between the large ring of the small widget and the row's rings.
Column {
    id: root
    required property string type
    required property int percent
    required property bool charging
    required property bool isSmall
    required property string customName
    required property string iconName
    required property color arcColor
    required property string percentText
    required property string statusText

    readonly property real ringSide: isSmall ? 96 : 44
    readonly property real lineWidth: isSmall ? 7.5 : 5
    readonly property real boltOffset: isSmall ? 20 : 12

    objectName: "ring-" + type
    spacing: isSmall ? 10 : 4

    Item {
        objectName: "ringFrame"
        anchors.horizontalCenter: parent.horizontalCenter
        width: root.ringSide
        height: root.ringSide

        // One line wider than the frame, so the stroke is centred on the frame's circle.
        BatteryRingArc {
            objectName: "arc"
            anchors.centerIn: parent
            width: root.ringSide + root.lineWidth
            height: width
            lineWidth: root.lineWidth
            color: root.arcColor
            trackColor: Colors.hairline
            progress: root.percent / 100
            Behavior on progress {
                // The standard ease-in-out curve.
                NumberAnimation { duration: 800; easing.type: Easing.Bezier; easing.bezierCurve: [0.42, 0, 0.58, 1, 1, 1] }
            }
        }
        Text {
            objectName: "centrePercent"
            visible: root.isSmall
            anchors.centerIn: parent
            text: root.percentText
            font.pixelSize: 21
            font.bold: true
            color: Colors.white
        }
        Symbol {
            objectName: "centreIcon"
            visible: !root.isSmall
            anchors.centerIn: parent
            name: root.iconName
            size: 14
            color: Colors.white
        }
        Symbol {
            objectName: "bolt"
            visible: root.charging
            anchors.centerIn: parent
            anchors.horizontalCenterOffset: root.boltOffset
            anchors.verticalCenterOffset: root.boltOffset
            name: "bolt.fill"
            size: root.isSmall ? 11 : 10
            color: Colors.boltYellow
        }
    }

    Column {
        width: parent.width
        spacing: 2

        SizedText {
            objectName: "name"
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: root.customName
            textFormat: Text.PlainText
            maximumLineCount: 1
            elide: Text.ElideRight
            size: root.isSmall ? 11.5 : 10
            weight: root.isSmall ? Font.DemiBold : Font.Bold
            color: root.isSmall ? Colors.white : Colors.dimWhite
        }
        Text {
            objectName: "status"
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: root.statusText
            font.pixelSize: 11
            font.weight: root.isSmall ? Font.Normal : Font.DemiBold
            color: root.isSmall ? Colors.dimWhite : Colors.white
        }
    }
}
