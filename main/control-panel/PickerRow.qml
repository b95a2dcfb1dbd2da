import QtQuick
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
    Picker {
        Layout.preferredWidth: 170
        name: root.label
        entries: root.entries
        // A stored value outside the keys shows nothing chosen until the user picks.
        currentIndex: root.entries.findIndex(e => e.value === root.selection)
        onActivated: (index) => root.picked(root.entries[index].value)
    }
}
