#include "recordings.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "console.h"
#include "text.h"

namespace pylon::inspector {

namespace {

constexpr QLatin1String standardInput("-");

// A file with the time and the caller's three numbers out of its name.
using Dump = std::pair<std::array<qint64, 4>, QString>;

// Nothing for a file that is no dumped frame by its name, which begins "img-A_B_C-TIME_".
std::optional<Dump> dumpOf(const QString& file) {
    static const QRegularExpression pattern(
        QStringLiteral("^img-(\\d+)_(\\d+)_(\\d+)-(-?\\d+)_.*\\.bin$"));
    const auto match = pattern.match(QFileInfo(file).fileName());
    if (!match.hasMatch())
        return {};
    const auto number = [&match](int group) { return match.capturedView(group).toLongLong(); };
    return Dump{{number(4), number(1), number(2), number(3)}, file};
}

// Those of cameras and, in the subfolder that dump() uses for them, those of events.
std::vector<Dump> dumpsIn(const QString& folder) {
    std::vector<Dump> dumps;
    for (const QString& path : {folder, folder + QStringLiteral("/event")}) {
        const QDir dir(path);
        for (const QString& name : dir.entryList({QStringLiteral("img-*.bin")}, QDir::Files)) {
            if (auto dump = dumpOf(dir.filePath(name)))
                dumps.push_back(std::move(*dump));
        }
    }
    return dumps;
}

Recording recordingOf(const QString& name, std::vector<Dump>& dumps) {
    std::ranges::sort(dumps);
    Recording recording{name, {}};
    for (Dump& dump : dumps)
        recording.files += std::move(dump.second);
    dumps.clear();
    return recording;
}

}  // namespace

qint64 Recording::size() const {
    qint64 sum = 0;
    for (const QString& file : files)
        sum += file == standardInput ? 0 : QFileInfo(file).size();
    return sum;
}

std::vector<Recording> recordingsOf(const QStringList& arguments) {
    std::vector<Recording> recordings;
    std::vector<Dump> dumps;  // that make the next recording
    const auto takeDumps = [&] {
        if (dumps.empty())
            return;
        QString name = displayName(dumps.front().second);
        if (dumps.size() > 1)
            name += QStringLiteral(" and %1 more").arg(dumps.size() - 1);
        recordings.push_back(recordingOf(name, dumps));
    };
    for (const QString& argument : arguments) {
        if (auto dump = dumpOf(argument)) {
            dumps.push_back(std::move(*dump));
            continue;
        }
        takeDumps();
        if (QFileInfo(argument).isDir() && !(dumps = dumpsIn(argument)).empty())
            recordings.push_back(recordingOf(displayName(argument), dumps));
        else
            recordings.push_back({displayName(argument), {argument}});
    }
    takeDumps();
    return recordings;
}

QString displayName(const QString& file) {
    return file == standardInput ? QStringLiteral("standard input") : printable(file);
}

std::unique_ptr<QIODevice> openInput(const QString& file, QString* error) {
    if (file == standardInput)
        return std::make_unique<StandardInput>();
    if (QFileInfo(file).isDir()) {
        *error = QStringLiteral("is a folder");
        return nullptr;
    }
    auto device = std::make_unique<QFile>(file);
    if (!device->open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        *error = device->errorString();
        return nullptr;
    }
    return device;
}

}  // namespace pylon::inspector
