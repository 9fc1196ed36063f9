// The plots in the main window: the redraw of the current plot on the window canvas, the
// zoom by mouse and keys, and the read-out of the position under the mouse in the status bar.
#pragma once

#include <optional>
#include <string>

#include "shell/plot_state.h"
#include "shell/shell_state.h"
#include "toolkit/toolkit.h"

namespace kaldena {

inline constexpr int kRubberBandColour = 0xFFFF00;  // cyan, red in the low byte

// Draws the current plot (pattern, halfwidths or Fourier section) on the main window's
// canvas; nothing without a project or a plot mode. Reset 1 clears the zoom first.
void Redraw(ShellState& state, Toolkit& toolkit, int reset);

// "Full pattern", and the pattern after a load or a run: reads the summary when it is stale
// and shows the whole pattern.
void ShowFullPattern(ShellState& state, Toolkit& toolkit);

// Key messages: the arrows, paging keys, Home and End move or scale the shown range of the
// pattern plot.
void PlotKey(ShellState& state, Toolkit& toolkit, const Message& message);
// Mouse messages: button 1 down, moves and up draw a rubber band and zoom to it; moves show
// the position in status field 1.
void PlotMouse(ShellState& state, Toolkit& toolkit, const Message& message);

// The shown x range after a key, clamped to the data's limits, with the selection and the y
// range cleared. False for a key that does not move the range.
bool MoveShownRange(ZoomState& zoom, int key);

// The data position of a window pixel on the pattern plot as last drawn.
void PixelToData(const ZoomState& zoom, int px, int py, float& x, float& y);
// The status read-out of a pixel: two-theta, counts and the label of the first reflection
// within the tolerance; nothing outside the frame.
std::optional<std::string> StatusReadOut(const PlotData& data, const ZoomState& zoom, int px,
                                         int py);

}  // namespace kaldena
