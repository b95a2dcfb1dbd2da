import QtQuick
import Ombrix.WidgetViews
import QtQuick.Layouts
import Ombrix.Settings
import Ombrix.ControlPanel

// The glass theme, the weather location with its city search, and the app's own lines.
ColumnLayout {
    id: tab
    required property ControlPanelModel model
    spacing: 18

    component Heading: Text {
        font.pixelSize: 11; font.bold: true; font.letterSpacing: 0.5
        color: Colors.caption
    }
    component Box: Rectangle {
        default property alias content: boxColumn.data
        Layout.fillWidth: true
        implicitHeight: boxColumn.implicitHeight + 28
        radius: 12
        color: Colors.cardFill
        ColumnLayout {
            id: boxColumn
            x: 14; y: 14
            width: parent.width - 28
            spacing: 12
        }
    }
    component MetadataRow: RowLayout {
        property string label
        property string value
        Layout.fillWidth: true
        Text { text: parent.label; font.pixelSize: 13; color: Colors.dimWhite }
        Item { Layout.fillWidth: true }
        Text { text: parent.value; font.pixelSize: 13; font.weight: Font.Medium; color: Colors.white }
    }

    Heading { text: "Aspetto" }
    Box {
        PickerRow {
            objectName: "theme"
            label: "Tema Vetro Widget"
            options: ({ "transparent": "Liquid Glass Trasparente", "opaque": "Liquid Glass Opaco" })
            selection: Settings.glassTheme
            onPicked: (v) => Settings.setTheme(v)
        }
    }

    Heading { text: "Sistema"; Layout.topMargin: 10 }
    Box {
        // The entry may change outside the panel: read it each time the tab comes into view.
        readonly property bool inView: tab.visible && Window.active
        onInViewChanged: if (inView) tab.model.refreshLaunchAtLogin()
        RowLayout {
            Layout.fillWidth: true
            ColumnLayout {
                spacing: 2
                Text { text: "Avvia all'accesso"; font.pixelSize: 13; font.weight: Font.Medium; color: Colors.white }
                Text { text: "Riapre i widget quando accedi"; font.pixelSize: 11; color: Colors.caption }
            }
            Item { Layout.fillWidth: true }
            PanelSwitch {
                objectName: "launchAtLogin"
                name: "Avvia all'accesso"
                checked: tab.model.launchAtLogin
                onToggled: (v) => tab.model.launchAtLogin = v
            }
        }
    }

    Heading { text: "Configura il meteo"; Layout.topMargin: 10 }
    Box {
        RowLayout {
            Layout.fillWidth: true
            ColumnLayout {
                spacing: 2
                Text { text: "Posizione automatica (via IP)"; font.pixelSize: 13; font.weight: Font.Medium; color: Colors.white }
                Text { text: "Rileva la tua città dall'indirizzo IP"; font.pixelSize: 11; color: Colors.caption }
            }
            Item { Layout.fillWidth: true }
            PanelSwitch {
                objectName: "autoLocation"
                name: "Posizione automatica (via IP)"
                checked: tab.model.weatherAutoMode
                onToggled: (v) => tab.model.weatherAutoMode = v
            }
        }
        Item {
            objectName: "citySection"
            visible: !tab.model.weatherAutoMode
            Layout.fillWidth: true
            implicitHeight: city.implicitHeight + 10
            Rectangle { width: parent.width; height: 1; color: Colors.hairline } // the top rule
            ColumnLayout {
                id: city
                y: 10
                width: parent.width
                spacing: 8
                Text { text: "Città"; font.pixelSize: 11; font.weight: Font.DemiBold; color: Colors.dimWhite }
                RowLayout {
                    Layout.fillWidth: true
                    spacing: 8
                    // A plain text input: Qt Quick Controls' field would stay loaded after the panel closes.
                    Rectangle {
                        Layout.fillWidth: true
                        implicitHeight: field.implicitHeight + 12
                        radius: 6
                        color: Colors.hairline
                        TextInput {
                            id: field
                            objectName: "cityField"
                            Accessible.role: Accessible.EditableText
                            Accessible.name: "Città"
                            Accessible.editable: true
                            anchors.fill: parent
                            anchors.leftMargin: 10; anchors.rightMargin: 10
                            verticalAlignment: TextInput.AlignVCenter
                            clip: true
                            activeFocusOnTab: true
                            selectByMouse: true
                            text: tab.model.manualCity
                            onTextEdited: tab.model.manualCity = text
                            color: Colors.white
                            selectionColor: Colors.accentBlue
                            font.pixelSize: 13
                            Text {
                                anchors.fill: parent
                                verticalAlignment: Text.AlignVCenter
                                text: "es. Milano, Roma, Napoli"
                                color: Colors.faint
                                font: field.font
                                visible: !field.text && !field.preeditText
                            }
                        }
                        FocusRing { visible: field.activeFocus }
                    }
                    Rectangle {
                        objectName: "saveButton"
                        readonly property bool busy: tab.model.searchInProgress
                        implicitWidth: saveLabel.implicitWidth + 28
                        implicitHeight: saveLabel.implicitHeight + 12
                        radius: 6
                        color: Colors.accentBlue
                        opacity: busy ? 0.6 : 1
                        activeFocusOnTab: true
                        Keys.onPressed: (event) => {
                            if (!busy && (event.key === Qt.Key_Space || event.key === Qt.Key_Return || event.key === Qt.Key_Enter)) {
                                tab.model.saveManualLocation()
                                event.accepted = true
                            }
                        }
                        Accessible.role: Accessible.Button
                        Accessible.name: "Salva"
                        Accessible.onPressAction: if (!busy) tab.model.saveManualLocation()
                        FocusRing {}
                        Text {
                            id: saveLabel
                            objectName: "saveLabel"
                            anchors.centerIn: parent
                            text: parent.busy ? "..." : "Salva"
                            font.pixelSize: 12; font.bold: true
                            color: Colors.white
                        }
                        TapHandler {
                            enabled: !parent.busy
                            onTapped: tab.model.saveManualLocation()
                        }
                    }
                }
                Text {
                    objectName: "geoStatus"
                    visible: tab.model.geoStatusText !== ""
                    Layout.topMargin: 2
                    Layout.fillWidth: true
                    elide: Text.ElideRight
                    text: tab.model.geoStatusText
                    textFormat: Text.PlainText
                    font.pixelSize: 11; font.weight: Font.Medium
                    color: tab.model.geoStatusColor
                }
            }
        }
    }

    Heading { text: "App"; Layout.topMargin: 10 }
    Box {
        MetadataRow { label: "Versione"; value: "1.0.0" }
        MetadataRow { label: "Autore"; value: "Ombrix" }
    }
}
