import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import Ombrix.Settings
import Ombrix.WidgetViews

// The weather: city, emoji, temperature and description, with four forecast rows at medium size.
WidgetContainer {
    id: root
    readonly property string emojiFamily: "Noto Color Emoji"
    readonly property bool isMedium: Settings.weatherSize === "medium"
    readonly property bool onScreen: root.visible && root.Window.window !== null && root.Window.window.visible
    readonly property bool showForecast: isMedium && weather.hasDaily
    // Exactly one panel shows, tested in this order.
    readonly property string panel: weather.loading ? "loading"
                                  : weather.connectionError ? "error"
                                  : weather.hasWeatherData ? "data" : ""
    property alias model: weather

    glowColor: weather.glowColor

    WeatherWidgetModel {
        id: weather
        active: root.onScreen
    }

    Column {
        objectName: "loadingPanel"
        visible: root.panel === "loading"
        anchors.centerIn: parent
        spacing: 12

        // Twelve fading spokes stepped round once a second: a few small repaints, no running animation.
        Item {
            id: spinner
            objectName: "spinner"
            property int step: 0
            anchors.horizontalCenter: parent.horizontalCenter
            width: 32
            height: 32
            rotation: step * 30

            Repeater {
                model: 12
                // Spokes from radius 7 to 15, each turned about the spinner's centre.
                Rectangle {
                    id: spoke
                    required property int index
                    x: 14.75
                    y: 1
                    width: 2.5
                    height: 8
                    radius: 1.25
                    antialiasing: true
                    color: Colors.white
                    opacity: 1 - spoke.index * 0.07
                    transform: Rotation {
                        origin.x: 1.25
                        origin.y: 15
                        angle: -spoke.index * 30
                    }
                }
            }
            Timer {
                objectName: "spinnerTimer"
                interval: 83
                repeat: true
                running: spinner.visible && root.onScreen
                onTriggered: spinner.step = (spinner.step + 1) % 12
            }
        }
        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "AGGIORNAMENTO…"
            font.pixelSize: 10
            font.bold: true
            color: Colors.dimWhite
        }
    }

    Column {
        objectName: "errorPanel"
        visible: root.panel === "error"
        anchors.centerIn: parent
        spacing: 8

        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "🌐"
            font.family: root.emojiFamily
            font.pixelSize: 24
        }
        Text {
            anchors.horizontalCenter: parent.horizontalCenter
            text: "ERRORE DI RETE"
            font.pixelSize: 10
            font.bold: true
            color: Colors.dimWhite
        }
    }

    RowLayout {
        objectName: "dataPanel"
        visible: root.panel === "data"
        anchors.fill: parent
        spacing: 0

        ColumnLayout {
            objectName: "mainColumn"
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.alignment: Qt.AlignLeft | Qt.AlignVCenter
            spacing: 0

            // Anchored, not a nested RowLayout: a nested layout is arranged again only when its
            // own size changes, so the emoji box, still empty when the row was first arranged at
            // its final width, stayed 0 wide at the right edge and the emoji was drawn past it.
            Item {
                Layout.fillWidth: true
                Layout.alignment: Qt.AlignTop
                implicitHeight: Math.max(city.implicitHeight, emojiBox.height)

                Text {
                    id: city
                    objectName: "city"
                    anchors.left: parent.left
                    anchors.right: emojiBox.left
                    anchors.rightMargin: 12
                    text: weather.cityName
                    textFormat: Text.PlainText
                    font.pixelSize: 15
                    font.weight: Font.DemiBold
                    color: Colors.white
                    maximumLineCount: 1
                    elide: Text.ElideRight
                }
                Item {
                    id: emojiBox
                    anchors.right: parent.right
                    width: Math.ceil(emoji.implicitWidth)
                    height: Math.ceil(emoji.implicitHeight)

                    EmojiShadow {
                        x: -radius
                        y: 4 - radius
                        width: emoji.width + 2 * radius
                        height: emoji.height + 2 * radius
                        text: emoji.text
                        font: emoji.font
                        color: Colors.emojiShadow
                        radius: 6
                    }
                    Text {
                        id: emoji
                        objectName: "emoji"
                        text: weather.weatherEmoji
                        font.family: root.emojiFamily
                        font.pixelSize: 26
                    }
                }
            }
            Item { Layout.fillHeight: true }
            ColumnLayout {
                spacing: 2

                Text {
                    objectName: "temperature"
                    Layout.leftMargin: -2
                    text: weather.temperatureText
                    font.pixelSize: root.isMedium ? 50 : 58
                    font.weight: Font.Thin
                    font.letterSpacing: -3.5
                    color: Colors.white
                }
                ColumnLayout {
                    spacing: 1

                    SizedText {
                        objectName: "description"
                        text: weather.weatherDescription
                        size: 12.5
                        weight: Font.Medium
                        color: Colors.white
                    }
                    Text {
                        objectName: "highLow"
                        visible: text !== ""
                        text: weather.highLowText
                        font.pixelSize: 12
                        font.weight: Font.Medium
                        color: Colors.dimWhite
                    }
                }
            }
        }

        Rectangle {
            objectName: "divider"
            visible: root.showForecast
            Layout.preferredWidth: 1
            Layout.fillHeight: true
            Layout.topMargin: 4
            Layout.bottomMargin: 4
            Layout.leftMargin: 16
            Layout.rightMargin: 16
            color: Colors.hairline
        }

        ColumnLayout {
            objectName: "forecast"
            visible: root.showForecast
            Layout.preferredWidth: 140
            Layout.maximumWidth: 140
            Layout.alignment: Qt.AlignLeft | Qt.AlignVCenter
            spacing: 4

            Repeater {
                model: weather.forecastRows
                RowLayout {
                    id: row
                    required property var modelData
                    Layout.fillWidth: true
                    spacing: 8

                    Text {
                        Layout.preferredWidth: 42
                        text: row.modelData.dayName
                        font.pixelSize: 12
                        font.weight: Font.Medium
                        color: Colors.dimWhite
                    }
                    Text {
                        text: row.modelData.emoji
                        font.family: root.emojiFamily // qmllint disable unqualified
                        font.pixelSize: 16
                    }
                    Item { Layout.fillWidth: true }
                    Text {
                        text: row.modelData.maxText
                        font.pixelSize: 12
                        font.weight: Font.DemiBold
                        color: Colors.white
                    }
                    Text {
                        text: row.modelData.minText
                        font.pixelSize: 12
                        color: Colors.faint
                    }
                }
            }
        }
    }
}
