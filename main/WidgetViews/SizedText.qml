import QtQuick

// Text at a type size in points, fractional ones (12.5, 11.5, 9.5) drawn at exactly that size.
// Fonts resolve to whole pixels, a point size included, so a size that isn't whole is laid out at
// twice the size and drawn at half scale: glyphs, advances and line height are those of the size.
Item {
    id: root
    property real size: 13
    property int weight: Font.Normal
    property real letterSpacing: 0
    property int capitalization: Font.MixedCase
    property alias text: label.text
    property alias color: label.color
    property alias textFormat: label.textFormat
    property alias elide: label.elide
    property alias horizontalAlignment: label.horizontalAlignment
    property alias maximumLineCount: label.maximumLineCount
    readonly property alias font: label.font
    readonly property alias truncated: label.truncated
    readonly property real contentWidth: label.contentWidth / factor
    readonly property alias lineCount: label.lineCount
    readonly property real factor: Number.isInteger(size) ? 1 : 2

    implicitWidth: label.implicitWidth / factor
    implicitHeight: label.implicitHeight / factor

    Text {
        id: label
        transformOrigin: Item.TopLeft
        scale: 1 / root.factor
        width: root.width * root.factor
        height: root.height * root.factor
        verticalAlignment: Text.AlignVCenter
        font.pixelSize: Math.round(root.size * root.factor)
        font.weight: root.weight
        font.letterSpacing: root.letterSpacing * root.factor
        font.capitalization: root.capitalization
    }
}
