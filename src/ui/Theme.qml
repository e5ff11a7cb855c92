pragma Singleton

import QtQuick
import Murmeli.Ui

// The look of Murmeli, and the only place that holds colours, sizes, type and durations.
QtObject {
    id: root

    readonly property bool dark: Look.dark
    readonly property bool reducedMotion: Look.reducedMotion
    readonly property bool highContrast: Look.highContrast
    readonly property bool compositing: Look.compositing

    // Accents, the same in both themes.
    readonly property color violet: "#7C5CFF"
    readonly property color blue: "#3B82F6"
    readonly property color cyan: "#22D3EE"
    readonly property color pink: "#F472B6"
    readonly property color red: "#FF5A68"
    readonly property color green: "#34D999"
    readonly property color clear: "transparent"
    readonly property color white: "#FFFFFF"
    readonly property color black: "#000000"
    readonly property color night: "#12131E"

    // Accents as ink.
    readonly property color inkViolet: dark ? "#AE9DFF" : "#5A38E6"
    readonly property color inkBlue: dark ? "#8AB6FF" : "#1F5FD0"
    readonly property color inkCyan: dark ? "#5FE0F4" : "#0A7288"
    readonly property color inkPink: dark ? "#F9A3D0" : "#B3246F"
    readonly property color inkRed: dark ? "#FF8F99" : "#C9283A"
    readonly property color inkGreen: dark ? "#57E3AE" : "#0B7A52"

    // Fills under white text, from left to right.
    readonly property color primaryFrom: "#6F50F2"
    readonly property color fillViolet: "#6B4BF0"
    readonly property color primaryTo: "#4468E6"
    readonly property color primaryHoverFrom: "#7A5CFB"
    readonly property color primaryHoverTo: "#4F75F0"
    readonly property color primaryPressedFrom: "#5F41DB"
    readonly property color primaryPressedTo: "#3B5DD2"
    readonly property color recordingFrom: "#DA3D52"
    readonly property color recordingTo: "#C4417E"
    readonly property color mark: alpha(violet, 0.30)
    readonly property color badgeFrom: "#8467FF"
    readonly property color badgeTo: "#4A72F3"

    // Surfaces.
    readonly property color bgWindow: dark ? "#121318" : "#FCFCFD"
    readonly property color bgSide: dark ? "#0D0E12" : "#F3F3F6"
    readonly property color bgPanel: dark ? "#16171D" : "#FBFBFC"
    readonly property color bgCard: dark ? "#191A21" : "#F5F5F8"
    readonly property color bgPanelCard: dark ? bgCard : "#FFFFFF"
    readonly property color bgField: dark ? "#0D0E13" : "#FFFFFF"
    readonly property color bgPop: dark ? "#22242D" : "#FFFFFF"
    readonly property color segThumb: dark ? "#2C2E38" : "#FFFFFF"

    // Veils and lines.
    readonly property color shade: dark ? white : night
    readonly property color hover: veil(dark ? 0.045 : 0.04)
    readonly property color press: veil(dark ? 0.08 : 0.075)
    readonly property color fill: veil(dark ? 0.075 : 0.06)
    readonly property color fillHover: veil(dark ? 0.115 : 0.10)
    readonly property color line: veil(dark ? 0.065 : 0.08)
    readonly property color lineField: veil(dark ? 0.11 : 0.13)
    readonly property color lineStrong: veil(dark ? 0.18 : 0.22)
    readonly property color track: veil(0.09)
    readonly property color segEdge: alpha(shade, dark ? 0.40 : 0.52) // 3 : 1 to either side

    readonly property color text1: dark ? "#F3F4F8" : "#17181F"
    readonly property color text2: highContrast ? text1 : dark ? "#A9ACBA" : "#565966"
    readonly property color text3: highContrast ? text1 : dark ? "#868997" : "#6A6D7A"
    readonly property color text4: highContrast ? text1 : dark ? "#565966" : "#A6A8B3"

    // In the order of Accent.
    readonly property var accents: [cyan, green, violet, pink, red]
    readonly property var accentInks: [inkCyan, inkGreen, inkViolet, inkPink, inkRed]

    function alpha(ink: color, opacity: real): color {
        return Qt.rgba(ink.r, ink.g, ink.b, opacity);
    }
    // Of the shade; under high contrast at least so strong that it is 3 : 1 to every surface.
    function veil(opacity: real): color {
        return alpha(shade, highContrast ? Math.max(opacity, dark ? 0.36 : 0.47) : opacity);
    }
    function tint(accent: color): color {
        return alpha(accent, dark ? 0.14 : 0.11);
    }
    function tintHover(accent: color): color {
        return alpha(accent, dark ? 0.20 : 0.17);
    }
    function tintPressed(accent: color): color {
        return alpha(accent, dark ? 0.24 : 0.21);
    }
    function tintSoft(accent: color): color {
        return alpha(accent, dark ? 0.09 : 0.07);
    }
    function tintRow(accent: color): color {
        return alpha(accent, 0.07);
    }
    function tintBanner(accent: color): color {
        return alpha(accent, 0.10);
    }
    function tintLine(accent: color): color {
        return alpha(accent, 0.22);
    }

    // Type: size and line in pixels, tracking in pixels. What is made to hold text grows with it.
    readonly property string family: Look.family
    function type(size: real, line: real, weight: int, tracking: real, family = Look.family): var {
        return { size: size * Look.textScale, line: grown(line), weight, tracking, family };
    }
    function grown(pixels: real): int {
        return Math.round(pixels * Look.textScale);
    }
    readonly property var panelTitle: type(18, 24, Font.DemiBold, -0.3)
    readonly property var display: type(24, 30, Font.DemiBold, -0.5)
    readonly property var row: type(14, 20, Font.Medium, -0.1)
    readonly property var rowQuiet: type(14, 20, Font.Normal, -0.1)
    readonly property var body: type(14, 21, Font.Normal, -0.1)
    readonly property var heading: type(12.5, 17, Font.DemiBold, 0)
    readonly property var link: type(12.5, 17, Font.Medium, 0)
    readonly property var chip: type(11.5, 16, Font.Medium, 0)
    readonly property var time: type(12.5, 20, Font.Normal, 0)
    readonly property var title: type(21, 27, Font.Bold, -0.4)
    readonly property var head: type(15, 20, Font.DemiBold, -0.15)
    readonly property var setting: type(13.5, 19, Font.Medium, 0)
    readonly property var detail: type(12, 16, Font.Normal, 0)
    readonly property var running: type(13.5, 20, Font.Normal, 0)
    readonly property var lead: type(13, 18, Font.Normal, -0.07)
    readonly property var subLoose: type(12.5, 18, Font.Normal, 0)
    readonly property var granted: type(12.5, 17, Font.Medium, 0)
    readonly property var fixedPitch: type(11, 14, Font.Normal, 0, Look.fixedFamily)
    readonly property var timer: type(22, 26, Font.DemiBold, -0.2)
    readonly property var toastTitle: type(14, 19, Font.DemiBold, -0.15)
    readonly property var label: type(13, 18, Font.Medium, -0.07)
    readonly property var labelStrong: type(13, 18, Font.DemiBold, -0.07)
    readonly property var button: type(12.5, 16, Font.Medium, 0)
    readonly property var buttonSmallType: type(12, 16, Font.Medium, -0.04)
    readonly property var buttonSmallStrong: type(12, 16, Font.DemiBold, -0.04)
    readonly property var buttonLargeType: type(13, 18, Font.Medium, 0)
    readonly property var buttonLargeStrong: type(13, 18, Font.DemiBold, 0)
    readonly property var buttonStrong: type(12.5, 16, Font.DemiBold, 0)
    readonly property var sub: type(12.5, 17, Font.Normal, 0)
    readonly property var caption: type(11.5, 16, Font.Normal, 0)
    readonly property var captionTight: type(11.5, 16, Font.Normal, -0.115)
    readonly property var overline: type(11, 14, Font.DemiBold, 0.7)
    readonly property var claim: type(13, 19, Font.Normal, 0)
    readonly property var quotation: type(11.5, 17, Font.Normal, 0)
    readonly property var badge: type(10.5, 14, Font.Medium, 0.42)
    readonly property var jobs: type(11, 14, Font.Normal, 0)

    // Space.
    readonly property int padPanel: 12
    readonly property int gapGroup: 10
    readonly property int gapRow: 8
    readonly property int gapIcon: 7
    readonly property int gapSmall: 4
    readonly property int hair: 1

    // Shape.
    readonly property int rLine: 3
    readonly property int rSmall: 8
    readonly property int rTile: 14
    readonly property int rField: 9
    readonly property int rRow: 11
    readonly property int rCard: 13
    readonly property int rToast: 16
    readonly property int rPanel: 18
    readonly property int focusWidth: 2
    readonly property int focusGap: 2

    // Windows. Where the system draws their frame, nothing of it lies over the content.
    readonly property int chromeInset: Qt.platform.os === "osx" ? 20 : 0
    readonly property int padWindow: 28
    readonly property int padUpdate: 26
    readonly property int padMain: 32
    readonly property int sidebarWidth: grown(230)
    readonly property int searchWidth: grown(190)
    readonly property int slide: reducedMotion ? 0 : 8
    readonly property int padCard: 14
    readonly property int rowHeight: grown(56)
    readonly property int iconTile: grown(28)
    readonly property int scrollThumb: 6

    // The panel and its parts.
    readonly property int panelWidth: grown(340)
    readonly property int arrowWidth: 22
    readonly property int arrowHeight: 10
    readonly property int orbField: 132
    readonly property int orbCore: 104
    readonly property int orbHalo: 200
    readonly property int orbFocusGap: 6
    readonly property int symbolSmall: grown(13)
    readonly property int symbolText: grown(16)
    readonly property int symbolRow: grown(17)
    readonly property int symbolBanner: 22
    readonly property int checkGlyph: grown(20)
    readonly property int buttonSmall: grown(26)
    readonly property int buttonHeight: grown(30)
    readonly property int buttonLarge: grown(36)
    readonly property int iconButton: grown(28)
    readonly property int helpWidth: grown(200)
    readonly property real disabledOpacity: 0.42

    readonly property int toastWidth: grown(330)
    readonly property int toastHeight: grown(74)
    readonly property int cardHeight: grown(112) // with buttons
    readonly property int toastDisc: 42
    readonly property int toastMargin: 12 // to the screen's edge
    readonly property int toastGap: 8

    // Shadows: what lies around a pop-over, and how far it reaches.
    readonly property int shadowExtent: compositing ? 48 : 0
    readonly property color popEdge: alpha(shade, 0.10)
    readonly property color popShadow: dark ? alpha(black, 0.48) : alpha(night, 0.20)
    readonly property int popShadowOffset: 18
    readonly property int popShadowBlur: 44

    // Motion in milliseconds. Movement stops where the desktop asks for less of it; fades stay, but quick.
    readonly property bool motion: !reducedMotion
    // How much of its height a part takes that unfolds; `share` of it is there.
    function unfolded(share: real): real {
        return motion ? share : Math.ceil(share);
    }
    readonly property int instant: 80
    readonly property int quick: 140
    readonly property int base: reducedMotion ? quick : 220
    readonly property int swap: reducedMotion ? quick : 250
    readonly property int symbolSwap: 110
    readonly property int closing: 100
    readonly property int helpDelay: 800
    readonly property int drift: 7000
    readonly property int breathe: 2600
    readonly property int pulse: 900
    readonly property int turn: 2200
    readonly property int pulseSlow: 1400
    readonly property int comet: 1100
    readonly property int spin: 900
    readonly property int confirm: 1200
    readonly property int progress: reducedMotion ? quick : 400
    readonly property int afterglow: 1600
    readonly property int spring: 260
    readonly property real springOvershoot: 1.95
    readonly property int sink: reducedMotion ? 0 : 2
    readonly property int drop: reducedMotion ? 0 : 6

    // The orb's faces. Colours as [position, colour] stops.
    readonly property real haloStrength: dark ? 1 : 0.62
    readonly property var orbRim: [[0, alpha(white, 0.55)], [0.42, alpha(white, 0)], [0.70, alpha(white, 0)], [1, alpha(white, 0.16)]]
    readonly property var orbIdle: ({
            accent: violet,
            core: [[0, "#8A6CFF"], [0.48, "#6A56FA"], [1, "#3B82F6"]],
            glow: { x: 0.72, y: 0.92, radius: 40, color: alpha(cyan, 0.50) },
            shade: orbIdleShade,
            light: alpha(white, 0.38),
            rim: orbRim,
            arcStart: 210,
            arc: [[0, alpha(violet, 0)], [0.22, violet], [0.44, blue], [0.60, cyan], [0.74, alpha(cyan, 0)], [1, alpha(cyan, 0)]],
            rings: []
        })
    readonly property var orbRecording: ({
            accent: red,
            core: [[0, "#FF6E73"], [0.46, "#FF5A68"], [1, "#E83E74"]],
            glow: { x: 0.78, y: 0.88, radius: 41, color: alpha(pink, 0.85) },
            shade: orbRecordingShade,
            light: alpha(white, 0.40),
            rim: orbRim,
            arcStart: 0,
            arc: [[0, red], [0.5, pink], [1, red]],
            rings: [{ diameter: 154, color: alpha(red, 0.36) }, { diameter: 178, color: alpha(red, 0.15) }]
        })
    readonly property var orbProcessing: ({
            accent: cyan,
            core: [[0, "#2BC3E6"], [0.50, "#2C9BEA"], [1, "#3B6FEF"]],
            shade: orbProcessingShade,
            light: alpha(white, 0.30),
            rim: orbRim,
            arcStart: 120,
            arc: dark ? [[0, alpha(cyan, 0)], [0.08, alpha(cyan, 0)], [0.62, cyan], [0.746, "#FFFFFF"], [0.75, alpha(cyan, 0)], [1, alpha(cyan, 0)]]
                      : [[0, alpha(orbDeepCyan, 0)], [0.08, alpha(orbDeepCyan, 0)], [0.62, "#22B8D8"], [0.746, "#0A7FA8"], [0.75, alpha(orbDeepCyan, 0)], [1, alpha(orbDeepCyan, 0)]],
            rings: []
        })
    readonly property var orbComet: ({
            arcStart: 135,
            arc: dark ? [[0, alpha(white, 0)], [0.25, white], [0.251, alpha(white, 0)], [1, alpha(white, 0)]]
                      : [[0, alpha(text2, 0)], [0.25, text2], [0.251, alpha(text2, 0)], [1, alpha(text2, 0)]]
        })
    readonly property color orbIdleShade: "#5C100846"
    readonly property color orbRecordingShade: "#80500018"
    readonly property color orbProcessingShade: "#8C021C3C"
    readonly property color orbDeepCyan: "#0E96BE"
    readonly property color orbTrack: dark ? lineField : line
    readonly property color orbDim: alpha(black, 0.18)

    readonly property color toastStartFrom: "#FF6A70"
    readonly property color toastStartTo: "#EA4579"
    readonly property color toastEndFrom: "#27BFE4"
    readonly property color toastEndTo: "#3B6FEF"
    readonly property color toastWarnFrom: "#F472B6"
    readonly property color toastWarnTo: "#B3246F"
    readonly property color toastFailFrom: "#FF7A6B"
    readonly property color toastFailTo: "#C9283A"
    readonly property color toastGoodFrom: "#34D999"
    readonly property color toastGoodTo: "#0B7A52"
}
