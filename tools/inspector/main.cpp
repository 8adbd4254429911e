#include <QtCore/QCoreApplication>

#include "console.h"
#include "inspector.h"
#include "motionview.h"
#include "terminal.h"

using namespace pylon::inspector;

namespace {

int print(const QByteArray& text) {
    Output output;
    output.buffer() = text;
    output.flush();
    if (!output.failed())
        return Success;
    complain(QStringLiteral("cannot write: ") + output.errorText());
    return InputFailed;
}

int refuse(const QString& reason) {
    complain(reason + QLatin1String("\nTry \"pylon-inspect --help\"."));
    return UsageError;
}

}  // namespace

int main(int argc, char* argv[]) {
    prepareStandardStreams();
    const QCoreApplication application(argc, argv);

    QString error;
    const auto options = parseOptions(QCoreApplication::arguments(), &error);
    if (!options)
        return refuse(error);
    switch (options->action) {
        case Options::Action::ShowHelp:
            return print(helpText());
        case Options::Action::ShowVersion:
            return print("pylon-inspect " PYLON_INSPECT_VERSION "\n");
        case Options::Action::ListZones:
            return print(zoneListing());
        case Options::Action::Inspect:
        case Options::Action::ShowMask:
        case Options::Action::ShowDiffMap:
            break;
    }
    if (!applyFilter(options->log, &error))
        return refuse(error);
    if (!openLog(options->log, &error)) {
        complain(error);
        return InputFailed;
    }
    return options->action == Options::Action::Inspect ? inspect(*options) : showMotion(*options);
}
