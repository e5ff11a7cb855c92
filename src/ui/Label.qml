import QtQuick
import Murmeli.Ui

// Text in one of Theme's styles. Always plain: what meetings say is never markup.
Text {
    id: root

    property var type: Theme.label

    color: Theme.text1
    textFormat: Text.PlainText
    font.family: root.type.family
    font.pointSize: root.type.size * Look.pointsPerPixel // pixelSize knows whole pixels only
    font.weight: root.type.weight
    font.letterSpacing: root.type.tracking
    font.hintingPreference: Font.PreferNoHinting
    lineHeight: root.type.line
    lineHeightMode: Text.FixedHeight
    elide: wrapMode === Text.NoWrap ? Text.ElideRight : Text.ElideNone
    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.ignored: !visible || text.length === 0
}
