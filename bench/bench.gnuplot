# The picture of script/bench: the time and the memory that a run takes, by the size of the payload.
set terminal pngcairo size 1200,560 font "sans,11"
set output "../bench.png"
set multiplot layout 1,2
set logscale xy
set grid
set key below maxcols 2 width -4
set bmargin 7
set style data linespoints
set style line 1 lw 3 pt 7 lc rgb "#0072b2" # installer
set style line 2 lw 2 pt 4 lc rgb "#e69f00" # floor program
set style line 3 lw 2 pt 9 lc rgb "#cc3311" # NSIS
set style line 4 lw 2 pt 8 lc rgb "#999999" # NSIS without its checksum
set style line 5 lw 1 pt 6 lc rgb "#0072b2" dt 2
set xlabel "payload, MB"

set title "A whole run"
set ylabel "seconds"
plot "run.installer" ls 1 title "installer", \
     "run.floor" ls 2 title "floor program", \
     "run.nsis" ls 3 title "NSIS", \
     "run.nsisUnchecked" ls 4 title "NSIS without its checksum"

set title "Highest memory: private, and resident with the mapped file"
set ylabel "MB"
plot "private.installer" ls 1 title "installer", \
     "private.floor" ls 2 title "floor program", \
     "private.nsis" ls 3 title "NSIS", \
     "resident.installer" ls 5 title "installer, resident"
