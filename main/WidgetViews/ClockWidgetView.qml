import QtQuick

WidgetContainer {
}
