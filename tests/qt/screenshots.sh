#!/usr/bin/env bash
# kaldena on a virtual X display: opens a copy of the corundum example, refines it from the
# Run menu and saves as PNG files into OUTDIR the main window (pattern, a zoomed region,
# halfwidths, a section of the Fourier map while its dialog is up) and the log window.
# Exit 77 (skipped) where no virtual display can run.
# Usage: screenshots.sh KALDENA EXAMPLE_DIR OUTDIR
set -euo pipefail
kaldena=$1 example=$2 out=$3

if ! command -v xvfb-run > /dev/null || ! command -v xauth > /dev/null; then
  echo "skipped: xvfb-run and xauth are needed for the screenshots"
  exit 77
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp "$example/corundum.rec" "$example/corundum.xy" "$work/"
# The file records as the Files dialog writes them, so that the results lie beside it.
printf '%-256s\n' "PWPR      corundum.par" "PWUT      corundum.out" "PWSM      corundum.sum" \
  "PWFO      corundum.fou" >> "$work/corundum.rec"
mkdir -p "$out"
rm -f "$out"/*.png
cat > "$work/script" <<SCRIPT
shot main $out/empty.png
menu 40041
shot main $out/main_window.png
shot log $out/log_window.png
drag 600 80 760 300
shot main $out/zoomed.png
menu 40044
shot main $out/halfwidths.png
menu 40049
menu 40052
shot main $out/fourier_section.png
button 2
quit
SCRIPT

cd "$work"
if ! KALDENA_SCRIPT="$work/script" timeout 240 \
    xvfb-run -a -s "-screen 0 1600x1000x24" "$kaldena" corundum.rec; then
  echo "kaldena failed under xvfb-run"
  exit 1
fi

status=0
for shot in empty main_window zoomed halfwidths fourier_section log_window; do
  [ -s "$out/$shot.png" ] || { echo "missing $out/$shot.png"; status=1; }
done
[ -s corundum.sum ] || { echo "the refinement wrote no summary"; status=1; }
grep -q "BRAGG R-FACTOR" corundum.out || { echo "the list file has no refinement"; status=1; }
# A drawn plot compresses far worse than the empty window.
if [ $status -eq 0 ]; then
  empty=$(stat -c %s "$out/empty.png")
  for shot in main_window zoomed halfwidths fourier_section; do
    size=$(stat -c %s "$out/$shot.png")
    [ "$size" -gt $((empty * 2)) ] || { echo "$shot.png shows no plot"; status=1; }
  done
  cmp -s "$out/main_window.png" "$out/zoomed.png" && { echo "the drag did not zoom"; status=1; }
fi
[ $status -eq 0 ] && echo "screenshots in $out"
exit $status
