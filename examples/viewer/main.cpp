// Plays a recording of network frames: pictures of all cameras, times in any zone, and the log.

#include <pylon/log/logconsole.h>
#include <pylon/log/logmanager.h>
#include <pylon/log/qtmessagehandler.h>

#include <QtCore/QCommandLineParser>
#include <QtWidgets/QApplication>

#include <cstdio>

#include "mainwindow.h"
#include "theme.h"

using namespace pylon::viewer;

namespace {

constexpr double maxSeconds = 1e6;

struct Options {
    QString recording;
    QString zone;
    QString screenshot;
    double seconds = 0;
};

Options readOptions(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Plays a recording of network frames."));
    const QCommandLineOption zone(
        QStringLiteral("zone"),
        QStringLiteral("Show times in this zone: server, UTC, ABBR or ABBR:NAME."),
        QStringLiteral("zone"), QStringLiteral("server"));
    const QCommandLineOption screenshot(QStringLiteral("screenshot"),
                                        QStringLiteral("Save a picture of the window and quit."),
                                        QStringLiteral("file"));
    const QCommandLineOption at(QStringLiteral("at"),
                                QStringLiteral("Begin so many seconds into the recording."),
                                QStringLiteral("seconds"), QStringLiteral("0"));
    parser.addOptions({zone, screenshot, at});
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("recording"), QStringLiteral("File to open."),
                                 QStringLiteral("[recording]"));
    parser.process(arguments);
    return {parser.positionalArguments().value(0), parser.value(zone), parser.value(screenshot),
            parser.value(at).toDouble()};
}

int saveScreenshot(MainWindow& window, const QString& path) {
    window.grab();                      // gives everything its place
    QCoreApplication::processEvents();  // log lines on their way
    constexpr int smallest = 0;
    if (window.grab().save(path, nullptr, smallest))
        return 0;
    std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
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
    if (!options.screenshot.isEmpty())
        return saveScreenshot(window, options.screenshot);
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
