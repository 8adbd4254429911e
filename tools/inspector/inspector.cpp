#include "inspector.h"

#include <pylon/log/logmacros.h>
#include <pylon/media/framereader.h>
#include <QtCore/QFile>

#include <memory>
#include <optional>

#include "console.h"
#include "extractor.h"
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

bool reportFailure(Output& output, const QString& name, const QString& reason) {
    PLOG_WARN(logClient(), nullptr, "%s: %s", qUtf8Printable(name), qUtf8Printable(reason));
    output.flush();  // on a terminal, what was shown stands above the complaint
    complain(name + QLatin1String(": ") + reason);
    return false;
}

QString damageText(const FrameReader& reader) {
    return QStringLiteral("frame at byte %1: %2").arg(reader.offset()).arg(reader.reason());
}

// One input on its way from frames to text.
class Inspection {
public:
    // Files extracted get names that start with `prefix`.
    Inspection(const Options& options, Output& output, QIODevice& device, const QString& name,
               const QString& prefix)
        : options_(options),
          output_(output),
          name_(name),
          style_(outputStyle()),
          reader_(device),
          table_(sizeOf(device), options.zone, style_),
          progress_(sizeOf(device), !options.log.enabled) {
        if (!options.extractFolder.isEmpty())
            extractor_.emplace(options.extractFolder, prefix);
    }

    // False if the input is damaged or cannot be extracted, which has then been reported.
    bool run();

    qint64 offset() const { return reader_.offset(); }
    qint64 frames() const { return frames_; }

private:
    void show();
    void flush();
    void readMore();
    bool goOnBehindDamage();
    void reportDamage();
    void finishExtraction();
    void showSummary();

    const Options& options_;
    Output& output_;
    QString name_;
    Style style_;
    FrameReader reader_;
    TableWriter table_;
    Summary summary_;
    std::optional<Extractor> extractor_;
    Progress progress_;
    qint64 frames_ = 0;
    QString damage_;  // not reported yet
    bool damaged_ = false;
    bool extractionFailed_ = false;
    bool resynchronising_ = false;
};

bool Inspection::run() {
    for (bool more = true; more && !output_.ended() && !extractionFailed_;) {
        const FrameReader::Status status = reader_.next();
        if (status != FrameReader::Status::NeedsData)
            reportDamage();
        switch (status) {
            case FrameReader::Status::Frame:
                show();
                break;
            case FrameReader::Status::NeedsData:
                readMore();
                break;
            case FrameReader::Status::Failed:
                more = goOnBehindDamage();
                break;
            case FrameReader::Status::End:
                more = false;
                break;
        }
    }
    progress_.hide();
    if (options_.format != Options::Format::Json)
        showSummary();
    output_.flush();
    reportDamage();
    finishExtraction();
    return !damaged_ && !extractionFailed_;
}

// The report waits until it is known how many bytes were lost.
bool Inspection::goOnBehindDamage() {
    damaged_ = true;
    damage_ = damageText(reader_);
    resynchronising_ = options_.resync && reader_.resynchronise();
    return resynchronising_;
}

void Inspection::reportDamage() {
    if (damage_.isEmpty())
        return;
    if (const qint64 skipped = reader_.skippedBytes(); resynchronising_)
        damage_ += QStringLiteral("; %1 %2 skipped")
                       .arg(skipped)
                       .arg(skipped == 1 ? QLatin1String("byte") : QLatin1String("bytes"));
    progress_.hide();
    reportFailure(output_, name_, damage_);
    damage_.clear();
}

void Inspection::show() {
    const Image& image = reader_.headerImage();
    ++frames_;
    PLOG_TRACE(logClient(), nullptr, streamSubModule,
               "frame at byte %lld: camera %u, track %u, %u bytes", reader_.offset(),
               image.cameraId(), image.trackId(), image.totalSize());
    if (!options_.selects(image))
        return;
    if (options_.format == Options::Format::Json) {
        appendJson(output_.buffer(), reader_);
    } else {
        summary_.add(image);
        if (options_.format == Options::Format::Table)
            table_.appendFrame(output_.buffer(), reader_);
    }
    if (output_.isLarge())
        flush();
    if (extractor_ && !extractor_->add(reader_))
        extractionFailed_ = true;
}

void Inspection::finishExtraction() {
    if (!extractor_)
        return;
    extractionFailed_ = !extractor_->finish();
    if (extractionFailed_)
        reportFailure(output_, name_, extractor_->errorText());
    PLOG_INFO(logClient(), nullptr, "%lld files extracted from %s", extractor_->files(),
              qUtf8Printable(name_));
}

void Inspection::flush() {
    if (output_.buffer().isEmpty())
        return;
    progress_.makeWay();
    output_.flush();
}

// Reading may wait for somebody who writes, so everything known so far is shown first.
void Inspection::readMore() {
    flush();
    if (!reader_.fill())
        reader_.finish();
    progress_.update(reader_.offset());
    PLOG_DEBUG(logClient(), nullptr, streamSubModule, "%lld frames so far, buffer of %lld bytes",
               frames_, static_cast<long long>(reader_.capacity()));
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

// False if the input could not be opened or is damaged.
bool inspectFile(const Options& options, Output& output, qsizetype index) {
    const QString& file = options.files[index];
    const QString name = displayName(file);
    QString error;
    const auto device = openInput(file, &error);
    if (!device)
        return reportFailure(output, name, error);
    PLOG_INFO(logClient(), nullptr, "reading %s", qUtf8Printable(name));
    const QString prefix =
        options.files.size() > 1 ? QStringLiteral("input%1-").arg(index + 1) : QString();
    Inspection inspection(options, output, *device, name, prefix);
    const bool whole = inspection.run();
    PLOG_INFO(logClient(), nullptr, streamSubModule, "%s: %lld frames up to byte %lld",
              qUtf8Printable(name), inspection.frames(), inspection.offset());
    return whole;
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
        if (!inspectFile(options, output, i))
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
