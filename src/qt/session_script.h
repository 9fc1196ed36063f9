// A scripted session for screenshots and tests on a real display: the file named by the
// environment variable KALDENA_SCRIPT holds one command a line, each taken when the program
// waits for input, so that the one before has run to its end:
//
//   menu ID                 choose a menu item
//   key CODE                press a key (the message's key code)
//   button ID               press a button of the dialog that is up
//   drag X1 Y1 X2 Y2        button 1 down at X1, Y1 of the plot area and up at X2, Y2
//   shot main|log FILE      save the main or the log window as it shows now (PNG)
//   quit                    close the main window
//
// Blank lines and lines beginning with "#" are skipped; after the last command the main
// window is closed.
#pragma once

#include <functional>
#include <string>

namespace kaldena {

class QtToolkit;

// The idle hook that plays the script of `fileName`; it logs a line it can't read to standard
// error and goes on with the next.
std::function<void(QtToolkit&)> SessionScript(const std::string& fileName);

}  // namespace kaldena
