#include <pylon/log/logmanager.h>

#include <array>

namespace pylon::plog {

namespace {

struct SubModuleRow {
    unsigned int id = 0;  // 0 ends the list
    const char* name = nullptr;
};

struct ModuleRow {
    Module module;
    const char* name;
    std::array<SubModuleRow, 6> subModules{};
};

constexpr ModuleRow moduleTable[] = {
    {PylonSDK, "PylonSDK"},
    {Network,
     "Network",
     {{{512, "Request"},
       {1024, "Response"},
       {2048, "Stream"},
       {8192, "Login"},
       {4096, "Connect"},
       {16384, "Socket"}}}},
    {Config, "Config", {{{1024, "Conflicts"}}}},
    {Logic, "Logic"},
    {Playback,
     "Playback",
     {{{512, "Decoder"}, {1024, "Auth"}, {2048, "Stream"}, {4096, "Audio"}, {8192, "Encrypt"}}}},
    {Export, "Export"},
    {Audio, "Audio", {{{512, "Talkback"}}}},
    {Test, "Test"},
    {TestHelper, "TestHelper"},
    {ActiveX, "ActiveX"},
    {DummySrv, "DummySrv"},
    {MainUI, "MainUI"},
    {Setup, "Setup", {{{512, "ServerMaint"}}}},
    {Upgrade, "Upgrade"},
    {Layout, "Layout"},
    {Ptzf, "Ptzf"},
    {ConReq, "ConReq"},
    {Gui, "Gui"},
    {Qml, "Qml"},
};

}  // namespace

void LogManager::registerModules() {
    for (const ModuleRow& row : moduleTable) {
        const auto module = QSharedPointer<LogModule>::create(row.module, row.name);
        for (const SubModuleRow& subModule : row.subModules) {
            if (subModule.id != 0)
                module->addSubModule(subModule.id, QString::fromLatin1(subModule.name));
        }
        registerModule(row.module, module, true, allSubModules);
    }
}

void LogManager::registerModule(Module module, const QSharedPointer<LogModule>& entry, bool enabled,
                                unsigned int submods) {
    modules_.insert(module, entry);
    if (enabled)
        enabledModules_ |= module;
    enabledSubmodules_[module] = submods;
}

}  // namespace pylon::plog
