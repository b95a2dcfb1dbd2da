import QtQuick
import QtQuick.Layouts
import Ombrix.Settings
import Ombrix.WidgetWindow
import Ombrix.WidgetViews
import Ombrix.ControlPanel

// The Control Panel: dark glass, header, two tabs and a scrolling content area, 420 by 600.
Item {
    id: root
    // The application hands in the panel's state, which outlives this scene; alone, the view has its own.
    property ControlPanelModel model: ControlPanelModel {}
    width: 420
    height: 600

    VisualEffectView { anchors.fill: parent; material: 13 }

    // The window has no title bar: a press on the background moves it.
    MouseArea {
        anchors.fill: parent
        onPressed: root.model.startWindowMove(root)
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        RowLayout {
            objectName: "header"
            Layout.fillWidth: true
            Layout.topMargin: 24; Layout.leftMargin: 24; Layout.rightMargin: 24; Layout.bottomMargin: 16
            spacing: 16
            Item {
                objectName: "logo"
                width: 42; height: 42
                DiagonalGradient { anchors.fill: parent; radius: 8; startColor: Colors.accentBlue; endColor: Colors.indigo }
                Rectangle {
                    anchors.centerIn: parent
                    width: 22; height: 22; radius: 11
                    color: "transparent"; border.color: Colors.white; border.width: 2
                }
                Rectangle { anchors.centerIn: parent; width: 4; height: 4; radius: 2; color: Colors.white }
            }
            ColumnLayout {
                spacing: 2
                Text { text: "OmbrixWidget"; font.pixelSize: 20; font.bold: true; color: Colors.white }
                Text { objectName: "subtitle"; text: SystemTexts.panelSubtitle; font.pixelSize: 12; color: Colors.dimWhite }
            }
            Item { Layout.fillWidth: true }
        }

        RowLayout {
            objectName: "tabBar"
            Layout.fillWidth: true
            Layout.leftMargin: 24; Layout.rightMargin: 24; Layout.bottomMargin: 16
            spacing: 8
            Repeater {
                model: [{ text: "Widget", value: "widgets" }, { text: "Impostazioni", value: "settings" }]
                Rectangle {
                    id: tabButton
                    required property var modelData
                    objectName: "tab-" + modelData.value
                    implicitWidth: tabText.implicitWidth + 32
                    implicitHeight: tabText.implicitHeight + 12
                    radius: 6
                    activeFocusOnTab: true
                    Keys.onPressed: (event) => {
                        if (event.key === Qt.Key_Space || event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
                            root.model.activeTab = tabButton.modelData.value
                            event.accepted = true
                        }
                    }
                    Accessible.role: Accessible.PageTab
                    Accessible.name: tabButton.modelData.text
                    Accessible.selected: root.model.activeTab === tabButton.modelData.value // qmllint disable unqualified
                    Accessible.onPressAction: root.model.activeTab = tabButton.modelData.value // qmllint disable unqualified
                    FocusRing {}
                    color: root.model.activeTab === modelData.value ? Colors.selection : "transparent" // qmllint disable unqualified
                    Text {
                        id: tabText
                        anchors.centerIn: parent
                        text: parent.modelData.text
                        font.pixelSize: 13; font.weight: Font.DemiBold
                        color: Colors.white
                    }
                    TapHandler { onTapped: root.model.activeTab = parent.modelData.value } // qmllint disable unqualified
                }
            }
            Item { Layout.fillWidth: true }
        }

        Rectangle { Layout.fillWidth: true; implicitHeight: 1; color: Colors.hairline }

        Flickable {
            id: scroller
            objectName: "content"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            contentWidth: width
            contentHeight: content.implicitHeight + 48
            boundsBehavior: Flickable.StopAtBounds
            PanelScrollBar { flickable: scroller }
            // Back where it was left once the content is tall enough to be there, then followed.
            property bool restored: false
            onContentHeightChanged: {
                if (!restored && contentHeight >= root.model.scrollY + height) {
                    contentY = root.model.scrollY
                    restored = true
                }
            }
            onContentYChanged: if (restored) root.model.scrollY = contentY
            Component.onCompleted: contentHeightChanged()

            ColumnLayout {
                id: content
                x: 24; y: 24
                width: scroller.width - 48
                spacing: 20
                // Both tabs stay alive so switching keeps every state; only visibility changes.
                WidgetsTab {
                    objectName: "widgetsTab"
                    Layout.fillWidth: true
                    visible: root.model.activeTab === "widgets"
                    model: root.model
                }
                SettingsTab {
                    objectName: "settingsTab"
                    Layout.fillWidth: true
                    visible: root.model.activeTab !== "widgets"
                    model: root.model
                }
            }
        }
    }

    // Its own close and minimise controls, where a title bar would have them.
    Row {
        objectName: "windowControls"
        x: 10; y: 8
        spacing: 8
        Repeater {
            model: [{ symbol: "xmark", tint: Colors.closeRed, action: "close" },
                    { symbol: "minus", tint: Colors.minimizeYellow, action: "minimize" }]
            Rectangle {
                required property var modelData
                objectName: "window-" + modelData.action
                width: 12; height: 12; radius: 6
                color: modelData.tint
                Accessible.role: Accessible.Button
                Accessible.name: modelData.action === "close" ? "Chiudi" : "Riduci a icona"
                Accessible.onPressAction: modelData.action === "close" ? root.model.hideWindow(root)
                                                                       : root.model.minimizeWindow(root)
                Symbol {
                    anchors.centerIn: parent
                    visible: hover.hovered
                    name: parent.modelData.symbol
                    size: 8
                    color: Colors.windowButtonSymbol
                }
                HoverHandler { id: hover }
                TapHandler {
                    onTapped: parent.modelData.action === "close" ? root.model.hideWindow(root)
                                                                  : root.model.minimizeWindow(root)
                }
            }
        }
    }
}
