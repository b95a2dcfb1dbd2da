import QtQuick
import Ombrix.WidgetViews
import QtQuick.Layouts
import Ombrix.Settings
import Ombrix.ControlPanel

// The four widget cards, with their options while each is on.
ColumnLayout {
    id: tab
    required property ControlPanelModel model
    readonly property var sizes: ({ "small": "Piccolo (2x2)", "medium": "Medio (4x2)" })
    readonly property var clockStyles: ({ "analog": "Analogico", "digital": "Digitale" })
    spacing: 16

    Text {
        text: "Attiva e gestisci i tuoi widget"
        font.pixelSize: 11; font.bold: true; font.letterSpacing: 0.5
        color: Colors.caption
    }

    WidgetCard {
        objectName: "card-clock"
        title: "Orologio & Data"; description: "Analogico o digitale minimalista"; icon: "clock"
        enabled: Settings.clockEnabled
        onToggled: (v) => Settings.setWidgetEnabled("clock", v)
        ToggleRow {
            objectName: "clickThrough-clock"
            label: "Cliccabile attraverso"; value: Settings.clockClickThrough
            onToggled: (v) => Settings.setClickThrough("clock", v)
        }
        PickerRow {
            objectName: "style-clock"
            label: "Stile orologio"; options: tab.clockStyles; selection: Settings.clockStyle
            onPicked: (v) => Settings.setClockFace(v)
        }
        PickerRow {
            objectName: "size-clock"
            label: "Dimensione widget"; options: tab.sizes; selection: Settings.clockSize
            onPicked: (v) => Settings.setWidgetSize("clock", v)
        }
    }

    WidgetCard {
        objectName: "card-weather"
        title: "Meteo"; description: "Temperatura, condizioni e H/L"; icon: "cloud.sun"
        enabled: Settings.weatherEnabled
        onToggled: (v) => Settings.setWidgetEnabled("weather", v)
        ToggleRow {
            objectName: "clickThrough-weather"
            label: "Cliccabile attraverso"; value: Settings.weatherClickThrough
            onToggled: (v) => Settings.setClickThrough("weather", v)
        }
        PickerRow {
            objectName: "size-weather"
            label: "Dimensione widget"; options: tab.sizes; selection: Settings.weatherSize
            onPicked: (v) => Settings.setWidgetSize("weather", v)
        }
    }

    WidgetCard {
        objectName: "card-battery"
        title: "Batteria"; description: "Carica e stato di alimentazione"; icon: "battery.100"
        enabled: Settings.batteryEnabled
        onToggled: (v) => Settings.setWidgetEnabled("battery", v)
        ToggleRow {
            objectName: "clickThrough-battery"
            label: "Cliccabile attraverso"; value: Settings.batteryClickThrough
            onToggled: (v) => Settings.setClickThrough("battery", v)
        }
        PickerRow {
            objectName: "size-battery"
            label: "Dimensione widget"; options: tab.sizes; selection: Settings.batterySize
            onPicked: (v) => Settings.setWidgetSize("battery", v)
        }
        Item {
            Layout.fillWidth: true
            implicitHeight: devices.implicitHeight + 6
            Rectangle { width: parent.width; height: 1; color: Colors.hairline } // the top rule
            ColumnLayout {
                id: devices
                y: 6
                width: parent.width
                spacing: 8
                Text {
                    Layout.topMargin: 4
                    text: "Mostra dispositivi:"
                    font.pixelSize: 11; font.weight: Font.DemiBold
                    color: Colors.caption
                }
                GridLayout {
                    Layout.fillWidth: true
                    columns: 2
                    rowSpacing: 8
                    Repeater {
                        model: SystemTexts.deviceCategories
                        CheckboxToggleStyle {
                            required property var modelData
                            objectName: "device-" + modelData.key
                            Layout.fillWidth: true
                            label: modelData.label
                            checked: Settings.batteryVisibleDevices.indexOf(modelData.key) >= 0
                            onToggled: (v) => Settings.setDeviceVisible(modelData.key, v)
                        }
                    }
                }
            }
        }
    }

    WidgetCard {
        objectName: "card-music"
        title: "Now Playing"; description: SystemTexts.musicSources; icon: "music.note"
        enabled: Settings.musicEnabled
        onToggled: (v) => Settings.setWidgetEnabled("music", v)
        ToggleRow {
            objectName: "clickThrough-music"
            label: "Cliccabile attraverso"; value: Settings.musicClickThrough
            onToggled: (v) => Settings.setClickThrough("music", v)
        }
        PickerRow {
            objectName: "size-music"
            label: "Dimensione widget"; options: tab.sizes; selection: Settings.musicSize
            onPicked: (v) => Settings.setWidgetSize("music", v)
        }
    }
}
