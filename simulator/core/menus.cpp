// Menus, and the console's way to choose from them. Every plug-in has its own view of the Plugins menu:
// indices count its own items only.
#include <algorithm>

#include "core/core.h"
#include "core/more_api.h"

namespace sim {
namespace {

struct Menu;
struct Item {
  std::string name;
  void* ref = nullptr;
  XPLMMenuCheck check = xplm_Menu_NoCheck;
  bool enabled = true;
  bool separator = false;
  Menu* submenu = nullptr;
};

struct Menu {
  int owner = 0;
  std::string name;
  bool plugins = false;  // the owner's part of the Plugins menu
  bool bar = false;      // stands in the menu bar by itself
  XPLMMenuHandler_f handler = nullptr;
  void* ref = nullptr;
  std::vector<Item> items;
};

std::vector<std::unique_ptr<Menu>> menus;

Menu* FindMenu(XPLMMenuID id) {
  for (auto& menu : menus) {
    if (menu.get() == id) return menu.get();
  }
  return nullptr;
}

Item* FindItem(XPLMMenuID id, int index) {
  Menu* menu = FindMenu(id);
  if (!menu || index < 0 || static_cast<size_t>(index) >= menu->items.size()) return nullptr;
  return &menu->items[static_cast<size_t>(index)];
}

Menu* Make(int owner) {
  menus.push_back(std::make_unique<Menu>());
  menus.back()->owner = owner;
  return menus.back().get();
}

void Detach(Menu* menu) {
  for (auto& other : menus) {
    for (Item& item : other->items) {
      if (item.submenu == menu) item.submenu = nullptr;
    }
  }
}

struct Entry {
  std::string path;
  Menu* menu;
  size_t index;
};

// Items that can be chosen, and separators; an item that opens a submenu appears as part of their paths.
void Collect(Menu* menu, const std::string& before, std::vector<Entry>* out) {
  for (size_t i = 0; i < menu->items.size(); ++i) {
    const Item& item = menu->items[i];
    std::string path = before + (item.separator ? "-" : item.name);
    if (item.submenu && !item.submenu->items.empty()) {
      Collect(item.submenu, path + " > ", out);
    } else {
      out->push_back({path, menu, i});
    }
  }
}

std::vector<Entry> AllEntries() {
  std::vector<Entry> entries;
  for (auto& menu : menus) {
    if (menu->plugins) Collect(menu.get(), "", &entries);
    if (menu->bar) Collect(menu.get(), menu->name + " > ", &entries);
  }
  return entries;
}

std::string Choose(const Entry& entry) {
  Menu* menu = entry.menu;
  const Item item = menu->items[entry.index];
  if (!item.enabled) return "error: the item is greyed out";
  if (item.submenu || !menu->handler) return "error: nothing happens on this item";
  if (!MayCall(menu->owner)) return "error: disabled";
  const bool fine = NothingThrown(menu->owner, "a menu handler", [&] { menu->handler(menu->ref, item.ref); });
  return fine ? "ok" : "error: the handler threw an exception";
}

}  // namespace

void ResetMenus() { menus.clear(); }

void DropMenus(int owner) {
  for (auto& menu : menus) {
    if (menu->owner == owner) Detach(menu.get());
  }
  std::erase_if(menus, [&](auto& menu) { return menu->owner == owner; });
}

std::string MenuConsole(const std::string& wanted) {
  std::vector<Entry> entries = AllEntries();
  if (wanted.empty()) {
    std::string list;
    for (const Entry& entry : entries) Join(&list, entry.path);
    return list.empty() ? "ok" : "ok " + list;
  }
  std::vector<const Entry*> whole, last;
  for (const Entry& entry : entries) {
    const Item& item = entry.menu->items[entry.index];
    if (item.separator) continue;
    if (entry.path == wanted) whole.push_back(&entry);
    if (item.name == wanted) last.push_back(&entry);
  }
  const std::vector<const Entry*>& found = whole.empty() ? last : whole;
  if (found.empty()) return "error: no such item";
  if (found.size() > 1) return "error: ambiguous";
  return Choose(*found[0]);
}

}  // namespace sim

