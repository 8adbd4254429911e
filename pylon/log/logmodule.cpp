#include <pylon/log/logmodule.h>

namespace pylon::plog {

LogModule::LogModule(Module module, const char* name)
    : module_(module), name_cstr_(name), name_(QString::fromUtf8(name)) {}

void LogModule::addSubModule(unsigned int id, const QString& name) {
    subModules_.insert(id, name);
}

unsigned int LogModule::subModule(const QString& name) const {
    return subModules_.key(name, 0);
}

QString LogModule::subModuleName(unsigned int id) const {
    return subModules_.value(id);
}

QList<QString> LogModule::subModuleNames() const {
    return subModules_.values();
}

QList<unsigned int> LogModule::subModules() const {
    return subModules_.keys();
}

}  // namespace pylon::plog
