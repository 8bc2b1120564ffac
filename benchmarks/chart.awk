# SPDX-License-Identifier: MIT
# Draws the CSV of compare.awk as SVG: a bar for each limit, as long as the ratio on a logarithmic
# scale, with a mark where the limit is.
BEGIN {
    FS = ","
    left = 300
    width = 420
    height = 18
    top = 48
    least = 1 / 64
    most = 8
}

function place(ratio) {
    ratio = ratio < least ? least : ratio > most ? most : ratio
    return left + width * log(ratio / least) / log(most / least)
}

function text(x, y, anchor, value) {
    printf "<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"%s\">%s</text>\n", x, y, anchor, value
}

NR > 1 && $7 != "" {
    ++count
    label[count] = $1 " / " $4
    ratio[count] = $6
    limit[count] = $7
    good[count] = $8 == "yes"
}

END {
    bottom = top + count * height
    printf "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%d\" height=\"%d\" " \
        "font-family=\"sans-serif\" font-size=\"11\">\n", left + width + 70, bottom + 24
    print "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>"
    text(left, 16, "start", "TreeVault / reference, shorter is better; the line is the limit")
    for (tick = least; tick <= most; tick *= 2) {
        printf "<line x1=\"%.1f\" x2=\"%.1f\" y1=\"%d\" y2=\"%d\" stroke=\"%s\"/>\n", place(tick),
            place(tick), top - 6, bottom, tick == 1 ? "#888888" : "#e4e4e4"
        text(place(tick), top - 10, "middle", tick < 1 ? "1/" 1 / tick : tick)
    }
    for (i = 1; i <= count; ++i) {
        y = top + (i - 1) * height
        text(left - 8, y + 12, "end", label[i])
        printf "<rect x=\"%d\" y=\"%d\" width=\"%.1f\" height=\"%d\" fill=\"%s\"/>\n", left, y + 2,
            place(ratio[i]) - left, height - 5, good[i] ? "#4c8c5a" : "#c05040"
        printf "<line x1=\"%.1f\" x2=\"%.1f\" y1=\"%d\" y2=\"%d\" stroke=\"#000000\" " \
            "stroke-width=\"2\"/>\n", place(limit[i]), place(limit[i]), y, y + height - 1
        text(left + width + 8, y + 12, "start", sprintf("%.2f", ratio[i]))
    }
    print "</svg>"
}
