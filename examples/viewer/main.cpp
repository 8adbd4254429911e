// Plays a recording of network frames: pictures of all cameras, times in any zone, and the log.

#include <pylon/log/logconsole.h>
#include <pylon/log/logmanager.h>
#include <pylon/log/qtmessagehandler.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QRegularExpression>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <cstdio>

#include "mainwindow.h"
#include "theme.h"
#include "tilegrid.h"

using namespace pylon::viewer;

namespace {

constexpr double maxSeconds = 1e6;

struct Options {
    QString recording;
    QString zone;
    QString screenshot;
    QString tile;
    double seconds = 0;
    QStringList zooms;
    QStringList masks;
};

Options readOptions(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Plays a recording of network frames."));
    const auto add = [&parser](const char* name, const char* value, const char* description,
                               const char* defaultValue = "") {
        parser.addOption({QString::fromUtf8(name), QString::fromUtf8(description),
                          QString::fromUtf8(value), QString::fromUtf8(defaultValue)});
    };
    add("zone", "zone", "Show times in this zone: server, UTC, ABBR or ABBR:NAME.", "server");
    add("at", "seconds", "Begin so many seconds into the recording.", "0");
    add("zoom", "camera:factor[@x,y]",
        "Zoom a camera's picture by 1 to 20, with this point of it (0 to 1) in the middle.");
    add("mask", "camera:file", "Show the motion mask in this file over a camera's picture.");
    add("screenshot", "file", "Save a picture of the window and quit.");
    add("tile", "camera", "Save a picture of this camera's tile only.");
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("recording"), QStringLiteral("File to open."),
                                 QStringLiteral("[recording]"));
    parser.process(arguments);
    return {parser.positionalArguments().value(0),         parser.value(QStringLiteral("zone")),
            parser.value(QStringLiteral("screenshot")),    parser.value(QStringLiteral("tile")),
            parser.value(QStringLiteral("at")).toDouble(), parser.values(QStringLiteral("zoom")),
            parser.values(QStringLiteral("mask"))};
}

// The tile of the camera with this number; null if there is none.
TileWidget* tileOf(const MainWindow& window, const QString& camera) {
    bool isNumber = false;
    const quint32 id = camera.toUInt(&isNumber);
    return isNumber ? window.grid().tileOf(id) : nullptr;
}

// "FACTOR" or "FACTOR@X,Y"
bool zoom(TileWidget& tile, const QString& text) {
    static const QRegularExpression separators(QStringLiteral("[@,]"));
    QList<double> numbers;  // what is no number counts as 0, which is no factor
    for (const QString& number : text.split(separators))
        numbers.append(number.toDouble());
    const double factor = numbers.takeFirst();
    if (numbers.isEmpty())
        numbers = {0.5, 0.5};
    const auto isInside = [](double part) { return part >= 0 && part <= 1; };
    if (!(factor >= 1 && factor <= ZoomView::maxFactor) || numbers.size() != 2 ||
        !std::ranges::all_of(numbers, isInside))
        return false;
    tile.view().zoomTo(factor, {numbers[0], numbers[1]});
    return true;
}

bool loadMask(TileWidget& tile, const QString& path) {
    return tile.view().loadMask(path);
}

// Does to each tile named in "CAMERA:WHAT" what is wanted of it.
bool apply(const MainWindow& window, const QStringList& values,
           bool (*function)(TileWidget&, const QString&)) {
    for (const QString& value : values) {
        TileWidget* const tile = tileOf(window, value.section(QLatin1Char(':'), 0, 0));
        if (!tile || !function(*tile, value.section(QLatin1Char(':'), 1))) {
            std::fprintf(stderr, tile ? "cannot show %s\n" : "there is no such camera: %s\n",
                         qPrintable(value));
            return false;
        }
    }
    return true;
}

int saveScreenshot(MainWindow& window, const Options& options) {
    window.grab();                      // gives everything its place
    QCoreApplication::processEvents();  // log lines on their way
    QWidget* const shown =
        options.tile.isEmpty() ? static_cast<QWidget*>(&window) : tileOf(window, options.tile);
    constexpr int smallest = 0;
    if (shown && shown->grab().save(options.screenshot, nullptr, smallest))
        return 0;
    std::fprintf(stderr, "cannot write %s\n", qPrintable(options.screenshot));
    return 1;
}

int run(const Options& options) {
    MainWindow window;
    QString error;
    if (!window.setZone(options.zone, &error)) {
        std::fprintf(stderr, "%s\n", qPrintable(error));
        return 2;
    }
    if (!options.recording.isEmpty() && !window.open(options.recording))
        return 1;
    if (!(options.seconds >= 0 && options.seconds <= maxSeconds)) {
        std::fprintf(stderr, "--at takes 0 to %g seconds\n", maxSeconds);
        return 2;
    }
    window.playback().seek(static_cast<int>(options.seconds * 1000));
    if (!apply(window, options.zooms, zoom) || !apply(window, options.masks, loadMask))
        return 2;
    if (!options.screenshot.isEmpty())
        return saveScreenshot(window, options);
    window.show();
    return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    theme::apply();
    auto* log = pylon::plog::LogManager::instance();
    log->addLogDevice(QSharedPointer<pylon::plog::LogConsole>::create(stderr, true));
    pylon::plog::installQtMessageHandler(pylon::plog::Gui);
    const int status = run(readOptions(application.arguments()));
    pylon::plog::removeQtMessageHandler();
    log->clearLogDevices();
    return status;
}
