#!/usr/bin/env bash
# The main job over the number of linked companies as a picture. Reads the CSV that
# `./dev bench --benchmark_out=FILE --benchmark_out_format=csv` writes; prints SVG.
# Usage: tools/performance-curve.sh FILE > docs/performance.svg
set -euo pipefail
awk -F, '
  function x(companies) { return 90 + log(companies) / log(10) * 170 }
  function y(microseconds) { return 360 - (log(microseconds) / log(10) - 1) * 90 }
  function text(px, py, anchor, words) {
    printf "<text x=\"%.0f\" y=\"%.0f\" text-anchor=\"%s\">%s</text>\n", px, py, anchor, words
  }
  BEGIN {
    split("handWritten setBased replayedText component", names, " ")
    label["component"] = "component"; colour["component"] = "#b03030"
    label["replayedText"] = "its statements as text"; colour["replayedText"] = "#3060b0"
    label["handWritten"] = "SQLite by hand"; colour["handWritten"] = "#308050"
    label["setBased"] = "one set-based batch"; colour["setBased"] = "#907020"
  }
  # "name/COUNT/manual_time",iterations,real_time,…: one line for each repetition
  {
    gsub(/"/, "", $1)
    if (split($1, part, "/") == 3 && part[3] == "manual_time" && part[1] in label) {
      key = part[1] SUBSEP part[2]
      if (!(key in best) || $3 + 0 < best[key]) best[key] = $3 + 0
    }
  }
  END {
    print "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"760\" height=\"430\" font-family=\"sans-serif\" font-size=\"13\">"
    print "<rect width=\"760\" height=\"430\" fill=\"white\"/>"
    for (e = 1; e <= 4; ++e) {
      py = 360 - (e - 1) * 90
      printf "<line x1=\"90\" y1=\"%d\" x2=\"600\" y2=\"%d\" stroke=\"#dddddd\"/>\n", py, py
      text(82, py + 4, "end", (e < 3 ? 10 ^ e " µs" : 10 ^ (e - 3) " ms"))
    }
    for (c = 1; c <= 1000; c *= 10) {
      printf "<line x1=\"%.0f\" y1=\"60\" x2=\"%.0f\" y2=\"360\" stroke=\"#eeeeee\"/>\n", x(c), x(c)
      text(x(c), 380, "middle", c)
    }
    text(345, 408, "middle", "linked companies")
    text(90, 34, "start", "One customer spread over its group: processor time of one call")
    for (i = 1; i <= 4; ++i) {
      n = names[i]; points = ""
      for (c = 1; c <= 1000; c *= 10) if ((n SUBSEP c) in best) {
        points = points sprintf("%.1f,%.1f ", x(c), y(best[n SUBSEP c]))
        last = y(best[n SUBSEP c])
      }
      printf "<polyline points=\"%s\" fill=\"none\" stroke=\"%s\" stroke-width=\"2\"/>\n", points, colour[n]
      # Labels keep a line of text apart from each other, from the lowest curve up.
      at = (i > 1 && last > above - 16) ? above - 16 : last
      above = at
      printf "<text x=\"608\" y=\"%.0f\" fill=\"%s\">%s</text>\n", at + 4, colour[n], label[n]
    }
    print "</svg>"
  }' "$1"
