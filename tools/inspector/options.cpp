#include "options.h"

#include <pylon/log/loglevel.h>
#include <QtCore/QCommandLineParser>

#include "text.h"

namespace pylon::inspector {

namespace {

constexpr char help[] = R"(Usage: pylon-inspect [options] FILE...
       pylon-inspect --mask FILE [--png OUT]
       pylon-inspect --diffmap FILE [--png OUT]

Shows what is inside recordings of network frames: a line a frame, then a summary
of each camera and track. The FILE "-" is standard input. A FILE may also be a dumped
frame, or a folder of them: those in one folder, and FILEs named img-*.bin that follow
each other, are shown as one recording, in the order of their times.

Output:
  --json             a JSON object a line for each frame, and nothing else
  --summary          only the summaries
  --zone ZONE        times of table and summary in ZONE, not in each frame's own zone.
                     ZONE is an abbreviation, or with the beginning of the full name
                     where several zones share one: CET, "CST:China"
  --zones            list the known time zones and exit

Extraction:
  --extract DIR      write the content of the frames shown into files of the folder DIR:
                     pictures, XML and anything else as OFFSET-cameraN.jpg, .xml, .bin;
                     sound as one cameraN-trackM.wav for each track, 16 bit, at the
                     rate of its first frame. With several recordings, names start
                     with inputN-. A file that exists is an error, never overwritten.
                     Encrypted frames, audio formats other than PCM and G.711, and
                     sound after the first 64 tracks are written as .bin.
                     A gap in the sound becomes silence, at most 60 s each and 100 MB in
                     all, then the sound goes on. Sound that overlaps what came before
                     by up to 10 s is cut; from further back, it goes on at once.
  --dump             write each frame shown, as it was received, to a file of its own in
                     the folder TestServerData/unit/images of your home directory, those
                     of camera 255 to the folder event in that; both are made if needed.
                     Files are named img-A_B_C-HEADER-CAMERA.bin: recording A of the
                     command line, frame B of that, at byte C, then what the header says.
                     A file of the same name is overwritten. The table has a line more for
                     each frame, with the length of the name, and the name.

Motion:
  --mask FILE        show the text form of a motion mask, as blocks
  --diffmap FILE     show a difference map, coded or not, as shades
  --png OUT          write that as a picture, too, 8 x 8 pixels a cell, watched cells and
                     the strongest motion being white; OUT must not exist

Reading:
  --resync           after damage go on at the next thing that looks like a frame and is
                     followed by two more, or by the end of the input; without this, a
                     file is read up to its first damage

Selection, each may be given more than once:
  --camera N         only frames of camera N
  --type C           only frames of type C, such as V (video) or a (audio)

Log, on standard error; silent unless one of these is given:
  --log FILE         append the log to FILE instead
  --log-size MIB     rotate that file when it is larger, 1 to 1000 MiB (default 100)
  --verbose          what is being done, in detail: adds the level DEBUG
  --log-level LIST   these levels instead of INFO, WARN and ERROR, for example
                     trace,info; TRACE has a line a frame, "all" means every level
  --log-filter TEXT  only these modules and sub-modules, for example "Playback{Stream}".
                     This program logs to the module Playback: lines about frames to
                     its sub-module Stream, others without one. A filter enables no
                     lines without sub-module.

Other:
  -h, --help         show this text and exit
  --version          show the version and exit

Examples:
  pylon-inspect --camera 4 --zone CET gate.frames     one camera, in Central European time
  pylon-inspect --json gate.frames | jq .cameraName   frames for another program
  pylon-inspect --summary --resync damaged.frames     what is left of a damaged recording
  pylon-inspect --extract out --type a gate.frames    the sound of every camera

Marks in the table: "hidden", "dewarped", "encrypted", "new-key" (the sender asks for
a new key), "audio:N" (sound belonging to the picture comes from camera N), and
"marks:" with the marks of a frame if there are others than the one for hidden.

The environment variable NO_COLOR switches colours off.

Exit status: 0 everything was read; 1 a file is damaged or cannot be read, or output
failed; 2 the command line is wrong.
)";

constexpr const char* flags[] = {"help",  "h",    "version", "json",   "summary",
                                 "zones", "dump", "resync",  "verbose"};
constexpr const char* valueOptions[] = {"zone",       "camera",  "type",     "log-level",
                                        "log-filter", "log",     "log-size", "extract",
                                        "mask",       "diffmap", "png"};
// Those that are about recordings.
constexpr const char* recordingOptions[] = {"json", "summary", "zone", "camera",
                                            "type", "extract", "dump", "resync"};

void addOptions(QCommandLineParser& parser) {
    for (const char* name : flags)
        parser.addOption(QCommandLineOption(QString::fromLatin1(name)));
    for (const char* name : valueOptions)
        parser.addOption(
            QCommandLineOption(QString::fromLatin1(name), {}, QStringLiteral("value")));
}

// Each step takes over one group of options and leaves a message in error_ where it cannot.
class Reader {
public:
    Reader(const QCommandLineParser& parser, QString* error) : parser_(parser), error_(*error) {}

