import QtQuick
import Murmeli.Ui

// A text as it became another one: what has gone is struck, what has come is marked.
Label {
    id: root

    required property var pieces // maps of "text" and "kind": 0 stays, 1 has gone, 2 has come
    property bool faded: false // it does not hold
    property string lead // plain, before it

    function escaped(text: string): string {
        return text.replace(/&/g, "&amp;").replace(/</g, "&lt;").replace(/>/g, "&gt;").replace(/\n/g, "<br>");
    }
    function drawn(piece: var, next: var): string {
        const bare = piece.text.replace(/\s+$/, "");
        if (piece.kind === 0) return root.escaped(piece.text);
        const gone = piece.kind === 1;
        const look = (gone ? "text-decoration:line-through;" : "") + (root.faded ? ""
            : gone ? `background-color:${Theme.tint(Theme.red)};color:${Theme.inkRed};`
            : `background-color:${Theme.tint(Theme.green)};color:${Theme.inkGreen};`);
        return `<span style="${look}">${root.escaped(bare)}</span>`
            + (piece.text.length > bare.length || gone && next?.kind === 2 ? " " : "");
    }

    type: Theme.body
    color: faded ? Theme.text3 : Theme.text1
    wrapMode: Text.Wrap
    textFormat: Text.RichText
    text: root.escaped(root.lead) + root.pieces.map((piece, at) => root.drawn(piece, root.pieces[at + 1])).join("")
}
