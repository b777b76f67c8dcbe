// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// Something is under way. It turns only while it can be seen, and stands still where motion is not wanted.
Icon {
    id: spinner

    name: "spinner"
    size: 14
    color: Theme.ink3

    // No Animator: one that is stopped as its window goes out of sight turns on until the next frame, which never comes.
    RotationAnimation on rotation {
        running: spinner.visible && spinner.Window.visibility !== Window.Hidden && !Appearance.reducedMotion
        from: 0
        to: 360
        duration: 900
        loops: Animation.Infinite
    }
}
