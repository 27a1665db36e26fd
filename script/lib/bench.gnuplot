# The picture of script/bench: how long a run takes and how much memory it wants, by the size of the payload.
set terminal pngcairo size 1200,500 font "sans,11"
set output "../bench.png"
set multiplot layout 1,2
set logscale xy
set grid
set key top left
set xlabel "payload, MB"

set title "A whole run"
set ylabel "seconds"
plot "run.nsis" with linespoints lw 2 title "NSIS", \
     "run.nsisUnchecked" with linespoints lw 2 title "NSIS without its checksum", \
     "run.installer" with linespoints lw 3 title "installer", \
     "run.floor" with linespoints lw 2 title "floor program"

set title "Highest memory"
set ylabel "MB"
plot "resident.installer" with linespoints lw 2 title "installer, resident (mapped payload included)", \
     "private.nsis" with linespoints lw 2 title "NSIS, private", \
     "private.installer" with linespoints lw 3 title "installer, private", \
     "private.floor" with linespoints lw 2 title "floor program, private"
