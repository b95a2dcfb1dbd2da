import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Ombrix.WidgetViews

RowLayout {
    id: root
    property string label
    property string selection
    property var options: ({})
    signal picked(string value)
    // Keys in ascending order, so "medium" stands above "small" and "opaque" above "transparent".
    readonly property var entries: Object.keys(options).sort().map(k => ({ value: k, text: options[k] ?? "" }))
    Layout.fillWidth: true

    SizedText {
        objectName: "label"
        text: root.label
        size: 12.5
        color: Colors.label
    }
    Item { Layout.fillWidth: true }
    ComboBox {
        id: combo
        objectName: "picker"
        Accessible.name: root.label
        Layout.preferredWidth: 170
        implicitHeight: 26
        model: root.entries
        textRole: "text"
        valueRole: "value"
        // A stored value outside the keys shows nothing chosen until the user picks.
        currentIndex: root.entries.findIndex(e => e.value === root.selection)
        onActivated: (index) => root.picked(root.entries[index].value)
        font.pixelSize: 11
        // The control's own padding is the text's margin, so the longest entry, "Liquid Glass
        // Trasparente", fits the fixed width whole.
        leftPadding: 10
        rightPadding: 22
        contentItem: Text {
            objectName: "pickerText"
            text: combo.currentIndex >= 0 ? combo.displayText : ""
            font: combo.font
            color: Colors.white
            verticalAlignment: Text.AlignVCenter
            elide: Text.ElideRight
        }
        indicator: Text {
            x: combo.width - width - 8
            anchors.verticalCenter: parent.verticalCenter
            text: "⌃"
            rotation: 180
            color: Colors.muted
            font.pixelSize: 10
        }
        background: Rectangle {
            radius: 6
            color: Colors.fieldFill
            border.color: Colors.hairline
        }
        delegate: ItemDelegate {
            id: option
            required property var modelData
            required property int index
            width: combo.width // qmllint disable unqualified
            height: 26
            highlighted: combo.highlightedIndex === index // qmllint disable unqualified
            contentItem: Text {
                text: option.modelData.text
                color: Colors.white
                font.pixelSize: 12
                verticalAlignment: Text.AlignVCenter
            }
            background: Rectangle {
                radius: 4
                color: option.highlighted ? Colors.accentBlue : "transparent"
            }
        }
        popup.background: Rectangle {
            radius: 6
            color: Colors.popupFill
            border.color: Colors.selection
        }
    }
}
