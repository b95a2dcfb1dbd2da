import QtQuick

// One hand from the centre of its box, lengthFraction of the smaller half side long, with round
// ends. It is a small item turned by the scene graph, so a tick redraws only where the hand was and
// is, not a dial-sized image.
Item {
    id: hand
    property real angle: 0 // degrees clockwise from twelve
    property real lengthFraction: 1
    property real thickness: 1
    property color color: "white"
    readonly property real length: Math.min(width, height) * 0.5 * lengthFraction

    Rectangle {
        x: (hand.width - hand.thickness) / 2
        y: hand.height / 2 - hand.length - hand.thickness / 2
        width: hand.thickness
        height: hand.length + hand.thickness
        radius: hand.thickness / 2
        antialiasing: true
        color: hand.color
        transform: Rotation {
            origin.x: hand.thickness / 2
            origin.y: hand.length + hand.thickness / 2
            angle: hand.angle
        }
    }
}
