import QtQuick
import QtQuick.Shapes

// A rounded rectangle filled from its top-left corner (startColor) to its bottom-right (endColor).
Shape {
    id: root
    property color startColor: "transparent"
    property color endColor: "transparent"
    property real radius: 0
    readonly property real r: Math.min(radius, width / 2, height / 2)

    antialiasing: true
    ShapePath {
        strokeColor: "transparent"
        fillGradient: LinearGradient {
            x2: root.width
            y2: root.height
            GradientStop { position: 0; color: root.startColor }
            GradientStop { position: 1; color: root.endColor }
        }
        startX: root.r
        PathLine { x: root.width - root.r; y: 0 }
        PathArc { x: root.width; y: root.r; radiusX: root.r; radiusY: root.r }
        PathLine { x: root.width; y: root.height - root.r }
        PathArc { x: root.width - root.r; y: root.height; radiusX: root.r; radiusY: root.r }
        PathLine { x: root.r; y: root.height }
        PathArc { x: 0; y: root.height - root.r; radiusX: root.r; radiusY: root.r }
        PathLine { x: 0; y: root.r }
        PathArc { x: root.r; y: 0; radiusX: root.r; radiusY: root.r }
    }
}
