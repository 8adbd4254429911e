#include "inspector.h"

#include <QtCore/qfile.h>
#include <pylon/log/logmacros.h>

#include <memory>

#include "console.h"
#include "framesource.h"
#include "jsonwriter.h"
#include "summary.h"
#include "tablewriter.h"
#include "text.h"

namespace pylon::inspector {

namespace {

std::unique_ptr<QIODevice> openInput(const QString& name, QString* error) {
    if (name == QLatin1String("-"))
        return std::make_unique<StandardInput>();
    auto file = std::make_unique<QFile>(name);
    if (!file->open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        *error = file->errorString();
        return nullptr;
    }
    return file;
}

QString displayName(const QString& name) {
    return name == QLatin1String("-") ? QStringLiteral("standard input") : printable(name);
}

qint64 sizeOf(const QIODevice& device) {
    return device.isSequential() ? 0 : device.size();
}

// One input on its way from frames to text.
class Inspection {
public:
    Inspection(const Options& options, Output& output, QIODevice& device)
        : options_(options),
          output_(output),
          style_(outputStyle()),
          source_(device),
          table_(sizeOf(device), options.zone, style_),
          progress_(sizeOf(device), !options.log.enabled) {}

    // False if the input is damaged.
    bool run();

    const FrameSource& source() const { return source_; }
    qint64 frames() const { return frames_; }

private:
    void show();
    void flush();
    bool readMore();
    void showSummary();

    const Options& options_;
    Output& output_;
    Style style_;
    FrameSource source_;
    TableWriter table_;
    Summary summary_;
    Progress progress_;
    qint64 frames_ = 0;
};

bool Inspection::run() {
    bool whole = true;
    for (bool more = true; more && !output_.ended();) {
        switch (source_.next()) {
            case FrameSource::Status::Frame:
                show();
                break;
            case FrameSource::Status::NeedsData:
                more = readMore();
                whole = more || source_.finish();
                break;
            case FrameSource::Status::Failed:
                more = whole = false;
                break;
        }
    }
    progress_.hide();
    if (options_.format != Options::Format::Json)
        showSummary();
    output_.flush();
    return whole;
}

void Inspection::show() {
    const Image& image = source_.image();
    ++frames_;
    PLOG_TRACE(logClient(), nullptr, streamSubModule,
               "frame at byte %lld: camera %u, track %u, %u bytes", source_.offset(),
               image.cameraId(), image.trackId(), image.totalSize());
    if (!options_.selects(image))
        return;
    if (options_.format == Options::Format::Json) {
        appendJson(output_.buffer(), source_);
    } else {
        summary_.add(image);
        if (options_.format == Options::Format::Table)
            table_.appendFrame(output_.buffer(), source_);
    }
    if (output_.isLarge())
        flush();
}

void Inspection::flush() {
    if (output_.buffer().isEmpty())
        return;
    progress_.makeWay();
    output_.flush();
}

// Reading may wait for somebody who writes, so everything known so far is shown first.
bool Inspection::readMore() {
    flush();
    const bool more = source_.fill();
    progress_.update(source_.offset());
    PLOG_DEBUG(logClient(), nullptr, streamSubModule, "%lld frames so far, buffer of %lld bytes",
               frames_, static_cast<long long>(source_.capacity()));
    return more;
}

void Inspection::showSummary() {
    QByteArray& out = output_.buffer();
    if (summary_.frames() == 0) {
        out.append(frames_ == 0 ? "no frames\n" : "no frame matches\n");
        return;
    }
    if (options_.format == Options::Format::Table)
        out.append('\n');
    out.append(summary_.text(options_.zone, style_));
}

bool reportFailure(Output& output, const QString& name, const QString& reason) {
    PLOG_WARN(logClient(), nullptr, "%s: %s", qUtf8Printable(name), qUtf8Printable(reason));
    output.flush();  // on a terminal, what was shown stands above the complaint
    complain(name + QLatin1String(": ") + reason);
    return false;
}

// False if the input could not be opened or is damaged.
bool inspectFile(const Options& options, Output& output, const QString& file) {
    const QString name = displayName(file);
    QString error;
    const auto device = openInput(file, &error);
    if (!device)
        return reportFailure(output, name, error);
    PLOG_INFO(logClient(), nullptr, "reading %s", qUtf8Printable(name));
    Inspection inspection(options, output, *device);
    const bool whole = inspection.run();
    PLOG_INFO(logClient(), nullptr, streamSubModule, "%s: %lld frames up to byte %lld",
              qUtf8Printable(name), inspection.frames(), inspection.source().offset());
    if (whole)
        return true;
    return reportFailure(output, name,
                         QStringLiteral("frame at byte %1: %2")
                             .arg(inspection.source().offset())
                             .arg(inspection.source().reason()));
}

void appendFileHeading(QByteArray& out, const QString& file, bool first) {
    const Style style = outputStyle();
    out.append(first ? "" : "\n");
    out.append(style.heading);
    out.append("==> " + displayName(file).toUtf8() + " <==");
    out.append(style.off);
    out.append('\n');
}

}  // namespace

ExitStatus inspect(const Options& options) {
    Output output;
    ExitStatus status = Success;
    const bool headings = options.files.size() > 1 && options.format != Options::Format::Json;
    for (qsizetype i = 0; i < options.files.size() && !output.ended(); ++i) {
        if (headings)
            appendFileHeading(output.buffer(), options.files[i], i == 0);
        if (!inspectFile(options, output, options.files[i]))
            status = InputFailed;
    }
    output.flush();
    if (output.failed()) {
        complain(QStringLiteral("cannot write: ") + output.errorText());
        status = InputFailed;
    }
    return status;
}

}  // namespace pylon::inspector
