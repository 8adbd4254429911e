#include <pylon/log/logfilter.h>

#include <algorithm>
#include <string_view>

namespace pylon::plog {

namespace {

/// A term as written, before names are looked up.
struct Term {
    std::string_view module;
    QList<std::string_view> subModules;
};

/// Cuts a filter text into terms; never reads past its end.
class TermReader {
public:
    explicit TermReader(std::string_view text) : rest_(text) {}

    bool atEnd() const { return rest_.empty(); }

    Term next() {
        Term term;
        skip(" ");
        term.module = takeUntil("\t ,{");
        skip(" \t");
        if (rest_.starts_with('{')) {
            rest_.remove_prefix(1);
            term.subModules = takeSubModules();
        }
        skip(", ");
        return term;
    }

private:
    QList<std::string_view> takeSubModules() {
        QList<std::string_view> names;
        while (!atEnd()) {
            skip(", ");
            const std::string_view name = takeUntil(", }");
            if (!name.empty())
                names.append(name);
            if (rest_.starts_with('}')) {
                rest_.remove_prefix(1);
                break;
            }
        }
        return names;
    }

    void skip(std::string_view separators) {
        rest_.remove_prefix(std::min(rest_.find_first_not_of(separators), rest_.size()));
    }

    std::string_view takeUntil(std::string_view separators) {
        const std::string_view taken = rest_.substr(0, rest_.find_first_of(separators));
        rest_.remove_prefix(taken.size());
        return taken;
    }

    std::string_view rest_;
};

std::string_view view(const QByteArray& bytes) {
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

bool isOverlong(std::string_view name) {
    return name.size() > std::size_t{LogFilter::maxNameBytes};
}

QString checkedName(std::string_view name) {
    if (isOverlong(name))
        qFatal("LogFilter: a name of %zu bytes, %zu are allowed", name.size(),
               std::size_t{LogFilter::maxNameBytes});
    return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

QList<LogFilterItem> parse(const QString& filter) {
    const QByteArray bytes = filter.toUtf8();
    QList<LogFilterItem> items;
    for (TermReader reader(view(bytes)); !reader.atEnd();) {
        const Term term = reader.next();
        QList<QString> subModules;
        for (const std::string_view name : term.subModules)
            subModules.append(checkedName(name));
        items.append(LogFilterItem(checkedName(term.module), subModules));
    }
    return items;
}

void addError(QString* error, const QString& text) {
    if (!error)
        return;
    if (!error->isEmpty())
        *error += QStringLiteral(", ");
    *error += text;
}

}  // namespace

// Programs that take a constant by reference import it from here.
constexpr qsizetype LogFilter::maxNameBytes;

LogFilter::LogFilter(const QMap<Module, QSharedPointer<LogModule>>& modules) : modules_(&modules) {}

QList<LogFilterItem> LogFilter::parseFilterString(const QString& filter, QString* error) const {
    QList<LogFilterItem> items = parse(filter);
    isValid(items, error);
    return items;
}

bool LogFilter::isValid(const LogFilterItem& item, QString* error) const {
    const auto found =
        std::find_if(modules_->cbegin(), modules_->cend(),
                     [&](const auto& candidate) { return candidate->name() == item.moduleStr(); });
    if (found == modules_->cend()) {
        item.setValid(false);
        addError(error, item.moduleStr());
        return false;
    }
    const LogModule& module = **found;
    item.setModule(module.module());
    item.setValid(true);
    if (item.subModulesStr().isEmpty())
        item.setSubmodulesStrList(module.subModuleNames());
    unsigned int subModules = 0;
    for (const QString& name : item.subModulesStr()) {
        const unsigned int subModule = module.subModule(name);
        subModules |= subModule;
        if (subModule != 0)
            continue;
        item.setValid(false);
        addError(error, QStringLiteral("%1{%2}").arg(item.moduleStr(), name));
    }
    item.setSubmodules(subModules);
    return item.isValid();
}

bool LogFilter::isValid(const QList<LogFilterItem>& items, QString* error) const {
    bool valid = true;
    for (const LogFilterItem& item : items)
        valid = isValid(item, error) && valid;
    return valid;
}

bool LogFilter::isValid(const QString& filter, QString* error) const {
    return isValid(parse(filter), error);
}

bool LogFilter::hasOverlongName(const QString& filter) {
    const QByteArray bytes = filter.toUtf8();
    for (TermReader reader(view(bytes)); !reader.atEnd();) {
        const Term term = reader.next();
        if (isOverlong(term.module) ||
            std::any_of(term.subModules.cbegin(), term.subModules.cend(), isOverlong))
            return true;
    }
    return false;
}

}  // namespace pylon::plog