    std::optional<Options> read() {
        if (isSet("help") || isSet("h"))
            return only(Options::Action::ShowHelp);
        if (isSet("version"))
            return only(Options::Action::ShowVersion);
        if (isSet("zones"))
            return only(Options::Action::ListZones);
        if (!readFormat() || !readZone() || !readCameras() || !readTypes() || !readLog() ||
            !readExtraction() || !readMotion() || !readFiles())
            return {};
        return options_;
    }

private:
    bool isSet(const char* name) const { return parser_.isSet(QString::fromLatin1(name)); }
    QString value(const char* name) const { return parser_.value(QString::fromLatin1(name)); }
    QStringList values(const char* name) const { return parser_.values(QString::fromLatin1(name)); }

    Options only(Options::Action action) {
        options_.action = action;
        return options_;
    }

    bool refuse(const QString& reason) {
        error_ = reason;
        return false;
    }

    bool readFormat() {
        if (isSet("json") && isSet("summary"))
            return refuse(QStringLiteral("--json and --summary exclude each other"));
        if (isSet("json"))
            options_.format = Options::Format::Json;
        if (isSet("summary"))
            options_.format = Options::Format::Summary;
        return true;
    }

    bool readZone() {
        if (isSet("zone"))
            options_.zone = findZone(value("zone"), &error_);
        return options_.zone || !isSet("zone");
    }

    bool readCameras() {
        for (const QString& text : values("camera")) {
            bool ok = false;
            options_.cameras += text.toUShort(&ok);
            if (!ok)
                return refuse(QStringLiteral("--camera needs a number from 0 to 65535, not \"%1\"")
                                  .arg(printable(text)));
        }
        return true;
    }

    bool readTypes() {
        for (const QString& text : values("type")) {
            if (text.size() != 1 || text[0].unicode() > 0xFF)
                return refuse(
                    QStringLiteral("--type needs one character, not \"%1\"").arg(printable(text)));
            options_.types += static_cast<quint8>(text[0].unicode());
        }
        return true;
    }

    bool readLog() {
        LogOptions& log = options_.log;
        log.enabled = isSet("verbose") || isSet("log-level") || isSet("log-filter") || isSet("log");
        log.file = value("log");
        if (isSet("log") && log.file.isEmpty())
            return refuse(QStringLiteral("--log needs the name of a file"));
        if (isSet("log-size") && !isSet("log"))
            return refuse(QStringLiteral("--log-size needs --log"));
        if (isSet("log-size")) {
            bool ok = false;
            log.maxFileSize = value("log-size").toLongLong(&ok);
            if (!ok || log.maxFileSize < 1 || log.maxFileSize > 1000)
                return refuse(QStringLiteral("--log-size needs a number from 1 to 1000, not \"%1\"")
                                  .arg(printable(value("log-size"))));
        }
        if (isSet("log-level")) {
            const auto levels = parseLogLevels(value("log-level"), &error_);
            if (!levels)
                return false;
            log.levels = *levels;
        }
        if (isSet("verbose"))
            log.levels |= plog::Debug;
        if (isSet("log-filter"))
            log.filter = value("log-filter");
        return true;
    }

    bool readExtraction() {
        options_.resync = isSet("resync");
        options_.dump = isSet("dump");
        options_.extractFolder = value("extract");
        return !isSet("extract") || !options_.extractFolder.isEmpty() ||
               refuse(QStringLiteral("--extract needs the name of a folder"));
    }

    bool readMotion() {
        options_.pngFile = value("png");
        if (isSet("mask"))
            options_.action = Options::Action::ShowMask;
        if (isSet("diffmap"))
            options_.action = Options::Action::ShowDiffMap;
        if (isSet("mask") && isSet("diffmap"))
            return refuse(QStringLiteral("--mask and --diffmap exclude each other"));
        if (isSet("png") && options_.action == Options::Action::Inspect)
            return refuse(QStringLiteral("--png needs --mask or --diffmap"));
        if (isSet("png") && (options_.pngFile.isEmpty() || options_.pngFile == QLatin1String("-")))
            return refuse(QStringLiteral("--png needs the name of a file"));
        return true;
    }

    bool readFiles() {
        options_.files = parser_.positionalArguments();
        if (options_.action != Options::Action::Inspect && !readMotionFile())
            return false;
        if (options_.files.isEmpty())
            return refuse(QStringLiteral("no file given"));
        return !options_.files.contains(QString()) ||
               refuse(QStringLiteral("the name of a file is empty"));
    }

    bool readMotionFile() {
        const char* const option =
            options_.action == Options::Action::ShowMask ? "mask" : "diffmap";
        const auto refuseBeside = [&](const QString& what) {
            return refuse(
                QStringLiteral("--%1 FILE does not go with %2").arg(QLatin1String(option), what));
        };
        for (const char* other : recordingOptions) {
            if (isSet(other))
                return refuseBeside(QLatin1String("--") + QLatin1String(other));
        }
        if (!options_.files.isEmpty() || values(option).size() > 1)
            return refuseBeside(QStringLiteral("another FILE"));
        options_.files = values(option);
        return true;
    }

    const QCommandLineParser& parser_;
    QString& error_;
    Options options_;
};

}  // namespace

std::optional<Options> parseOptions(const QStringList& arguments, QString* error) {
    QCommandLineParser parser;
    addOptions(parser);
    if (!parser.parse(arguments)) {
        *error = printable(parser.errorText());
        return {};
    }
    return Reader(parser, error).read();
}

QByteArray helpText() {
    return help;
}

}  // namespace pylon::inspector
