// Menu bar 1000 (the base bar) and 1010 (the same with the E-mail Agent's
// log, queue, rejects, start and shut-down items).
#include "toolkit/resources/groups.h"
#include "toolkit/resources/resource_ids.h"

namespace px::tk {

namespace {

constexpr MenuItemDef kJmdItems[] = {
    command(kCmdJobs, "&Jobs..."),
    command(kCmdTasks, "&Tasks..."),
    command(kCmdPrinters, "&Printers..."),
    command(kCmdManagedMemory, "&Managed Memory..."),
};

constexpr MenuItemDef kFileItems[] = {
    command(kCmdSelectInstance, "Select Instance of Nexa..."),
    separator(),
    command(kCmdSave, "&Save"),
    separator(),
    submenu("&Job Management Database", kJmdItems),
    separator(),
    command(kCmdExit, "E&xit"),
};

constexpr MenuItemDef kEditItems[] = {
    command(kCmdUndo, "&Undo", "Ctrl+Z"),
    command(kCmdRedo, "&Redo", "Ctrl+Y"),
    separator(),
    command(kCmdCut, "Cu&t", "Ctrl+X"),
    command(kCmdCopy, "&Copy", "Ctrl+C"),
    command(kCmdPaste, "&Paste", "Ctrl+V"),
    command(kCmdDelete, "&Delete", "Del"),
};

constexpr MenuItemDef kDisplayItems[] = {
    command(kCmdStatusQueue, "Nexa &Status and Queue"),
    separator(),
    command(kCmdServerLog, "Nexa &Log"),
    separator(),
    command(kCmdServerRejects, "Nexa &Rejects"),
};

constexpr MenuItemDef kDisplayEmailItems[] = {
    command(kCmdStatusQueue, "Nexa &Status and Queue"),
    separator(),
    command(kCmdServerLog, "Nexa &Log"),
    command(kCmdEmailLog, "E-Mail &Agent Log"),
    separator(),
    command(kCmdServerRejects, "Nexa &Rejects"),
    separator(),
    command(kCmdEmailQueue, "&E-Mail Agent Queue"),
    command(kCmdEmailRejects, "E-&Mail Agent Rejects"),
};

constexpr MenuItemDef kControlItems[] = {
    command(kCmdReloadPrinter, "Reload &Printer..."),
    command(kCmdReloadJmd, "Reload &Job Management DB"),
    separator(),
    command(kCmdStartServer, "&Start Nexa"),
    command(kCmdPauseServer, "P&ause Nexa"),
    command(kCmdResumeServer, "&Resume Nexa"),
    command(kCmdShutDownServer, "Shut &Down Nexa"),
};

constexpr MenuItemDef kControlEmailItems[] = {
    command(kCmdReloadPrinter, "Reload &Printer..."),
    command(kCmdReloadJmd, "Reload &Job Management DB"),
    separator(),
    command(kCmdStartServer, "&Start Nexa"),
    command(kCmdPauseServer, "P&ause Nexa"),
    command(kCmdResumeServer, "&Resume Nexa"),
    command(kCmdShutDownServer, "Shut &Down Nexa"),
    separator(),
    command(kCmdStartEmail, "Start &E-Mail Agent"),
    command(kCmdShutDownEmail, "Shut Down E-&Mail Agent"),
};

constexpr MenuItemDef kConfigurationItems[] = {
    command(kCmdConfigure, "&Configure Nexa and Agents..."),
};

constexpr MenuItemDef kHelpItems[] = {
    command(kCmdViewDocumentation, "&View Documentation..."),
    command(kCmdAbout, "&About Nexa Control..."),
};

constexpr MenuDef kBaseMenus[] = {
    {"&File", kFileItems},
    {"&Edit", kEditItems},
    {"&Display", kDisplayItems},
    {"&Control", kControlItems},
    {"Co&nfiguration", kConfigurationItems},
    {"&Help", kHelpItems},
};

constexpr MenuDef kEmailMenus[] = {
    {"&File", kFileItems},
    {"&Edit", kEditItems},
    {"&Display", kDisplayEmailItems},
    {"&Control", kControlEmailItems},
    {"Co&nfiguration", kConfigurationItems},
    {"&Help", kHelpItems},
};

constexpr MenuBarDef kBaseBar{kMenuBarBase, kBaseMenus};
constexpr MenuBarDef kEmailBar{kMenuBarEmail, kEmailMenus};

constexpr const MenuBarDef* kBars[] = {&kBaseBar, &kEmailBar};

}  // namespace

std::span<const MenuBarDef* const> menu_bar_defs() { return kBars; }

}  // namespace px::tk
