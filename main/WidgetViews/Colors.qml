pragma Singleton
import QtQuick

// Every colour the widgets and the Control Panel paint, by what it is for.
QtObject {
    // Text and strokes over the glass, from the strongest to the faintest.
    readonly property color white: "white"
    readonly property color label: Qt.rgba(1, 1, 1, 0.8)
    readonly property color checkboxLabel: Qt.rgba(1, 1, 1, 0.75)
    readonly property color muted: Qt.rgba(1, 1, 1, 0.6)
    readonly property color dimWhite: Qt.rgba(1, 1, 1, 0.55)
    readonly property color subtitle: Qt.rgba(1, 1, 1, 0.45)
    readonly property color caption: Qt.rgba(1, 1, 1, 0.4)
    readonly property color faint: Qt.rgba(1, 1, 1, 0.35)
    readonly property color uncheckedBox: Qt.rgba(1, 1, 1, 0.3)
    readonly property color switchOff: Qt.rgba(1, 1, 1, 0.18)
    readonly property color selection: Qt.rgba(1, 1, 1, 0.12)
    readonly property color fieldFill: Qt.rgba(1, 1, 1, 0.1)
    readonly property color hairline: Qt.rgba(1, 1, 1, 0.08)
    readonly property color cardFill: Qt.rgba(1, 1, 1, 0.04)

    // Shadows and dark fills.
    readonly property color emojiShadow: Qt.rgba(0, 0, 0, 0.3)
    readonly property color buttonShade: Qt.rgba(0, 0, 0, 0.1)
    readonly property color windowButtonSymbol: Qt.rgba(0, 0, 0, 0.6)
    readonly property color hubDark: Qt.rgba(28 / 255, 28 / 255, 30 / 255, 1)
    readonly property color popupFill: Qt.rgba(40 / 255, 40 / 255, 44 / 255, 0.98)

    // System colours.
    readonly property color accentBlue: Qt.rgba(0, 122 / 255, 1, 1)
    readonly property color indigo: Qt.rgba(88 / 255, 86 / 255, 214 / 255, 1)
    readonly property color accentRed: Qt.rgba(1.0, 69 / 255, 58 / 255, 1)
    readonly property color boltYellow: Qt.rgba(1, 204 / 255, 0, 1)
    readonly property color closeRed: Qt.rgba(1, 95 / 255, 87 / 255, 1)
    readonly property color minimizeYellow: Qt.rgba(1, 189 / 255, 46 / 255, 1)
}
