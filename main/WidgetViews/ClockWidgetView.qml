import QtQuick
import QtQuick.Layouts
import Ombrix.Settings
import Ombrix.WidgetViews

// The clock: an analog dial or a digital read-out, with a calendar column at medium size.
WidgetContainer {
    id: root
    readonly property bool isMedium: Settings.clockSize === "medium"
    readonly property bool isSmall: Settings.clockSize === "small"
    readonly property bool isAnalog: Settings.clockStyle === "analog"
    property alias model: clock

    ClockWidgetModel {
        id: clock
        active: root.visible && root.Window.window !== null && root.Window.window.visible
    }

    RowLayout {
        anchors.fill: parent
        spacing: 0

        // Analog: the dial with its hands, and the city and date inside it at small size.
        Item {
            id: dial
            objectName: "analog"
            visible: root.isAnalog
            Layout.fillWidth: true
            Layout.fillHeight: true

            AnalogClockDial { anchors.fill: parent }
            Column {
                visible: root.isSmall
                anchors.centerIn: parent
                spacing: 2
                Text {
                    objectName: "analogCity"
                    anchors.horizontalCenter: parent.horizontalCenter
                    // Within the ring of ticks.
                    width: Math.min(implicitWidth, dial.width * 0.7)
                    elide: Text.ElideRight
                    text: clock.city
                    textFormat: Text.PlainText
                    font.pixelSize: 9; font.bold: true; font.letterSpacing: 0.3
                    color: Colors.dimWhite
                    transform: Translate { y: -18 }
                }
                Text {
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: clock.shortDateString
                    font.pixelSize: 9; font.bold: true
                    color: Colors.accentRed
                    transform: Translate { y: 18 }
                }
            }
            ClockHand { objectName: "hourHand"; anchors.fill: parent; angle: clock.hourAngle; lengthFraction: 0.55; thickness: 4.5; color: Colors.white }
            ClockHand { objectName: "minuteHand"; anchors.fill: parent; angle: clock.minuteAngle; lengthFraction: 0.8; thickness: 3.5; color: Colors.white }
            ClockHand { objectName: "secondHand"; anchors.fill: parent; angle: clock.secondAngle; lengthFraction: 0.88; thickness: 1.5; color: Colors.accentRed }
            // A 9-point disc with its 1.5 stroke centred on the edge: 10.5 across, the border inside that.
            Rectangle {
                objectName: "hub"
                anchors.centerIn: parent
                width: 10.5; height: 10.5; radius: 5.25
                color: Colors.hubDark
                border.color: Colors.white; border.width: 1.5
            }
        }

        // Digital: date, time with seconds, and city.
        ColumnLayout {
            objectName: "digital"
            visible: !root.isAnalog
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.leftMargin: root.isMedium ? 0 : 4
            Layout.rightMargin: root.isMedium ? 0 : 4
            spacing: 8

            Text {
                Layout.alignment: Qt.AlignHCenter
                text: clock.fullDateString
                font.pixelSize: 11; font.bold: true; font.letterSpacing: 0.8
                color: Colors.accentRed
            }
            Item {
                Layout.fillHeight: true
                Layout.fillWidth: true
                Column {
                    anchors.centerIn: parent
                    spacing: 0
                    Text {
                        anchors.horizontalCenter: parent.horizontalCenter
                        text: clock.timeString
                        font.pixelSize: root.isMedium ? 34 : 38; font.weight: Font.Light; font.letterSpacing: -1.2
                        color: Colors.white
                    }
                    Text {
                        anchors.horizontalCenter: parent.horizontalCenter
                        text: clock.secondsString
                        font.pixelSize: 13; font.weight: Font.Medium
                        color: Colors.dimWhite
                    }
                }
            }
            Text {
                objectName: "digitalCity"
                // The column's width, never the text's, decides the line: a long name is cut.
                Layout.fillWidth: true
                Layout.preferredWidth: 0
                horizontalAlignment: Text.AlignHCenter
                elide: Text.ElideRight
                text: clock.city
                textFormat: Text.PlainText
                font.pixelSize: 11; font.bold: true; font.letterSpacing: 0.5
                color: Colors.dimWhite
            }
        }

        Rectangle {
            visible: root.isMedium
            Layout.preferredWidth: 1
            Layout.fillHeight: true
            Layout.topMargin: 4
            Layout.bottomMargin: 4
            Layout.leftMargin: 16
            Layout.rightMargin: 16
            color: Colors.hairline
        }

        ColumnLayout {
            objectName: "calendar"
            visible: root.isMedium
            Layout.preferredWidth: 140
            Layout.maximumWidth: 140
            Layout.alignment: Qt.AlignVCenter | Qt.AlignLeft
            spacing: 2
            Text {
                text: clock.weekdayName
                font.pixelSize: 11; font.bold: true; font.letterSpacing: 0.8
                color: Colors.accentRed
            }
            Text {
                Layout.leftMargin: -2
                text: clock.dayNumString
                font.pixelSize: 48; font.weight: Font.Thin; font.letterSpacing: -2
                color: Colors.white
            }
            Text {
                Layout.preferredWidth: 140
                text: "Nessun altro impegno oggi"
                font.pixelSize: 11
                color: Colors.dimWhite
                wrapMode: Text.WordWrap
                maximumLineCount: 2
            }
        }
    }
}