using sim::FindItem;
using sim::FindMenu;

XPLMMenuID XPLMFindPluginsMenu(void) {
  sim::Check("XPLMFindPluginsMenu");
  if (sim::Fails("XPLMFindPluginsMenu")) return nullptr;
  int owner = sim::CallingPlugin();
  for (auto& menu : sim::menus) {
    if (menu->plugins && menu->owner == owner) return menu.get();
  }
  sim::Menu* menu = sim::Make(owner);
  menu->name = "Plugins";
  menu->plugins = true;
  return menu;
}

XPLMMenuID XPLMCreateMenu(const char* name, XPLMMenuID parent, int parentItem, XPLMMenuHandler_f handler,
                          void* menuRef) {
  sim::Check("XPLMCreateMenu");
  if (sim::Fails("XPLMCreateMenu")) return nullptr;
  if (!name || !*name || (parent && !FindItem(parent, parentItem))) return nullptr;
  sim::Menu* menu = sim::Make(sim::CallingPlugin());
  menu->name = name;
  menu->bar = !parent;
  menu->handler = handler;
  menu->ref = menuRef;
  if (parent) FindItem(parent, parentItem)->submenu = menu;
  return menu;
}

void XPLMDestroyMenu(XPLMMenuID id) {
  sim::Check("XPLMDestroyMenu");
  sim::Menu* menu = FindMenu(id);
  if (!menu || menu->plugins) return;
  sim::Detach(menu);
  std::erase_if(sim::menus, [&](auto& other) { return other.get() == menu; });
}

void XPLMClearAllMenuItems(XPLMMenuID id) {
  sim::Check("XPLMClearAllMenuItems");
  if (sim::Menu* menu = FindMenu(id)) menu->items.clear();
}

int XPLMAppendMenuItem(XPLMMenuID id, const char* name, void* itemRef, int) {
  sim::Check("XPLMAppendMenuItem");
  if (sim::Fails("XPLMAppendMenuItem")) return -1;
  sim::Menu* menu = FindMenu(id);
  if (!menu || !name) return -1;
  menu->items.emplace_back();
  menu->items.back().name = name;
  menu->items.back().ref = itemRef;
  return static_cast<int>(menu->items.size()) - 1;
}

void XPLMAppendMenuSeparator(XPLMMenuID id) {
  sim::Check("XPLMAppendMenuSeparator");
  sim::Menu* menu = FindMenu(id);
  if (!menu) return;
  menu->items.emplace_back();
  menu->items.back().separator = true;
}

void XPLMSetMenuItemName(XPLMMenuID id, int index, const char* name, int) {
  sim::Check("XPLMSetMenuItemName");
  sim::Item* item = FindItem(id, index);
  if (item && name) item->name = name;
}

void XPLMCheckMenuItem(XPLMMenuID id, int index, XPLMMenuCheck check) {
  sim::Check("XPLMCheckMenuItem");
  if (sim::Item* item = FindItem(id, index)) item->check = check;
}

void XPLMCheckMenuItemState(XPLMMenuID id, int index, XPLMMenuCheck* out) {
  sim::Check("XPLMCheckMenuItemState");
  sim::Item* item = FindItem(id, index);
  if (item && out) *out = item->check;
}

void XPLMEnableMenuItem(XPLMMenuID id, int index, int enabled) {
  sim::Check("XPLMEnableMenuItem");
  if (sim::Item* item = FindItem(id, index)) item->enabled = enabled != 0;
}

void XPLMRemoveMenuItem(XPLMMenuID id, int index) {
  sim::Check("XPLMRemoveMenuItem");
  sim::Menu* menu = FindItem(id, index) ? FindMenu(id) : nullptr;
  if (menu) menu->items.erase(menu->items.begin() + index);
}
