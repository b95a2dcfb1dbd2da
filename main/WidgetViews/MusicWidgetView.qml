import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import Ombrix.Settings
import Ombrix.WidgetViews

// Now playing: a waiting text, or the artwork with the track; at medium also the source, the
// bars and the transport buttons.
WidgetContainer {
    id: root
    readonly property string emojiFamily: "Noto Color Emoji"
    readonly property bool onScreen: root.visible && root.Window.window !== null && root.Window.window.visible
    // Which of the three layouts shows: "waiting", "small" or "medium".
    readonly property string layoutCase: !music.playing ? "waiting"
                                       : Settings.musicSize === "small" ? "small" : "medium"
    property alias model: music

    glowColor: music.frameGlowColor

    MusicWidgetModel {
        id: music
        active: root.onScreen
    }

    // Only the shown layout exists, so the bars and their timer go with the medium playing one.
    Loader {
        objectName: "layout"
        anchors.centerIn: parent
        width: parent.width
        height: parent.height
        sourceComponent: root.layoutCase === "waiting" ? waiting
                       : root.layoutCase === "small" ? smallPlaying : mediumPlaying
    }

    // The layouts below read the view's ids from inline Components, which Qt 6.4's qmllint reports
    // as unqualified (it has no ComponentBehavior pragma yet); they resolve in this file's context.
    // qmllint disable unqualified
    Component {
        id: waiting
        Item {
            objectName: "waiting"
            Column {
                anchors.centerIn: parent
                spacing: 8
                Text {
                    objectName: "waitingNote"
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: "🎵"
                    font.family: root.emojiFamily
                    font.pixelSize: 32
                }
                Text {
                    objectName: "waitingText"
                    anchors.horizontalCenter: parent.horizontalCenter
                    text: "In attesa di musica…"
                    font.pixelSize: 13
                    font.weight: Font.Medium
                    color: Colors.dimWhite
                }
            }
        }
    }

    Component {
        id: smallPlaying
        Item {
            objectName: "smallPlaying"
            Column {
                anchors.centerIn: parent
                width: parent.width
                spacing: 10
                Loader {
                    anchors.horizontalCenter: parent.horizontalCenter
                    width: 82
                    height: 82
                    sourceComponent: artView
                }
                Column {
                    width: parent.width
                    spacing: 2
                    Text {
                        objectName: "track"
                        width: parent.width
                        horizontalAlignment: Text.AlignHCenter
                        text: music.track
                        textFormat: Text.PlainText
                        font.pixelSize: 13
                        font.weight: Font.DemiBold
                        color: Colors.white
                        maximumLineCount: 1
                        elide: Text.ElideRight
                    }
                    Text {
                        objectName: "artist"
                        width: parent.width
                        horizontalAlignment: Text.AlignHCenter
                        text: music.artist
                        textFormat: Text.PlainText
                        font.pixelSize: 11
                        color: Colors.dimWhite
                        maximumLineCount: 1
                        elide: Text.ElideRight
                    }
                }
            }
        }
    }

    Component {
        id: mediumPlaying
        RowLayout {
            objectName: "mediumPlaying"
            spacing: 0
            Loader {
                Layout.preferredWidth: 124
                Layout.preferredHeight: 124
                Layout.alignment: Qt.AlignVCenter
                sourceComponent: artView
            }
            ColumnLayout {
                Layout.fillWidth: true
                Layout.fillHeight: true
                Layout.leftMargin: 20
                spacing: 0
                RowLayout {
                    Layout.fillWidth: true
                    // The row's spacing and the spacer's least length.
                    spacing: 16
                    ColumnLayout {
                        Layout.fillWidth: true
                        spacing: 1
                        SizedText {
                            objectName: "source"
                            Layout.fillWidth: true
                            // A player's own name: outside text, one line.
                            text: music.sourceLabel
                            size: 9.5
                            weight: Font.Bold
                            letterSpacing: 0.8
                            capitalization: Font.AllUppercase
                            textFormat: Text.PlainText
                            maximumLineCount: 1
                            elide: Text.ElideRight
                            color: Colors.dimWhite
                        }
                        Text {
                            objectName: "track"
                            Layout.fillWidth: true
                            text: music.track
                            textFormat: Text.PlainText
                            font.pixelSize: 17
                            font.weight: Font.DemiBold
                            color: Colors.white
                            maximumLineCount: 1
                            elide: Text.ElideRight
                        }
                        Text {
                            objectName: "artist"
                            Layout.fillWidth: true
                            text: music.artist
                            textFormat: Text.PlainText
                            font.pixelSize: 13
                            color: Colors.dimWhite
                            maximumLineCount: 1
                            elide: Text.ElideRight
                        }
                    }
                    MusicVisualizer {
                        objectName: "visualizer"
                        color: music.sourceColor
                        active: root.onScreen
                        transform: Translate { y: -10 }
                    }
                }
                Item { Layout.fillHeight: true }
                RowLayout {
                    spacing: 16
                    TransportButton {
                        objectName: "previousButton"
                        symbol: "backward.fill"
                        symbolSize: 12
                        diameter: 32
                        color: Colors.hairline
                        onClicked: music.control("previous")
                    }
                    TransportButton {
                        objectName: "playPauseButton"
                        symbol: "playpause.fill"
                        symbolSize: 14
                        diameter: 40
                        color: music.sourceColor
                        onClicked: music.control("playpause")
                    }
                    TransportButton {
                        objectName: "nextButton"
                        symbol: "forward.fill"
                        symbolSize: 12
                        diameter: 32
                        color: Colors.hairline
                        onClicked: music.control("next")
                    }
                }
            }
        }
    }

    // The artwork, or a gradient with a note while there is none; the caller sets the frame.
    Component {
        id: artView
        Item {
            objectName: "artView"
            // A translucent shape casts a shadow only as dark as it is opaque.
            RoundedShadow {
                x: -blur
                y: -blur + (music.hasImage ? 8 : 6)
                width: parent.width + 2 * blur
                height: parent.height + 2 * blur
                blur: music.hasImage ? 10 : 8
                cornerRadius: 14
                color: Qt.rgba(0, 0, 0, music.hasImage ? 0.45 : 0.3 * 0.25)
            }
            ArtworkImage {
                objectName: "artwork"
                anchors.fill: parent
                visible: music.hasImage
                image: music.image // qmllint disable type
                radius: 14
            }
            DiagonalGradient {
                objectName: "artPlaceholder"
                anchors.fill: parent
                visible: !music.hasImage
                radius: 14
                startColor: Qt.rgba(music.accentPink.r, music.accentPink.g, music.accentPink.b, 0.25)
                endColor: Qt.rgba(music.accentOrange.r, music.accentOrange.g, music.accentOrange.b, 0.25)
                Text {
                    anchors.centerIn: parent
                    text: "🎵"
                    font.family: root.emojiFamily
                    font.pixelSize: 32
                    color: Colors.white
                    opacity: 0.7
                }
            }
        }
    }

    // A round button holding one symbol. It takes its own presses, so a click never drags the window.
    component TransportButton: Rectangle {
        id: button
        property string symbol
        property real symbolSize
        property real diameter
        signal clicked()

        Layout.preferredWidth: diameter
        Layout.preferredHeight: diameter
        Layout.alignment: Qt.AlignVCenter
        radius: diameter / 2
        antialiasing: true

        Symbol {
            anchors.centerIn: parent
            name: button.symbol
            size: button.symbolSize
            color: Colors.white
        }
        MouseArea {
            objectName: "pressArea"
            anchors.fill: parent
            onClicked: button.clicked()
        }
    }
    // qmllint enable unqualified
}
