import QtQuick
import Quillbox

// The queue's playlist headers, as the component its list makes them from. It lives in a file of
// its own, unbound: the list makes a section's header outside the page's bound components, which
// Qt 6.4 refuses to do for a component declared there.
QtObject {
    id: root

    property QueueFilter filter: null
    property real width: 0

    // The component reaches this object through the context it was declared in, as an unbound
    // component does; qmllint, which cannot see that, calls it unqualified.
    readonly property Component header: Component {
        PlaylistGroupHeader {
            width: root.width // qmllint disable unqualified
            filter: root.filter // qmllint disable unqualified
        }
    }
}
