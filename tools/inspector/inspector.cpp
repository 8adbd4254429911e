#include "inspector.h"

#include <pylon/log/logmacros.h>
#include <pylon/media/framereader.h>
#include <QtCore/QFileInfo>

#include <vector>

#include "recordings.h"
#include "report.h"

namespace pylon::inspector {

namespace {

// One file of a recording on its way into the report of that.
class Inspection {
public:
    // @p start is the place of the file in the recording.
    Inspection(const Options& options, Report& report, QIODevice& device, const QString& name,
               qint64 start)
        : options_(options), report_(report), reader_(device), name_(name), start_(start) {}

    void run();

    // What made the file end early and was not reported; empty if nothing did.
    QString damage() const { return damage_; }
    // How far the recording was read.
    qint64 end() const { return start_ + reader_.offset(); }

private:
    void readMore();
    bool goOnBehindDamage();
    void reportDamage();

    const Options& options_;
    Report& report_;
    FrameReader reader_;
    QString name_;
    qint64 start_;
    bool readAll_ = false;
    QString damage_;
};

void Inspection::run() {
    for (bool more = true; more && report_.goesOn();) {
        const FrameReader::Status status = reader_.next();
        if (status != FrameReader::Status::NeedsData)
            reportDamage();
        switch (status) {
            case FrameReader::Status::Frame:
                report_.add(reader_, end());
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
}

// Reading may wait for somebody who writes, so everything known so far is shown first.
void Inspection::readMore() {
    report_.flush(end());
    if (!reader_.fill()) {
        reader_.finish();
        readAll_ = true;
    }
    PLOG_DEBUG(logClient(), nullptr, streamSubModule, "%lld frames so far, buffer of %lld bytes",
               report_.frames(), static_cast<long long>(reader_.capacity()));
}

// The complaint waits until it is known how many bytes were lost.
bool Inspection::goOnBehindDamage() {
    damage_ = QStringLiteral("frame at byte %1: %2").arg(reader_.offset()).arg(reader_.reason());
    if (reader_.offset() == 0 && reader_.reason() == QLatin1String("Unknown header protocol"))
        damage_ += QLatin1String(", so this may be no recording at all");
    else if (!options_.resync && !readAll_)
        damage_ += QLatin1String("; the rest is not read, see --resync");
    return options_.resync && reader_.resynchronise();
}

// To be called only where the reader went on behind the damage.
void Inspection::reportDamage() {
    if (damage_.isEmpty())
        return;
    const qint64 skipped = reader_.skippedBytes();
    report_.complain(name_,
                     QStringLiteral("%1; %2 %3 skipped")
                         .arg(damage_)
                         .arg(skipped)
                         .arg(skipped == 1 ? QLatin1String("byte") : QLatin1String("bytes")));
    damage_.clear();
}

// False if there was something to complain about.
bool inspectRecording(const Options& options, Output& output, const Recording& recording,
                      int number) {
    Report report(options, output, recording, number);
    struct Failure {
        QString name;
        QString reason;
    };
    std::vector<Failure> failures;
    bool anyOpened = false;
    qint64 end = 0;
    for (const QString& file : recording.files) {
        const QString name = displayName(file);
        QString error;
        const auto device = openInput(file, &error);
        if (device) {
            PLOG_INFO(logClient(), nullptr, "reading %s", qUtf8Printable(name));
            Inspection inspection(options, report, *device, name, end);
            inspection.run();
            anyOpened = true;
            error = inspection.damage();
            end = inspection.end();
        } else if (QFileInfo(file).isDir()) {
            error += QFileInfo(file).isReadable()
                         ? QLatin1String(" without dumped frames (img-*.bin)")
                         : QLatin1String(" that cannot be read");
        }
        if (!error.isEmpty())
            failures.push_back({name, error});
    }
    if (anyOpened)
        report.finish();
    for (const Failure& failure : failures)
        report.complain(failure.name, failure.reason);
    PLOG_INFO(logClient(), nullptr, streamSubModule, "%s: %lld frames up to byte %lld",
              qUtf8Printable(recording.name), report.frames(), end);
    return report.isGood();
}

void appendHeading(QByteArray& out, const Recording& recording, bool first) {
    const Style style = outputStyle();
    out.append(first ? "" : "\n");
    out.append(style.heading);
    out.append("==> " + recording.name.toUtf8() + " <==");
    out.append(style.off);
    out.append('\n');
}

}  // namespace

ExitStatus inspect(const Options& options) {
    Output output;
    ExitStatus status = Success;
    const std::vector<Recording> recordings = recordingsOf(options.files);
    const bool several = recordings.size() > 1;
    const bool headings = several && options.format != Options::Format::Json;
    for (size_t i = 0; i < recordings.size() && !output.ended(); ++i) {
        if (headings)
            appendHeading(output.buffer(), recordings[i], i == 0);
        if (!inspectRecording(options, output, recordings[i],
                              several ? static_cast<int>(i) + 1 : 0))
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
