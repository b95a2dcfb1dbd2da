import QtQuick
import QtQuick.Window
import Ombrix.WidgetViews

// A pop-up list of plain items: Qt Quick Controls' ComboBox would keep its style's types and
// library pages in the app for its whole life, long after the panel has closed. Closed, it shows
// the chosen entry, and Up and Down pick the one before or after it; Space, Enter or a click opens
// the list over the panel, where arrows move, Enter, Space or a click picks and Esc closes.
Rectangle {
    id: picker
    objectName: "picker"
    property var entries: [] // { value, text }
    property int currentIndex: -1
    property string name // what a screen reader calls it
    // The open list, to look at from outside.
    readonly property Item popup: overlay
    signal activated(int index)

    readonly property string displayText: currentIndex >= 0 && currentIndex < entries.length
                                          ? entries[currentIndex].text : ""
    implicitWidth: 170
    implicitHeight: 26
    radius: 6
    color: Colors.fieldFill
    border.color: Colors.hairline
    activeFocusOnTab: true

    function pick(index) {
        if (index >= 0 && index < entries.length && index !== currentIndex)
            activated(index)
    }
    function open() {
        const top = picker.Window.contentItem
        if (!top)
            return
        const below = picker.mapToItem(top, 0, picker.height + 4)
        const height = list.implicitHeight
        list.x = below.x
        // Below the picker when the list fits there, above it otherwise.
        list.y = below.y + height <= top.height ? below.y : below.y - picker.height - 8 - height
        overlay.highlightedIndex = Math.max(0, currentIndex)
        overlay.parent = top
        overlay.visible = true
        overlay.forceActiveFocus()
    }
    function close() {
        overlay.visible = false
        picker.forceActiveFocus()
    }

    Keys.onPressed: (event) => {
        if (event.key === Qt.Key_Space || event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
            open()
        else if (event.key === Qt.Key_Up)
            pick(currentIndex - 1)
        else if (event.key === Qt.Key_Down)
            pick(currentIndex + 1)
        else
            return
        event.accepted = true
    }
    Accessible.role: Accessible.ComboBox
    Accessible.name: picker.name
    Accessible.description: picker.displayText
    Accessible.onPressAction: picker.open()
    FocusRing {}
    TapHandler { onTapped: picker.open() }

    Text {
        objectName: "pickerText"
        anchors.fill: parent
        // The text's own margins: the longest entry, "Liquid Glass Trasparente", fits the width whole.
        anchors.leftMargin: 10
        anchors.rightMargin: 22
        text: picker.displayText
        font.pixelSize: 11
        color: Colors.white
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
    }
    Text {
        x: picker.width - width - 8
        anchors.verticalCenter: parent.verticalCenter
        text: "⌃"
        rotation: 180
        color: Colors.muted
        font.pixelSize: 10
    }

    // Over the whole window while open: a press outside the list closes it.
    Item {
        id: overlay
        property int highlightedIndex: 0
        visible: false
        width: parent ? parent.width : 0
        height: parent ? parent.height : 0
        z: 1000
        Keys.onPressed: (event) => {
            if (event.key === Qt.Key_Up)
                highlightedIndex = Math.max(0, highlightedIndex - 1)
            else if (event.key === Qt.Key_Down)
                highlightedIndex = Math.min(picker.entries.length - 1, highlightedIndex + 1)
            else if (event.key === Qt.Key_Space || event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
                picker.pick(highlightedIndex)
                picker.close()
            } else if (event.key === Qt.Key_Escape || event.key === Qt.Key_Tab || event.key === Qt.Key_Backtab)
                picker.close()
            else
                return
            event.accepted = true
        }
        MouseArea {
            anchors.fill: parent
            onPressed: picker.close()
        }
        Rectangle {
            id: list
            width: picker.width
            implicitHeight: column.implicitHeight + 8
            height: implicitHeight
            radius: 6
            color: Colors.popupFill
            border.color: Colors.selection
            Accessible.role: Accessible.List
            Accessible.name: picker.name
            Column {
                id: column
                x: 4; y: 4
                width: parent.width - 8
                Repeater {
                    model: picker.entries
                    // The delegate reaches the picker's own ids, which the linter cannot follow.
                    // qmllint disable unqualified
                    Rectangle {
                        id: option
                        required property var modelData
                        required property int index
                        width: column.width
                        height: 26
                        radius: 4
                        color: overlay.highlightedIndex === option.index ? Colors.accentBlue : "transparent"
                        Accessible.role: Accessible.ListItem
                        Accessible.name: option.modelData.text
                        Accessible.selected: picker.currentIndex === option.index
                        Text {
                            x: 8
                            anchors.verticalCenter: parent.verticalCenter
                            text: option.modelData.text
                            color: Colors.white
                            font.pixelSize: 12
                        }
                        MouseArea {
                            anchors.fill: parent
                            hoverEnabled: true
                            onEntered: overlay.highlightedIndex = option.index
                            onClicked: {
                                picker.pick(option.index)
                                picker.close()
                            }
                        }
                    }
                    // qmllint enable unqualified
                }
            }
        }
    }
}
