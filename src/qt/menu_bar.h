// The main window's menu bar, built from the shell's menu table: every caption, id and key,
// the popups under the ids that the project menus grey, and check marks. Choosing an item
// posts a menu message with its id.
#pragma once

#include <QString>
#include <map>
#include <string_view>

#include "qt/toolkit_windows.h"

class QAction;
class QMenu;
class QMenuBar;

namespace kaldena {

// The id of a popup by its path in the menu table ("File, New project"); 0 for none.
int PopupId(std::string_view path);

class MenuBar {
 public:
  MenuBar(QMenuBar& bar, MessageSink sink);

  // The action of an item, or the one that opens a popup; nullptr for an unknown id.
  QAction* Action(int id) const;
  // Kind 1 enables or greys, kind 2 sets or clears the check mark.
  void SetState(int id, int kind, int value);
  void SetString(int id, const QString& text);

 private:
  QMenu* Popup(QMenuBar& bar, std::string_view path);

  MessageSink sink_;
  std::map<std::string, QMenu*, std::less<>> popups_;
  std::map<int, QAction*> actions_;
};

}  // namespace kaldena
