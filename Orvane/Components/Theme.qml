// SPDX-License-Identifier: GPL-3.0-or-later
pragma Singleton

import QtQuick
import Orvane.Components

// Every measure and colour that the window is drawn with, by its role. Colours have one line each, dark first:
// scripts/contrast.py reads them.
QtObject {
    readonly property bool dark: Appearance.isDark

    // Grounds, from the lowest.
    readonly property color sunken: dark ? "#0E1112" : "#EAEEED"
    readonly property color chrome: dark ? "#141818" : "#F2F5F5"
    readonly property color content: dark ? "#1B1F20" : "#FFFFFF"
    readonly property color raised: dark ? "#242929" : "#FFFFFF"
    // Where a control stands out from content (buttons) and from raised (the chosen segment).
    readonly property color control: dark ? "#242929" : "#FFFFFF"
    readonly property color lifted: dark ? "#39403F" : "#FFFFFF"
    // A half of a sheet, the foot of a panel.
    readonly property color inset: dark ? "#1F2424" : "#F2F5F5"

    // Lines: line and line2 are ornament, field is the edge of what can be typed into.
    readonly property color line: dark ? "#2D3333" : "#DEE2E2"
    readonly property color line2: dark ? "#3F4747" : "#C5CCCB"
    readonly property color field: dark ? "#6E7879" : "#7D8988"

    // Text: ink3 is for hints and never stands on a tint.
    readonly property color ink1: dark ? "#EBEFF0" : "#131D1C"
    readonly property color ink2: dark ? "#B2BBBC" : "#475251"
    readonly property color ink3: dark ? "#959FA0" : "#636F6D"

    // Running, now, focused, chosen, main action; and nothing else.
    readonly property color accent: dark ? "#67C8B9" : "#0E6E63"
    readonly property color accentFill: dark ? "#1D8174" : "#0E6E63"
    readonly property color inkOnAccent: dark ? "#FFFFFF" : "#FFFFFF"
    readonly property color accentTint: dark ? "#223433" : "#E4F0EE"
    readonly property color accentLine: dark ? "#3C706A" : "#9CC9C2"
    readonly property color lineOnAccent: "#6BFFFFFF"

    readonly property color danger: dark ? "#F28881" : "#B6322D"
    readonly property color dangerTint: dark ? "#382422" : "#FBECEA"
    readonly property color warning: dark ? "#EABC6E" : "#865800"
    readonly property color warningTint: dark ? "#352D20" : "#FBF1DF"
    readonly property color warningLine: dark ? "#7A6439" : "#DDBE83"

    // Laid over whatever is below.
    readonly property color hover: dark ? "#0DEBEFF0" : "#0B131D1C"
    readonly property color press: dark ? "#17EBEFF0" : "#16131D1C"
    readonly property color hoverOnAccent: "#14000000"
    readonly property color pressOnAccent: "#2E000000"
    readonly property color scrim: dark ? "#94040606" : "#57131D1C"
    readonly property color hatch: dark ? "#4DB2BBBC" : "#57475251"
    readonly property color ring: dark ? "#1CEBEFF0" : "#1A131D1C"

    // Projects; none is what has no project.
    readonly property color blue: dark ? "#77A9F3" : "#3B77D0"
    readonly property color orange: dark ? "#DF9363" : "#B75C14"
    readonly property color violet: dark ? "#B097EA" : "#8362C5"
    readonly property color leaf: dark ? "#95B46C" : "#658A2A"
    readonly property color rose: dark ? "#E6869F" : "#BE4C6F"
    readonly property color ochre: dark ? "#C4A35E" : "#9D7400"
    readonly property color sky: dark ? "#64B2DA" : "#0084B3"
    readonly property color plum: dark ? "#D08CCE" : "#A754A5"
    readonly property color brick: dark ? "#E58C7D" : "#BD5344"
    readonly property color slate: dark ? "#9AABB5" : "#687C88"
    readonly property color none: dark ? "#8C9697" : "#727D7C"
    readonly property var projectHues: [blue, orange, violet, leaf, rose, ochre, sky, plum, brick, slate]

    // How a project of this colour on the server is drawn; "" has no project.
    function projectColor(serverColor: string): color {
        return ThemeColors.project(serverColor, dark);
    }
    // The ground of a block in that colour.
    function tintOf(shade: color): color {
        return ThemeColors.mix(shade, content, dark ? 0.21 : 0.13);
    }
    // Of an agent's run: its fill and its edge.
    function runFillOf(shade: color): color {
        return ThemeColors.mix(shade, content, dark ? 0.28 : 0.30);
    }
    function runEdgeOf(shade: color): color {
        return ThemeColors.mix(shade, content, dark ? 0.68 : 0.90);
    }

    // Type, in pixels, and the height of its lines. Figures are all of one width in this family.
    readonly property string family: "Orvane Figures"
    readonly property string monoFamily: "monospace"
    readonly property int t11: 11
    readonly property int t12: 12
    readonly property int t13: 13
    readonly property int t15: 15
    readonly property int t18: 18
    readonly property int t20: 20
    readonly property int t24: 24
    readonly property int t28: 28
    readonly property int line11: 16
    readonly property int line12: 16
    readonly property int line13: 20
    readonly property int line15: 20
    readonly property int line18: 28
    readonly property int line20: 28
    readonly property int line24: 32
    readonly property int line28: 36

    // The same by Label.Type.
    readonly property var typeSizes: [t11, t12, t13, t15, t18, t20, t24, t28]
    readonly property var typeLines: [line11, line12, line13, line15, line18, line20, line24, line28]
    readonly property var typeSpacings: [0, 0, 0, -0.075, -0.144, -0.24, -0.384, -0.504]

    readonly property int space4: 4
    readonly property int space8: 8
    readonly property int space12: 12
    readonly property int space16: 16
    readonly property int space20: 20
    readonly property int space24: 24
    readonly property int space32: 32
    readonly property int space40: 40

    readonly property int radiusBlock: 4
    readonly property int radiusControl: 6
    readonly property int radiusCard: 8
    readonly property int radiusPanel: 12

    // Milliseconds.
    readonly property int hoverTime: Appearance.reducedMotion ? 0 : 80
    readonly property int menuTime: Appearance.reducedMotion ? 0 : 120
    readonly property int sheetTime: Appearance.reducedMotion ? 0 : 160
}
