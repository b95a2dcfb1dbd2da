import QtQuick
import QtQuick.Layouts
import Ombrix.WidgetViews

// One widget's card: the head row with its switch, and its options while it is on.
Rectangle {
    id: card
    property string title
    property string description
    property string icon
    property bool enabled
    signal toggled(bool value)
    default property alias options: optionsColumn.data

    Layout.fillWidth: true
    implicitHeight: column.implicitHeight
    radius: 12
    color: Colors.cardFill
    clip: true

    // The outline lies over everything the card holds.
    Rectangle {
        anchors.fill: parent
        z: 1
        radius: card.radius
        color: "transparent"
        border.color: Colors.cardFill
        border.width: 1
    }

    ColumnLayout {
        id: column
        width: parent.width
        spacing: 0

        RowLayout {
            Layout.fillWidth: true
            Layout.margins: 14
            spacing: 12
            Rectangle {
                width: 38; height: 38; radius: 8
                color: Colors.hairline
                Symbol {
                    anchors.centerIn: parent
                    name: card.icon
                    size: 18
                    color: card.enabled ? Colors.accentBlue : Colors.muted
                }
            }
            ColumnLayout {
                spacing: 2
                Text { text: card.title; font.pixelSize: 14; font.weight: Font.DemiBold; color: Colors.white }
                Text { text: card.description; font.pixelSize: 12; color: Colors.subtitle }
            }
            Item { Layout.fillWidth: true }
            PanelSwitch {
                objectName: "cardSwitch"
                checked: card.enabled
                name: card.title
                onToggled: (v) => card.toggled(v)
            }
        }

        Item {
            objectName: "options"
            visible: card.enabled
            Layout.fillWidth: true
            implicitHeight: optionsColumn.implicitHeight + 14
            // The shade follows the card's rounded bottom corners (a clip here is only ever square):
            // a square part above, and below it the lower half of a rounded rectangle.
            Rectangle {
                width: parent.width
                height: parent.height - card.radius
                color: Colors.buttonShade
            }
            Item {
                y: parent.height - card.radius
                width: parent.width
                height: card.radius
                clip: true
                Rectangle {
                    y: -card.radius
                    width: parent.width
                    height: 2 * card.radius
                    radius: card.radius
                    color: Colors.buttonShade
                }
            }
            ColumnLayout {
                id: optionsColumn
                x: 14
                width: parent.width - 28
                spacing: 12
            }
        }
    }
}
