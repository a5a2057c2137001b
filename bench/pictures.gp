# The pictures of docs/performance.md, from the results of bench/run.sh.
# usage: gnuplot -e "results='DIR'; out='DIR'" bench/pictures.gp
set terminal svg size 760,340 font 'sans-serif,12' background '#ffffff' noenhanced
set datafile separator '\t'
set border 3 linecolor '#666666'
set tics nomirror
set grid ytics linecolor '#dddddd'
set style line 1 linecolor '#1f6fb4' linewidth 2 pointtype 7 pointsize 0.5
set style line 2 linecolor '#c2541b' linewidth 2 pointtype 5 pointsize 0.5
set style line 3 linecolor '#3d8b37' linewidth 2 pointtype 9 pointsize 0.6
points(file, curve) = sprintf("< awk -F '\\t' '$1 == \"point\" && $2 == \"%s\"' %s/%s.tsv", curve, results, file)
rows(file) = sprintf("< awk -F '\\t' '$1 == \"row\"' %s/%s.tsv", results, file)

set output out.'/growth.svg'
set title 'The library alone: time per element'
set xlabel 'elements in one call'
set ylabel 'ns per element'
set logscale x
set yrange [0:*]
set key top right
plot points('growth', 'VLAN list') using 3:5:4:6 with yerrorlines linestyle 1 title 'add_vlan_list', \
     points('growth', 'described VLAN list') using 3:5:4:6 with yerrorlines linestyle 2 title 'add_vlan_descr_list', \
     points('growth', 'authentication entries') using 3:5:4:6 with yerrorlines linestyle 3 title 'add_authallowed_mac'

set output out.'/stream.svg'
set title 'The library alone: handing over a piece of an update'
set xlabel 'bytes in one call'
set ylabel 'ns per call'
set xrange [800:1300000]
set xtics ('1 KiB' 1024, '4 KiB' 4096, '16 KiB' 16384, '64 KiB' 65536, '256 KiB' 262144, '1 MiB' 1048576)
set key off
plot points('growth', 'update stream') using 3:5:4:6 with yerrorlines linestyle 1

set output out.'/tables.svg'
set title 'The simulated box: time per ONU'
set xlabel 'ONUs'
set ylabel 'microseconds per ONU'
set xrange [50:21000]
set xtics (64, 256, 1024, 4096, 16384)
set key top right
plot points('box', 'walk') using 3:5:4:6 with yerrorlines linestyle 1 title 'walk along a table', \
     points('box', 'listing') using 3:5:4:6 with yerrorlines linestyle 2 title 'listing as files'

set output out.'/state.svg'
set title 'The simulated box: time for all that it keeps'
set xlabel 'records'
set ylabel 'ms'
set xrange [800:420000]
set xtics ('1,000' 1000, '10,000' 10000, '100,000' 100000, '327,680' 327680)
set logscale y
set yrange [*:*]
set key top left
plot points('state', 'oltbox save') using 3:5:4:6 with yerrorlines linestyle 1 title 'save', \
     points('state', 'oltbox reboot to') using 3:5:4:6 with yerrorlines linestyle 2 title 'reboot', \
     points('state', 'oltbox start from') using 3:5:4:6 with yerrorlines linestyle 3 title 'start'

set output out.'/memory.svg'
set title 'The simulated box: most memory while it starts, saves and reboots'
set ylabel 'MiB'
set yrange [0:*]
unset logscale
set key off
set xrange [0:340000]
set xtics ('0' 0, '100,000' 100000, '200,000' 200000, '300,000' 300000)
plot points('state', 'oltbox peak memory with') using 3:5:4:6 with yerrorlines linestyle 1

set output out.'/exchange.svg'
set title 'One exchange, 80 bytes out and 256 back, on one CPU'
set xlabel 'median in microseconds'
unset ylabel
unset grid
set grid xtics linecolor '#dddddd'
set xrange [0:*]
set xtics autofreq
set yrange [*:*] reverse
set offsets 0, 0, 0.6, 0.6
set style fill solid 0.8 noborder
# The first is the limit, the next two are ours.
colour(row) = row == 0 ? 0x999999 : row < 3 ? 0x1f6fb4 : 0xc9b7a8
plot rows('exchange') using 3:0:(0):3:($0 - 0.35):($0 + 0.35):(colour($0)):ytic(2) with boxxyerror linecolor rgb variable, \
     rows('exchange') using 3:0:(sprintf('  %.1f', $3)) with labels left
