#include "qt/menu_bar.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <array>
#include <string>

#include "shell/menu_dispatch.h"

namespace kaldena {
namespace {

struct Popup {
  int id;
  std::string_view path;
};

// The popups of menu resource 30001, by their path in the menu table.
constexpr std::array kPopups = {
    Popup{40001, "File"},
    Popup{40017, "File, New project"},
    Popup{40003, "File, Save graphics"},
    Popup{40010, "File, Log text size"},
    Popup{40012, "Settings"},
    Popup{40014, "Edit project"},
    Popup{40036, "Edit project, More phases"},
    Popup{40067, "Edit project, Delete phase"},
    Popup{40040, "Run"},
    Popup{40007, "Plot"},
    Popup{40048, "Fourier"},
    Popup{40053, "Output"},
};

// Groups of the File menu begin at these items.
bool StartsGroup(int id) {
  return id == menu::kPrintGraphics || id == menu::kLogPrint || id == menu::kAbout ||
         id == menu::kRecentFirst || id == menu::kEditAll || id == menu::kViewOutput;
}

// A recent project's name shows as it is: "&" is not a mnemonic there.
QString Literal(const QString& text) {
  QString escaped = text;
  return escaped.replace('&', "&&");
}

}  // namespace

int PopupId(std::string_view path) {
  for (const Popup& popup : kPopups) {
    if (popup.path == path) return popup.id;
  }
  return 0;
}

MenuBar::MenuBar(QMenuBar& bar, MessageSink sink) : sink_(std::move(sink)) {
  for (const MenuEntry& entry : MenuTable()) {
    QMenu* popup = Popup(bar, entry.menu);
    if (StartsGroup(entry.id)) popup->addSeparator();
    const bool recent = entry.id >= menu::kRecentFirst && entry.id < menu::kRecentFirst + 4;
    QAction* action = popup->addAction(
        recent ? QString("empty") : QString::fromUtf8(entry.caption.data(), entry.caption.size()));
    if (!entry.key.empty()) {
      action->setShortcut(QKeySequence(QString::fromUtf8(entry.key.data(), entry.key.size())));
    }
    action->setData(entry.id);
    const int id = entry.id;
    QObject::connect(action, &QAction::triggered, [this, id] { sink_({kMenuSelect, id}); });
    actions_[id] = action;
  }
}

QMenu* MenuBar::Popup(QMenuBar& bar, std::string_view path) {
  auto found = popups_.find(path);
  if (found != popups_.end()) return found->second;
  const std::size_t comma = path.rfind(", ");
  const std::string_view title = comma == std::string_view::npos ? path : path.substr(comma + 2);
  const QString caption = QString::fromUtf8(title.data(), title.size());
  QMenu* menu = comma == std::string_view::npos
                    ? bar.addMenu(caption)
                    : Popup(bar, path.substr(0, comma))->addMenu(caption);
  popups_.emplace(std::string(path), menu);
  if (const int id = PopupId(path)) actions_[id] = menu->menuAction();
  return menu;
}

QAction* MenuBar::Action(int id) const {
  auto found = actions_.find(id);
  return found == actions_.end() ? nullptr : found->second;
}

void MenuBar::SetState(int id, int kind, int value) {
  QAction* action = Action(id);
  if (!action) return;
  if (kind == kMenuItemEnabled) {
    action->setEnabled(value != 0);
  } else if (kind == kMenuItemChecked) {
    action->setCheckable(true);
    action->setChecked(value != 0);
  }
}

void MenuBar::SetString(int id, const QString& text) {
  if (QAction* action = Action(id)) action->setText(Literal(text));
}

}  // namespace kaldena
